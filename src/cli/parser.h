// A command's options on top of the argument library.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>

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

  void AddFile(const std::string& name, const std::string& meaning, std::filesystem::path& file);
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
  std::deque<std::string> texts_;  // what the library binds values to; addresses must not move
};

}  // namespace mirellon::cli
