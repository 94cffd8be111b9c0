// What a command sees of the world around it.
#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "engine/engine_context.h"

namespace mirellon::cli {

// Made by main for the process, by tests for themselves.
struct Shell {
  std::ostream& out;  // results only
  std::ostream& err;  // progress, warnings, errors
  engine::EngineContext& engine;
  std::filesystem::path applicationData;  // where the settings live
  // Where the files shipped with the program are looked for.
  std::vector<std::filesystem::path> resourceFolders = {};
  std::string simdTarget = {};  // the instruction set to use; empty: the best one
  bool errIsTerminal = false;
  std::function<int()> columns = [] { return 80; };  // the width of the terminal behind `err`
  std::function<int()> caughtSignal = [] { return 0; };
  int in = 0;  // the descriptor that lists of names are read from
};

}  // namespace mirellon::cli
