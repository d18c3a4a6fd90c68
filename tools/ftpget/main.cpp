// ftpget: the file-transfer client on the command line, for trying a server by
// hand and for scripts. One logon, then one command.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "text/codepage.h"
#include "transfer/ftp_client.h"

namespace tavlet {
namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

const char kUsage[] =
    "usage: ftpget [options] HOST COMMAND [ARGUMENTS]\n"
    "\n"
    "commands:\n"
    "  get REMOTE [LOCAL]   download (LOCAL defaults to REMOTE's name); written to\n"
    "                       LOCAL.part and renamed when complete\n"
    "  put LOCAL [REMOTE]   upload (REMOTE defaults to LOCAL's name)\n"
    "  ls [REMOTE]          long listing      nlst [REMOTE]  names only\n"
    "  rm REMOTE            delete            size REMOTE    size in bytes\n"
    "  pwd                  current folder    check          log on and off only\n"
    "\n"
    "options:\n"
    "  -P PORT        server port (21)\n"
    "  -u USER        user name (anonymous)\n"
    "  -p PASSWORD    password (else $FTP_PASSWORD, else an anonymous one)\n"
    "  -C FOLDER      change to FOLDER before the command\n"
    "  -a, --active   active mode (PORT); passive is the default\n"
    "  --no-epsv      passive mode by PASV only\n"
    "  -t SECONDS     timeout of each wait (30)\n"
    "  -q             no progress on standard error\n"
    "\n"
    "exit status: 0 success, 1 the transfer or the server failed, 2 wrong arguments.\n";

// Remote names are code-page 936 inside the client; a POSIX terminal gives UTF-8.
std::string FromConsole(const std::string& text) {
#ifdef _WIN32
  return text;
#else
  return text::FromUtf8(text);
#endif
}

std::string ToConsole(const std::string& text) {
#ifdef _WIN32
  return text;
#else
  return text::ToUtf8(text);
#endif
}

std::string BaseName(const std::string& path) {
  std::size_t start = 0;
  for (std::size_t pos = 0; pos < path.size(); pos += text::CharLength(path, pos)) {
    if (path[pos] == '/' || path[pos] == '\\') start = pos + 1;
  }
  return path.substr(start);
}

struct Options {
  std::string host;
  std::uint16_t port = 21;
  std::string user = "anonymous";
  std::string password;
  bool havePassword = false;
  std::string folder;
  bool quiet = false;
  transfer::FtpOptions client;
  std::vector<std::string> command;
};

bool ParseArguments(const std::vector<std::string>& args, Options& o) {
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&](std::string& out) {
      if (i + 1 >= args.size()) {
        std::fprintf(stderr, "ftpget: %s needs a value\n", a.c_str());
        return false;
      }
      out = args[++i];
      return true;
    };
    std::string text;
    if (!o.command.empty() || (!o.host.empty() && (a.empty() || a[0] != '-'))) {
      o.command.push_back(a);
    } else if (a == "-P") {
      if (!value(text)) return false;
      const long port = std::strtol(text.c_str(), nullptr, 10);
      if (port < 1 || port > 65535) {
        std::fprintf(stderr, "ftpget: bad port '%s'\n", text.c_str());
        return false;
      }
      o.port = static_cast<std::uint16_t>(port);
    } else if (a == "-u") {
      if (!value(o.user)) return false;
    } else if (a == "-p") {
      if (!value(o.password)) return false;
      o.havePassword = true;
    } else if (a == "-C") {
      if (!value(o.folder)) return false;
    } else if (a == "-a" || a == "--active") {
      o.client.mode = transfer::TransferMode::Active;
    } else if (a == "--no-epsv") {
      o.client.useEpsv = false;
    } else if (a == "-t") {
      if (!value(text)) return false;
      const long seconds = std::strtol(text.c_str(), nullptr, 10);
      if (seconds < 1 || seconds > 3600) {
        std::fprintf(stderr, "ftpget: bad timeout '%s'\n", text.c_str());
        return false;
      }
      o.client.timeoutMilliseconds = static_cast<int>(seconds * 1000);
    } else if (a == "-q") {
      o.quiet = true;
    } else if (!a.empty() && a[0] == '-') {
      std::fprintf(stderr, "ftpget: unknown option '%s'\n", a.c_str());
      return false;
    } else {
      o.host = a;
    }
  }
  if (o.host.empty() || o.command.empty()) {
    std::fprintf(stderr, "ftpget: a host and a command are needed\n");
    return false;
  }
  if (!o.havePassword) {
    const char* env = std::getenv("FTP_PASSWORD");
    o.password = env != nullptr ? env : o.user == "anonymous" ? "ftpget@" : "";
  }
  return true;
}

