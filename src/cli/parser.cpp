#include "cli/parser.h"

#include <exception>
#include <utility>
#include <vector>

#include "cli/diagnostics.h"

namespace mirellon::cli {

namespace {

void SetReader(CLI::Option* option, Parser::Reader reader) {
  option->check(CLI::Validator([read = std::move(reader)](std::string& text) { return read(text); }, "", ""));
}

}  // namespace

Parser::Parser(const std::string& command, const std::string& description)
    : command_(std::string(kProgramName) + " " + command), app_(description, command_) {
  app_.get_formatter()->column_width(36);
  // Left-over arguments are reported by UnexpectedArgument, which finds better words.
  app_.allow_extras();
  app_.set_help_flag("-h,--help", "Print this help and exit");
}

void Parser::AddArgument(const std::string& name, const std::string& meaning, Reader reader, bool required) {
  CLI::Option* option = app_.add_option(name, texts_.emplace_back(), meaning);
  option->required(required)->type_name(" ");
  SetReader(option, std::move(reader));
}

void Parser::AddFile(const std::string& name, const std::string& meaning, std::filesystem::path& file) {
  AddArgument(name, meaning, [&file](std::string_view text) {
    if (text.empty()) return std::string("the file name is empty");
    file = std::filesystem::path(text);
    return std::string();
  });
}

void Parser::AddFiles(const std::string& name, const std::string& meaning,
                      std::vector<std::filesystem::path>& files) {
  CLI::Option* option = app_.add_option(name, lists_.emplace_back(), meaning);
  option->required()->type_name(" ");
  SetReader(option, [&files](std::string_view text) {
    if (text.empty()) return std::string("the file name is empty");
    files.emplace_back(text);
    return std::string();
  });
}

void Parser::AddValue(const std::string& option, const std::string& placeholder, const std::string& meaning,
                      Reader reader) {
  CLI::Option* added = app_.add_option(option, texts_.emplace_back(), meaning);
  added->type_name(placeholder);
  SetReader(added, std::move(reader));
}

void Parser::AddFlag(const std::string& option, const std::string& meaning, bool& flag) {
  app_.add_flag(option, flag, meaning);
}

ParseOutcome Parser::Parse(std::span<const char* const> args) {
  using Kind = ParseOutcome::Kind;
  if (std::string wrong = WrongJoinedValue(args); !wrong.empty()) return {Kind::kWrong, std::move(wrong)};
  try {
    // The library takes its arguments last one first.
    std::vector<std::string> reversed(args.rbegin(), args.rend());
    app_.parse(std::move(reversed));
  } catch (const CLI::CallForHelp&) {
    return {Kind::kHelp, app_.help()};
  } catch (const CLI::ParseError& error) {
    return Wrong(error);
  } catch (const std::exception& error) {
    return {Kind::kWrong, error.what()};
  }
  if (std::string unexpected = UnexpectedArgument(); !unexpected.empty()) {
    return {Kind::kWrong, std::move(unexpected)};
  }
  return {Kind::kRun, {}};
}

ParseOutcome Parser::Wrong(const CLI::ParseError& error) const {
  std::string text = error.what();
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    // A misspelt option is the likelier reason for a name that seems to be missing.
    if (std::string unexpected = UnexpectedArgument(); !unexpected.empty()) {
      text = std::move(unexpected);
    } else {
      text += "; see '" + command_ + " --help'";
    }
  } else if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string name = text.substr(0, text.find(':'));
    const CLI::Option* option = app_.get_option_no_throw(name);
    const bool repeated = option != nullptr && option->count() > 1;
    text = name + (repeated ? ": given more than once" : ": a value is missing");
  }
  return {ParseOutcome::Kind::kWrong, std::move(text)};
}

// "--option=" and "--flag=value": the library would take the next argument for the one's value, and let the
// other's switch the flag off.
std::string Parser::WrongJoinedValue(std::span<const char* const> args) const {
  for (const std::string_view argument : args) {
    if (argument == "--") break;
    const std::size_t equals = argument.find('=');
    if (!argument.starts_with("--") || equals == std::string_view::npos) continue;
    const std::string name(argument.substr(0, equals));
    const CLI::Option* option = app_.get_option_no_throw(name);
    if (option == nullptr) continue;
    if (option->get_expected_max() == 0) return name + ": takes no value";
    if (equals + 1 == argument.size()) return name + ": a value is missing";
  }
  return {};
}

std::string Parser::UnexpectedArgument() const {
  const std::vector<std::string> extras = app_.remaining();
  bool namesOnly = false;  // after "--"
  std::string name;
  for (const std::string& extra : extras) {
    if (!namesOnly && extra == "--") {
      namesOnly = true;
    } else if (!namesOnly && extra.size() > 1 && extra.front() == '-') {
      return Quoted(extra) + ": unknown option; see '" + command_ + " --help'";
    } else if (name.empty()) {
      name = Quoted(extra) + ": one argument too many; see '" + command_ + " --help'";
    }
  }
  return name;
}

}  // namespace mirellon::cli
