#include "bar/strip_actions.h"

namespace tavlet::bar {

bool SwitchToDocument(port::HostSession&, const BarSettings&, port::Document) { return false; }
bool TabSelChanging(port::HostSession&, const BarSettings&) { return false; }
bool TabSelChange(BarModel&, int) { return false; }
void RefreshAllPreviews(BarModel&, const std::function<void(DocEntry&)>&) {}
bool OnStripTimer(BarModel&, unsigned) { return false; }

}  // namespace tavlet::bar
