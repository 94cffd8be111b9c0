#include "cli/diagnostics.h"

#include "base/text.h"

namespace mirellon::cli {

namespace {

void PrintLine(std::ostream& err, std::string_view lead, std::string_view text) {
  std::string line = kProgramName;
  line += lead;
  line += base::PrintableName(text);
  line += '\n';
  err << line << std::flush;
}

}  // namespace

std::string Quoted(std::string_view name) {
  std::string text(1, '\'');
  text += base::PrintableName(name);
  text += '\'';
  return text;
}

std::string About(std::string_view name, std::string_view cause) {
  return Quoted(name) + ": " + std::string(cause);
}

void PrintNote(std::ostream& err, std::string_view text) {
  PrintLine(err, ": ", text);
}

void PrintError(std::ostream& err, std::string_view text) {
  PrintLine(err, ": ", text);
}

void PrintWarning(std::ostream& err, std::string_view text) {
  PrintLine(err, ": warning: ", text);
}

}  // namespace mirellon::cli
