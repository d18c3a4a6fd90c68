// One HTTP GET on a worker thread, through WinINet looked up at run time, with a
// time limit and a cancel; and the update check built on it. Neither makes a
// window: a dialog posts itself the result from the callback.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "host/update_check.h"

namespace tavlet::win32 {

struct HttpResult {
  enum class Outcome { Answered, NoNetwork, TimedOut, TooLarge, Failed };
  Outcome outcome = Outcome::Failed;
  int status = 0;      // the HTTP status of an answer
  std::string body;    // at most the limit given to Start
  std::string detail;  // what failed, English
};

class HttpGet {
 public:
  using Callback = std::function<void(const HttpResult&)>;

  HttpGet() = default;
  ~HttpGet() { Cancel(); }
  HttpGet(const HttpGet&) = delete;
  HttpGet& operator=(const HttpGet&) = delete;

  // Starts the GET; `done` is called once, on the worker thread, unless the GET
  // is cancelled first. The whole GET, connect to last byte, has `timeout`
  // milliseconds; a body over `maxBody` bytes stops the read (TooLarge). False
  // when a GET is already running or no thread could be started.
  bool Start(const std::string& url, int timeout, std::size_t maxBody, Callback done);
  // Ends a running GET: when it returns no callback will come, and the callback
  // has been destroyed. A worker that WinINet does not let go at once is left to
  // end by itself within the time limit. Must not be called from the callback.
  void Cancel();
  bool Running() const { return worker_.joinable(); }
  // Waits for every worker of the process, let go ones included, to end; for
  // the module's unload, so that no worker is still running its code.
  static bool WaitForWorkers(DWORD milliseconds);

  // The state the worker, its deadline and Cancel share.
  struct Shared;

 private:
  std::shared_ptr<Shared> shared_;
  std::thread worker_;
};

// The about box's check: a GET of the endpoint and the verdict on its answer.
class UpdateCheck {
 public:
  using Callback = std::function<void(const host::UpdateVerdict&)>;

  // `current` is this build (ArxModule::BuildText). With no acceptable endpoint
  // `done` is called at once, here, with NoEndpoint, and false is returned;
  // otherwise as HttpGet::Start.
  bool Start(const std::string& endpoint, const std::string& current, Callback done,
             int timeout = 10000);
  void Cancel() { get_.Cancel(); }
  bool Running() const { return get_.Running(); }

 private:
  HttpGet get_;
};

}  // namespace tavlet::win32
