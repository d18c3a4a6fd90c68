#include "host/arx_module.h"

#include <cstdio>
#include <ctime>

#include "host/com_error.h"
#include "text/codepage.h"

namespace tavlet::host {

std::string PadBannerLine(std::string_view text, char fill, int align) {
  std::string line(kBannerWidth, fill);
  const long width = static_cast<long>(kBannerWidth);
  const long length = static_cast<long>(text.size());
  long offset = align == kAlignLeft ? 0 : align == kAlignRight ? width - length : (width - length) / 2;
  if (offset < 0) offset = 0;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t n = text::CharLength(text, i);
    const std::size_t at = static_cast<std::size_t>(offset) + i;
    if (at + n > kBannerWidth) break;
    line.replace(at, n, text.substr(i, n));
    i += n;
  }
  return line;
}

// Hands a queued handler to the host; nothing raised inside reaches the host.
class ArxModule::Thunk final : public port::CommandHandler {
 public:
  explicit Thunk(std::function<void()> handler) : handler_(std::move(handler)) {}
  void TAVLET_PORT_CALL Run() override {
    try {
      if (handler_) handler_();
    } catch (...) {
    }
  }

 private:
  std::function<void()> handler_;
};

ArxModule::ArxModule(port::HostSession& session, WindowSystem& windows, RegistryBackend& registry,
                     std::string modulePath)
    : session_(session), windows_(windows), registry_(registry), modulePath_(std::move(modulePath)) {}

ArxModule::~ArxModule() = default;

void ArxModule::InitInstance() { initialized_ = true; }

void ArxModule::ExitInstance() {
  Commands.clear();
  initialized_ = false;
}

void ArxModule::QueueCommand(bool enable, std::function<void()> handler, std::string group, std::string globalName,
                             std::string description, std::uint32_t flags, std::int32_t localNameId) {
  if (!enable) return;
  Commands.push_back({std::move(handler), std::move(group), std::move(globalName), std::move(description), flags,
                      localNameId});
}

std::string ArxModule::LocalName(const ArxCommand& command) const {
  std::string text;
  if (command.LocalNameId != -1 && loadString && loadString(command.LocalNameId, text)) return text;
  return command.GlobalName;
}

void ArxModule::PrintLine(const std::string& body, char frame) {
  std::string line;
  line += frame;
  line += body;
  line += frame;
  line += '\n';
  session_.EditorService()->Print(line.c_str());
}

void ArxModule::PrintBanner(const std::string& text, char frame) {
  int year = 0;
  if (currentYear) {
    year = currentYear();
  } else {
    std::time_t now = std::time(nullptr);
    if (const std::tm* local = std::localtime(&now)) year = local->tm_year + 1900;
  }
  char notice[80];
  std::snprintf(notice, sizeof notice, " Copyright (C) 2004-%d Morvane. All rights reserved. ", year);
  // The leading line feed opens the banner on a line of its own.
  const std::string opening = std::string("\n") + frame + std::string(kBannerWidth, frame) + frame + "\n";
  session_.EditorService()->Print(opening.c_str());
  PrintLine(PadBannerLine(text, ' ', kAlignCentre), frame);
  PrintLine(PadBannerLine(notice, ' ', kAlignCentre), frame);
  PrintLine(std::string(kBannerWidth, frame), frame);
}

std::string ArxModule::ApplicationPath() const {
  StringSink key;
  session_.Services()->ProductKey(&key);
  return key.text + "\\Applications\\" + ApplicationKey;
}

void ArxModule::WriteRegistry(long loadCtrl) {
  const std::string path = ApplicationPath();
  const std::uint32_t value = static_cast<std::uint32_t>(loadCtrl);
  const char dword[4] = {static_cast<char>(value & 0xFF), static_cast<char>((value >> 8) & 0xFF),
                         static_cast<char>((value >> 16) & 0xFF), static_cast<char>((value >> 24) & 0xFF)};
  auto text = [](const std::string& s) { return s + '\0'; };
  registry_.OpenOrCreateKey(path);
  registry_.SetValue(path, "LOADCTRLS", kRegDword, std::string_view(dword, 4));
  registry_.SetValue(path, "LOADER", kRegSz, text(modulePath_));
  registry_.SetValue(path, "DESCRIPTION", kRegSz, text(ProductName));
  if (Commands.empty()) return;
  const std::string& group = Commands.front().Group;
  registry_.SetValue(path + "\\Groups", group, kRegSz, text(group));
  for (const ArxCommand& command : Commands)
    registry_.SetValue(path + "\\Commands", command.GlobalName, kRegSz, text(LocalName(command)));
}

void ArxModule::Register(long loadCtrl, void* pkt) {
  ModuleId = pkt;
  char title[160];
  std::snprintf(title, sizeof title, " Morvane %s (build %s) LOADED ", ProductName.c_str(), BuildText.c_str());
  PrintBanner(title, '+');
  if (!Commands.empty()) {
    PrintLine(PadBannerLine(" Registered commands : ", ' ', kAlignLeft), '+');
    for (const ArxCommand& command : Commands) {
      if (command.Description.empty()) continue;
      PrintLine(PadBannerLine(" " + command.GlobalName + " - " + command.Description + " ", ' ', kAlignLeft), '+');
    }
    PrintLine(std::string(kBannerWidth, '+'), '+');
  }
  if (loadCtrl >= 0) WriteRegistry(loadCtrl);
  ModuleResourceScope resources(windows_);
  port::Editor& editor = *session_.EditorService();
  for (const ArxCommand& command : Commands) {
    thunks_.push_back(std::make_unique<Thunk>(command.Handler));
    const std::string local = LocalName(command);
    editor.AddCommand(command.Group.c_str(), command.GlobalName.c_str(), local.c_str(),
                      static_cast<long>(command.Flags), thunks_.back().get());
  }
}

void ArxModule::Unregister() {
  if (!Commands.empty()) session_.EditorService()->RemoveGroup(Commands.front().Group.c_str());
  thunks_.clear();
  char title[160];
  std::snprintf(title, sizeof title, " Morvane %s (build %s) UNLOADED ", ProductName.c_str(), BuildText.c_str());
  PrintBanner(title, '-');
}

}  // namespace tavlet::host
