// What the simulated host offers the drawing operations beyond its documents:
// the record of plots, its release against a drawing's, its profiles.
#include <cstdlib>

#include "previews/dwg_version.h"
#include "sim/sim_host.h"

namespace tavlet::sim {

void SimHost::RecordPlot(const SimDocument& d) {
  Variable background = variables_["BACKGROUNDPLOT"];
  plots_.push_back({d.fileName, d.content.activeLayout, background.value.integer});
}

double SimHost::Release() const { return std::strtod(versionText_.c_str(), nullptr); }

bool SimHost::ReadsVersion(const std::string& versionString) const {
  if (DrawingReleaseName(versionString) == "Unknown") return false;
  return DrawingVersionCode(versionString) <= Release();
}

std::string SimHost::VersionOfFile(const std::string& path) const {
  std::string bytes;
  if (fs_.ReadFile(path, bytes) != FileError::None) return "";
  if (LooksLikeDrawingDescription(bytes)) {
    DrawingDescription d;
    return ParseDrawingDescription(bytes, path, d).ok ? d.version : "";
  }
  if (bytes.compare(0, 2, "AC") != 0) return "";
  std::string version = bytes.substr(0, 6);
  return version.substr(0, version.find('\0'));
}

}  // namespace tavlet::sim
