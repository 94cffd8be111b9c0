// A command's options on top of the argument library.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/arguments.h"

namespace mirellon::cli {

// Collects one command's options and reads its arguments. Every value is read by a function of ours, which
// stores it and says why it cannot; every refusal comes out as one line naming the option.
class Parser {
 public:
  // Reads a value's text; empty = done, else why not.
  using Reader = std::function<std::string(std::string_view)>;

  Parser(const std::string& command, const std::string& description);

  // Arguments without a name, in the order of the calls.
  void AddArgument(const std::string& name, const std::string& meaning, Reader reader, bool required = true);
  void AddFile(const std::string& name, const std::string& meaning, std::filesystem::path& file);
  // One or more.
  void AddFiles(const std::string& name, const std::string& meaning,
                std::vector<std::filesystem::path>& files);
  void AddValue(const std::string& option, const std::string& placeholder, const std::string& meaning,
                Reader reader);
  void AddFlag(const std::string& option, const std::string& meaning, bool& flag);

  [[nodiscard]] ParseOutcome Parse(std::span<const char* const> args);

 private:
  [[nodiscard]] ParseOutcome Wrong(const CLI::ParseError& error) const;
  [[nodiscard]] std::string WrongJoinedValue(std::span<const char* const> args) const;
  [[nodiscard]] std::string UnexpectedArgument() const;

  std::string command_;
  CLI::App app_;
  // What the library binds values to; addresses must not move.
  std::deque<std::string> texts_;
  std::deque<std::vector<std::string>> lists_;
};

}  // namespace mirellon::cli
