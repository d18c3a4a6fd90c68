#include "platform/win32/transfer/http_get_win32.h"
#include "platform/win32/transfer/library_function.h"

#include <wininet.h>

#include <atomic>
#include <mutex>
#include <utility>

namespace tavlet::win32 {
namespace {

struct WinInet {
  decltype(&::InternetOpenA) open = nullptr;
  decltype(&::InternetSetOptionA) setOption = nullptr;
  decltype(&::InternetCrackUrlA) crackUrl = nullptr;
  decltype(&::InternetConnectA) connect = nullptr;
  decltype(&::HttpOpenRequestA) openRequest = nullptr;
  decltype(&::HttpSendRequestA) sendRequest = nullptr;
  decltype(&::HttpQueryInfoA) queryInfo = nullptr;
  decltype(&::InternetReadFile) read = nullptr;
  decltype(&::InternetCloseHandle) close = nullptr;
  bool ready = false;
};

// Loaded once for the process and kept: a worker may still be inside it.
const WinInet& Api() {
  static WinInet api;
  static std::once_flag once;
  std::call_once(once, [] {
    HMODULE library = LoadLibraryA("wininet.dll");
    if (library == nullptr) return;
    WinInet w;
    w.ready = FindFunction(library, "InternetOpenA", w.open) &&
              FindFunction(library, "InternetSetOptionA", w.setOption) &&
              FindFunction(library, "InternetCrackUrlA", w.crackUrl) &&
              FindFunction(library, "InternetConnectA", w.connect) &&
              FindFunction(library, "HttpOpenRequestA", w.openRequest) &&
              FindFunction(library, "HttpSendRequestA", w.sendRequest) &&
              FindFunction(library, "HttpQueryInfoA", w.queryInfo) &&
              FindFunction(library, "InternetReadFile", w.read) &&
              FindFunction(library, "InternetCloseHandle", w.close);
    if (w.ready) api = w;
  });
  return api;
}

HttpResult Failure(HttpResult::Outcome outcome, std::string detail) {
  HttpResult result;
  result.outcome = outcome;
  result.detail = std::move(detail);
  return result;
}

HttpResult FromError(DWORD error, const char* during) {
  const std::string code = " (" + std::string(during) + ", error " + std::to_string(error) + ")";
  switch (error) {
    case ERROR_INTERNET_TIMEOUT:
      return Failure(HttpResult::Outcome::TimedOut, "no answer in time" + code);
    case ERROR_INTERNET_NAME_NOT_RESOLVED:
      return Failure(HttpResult::Outcome::NoNetwork, "the server's name is not known" + code);
    case ERROR_INTERNET_CANNOT_CONNECT:
    case ERROR_INTERNET_CONNECTION_ABORTED:
    case ERROR_INTERNET_CONNECTION_RESET:
      return Failure(HttpResult::Outcome::NoNetwork, "the server cannot be reached" + code);
    default:
      return Failure(HttpResult::Outcome::Failed, "the request failed" + code);
  }
}

}  // namespace

// What the worker, the deadline timer and Cancel share. The session handle is
// closed by whichever of them comes first: closing it is how WinINet is told to
// give up a call that is waiting on the network.
struct HttpGet::Shared {
  std::mutex lock;
  HINTERNET session = nullptr;
  bool cancelled = false;
  bool timedOut = false;
  Callback done;
  HANDLE finished = CreateEventA(nullptr, TRUE, FALSE, nullptr);

  Shared() = default;
  ~Shared() {
    if (finished != nullptr) CloseHandle(finished);
  }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;

