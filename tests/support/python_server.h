// The tests' own servers (FTP, HTTP) are small Python scripts on 127.0.0.1,
// started here and stopped when the test ends. Debian's interpreter is used by
// its full path, since it is the one that has python3-pyftpdlib.
//
// Under Wine the interpreter is started as a Unix program: Wine cannot wait for
// it or end it, so the script also stops on a file beside its port file and
// after its lifetime. Folders both sides use are Unix folders, reached from
// Windows through drive Z:.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavlet::testing {

// A folder for one test, named both ways.
struct ServerFolder {
  std::string local;  // for the test's own file calls
  std::string unix;   // for the script
};
ServerFolder MakeServerFolder(const std::string& tag);
// A name inside a folder, both ways.
ServerFolder Inside(const ServerFolder& folder, const std::string& name);

// The Unix path of a file under tests/, e.g. "transfer/ftp_server.py".
std::string TestScript(const std::string& relative);

class PythonServer {
 public:
  PythonServer() = default;
  ~PythonServer() { Stop(); }
  PythonServer(const PythonServer&) = delete;
  PythonServer& operator=(const PythonServer&) = delete;

  // Runs `script portFile args...` and waits for the port; false with a reason.
  bool Start(const std::string& script, const std::vector<std::string>& args, std::string& error);
  void Stop();
  std::uint16_t port() const { return port_; }

 private:
  ServerFolder folder_;
  std::uint16_t port_ = 0;
  bool running_ = false;
#ifndef _WIN32
  int pid_ = -1;
  int stdinPipe_ = -1;
#endif
};

}  // namespace tavlet::testing
