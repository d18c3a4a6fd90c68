#include "menus/menu_text.h"

#include "host/com_error.h"
#include "operations/drawing_path.h"

namespace tavlet::menus {

std::string FormatText(std::string_view format, std::initializer_list<std::string_view> arguments) {
  std::string out;
  auto next = arguments.begin();
  std::size_t from = 0;
  for (std::size_t at = format.find("%s"); at != std::string_view::npos && next != arguments.end();
       at = format.find("%s", from)) {
    out.append(format.substr(from, at - from));
    out.append(*next++);
    from = at + 2;
  }
  out.append(format.substr(from));
  return out;
}

std::string DocumentNamePart(port::DocManager& documents, port::Document document,
                             FileSystem& files) {
  host::StringSink path;
  if (port::Failed(documents.PathName(document, &path))) path.text.clear();
  std::string name = DrawingPath(path.text, files).Name;
  if (!name.empty()) return name;
  host::StringSink fileName;
  if (port::Failed(documents.FileName(document, &fileName))) fileName.text.clear();
  return DrawingPath(fileName.text, files).Name;
}

}  // namespace tavlet::menus