  void CloseSession() {
    if (session != nullptr) Api().close(session);
    session = nullptr;
  }
};

namespace {

struct DeadlineContext {
  std::mutex* lock;
  bool* timedOut;
  HINTERNET* session;
};

void CALLBACK OnDeadlineReached(void* parameter, BOOLEAN) {
  auto* context = static_cast<DeadlineContext*>(parameter);
  std::lock_guard<std::mutex> guard(*context->lock);
  *context->timedOut = true;
  if (*context->session != nullptr) Api().close(*context->session);
  *context->session = nullptr;
}

void Report(HttpGet::Shared& shared, const HttpResult& result) {
  std::lock_guard<std::mutex> guard(shared.lock);
  if (!shared.cancelled && shared.done) shared.done(result);
}

// Runs the GET and reports it through the shared callback.
void Fetch(HttpGet::Shared& shared, const std::string& url, int timeout, std::size_t maxBody);

}  // namespace

namespace {

std::atomic<int> liveWorkers{0};
constexpr DWORD kCancelGrace = 500;

}  // namespace

bool HttpGet::Start(const std::string& url, int timeout, std::size_t maxBody, Callback done) {
  if (worker_.joinable()) return false;
  shared_ = std::make_shared<Shared>();
  if (shared_->finished == nullptr) return false;
  shared_->done = std::move(done);
  ++liveWorkers;
  try {
    worker_ = std::thread([shared = shared_, url, timeout, maxBody] {
      Fetch(*shared, url, timeout, maxBody);
      SetEvent(shared->finished);
      --liveWorkers;
    });
  } catch (...) {
    --liveWorkers;
    shared_.reset();
    return false;
  }
  return true;
}

void HttpGet::Cancel() {
  if (!worker_.joinable()) return;
  Callback dropped;
  {
    std::lock_guard<std::mutex> guard(shared_->lock);
    shared_->cancelled = true;
    dropped = std::move(shared_->done);
    shared_->CloseSession();
  }
  // A WinINet that gives up a call on its closed handle lets the worker end at
  // once. One that does not (Wine's) keeps it until its own time limit; that
  // worker is let go rather than waited for, as it can no longer report.
  if (WaitForSingleObject(shared_->finished, kCancelGrace) == WAIT_OBJECT_0) {
    worker_.join();
  } else {
    worker_.detach();
  }
  shared_.reset();
}

bool HttpGet::WaitForWorkers(DWORD milliseconds) {
  const DWORD start = GetTickCount();
  while (liveWorkers.load() > 0) {
    if (GetTickCount() - start >= milliseconds) return false;
    Sleep(10);
  }
  return true;
}

namespace {

void Fetch(HttpGet::Shared& shared, const std::string& url, int timeout, std::size_t maxBody) {
  const WinInet& api = Api();
  if (!api.ready)
    return Report(shared, Failure(HttpResult::Outcome::Failed, "wininet.dll cannot be loaded"));
  HINTERNET session =
      api.open("Tavlet update check", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
  if (session == nullptr) return Report(shared, FromError(GetLastError(), "InternetOpen"));
  DWORD limit = static_cast<DWORD>(timeout);
  for (DWORD option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT,
                       INTERNET_OPTION_RECEIVE_TIMEOUT}) {
    api.setOption(session, option, &limit, sizeof limit);
  }
  {
    std::lock_guard<std::mutex> guard(shared.lock);
    if (shared.cancelled) {
      api.close(session);
      return;
    }
    shared.session = session;
  }
  // WinINet's own time limits apply to each wait; the timer holds the whole GET
  // to one limit.
  DeadlineContext context{&shared.lock, &shared.timedOut, &shared.session};
  HANDLE timer = nullptr;
  CreateTimerQueueTimer(&timer, nullptr, OnDeadlineReached, &context, limit, 0, WT_EXECUTEONLYONCE);

  HttpResult result;
  char host[256] = {};
  char path[2048] = {};
  URL_COMPONENTSA parts{};
  parts.dwStructSize = sizeof parts;
  parts.lpszHostName = host;
  parts.dwHostNameLength = sizeof host;
  parts.lpszUrlPath = path;
  parts.dwUrlPathLength = sizeof path;
  HINTERNET connection = nullptr;
  HINTERNET request = nullptr;
  bool sent = false;
  DWORD flags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_PRAGMA_NOCACHE |
                INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI | INTERNET_FLAG_NO_AUTH;
  if (!api.crackUrl(url.c_str(), 0, 0, &parts)) {
    result = Failure(HttpResult::Outcome::Failed, "not a web address: " + url);
  } else {
    if (parts.nScheme == INTERNET_SCHEME_HTTPS) flags |= INTERNET_FLAG_SECURE;
    connection =
        api.connect(session, host, parts.nPort, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0);
    if (connection != nullptr) {
      const char* accept[] = {"text/plain", "*/*", nullptr};
      request = api.openRequest(connection, "GET", path[0] != '\0' ? path : "/", nullptr, nullptr,
                                accept, flags, 0);
    }
    if (request == nullptr) {
      result = FromError(GetLastError(), "HttpOpenRequest");
    } else {
      // Set on the request itself too: not every WinINet passes the session's limits on.
      for (DWORD option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT,
                           INTERNET_OPTION_RECEIVE_TIMEOUT}) {
        api.setOption(request, option, &limit, sizeof limit);
      }
      // One check, one connection: nothing is kept for reuse.
      static const char kHeaders[] = "Connection: close\r\n";
      sent = api.sendRequest(request, kHeaders, sizeof kHeaders - 1, nullptr, 0) != FALSE;
      if (!sent) result = FromError(GetLastError(), "HttpSendRequest");
    }
  }
  if (sent) {
    DWORD status = 0, size = sizeof status;
    DWORD length = 0, lengthSize = sizeof length;
    if (!api.queryInfo(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size,
                       nullptr)) {
      result = FromError(GetLastError(), "HttpQueryInfo");
    } else if (api.queryInfo(request, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &length,
                             &lengthSize, nullptr) &&
               length > maxBody) {
      result = Failure(HttpResult::Outcome::TooLarge,
                       "the answer is " + std::to_string(length) + " bytes");
    } else {
      result.outcome = HttpResult::Outcome::Answered;
      result.status = static_cast<int>(status);
      char buffer[4096];
      for (;;) {
        DWORD got = 0;
        if (!api.read(request, buffer, sizeof buffer, &got)) {
          result = FromError(GetLastError(), "InternetReadFile");
          break;
        }
        if (got == 0) break;
        // The first block past the limit ends the read: the rest is never fetched.
        if (result.body.size() + got > maxBody) {
          result = Failure(HttpResult::Outcome::TooLarge,
                           "the answer is larger than " + std::to_string(maxBody) + " bytes");
          break;
        }
        result.body.append(buffer, got);
      }
    }
  }
  if (timer != nullptr) DeleteTimerQueueTimer(nullptr, timer, INVALID_HANDLE_VALUE);
  {
    std::lock_guard<std::mutex> guard(shared.lock);
    if (shared.timedOut && result.outcome != HttpResult::Outcome::Answered) {
      result = Failure(HttpResult::Outcome::TimedOut,
                       "no whole answer within " + std::to_string(timeout) + " ms");
    }
  }
  Report(shared, result);
  // Reported first: closing a request whose body was not read to its end can take
  // a while, as WinINet may read the rest to keep the connection.
  if (request != nullptr) api.close(request);
  if (connection != nullptr) api.close(connection);
  std::lock_guard<std::mutex> guard(shared.lock);
  shared.CloseSession();
}

}  // namespace

