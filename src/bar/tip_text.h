// The text of a drawing's hover tip: its name or path, and on request the
// summary properties the host keeps in the drawing's database.
#pragma once

#include <map>
#include <string>

#include "host/port/host_session.h"
#include "platform/file_system.h"
#include "settings/settings_table.h"

namespace tavlet::bar {

// Looked up before a text is built and cleared by ApplyTipSettings. Nothing
// stores into it, so every look-up misses and the text is always made afresh.
using TipCache = std::map<port::Document, std::string>;

// The tip of `doc`: its name without extension (drive, folder and name with
// ShowFullPathInTips), then with ShowDwgPropsInTips one line per non-empty
// summary property and custom property. A failing host call leaves its part out.
std::string TipText(port::HostSession& session, FileSystem& files, const BarSettings& settings,
                    const TipCache& cache, port::Document doc);

}  // namespace tavlet::bar
