#include "bar/tip_text.h"

#include "host/com_error.h"
#include "operations/drawing_path.h"

namespace tavlet::bar {
namespace {

struct SummaryLabel {
  port::SummaryField field;
  const char* label;
};

constexpr SummaryLabel kSummaryLabels[] = {
    {port::kSummaryAuthor, "作者:"},          {port::kSummaryTitle, "标题:"},
    {port::kSummarySubject, "主题:"},         {port::kSummaryKeywords, "关键字:"},
    {port::kSummaryComments, "注释:"},        {port::kSummaryLastSavedBy, "最近保存者:"},
    {port::kSummaryRevisionNumber, "修改码:"}, {port::kSummaryHyperlinkBase, "超链接地址:"},
};

std::string Properties(port::DrawingDatabase& databases, port::Database db) {
  std::string extra;
  for (const SummaryLabel& item : kSummaryLabels) {
    host::StringSink value;
    long status = -1;
    if (port::Failed(databases.SummaryText(db, item.field, &value, &status)) || status != port::kAcadOk) continue;
    if (!value.text.empty()) extra += "\n" + std::string(item.label) + value.text;
  }
  long count = 0;
  if (port::Failed(databases.CustomSummaryCount(db, &count))) count = 0;
  for (long i = 0; i < count; ++i) {
    host::StringSink key, value;
    long status = -1;
    if (port::Failed(databases.CustomSummary(db, i, &key, &value, &status)) || status != port::kAcadOk) continue;
    if (!value.text.empty()) extra += "\n" + key.text + ": " + value.text;
  }
  return extra;
}

}  // namespace

std::string TipText(port::HostSession& session, FileSystem& files, const BarSettings& settings,
                    const TipCache& cache, port::Document doc) {
  if (const auto cached = cache.find(doc); cached != cache.end() && !cached->second.empty()) return cached->second;

  port::DocManager& documents = *session.Documents();
  host::StringSink path;
  if (port::Failed(documents.PathName(doc, &path))) path.text.clear();
  DrawingPath drawing(path.text, files);
  if (drawing.Name.empty()) {
    host::StringSink name;
    if (port::Failed(documents.FileName(doc, &name))) name.text.clear();
    drawing.Set(name.text);
  }
  std::string text = settings.ShowFullPathInTips ? drawing.Drive + drawing.Folder + drawing.Name : drawing.Name;

  if (settings.ShowDwgPropsInTips) {
    port::DrawingDatabase& databases = *session.Databases();
    port::Database db = nullptr;
    bool present = false;
    if (!port::Failed(documents.DatabaseOf(doc, &db)) && db &&
        !port::Failed(databases.HasSummaryInfo(db, &present)) && present)
      text += Properties(databases, db);
  }
  return text;
}

}  // namespace tavlet::bar
