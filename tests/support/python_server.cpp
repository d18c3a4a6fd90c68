#include "support/python_server.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
extern char** environ;
#endif

#include "support/test_paths.h"

namespace tavlet::testing {
namespace {

constexpr char kPython[] = "/usr/bin/python3";

std::string ReadSmallFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  return text;
}

// The Unix path of the running test program's folder.
std::string ProgramFolder() {
#ifdef _WIN32
  char buffer[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, buffer, MAX_PATH);
  std::string path = buffer;
  // Wine shows the Unix root as drive Z:.
  if (path.size() > 2 && (path[0] == 'Z' || path[0] == 'z') && path[1] == ':') path.erase(0, 2);
#else
  std::error_code error;
  std::string path = std::filesystem::read_symlink("/proc/self/exe", error).string();
#endif
  for (char& c : path) {
    if (c == '\\') c = '/';
  }
  return path.substr(0, path.rfind('/'));
}

}  // namespace

std::string TestScript(const std::string& relative) {
  // This file's name as the compiler was given it: absolute, or relative to the
  // build folder, which is the parent of the test programs' folder.
  std::string here = __FILE__;
  for (char& c : here) {
    if (c == '\\') c = '/';
  }
  if (here.empty() || here[0] != '/') here = ProgramFolder() + "/../" + here;
  const std::size_t support = here.rfind("/support/");
  return here.substr(0, support + 1) + relative;
}

#ifdef _WIN32

namespace {

// Removes the folders handed out when the test program ends.
struct MadeFolders {
  std::vector<std::string> made;
  ~MadeFolders() {
    std::error_code error;
    for (const std::string& folder : made) std::filesystem::remove_all(folder, error);
  }
};

}  // namespace

ServerFolder MakeServerFolder(const std::string& tag) {
  static MadeFolders folders;
  static int counter = 0;
  const std::string unix = "/tmp/tavlet-wine-" + tag + "-" + std::to_string(GetCurrentProcessId()) +
                           "-" + std::to_string(counter++);
  std::string local = "Z:" + unix;
  for (char& c : local) {
    if (c == '/') c = '\\';
  }
  std::error_code error;
  std::filesystem::remove_all(local, error);
  std::filesystem::create_directories(local, error);
  folders.made.push_back(local);
  return {local, unix};
}

ServerFolder Inside(const ServerFolder& folder, const std::string& name) {
  return {folder.local + "\\" + name, folder.unix + "/" + name};
}

bool PythonServer::Start(const std::string& script, const std::vector<std::string>& args,
                         std::string& error) {
  Stop();
  folder_ = MakeServerFolder("server");
  const ServerFolder portFile = Inside(folder_, "port");
  std::string command = std::string(kPython) + " \"" + script + "\" \"" + portFile.unix + "\"";
  for (const std::string& arg : args) command += " \"" + arg + "\"";
  // The test's standard input means nothing to the server here.
  command += " --no-stdin";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                      &startup, &process)) {
    error = "cannot start " + command + ": error " + std::to_string(GetLastError());
    return false;
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  running_ = true;
  for (int i = 0; i < 300; ++i) {
    const std::string text = ReadSmallFile(portFile.local);
    if (!text.empty()) {
      port_ = static_cast<std::uint16_t>(std::stoi(text));
      return true;
    }
    Sleep(50);
  }
  error = "the server did not start: " + command;
  return false;
}

void PythonServer::Stop() {
  if (!running_) return;
  std::ofstream(Inside(folder_, "port.stop").local) << "stop";
  // The script looks for the file every tenth of a second.
  Sleep(300);
  std::error_code error;
  std::filesystem::remove_all(folder_.local, error);
  running_ = false;
}

#else

ServerFolder MakeServerFolder(const std::string& tag) {
  // The process id keeps the folders of tests that CTest runs side by side apart.
  const std::string folder = MakeTempFolder(tag + "-" + std::to_string(::getpid()));
  return {folder, folder};
}

ServerFolder Inside(const ServerFolder& folder, const std::string& name) {
  return {folder.local + "/" + name, folder.unix + "/" + name};
}

bool PythonServer::Start(const std::string& script, const std::vector<std::string>& args,
                         std::string& error) {
  Stop();
  folder_ = MakeServerFolder("server");
  const std::string portFile = Inside(folder_, "port").local;
  std::vector<std::string> argv = {kPython, script, portFile};
  argv.insert(argv.end(), args.begin(), args.end());
  std::vector<char*> pointers;
  for (std::string& arg : argv) pointers.push_back(arg.data());
  pointers.push_back(nullptr);

  // The server reads its standard input until this test's end closes the pipe.
  int pipeEnds[2];
  if (::pipe2(pipeEnds, O_CLOEXEC) != 0) {
    error = "pipe failed";
    return false;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipeEnds[0], 0);
  pid_t pid = -1;
  const int spawned = posix_spawn(&pid, kPython, &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(pipeEnds[0]);
  if (spawned != 0) {
    ::close(pipeEnds[1]);
    error = std::string("cannot start ") + kPython;
    return false;
  }
  pid_ = pid;
  stdinPipe_ = pipeEnds[1];
  running_ = true;
  for (int i = 0; i < 300; ++i) {
    const std::string text = ReadSmallFile(portFile);
    if (!text.empty()) {
      port_ = static_cast<std::uint16_t>(std::stoi(text));
      return true;
    }
    int status = 0;
    if (::waitpid(pid_, &status, WNOHANG) == pid_) {
      pid_ = -1;
      error =
          "the server ended at once (is python3-pyftpdlib installed? scripts/setup.sh installs it)";
      Stop();
      return false;
    }
    ::usleep(50 * 1000);
  }
  error = "the server did not write its port in 15 s";
  Stop();
  return false;
}

void PythonServer::Stop() {
  if (!running_) return;
  running_ = false;
  if (stdinPipe_ >= 0) ::close(stdinPipe_);
  stdinPipe_ = -1;
  if (pid_ > 0) {
    int status = 0;
    for (int i = 0; i < 100 && ::waitpid(pid_, &status, WNOHANG) == 0; ++i) {
      ::usleep(20 * 1000);
    }
    if (::waitpid(pid_, &status, WNOHANG) == 0) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, &status, 0);
    }
  }
  pid_ = -1;
}

#endif

}  // namespace tavlet::testing
