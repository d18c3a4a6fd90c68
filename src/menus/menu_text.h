// Small text helpers of the menu: the one-argument formats of its texts and the
// name a drawing goes by in the close entry.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "host/port/documents.h"
#include "platform/file_system.h"

namespace tavlet::menus {

// `format` with each "%s" in turn replaced by the next of `arguments` (no other
// conversions; a "%s" without an argument stays as it is).
std::string FormatText(std::string_view format, std::initializer_list<std::string_view> arguments);

// The name part (no extension) of the drawing's saved path, or of its file name
// when that part is empty (a drawing never saved). A failing host call counts as
// empty text.
std::string DocumentNamePart(port::DocManager& documents, port::Document document,
                             FileSystem& files);

}  // namespace tavlet::menus
