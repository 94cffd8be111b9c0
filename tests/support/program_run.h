// Running a program from a test and seeing what it does.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace mirellon::test {

struct ProgramRun {
  std::vector<std::string> arguments;    // the program's path first
  std::filesystem::path folder;          // its working folder
  std::vector<std::string> environment;  // "NAME=value", over the test's own
  std::string standardOutput = {};       // a file to write it to instead of collecting it
  bool closeStandardOutput = false;
  std::size_t fileSizeLimit = 0;  // bytes; 0: none
  // Called with what has arrived on standard error so far, each time more arrives; answers the signal to send
  // now, 0 for none. Lets a test wait for a point of the run without sleeping.
  std::function<int(const std::string& errors)> watch = {};
};

struct ProgramResult {
  int status = -1;  // exit status; 128 + number when a signal killed it; -1 when it did not start
  bool killed = false;
  std::string output;
  std::string errors;
};

[[nodiscard]] ProgramResult Run(const ProgramRun& run);

}  // namespace mirellon::test
