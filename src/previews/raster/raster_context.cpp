#include "previews/raster/raster_context.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <memory>
#include <mutex>
#include <vector>

namespace tavlet::raster {
namespace {

// Contexts live until the process ends, so a thread's context is never freed while
// another thread could still be looking at the list.
struct ContextList {
  std::mutex lock;
  std::vector<std::unique_ptr<RasterContext>> contexts;
};

ContextList& Contexts() {
  static ContextList list;
  return list;
}

// Local time as "hh:mm:ss". std::localtime shares one buffer on some runtimes.
std::string ClockText() {
  static std::mutex lock;
  std::time_t now = std::time(nullptr);
  std::tm parts{};
  {
    std::lock_guard<std::mutex> guard(lock);
    if (const std::tm* local = std::localtime(&now)) parts = *local;
  }
  char text[16];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d", parts.tm_hour, parts.tm_min, parts.tm_sec);
  return text;
}

}  // namespace

RasterContext& CurrentRasterContext() {
  thread_local RasterContext* slot = nullptr;
  if (slot == nullptr) {
    ContextList& list = Contexts();
    std::lock_guard<std::mutex> guard(list.lock);
    list.contexts.push_back(std::make_unique<RasterContext>());
    slot = list.contexts.back().get();
  }
  return *slot;
}

std::string FormatRasterError(std::int32_t code, const char* function, const char* clock,
                              const char* note) {
  if (function == nullptr) function = "(unspecified function)";
  std::string text = "Error " + std::to_string(code) + " in " + function + " (" + clock + ")";
  if (note != nullptr) {
    text += " [";
    text += note;
    text += "]";
  }
  if (text.size() > kErrorTextLimit) text.resize(kErrorTextLimit);
  return text;
}

void RecordRasterError(RasterContext& context, std::int32_t code, const char* function,
                       const char* note) {
  if (context.nestingDepth > 0) return;
  context.lastError = code;
  if (code == kOk) return;
  if (context.errorLog.size() >= kErrorLogSize) context.errorLog.pop_front();
  context.errorLog.push_back({FormatRasterError(code, function, ClockText().c_str(), note), code, 1});
}

RasterCall::RasterCall(const char* function)
    : context_(CurrentRasterContext()), function_(function) {
  ++context_.nestingDepth;
}

RasterCall::~RasterCall() {
  --context_.nestingDepth;
  RecordRasterError(context_, code_, function_);
}

const std::uint8_t* BlendTable() {
  static const std::array<std::uint8_t, 65536> table = [] {
    std::array<std::uint8_t, 65536> entries{};
    for (int a = 0; a < 256; ++a) {
      for (int b = 0; b < 256; ++b) {
        entries[a * 256 + b] = static_cast<std::uint8_t>(a * (b * 0.00392156862745098));
      }
    }
    return entries;
  }();
  return table.data();
}

}  // namespace tavlet::raster
