#include "menus/menu_text.h"

#include "host/com_error.h"
#include "operations/drawing_path.h"

namespace tavlet::menus {

std::string FormatText(std::string_view format, std::string_view argument) {
  std::string out(format);
  const std::size_t at = out.find("%s");
  if (at != std::string::npos) out.replace(at, 2, argument);
  return out;
}

std::string DocumentNamePart(port::DocManager& documents, port::Document document, FileSystem& files) {
  host::StringSink path;
  if (port::Failed(documents.PathName(document, &path))) path.text.clear();
  std::string name = DrawingPath(path.text, files).Name;
  if (!name.empty()) return name;
  host::StringSink fileName;
  if (port::Failed(documents.FileName(document, &fileName))) fileName.text.clear();
  return DrawingPath(fileName.text, files).Name;
}

}  // namespace tavlet::menus
