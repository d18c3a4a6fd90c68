// Two small commands of the context menu: a named view of the active drawing,
// and the template folder of the host's current profile.
#include "content/views.h"
#include "operations/batch_helpers.h"
#include "operations/drawing_operations_impl.h"
#include "text/codepage.h"

namespace tavlet::operations {

namespace {

// "HKEY_CURRENT_USER\" in front of a profile's registry root.
constexpr std::size_t kRootPrefixLength = 18;
constexpr const char* kTemplatePath = "TemplatePath";

bool EndsWithBackslash(const std::string& s) {
  bool last = false;
  for (std::size_t i = 0; i < s.size(); i += text::CharLength(s, i)) last = s[i] == '\\';
  return last;
}

}  // namespace

void DrawingOperations::OnSaveView() {
  Guarded(lines::SaveView, [&] {
    host::StringSink name;
    long status = port::kRtError;
    host::ThrowIfFailed(
        services_.session.EditorService()->GetString(true, "视图名称:", &name, &status));
    if (status != port::kRtNormal) return;
    if (!services_.session.OleLinks()) return;
    host::AcadDocumentPtr document = AutomationObjectOf(contextDocument);
    if (!document) return;
    // A view of that name already there is the host's affair.
    host::AcadViewPtr view = document.Views().Add(name.text);
    if (document.ActiveSpace() == port::kModelSpace) {
      host::AcadViewportPtr viewport = document.ActiveViewport();
      view.PutCenter(viewport.Center());
      view.PutDirection(viewport.Direction());
      view.PutHeight(viewport.Height());
      view.PutTarget(viewport.Target());
      view.PutWidth(viewport.Width());
      return;
    }
    host::AcadViewportPtr viewport = document.ActivePViewport();
    // A viewport's centre has two coordinates and a view's wants three.
    port::Point center = viewport.Center();
    center.z = 0;
    center.dimensions = 3;
    view.PutCenter(center);
    view.PutDirection(viewport.Direction());
    view.PutHeight(viewport.Height());
    view.PutTarget(viewport.Target());
    view.PutWidth(viewport.Width());
    const std::string layout = document.ActiveLayout().Name();
    if (services_.viewLayouts)
      services_.viewLayouts->WriteViewLayout(name.text, layout, contextDocument);
    else
      content::WriteViewLayout(name.text, layout, services_.session, contextDocument);
  });
}

// No guarded block: whatever fails leaves an empty path to start the browser from.
void DrawingOperations::OnChangeTemplatePath() {
  SystemVariableGuard profile(*services_.session.EditorService(), "CPROFILE", false);
  host::StringSink root;
  const port::Result found =
      services_.session.Services()->ProfileRegistryRoot(profile.Text().c_str(), &root);
  if (found != port::kOk || root.text.empty()) return;
  const std::string key =
      (root.text.size() > kRootPrefixLength ? root.text.substr(kRootPrefixLength) : std::string()) +
      "\\General";

  RegValue value;
  std::string folder;
  RegistryBackend& registry = services_.settings.Backend();
  if (registry.QueryValue(key, kTemplatePath, value) && value.type == kRegSz)
    folder.assign(value.bytes.c_str());  // up to the terminating NUL
  DrawingPath current(folder, services_.files);

  port::Window frame = nullptr;
  if (port::Failed(services_.session.Frame()->MainFrame(&frame))) frame = nullptr;
  std::string chosen;
  if (!services_.shell.BrowseForFolder(frame, "选择新的模板路径", current.Full, chosen)) return;
  if (!EndsWithBackslash(chosen)) chosen += '\\';
  registry.SetValue(key, kTemplatePath, kRegSz,
                    std::string_view(chosen.c_str(), chosen.size() + 1));
}

}  // namespace tavlet::operations