bool UpdateCheck::Start(const std::string& endpoint, const std::string& current, Callback done,
                        int timeout) {
  if (!host::IsAcceptableUpdateUrl(endpoint)) {
    host::UpdateVerdict verdict;
    verdict.status = host::UpdateStatus::NoEndpoint;
    verdict.detail = endpoint.empty() ? "no update address is configured"
                                      : "the update address is not an http(s) address";
    if (done) done(verdict);
    return false;
  }
  return get_.Start(endpoint, timeout, host::kMaxUpdateAnswer,
                    [current, done = std::move(done)](const HttpResult& result) {
                      host::UpdateVerdict verdict;
                      switch (result.outcome) {
                        case HttpResult::Outcome::Answered:
                          verdict = host::JudgeUpdateAnswer(current, result.status, result.body);
                          break;
                        case HttpResult::Outcome::NoNetwork:
                          verdict.status = host::UpdateStatus::NoNetwork;
                          break;
                        case HttpResult::Outcome::TimedOut:
                          verdict.status = host::UpdateStatus::TimedOut;
                          break;
                        case HttpResult::Outcome::TooLarge:
                          verdict.status = host::UpdateStatus::TooLarge;
                          break;
                        case HttpResult::Outcome::Failed:
                          verdict.status = host::UpdateStatus::NoNetwork;
                          break;
                      }
                      if (verdict.detail.empty()) verdict.detail = result.detail;
                      if (done) done(verdict);
                    });
}

}  // namespace tavlet::win32
