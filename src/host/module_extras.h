// What the module does beyond the bar's original commands: the drawings' order
// of activation and the switcher over it (TLSWITCH), and the session list with
// its restore (TLRESTORE). It follows the bar's own document events, so the
// order costs no host call; only the session list asks the host for paths.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bar/activation_order.h"
#include "bar/bar_model.h"
#include "host/port/host_session.h"
#include "operations/session_list.h"
#include "previews/thumbnail_cache.h"
#include "settings/settings_store.h"

namespace tavlet::operations {
class DrawingOperations;
}

namespace tavlet::host {

// The switcher's window: shows `order` (most recent first) and gives the drawing
// picked, or null when cancelled. Without one, the switch goes straight to the
// previous drawing, as a quick Ctrl+Tab does.
using SwitcherPopup = std::function<port::Document(const std::vector<port::Document>& order)>;

struct ExtrasServices {
  port::HostSession& session;
  const SettingsStore& settings;
  FileSystem& files;
  std::string dataFolder;  // with its trailing separator
  SwitcherPopup switcherPopup;
};

class ModuleExtras final {
 public:
  // Starts from the drawings the bar lists now and follows its events.
  ModuleExtras(ExtrasServices services, bar::BarModel& bar);
  ~ModuleExtras();
  ModuleExtras(const ModuleExtras&) = delete;
  ModuleExtras& operator=(const ModuleExtras&) = delete;

  // TLSWITCH: the popup over the activation order, then the switch, with the
  // bar's rule for a drawing inside a command (`switchTo`).
  void OnSwitch(const std::function<bool(port::Document)>& switchTo);
  // TLRESTORE: the last session's drawings opened again; one box for those that
  // are gone, one line when there is nothing to restore.
  void OnRestore(operations::DrawingOperations& operations);
  // At start-up with SessionRestore 2 and a last session: asks, then restores.
  void OfferRestore(operations::DrawingOperations& operations);

  const bar::ActivationOrder& Order() const { return order_; }
  const operations::SessionRecorder* Session() const { return session_.get(); }
  // Null unless KeepThumbnails is on.
  const previews::ThumbnailCache* Thumbnails() const { return thumbnails_.get(); }

  // After the preferences' OK: SessionRestore read again, the session recorder
  // made (over the drawings open now) or dropped; KeepThumbnails likewise for
  // the captures from now on.
  void ReloadSettings();

 private:
  void DocumentCreated(port::Document doc);
  void DocumentToBeDestroyed(port::Document doc);
  void DocumentActivated(port::Document doc);
  std::string PathOf(port::Document doc);
  void Print(const std::string& text);
  // The kept thumbnails made or dropped as KeepThumbnails says.
  void FollowKeepThumbnails();
  // A kept picture for a drawing that has none yet; it stays stale, so its first
  // activation takes a fresh one.
  void ShowKeptThumbnail(port::Document doc);

  ExtrasServices services_;
  bar::ActivationOrder order_;
  std::unique_ptr<operations::SessionRecorder> session_;
  std::unique_ptr<previews::ThumbnailCache> thumbnails_;
  bar::BarModel& bar_;
  std::vector<std::pair<port::Document, std::string>> paths_;
};

namespace extras_texts {
inline constexpr char kNothingToRestore[] = "没有可恢复的图纸.\n";
inline constexpr char kRestoreOff[] = "没有记录会话: 请在选项中打开会话恢复.\n";
inline constexpr char kOfferRestore[] = "重新打开上次退出时打开的 %d 个图纸?";
}  // namespace extras_texts

}  // namespace tavlet::host
