// demohost [--script FILE] [--out FOLDER] [--module PATH] [--size WIDTHxHEIGHT] [DRAWING...]
// Plays the CAD host with the module loaded from its DLL (Tavlet.arx beside the
// program unless --module says otherwise). With --script it runs the script
// (screenshots below --out) and
// exits: 0 when every step worked, 1 when a step or check failed, 2 for a wrong
// script or wrong arguments.
#include <windows.h>

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "demo_host.h"
#include "script.h"

namespace {

std::string BesideProgram(const char* name) {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string folder(path);
  const auto slash = folder.find_last_of("\\/");
  return (slash == std::string::npos ? std::string() : folder.substr(0, slash + 1)) + name;
}

int Usage(const std::string& problem) {
  std::cerr << "demohost: " << problem << "\n"
            << "usage: demohost [--script FILE] [--out FOLDER] [--module PATH] [--size WIDTHxHEIGHT] [DRAWING...]\n";
  return tavlet::demo::kScriptMalformed;
}

}  // namespace

int main(int argc, char** argv) {
  std::string scriptPath, outputFolder, modulePath = BesideProgram("Tavlet.arx");
  int width = 1024, height = 768;
  std::vector<std::string> drawings;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if ((arg == "--script" || arg == "--out" || arg == "--module" || arg == "--size") && i + 1 >= argc)
      return Usage(arg + " needs a value");
    if (arg == "--script") scriptPath = argv[++i];
    else if (arg == "--out") outputFolder = argv[++i];
    else if (arg == "--module") modulePath = argv[++i];
    else if (arg == "--size") {
      if (std::sscanf(argv[++i], "%dx%d", &width, &height) != 2 || width < 200 || height < 200)
        return Usage("--size wants WIDTHxHEIGHT, at least 200x200");
    } else if (!arg.empty() && arg[0] == '-') {
      return Usage("unknown option " + arg);
    } else {
      drawings.push_back(arg);
    }
  }

  tavlet::demo::Script script;
  std::string error;
  if (!scriptPath.empty() && !script.Load(scriptPath, error)) {
    std::cerr << error << std::endl;
    return tavlet::demo::kScriptMalformed;
  }

  tavlet::demo::DemoHost demo(modulePath, scriptPath.empty());
  if (!demo.CreateFrame(width, height)) {
    std::cerr << "demohost: cannot create the frame window (is there a display?)" << std::endl;
    return tavlet::demo::kScriptFailed;
  }
  for (const std::string& drawing : drawings) demo.Open(drawing);
  if (!demo.Start(error)) {
    std::cerr << "demohost: " << error << std::endl;
    return tavlet::demo::kScriptFailed;
  }
  if (scriptPath.empty()) return demo.Run();

  tavlet::demo::ScriptRunner runner(demo, script, std::cout, outputFolder);
  const bool ok = runner.Run(error);
  if (!ok) std::cerr << error << std::endl;
  std::cout << "---- transcript ----\n" << demo.Host().Transcript() << std::endl;
  demo.UnloadModule();
  return ok ? 0 : tavlet::demo::kScriptFailed;
}
