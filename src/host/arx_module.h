// ArxModule: the module's application object for registration. It keeps the
// commands that start-up queues, announces the module in a framed banner, records
// it under the host's product key so that the host can demand-load it, and adds
// and removes its commands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/port/host_session.h"
#include "host/window_system.h"
#include "settings/settings_store.h"
#include "tavlet_version.h"

namespace tavlet::host {

inline constexpr std::size_t kBannerWidth = 78;
inline constexpr int kAlignCentre = 0;
inline constexpr int kAlignLeft = 1;
inline constexpr int kAlignRight = 2;

// Exactly 78 characters of `fill` with `text` copied in at (78 - length) / 2,
// 0 or 78 - length by `align` (a negative offset counting as 0), cut at 78. A
// double-byte character that the cut would split is left out, its place filled.
std::string PadBannerLine(std::string_view text, char fill, int align);

struct ArxCommand {
  std::function<void()> Handler;
  std::string Group;
  std::string GlobalName;
  std::string Description;
  std::uint32_t Flags = 0;
  std::int32_t LocalNameId = -1;  // string resource of the local name; -1 for none
};

class ArxModule {
 public:
  // `registry` is the settings' backend, rooted at HKEY_CURRENT_USER.
  ArxModule(port::HostSession& session, WindowSystem& windows, RegistryBackend& registry, std::string modulePath);
  ~ArxModule();
  ArxModule(const ArxModule&) = delete;
  ArxModule& operator=(const ArxModule&) = delete;

  void InitInstance();
  void ExitInstance();

  // Appends a command; with `enable` false the arguments are dropped.
  void QueueCommand(bool enable, std::function<void()> handler, std::string group, std::string globalName,
                    std::string description, std::uint32_t flags, std::int32_t localNameId);
  // Banner, command list, registry entries (unless `loadCtrl` is negative), and
  // the commands added to the host.
  void Register(long loadCtrl, void* pkt);
  // Removes the command group and prints the closing banner. The registry
  // entries stay, so that demand loading goes on working.
  void Unregister();
  void PrintBanner(const std::string& text, char frame);
  // The registry entries alone, as a change of the load control needs them.
  void WriteRegistry(long loadCtrl);

  // The string resource, or the global name when there is none.
  std::string LocalName(const ArxCommand& command) const;
  // The product key + "\Applications\" + the application key.
  std::string ApplicationPath() const;
  bool Initialized() const { return initialized_; }

  std::vector<ArxCommand> Commands;
  std::string ProductName = "Tavlet";
  std::string BuildText = TAVLET_VERSION;
  std::string ApplicationKey = "MorvaneTavlet";
  void* ModuleId = nullptr;
  // The year of the notice line; the local clock's unless a test sets it.
  std::function<int()> currentYear;
  // Loads a string resource; none loads nothing.
  std::function<bool(std::int32_t id, std::string& text)> loadString;

 private:
  class Thunk;
  void PrintLine(const std::string& body, char frame);

  port::HostSession& session_;
  WindowSystem& windows_;
  RegistryBackend& registry_;
  std::string modulePath_;
  std::vector<std::unique_ptr<Thunk>> thunks_;
  bool initialized_ = false;
};

}  // namespace tavlet::host
