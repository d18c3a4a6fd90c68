// Per-thread state of the IS40_ library, and its one-time blend table.
//
// Each thread that calls the library gets one context on first use and keeps it
// until the process ends. Operations record their code at the end through a
// RasterCall; a call made from inside another library call is not logged again.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "previews/raster/raster.h"

namespace tavlet::raster {

// Asked once a row when set; a result of 0 or less stops the operation with code 14.
using ProgressCallback = int (*)(std::int32_t row, std::int32_t rows, void* user);

struct ErrorRecord {
  std::string text;
  std::int32_t code = 0;
  std::int32_t severity = 0;
};

constexpr std::size_t kErrorLogSize = 50;
constexpr std::size_t kErrorTextLimit = 1000;

struct RasterContext {
  std::deque<ErrorRecord> errorLog;  // oldest first, at most kErrorLogSize
  std::int32_t lastError = 0;
  std::int32_t nestingDepth = 0;
  double textOpacity = 1.0;
  std::int32_t useDibSections = 0;
  ProgressCallback progressCallback = nullptr;
  void* progressUser = nullptr;
};

// The calling thread's context, made on first use.
RasterContext& CurrentRasterContext();

// Records `code` for `function` (null: "(unspecified function)"), with an optional
// note, unless a library call is running in this thread.
void RecordRasterError(RasterContext& context, std::int32_t code, const char* function,
                       const char* note = nullptr);

// "Error %d in %s (%s)" or "Error %d in %s (%s) [%s]", cut to kErrorTextLimit.
std::string FormatRasterError(std::int32_t code, const char* function, const char* clock,
                              const char* note);

// The body of a public operation: counts the nesting while it runs, and records the
// operation's code when it ends.
class RasterCall {
 public:
  explicit RasterCall(const char* function);
  ~RasterCall();
  RasterCall(const RasterCall&) = delete;
  RasterCall& operator=(const RasterCall&) = delete;

  RasterContext& Context() { return context_; }

  // Asks the progress callback, if any; false when it says stop.
  bool Continue(std::int32_t row, std::int32_t rows) const {
    return context_.progressCallback == nullptr ||
           context_.progressCallback(row, rows, context_.progressUser) > 0;
  }

  // Records `code` when the call ends, and returns the operation's int result.
  int Finish(std::int32_t code) {
    code_ = code;
    return code == kOk ? 1 : 0;
  }

 private:
  RasterContext& context_;
  const char* function_;
  std::int32_t code_ = kOk;
};

// Entry (a, b) = trunc(a * (b / 255)): a value a at coverage level b.
const std::uint8_t* BlendTable();
inline std::uint8_t Blend(std::uint8_t value, std::uint8_t level) {
  return BlendTable()[value * 256 + level];
}

}  // namespace tavlet::raster
