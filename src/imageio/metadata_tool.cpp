#include "imageio/metadata_tool.h"

#include <cstdlib>
#include <string_view>
#include <system_error>

#include "base/ini_file.h"
#include "base/text.h"

namespace mirellon::imageio {

namespace {

namespace fs = std::filesystem;
using base::ChildResult;
using base::ChildSession;

constexpr const char* kLinkName = "work";

// Empty when it cannot be made.
fs::path MakeHome() {
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error);
  if (error) return {};
  std::string pattern = (folder / "mirellon-XXXXXX").string();
  return mkdtemp(pattern.data()) == nullptr ? fs::path() : fs::path(pattern);
}

bool StartsWithNumber(std::string_view text) {
  return !text.empty() && (text.front() == '-' || (text.front() >= '0' && text.front() <= '9'));
}

}  // namespace

std::vector<std::string> CopyArguments(const std::string& source, const std::string& target) {
  return {"-q", "-overwrite_original", "-tagsfromfile", source, "-all:all", "-icc_profile", target};
}

MetadataTool::~MetadataTool() {
  session_.Stop();
  std::error_code ignored;
  if (!home_.empty()) fs::remove_all(home_, ignored);
}

void MetadataTool::Prepare() {
  if (session_.running() || unusable_) return;
  if (home_.empty()) home_ = MakeHome();
  unusable_ = home_.empty() || session_.Start({"exiftool", "-stay_open", "True", "-@", "-"}, home_) != 0;
}

ChildResult MetadataTool::Copy(const fs::path& folder, const std::string& source, const std::string& target,
                               const base::RunControl* control) {
  ChildResult result;
  Prepare();
  if (unusable_) return result;
  std::error_code error;
  fs::remove(home_ / kLinkName, error);
  fs::create_directory_symlink(folder, home_ / kLinkName, error);
  if (error) return result;

  const std::string prefix = std::string(kLinkName) + "/";
  std::string request;
  for (const std::string& argument : CopyArguments(prefix + source, prefix + target))
    request += argument + "\n";
  // Printed when all is done, after whatever the tool has to say.
  const std::string mark = "{mirellon " + std::to_string(++requests_) + " ";
  request += "-echo4\n" + mark + "${status}}\n-execute\n";
  switch (session_.Ask(request, mark, control, result.output)) {
    case ChildSession::Answer::kComplete:
      break;
    case ChildSession::Answer::kAborted:
      result.end = ChildResult::End::kAborted;
      return result;
    case ChildSession::Answer::kEnded:
      unusable_ = true;
      return result;
  }
  const std::size_t at = result.output.rfind(mark);
  if (!StartsWithNumber(std::string_view(result.output).substr(at + mark.size()))) {
    // One that does not tell how it went: an old release, or something else of that name.
    session_.Stop();
    unusable_ = true;
    return result;
  }
  result.status = base::LeadingInteger(base::WideFromNarrow(result.output.substr(at + mark.size())));
  result.output.resize(at);
  result.end = ChildResult::End::kExited;
  return result;
}

}  // namespace mirellon::imageio
