// The transfer client moving a 200 MB file over loopback, passive mode, against
// pyftpdlib, beside Python's ftplib doing the same with the same server in the
// same run. The server is Python too, so both sides share its ceiling; the
// comparison shows what the client itself costs.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "transfer/ftp_client.h"
// The bench build has no test-support library; these are small files.
#include "support/python_server.cpp"
#include "support/test_paths.cpp"
#include "support/transfer_files.h"

namespace {

constexpr std::uint64_t kFileSize = 200ull * 1024 * 1024;

struct Setup {
  tavlet::testing::PythonServer server;
  tavlet::testing::ServerFolder root;
  std::string local;
  std::string error;

  Setup() {
    root = tavlet::testing::MakeServerFolder("bench-ftp-root");
    local = tavlet::testing::MakeTempFolder("bench-ftp-local");
    if (!tavlet::testing::WritePatternFile(root.local + "/big.bin", kFileSize, 1) ||
        !tavlet::testing::WritePatternFile(local + "/source.bin", kFileSize, 2)) {
      error = "cannot write the 200 MB files";
      return;
    }
    server.Start(tavlet::testing::TestScript("transfer/ftp_server.py"),
                 {root.unix, "--lifetime", "3600"}, error);
  }
};

Setup& Shared() {
  static Setup setup;
  return setup;
}

bool LogOn(benchmark::State& state, tavlet::transfer::FtpClient& client) {
  Setup& setup = Shared();
  if (!setup.error.empty()) {
    state.SkipWithError(setup.error.c_str());
    return false;
  }
  tavlet::transfer::FtpError error = client.Connect("127.0.0.1", setup.server.port());
  if (!error) error = client.Logon("tavlet", "secret");
  if (error) {
    state.SkipWithError(error.message.c_str());
    return false;
  }
  return true;
}

void Finish(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kFileSize));
}

void BM_ClientDownload(benchmark::State& state) {
  tavlet::transfer::FtpClient client;
  if (!LogOn(state, client)) return;
  const std::string target = Shared().local + "/download.bin";
  for (auto _ : state) {
    if (tavlet::transfer::FtpError e = client.Download("big.bin", target))
      state.SkipWithError(e.message.c_str());
  }
  Finish(state);
}

void BM_ClientUpload(benchmark::State& state) {
  tavlet::transfer::FtpClient client;
  if (!LogOn(state, client)) return;
  const std::string source = Shared().local + "/source.bin";
  for (auto _ : state) {
    if (tavlet::transfer::FtpError e = client.Upload(source, "upload.bin"))
      state.SkipWithError(e.message.c_str());
  }
  Finish(state);
}

// ftplib in a child process; it times only the transfer and prints the seconds.
void RunFtplib(benchmark::State& state, bool download) {
  Setup& setup = Shared();
  if (!setup.error.empty()) {
    state.SkipWithError(setup.error.c_str());
    return;
  }
  const std::string script =
      "import ftplib, sys, time\n"
      "f = ftplib.FTP()\n"
      "f.connect('127.0.0.1', " +
      std::to_string(setup.server.port()) +
      ")\n"
      "f.login('tavlet', 'secret')\n"
      "f.voidcmd('TYPE I')\n"
      "start = time.perf_counter()\n" +
      (download ? "with open('" + setup.local +
                      "/ftplib.bin', 'wb') as out:\n"
                      "    f.retrbinary('RETR big.bin', out.write, blocksize=262144)\n"
                : "with open('" + setup.local +
                      "/source.bin', 'rb') as src:\n"
                      "    f.storbinary('STOR ftplib.bin', src, blocksize=262144)\n") +
      "print(time.perf_counter() - start)\n"
      "f.quit()\n";
  const std::string scriptPath = setup.local + "/ftplib_run.py";
  std::FILE* file = std::fopen(scriptPath.c_str(), "w");
  std::fputs(script.c_str(), file);
  std::fclose(file);
  const std::string command = "/usr/bin/python3 " + scriptPath;
  for (auto _ : state) {
    std::FILE* pipe = popen(command.c_str(), "r");
    double seconds = 0;
    const bool read = pipe != nullptr && std::fscanf(pipe, "%lf", &seconds) == 1;
    if (pipe != nullptr) pclose(pipe);
    if (!read) {
      state.SkipWithError("ftplib failed");
      break;
    }
    state.SetIterationTime(seconds);
  }
  Finish(state);
}

void BM_FtplibDownload(benchmark::State& state) { RunFtplib(state, true); }
void BM_FtplibUpload(benchmark::State& state) { RunFtplib(state, false); }

BENCHMARK(BM_ClientDownload)->Iterations(3)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FtplibDownload)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ClientUpload)->Iterations(3)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FtplibUpload)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