// Runs the command on a logged-on client.
transfer::FtpError RunCommand(transfer::FtpClient& client, const std::vector<std::string>& command,
                              bool& usage) {
  const std::string& verb = command[0];
  const std::size_t count = command.size() - 1;
  auto arg = [&](std::size_t i) { return i <= count ? command[i] : std::string(); };
  if (verb == "get" && (count == 1 || count == 2)) {
    const std::string remote = FromConsole(arg(1));
    const std::string local = count == 2 ? arg(2) : BaseName(arg(1));
    return client.Download(remote, local);
  }
  if (verb == "put" && (count == 1 || count == 2)) {
    const std::string remote = FromConsole(count == 2 ? arg(2) : BaseName(arg(1)));
    return client.Upload(arg(1), remote);
  }
  if ((verb == "ls" || verb == "nlst") && count <= 1) {
    std::string listing;
    transfer::FtpError error = client.List(FromConsole(arg(1)), verb == "nlst", listing);
    if (!error) std::fwrite(ToConsole(listing).data(), 1, ToConsole(listing).size(), stdout);
    return error;
  }
  if (verb == "rm" && count == 1) return client.Delete(FromConsole(arg(1)));
  if (verb == "size" && count == 1) {
    std::uint64_t size = 0;
    transfer::FtpError error = client.Size(FromConsole(arg(1)), size);
    if (!error) std::printf("%llu\n", static_cast<unsigned long long>(size));
    return error;
  }
  if (verb == "pwd" && count == 0) {
    std::string folder;
    transfer::FtpError error = client.CurrentFolder(folder);
    if (!error) std::printf("%s\n", ToConsole(folder).c_str());
    return error;
  }
  if (verb == "check" && count == 0) return {};
  usage = true;
  return {};
}

int Run(const std::vector<std::string>& args) {
  if (!args.empty() && (args[0] == "--help" || args[0] == "-h")) {
    std::printf("%s", kUsage);
    return kExitOk;
  }
  Options o;
  if (!ParseArguments(args, o)) {
    std::fprintf(stderr, "%s", kUsage);
    return kExitUsage;
  }
  transfer::FtpClient client;
  client.options = o.client;
  bool progressShown = false;
  if (!o.quiet) {
    client.onProgress = [&progressShown](std::uint64_t done) {
      std::fprintf(stderr, "\r%llu bytes", static_cast<unsigned long long>(done));
      progressShown = true;
      return true;
    };
  }
  transfer::FtpError error = client.Connect(o.host, o.port);
  if (!error) error = client.Logon(o.user, o.password);
  if (!error && !o.folder.empty()) error = client.ChangeFolder(FromConsole(o.folder));
  bool usage = false;
  if (!error) error = RunCommand(client, o.command, usage);
  if (progressShown) std::fprintf(stderr, "\n");
  if (usage) {
    client.Quit();
    std::fprintf(stderr, "ftpget: unknown command or wrong arguments: %s\n%s", o.command[0].c_str(),
                 kUsage);
    return kExitUsage;
  }
  if (error) {
    std::fprintf(stderr, "ftpget: %s\n", ToConsole(error.message).c_str());
    return kExitFailed;
  }
  client.Quit();
  return kExitOk;
}

}  // namespace
}  // namespace tavlet

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  return tavlet::Run(args);
}
