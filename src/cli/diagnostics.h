// The lines on standard error.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace mirellon::cli {

inline constexpr const char* kProgramName = "mirellon-cli";

// A name or value for a message: 'name', with what would break the line or the terminal replaced.
[[nodiscard]] std::string Quoted(std::string_view name);

// "'name': cause"
[[nodiscard]] std::string About(std::string_view name, std::string_view cause);

// One line each, written in one piece: "mirellon-cli: text", for warnings "mirellon-cli: warning: text".
// Control characters in the text are replaced, so that it stays one line.
void PrintNote(std::ostream& err, std::string_view text);
void PrintError(std::ostream& err, std::string_view text);
void PrintWarning(std::ostream& err, std::string_view text);

}  // namespace mirellon::cli
