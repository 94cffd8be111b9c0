#include "imageio/metadata_transfer.h"

#include <cerrno>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/child_process.h"
#include "base/file_descriptor.h"
#include "base/text.h"

namespace mirellon::imageio {

namespace {

using base::ChildResult;

// A name that the tool can take for nothing but a name.
constexpr const char* kSourceName = "source";
constexpr const char* kNotCopied = "the metadata was not copied: ";

// The tool's first line that starts so, without the line's end; empty when there is none.
std::string LineStarting(std::string_view output, std::string_view start) {
  while (!output.empty()) {
    const std::string_view line = output.substr(0, output.find('\n'));
    if (line.substr(0, start.size()) == start) return base::PrintableName(line);
    output.remove_prefix(std::min(output.size(), line.size() + 1));
  }
  return {};
}

std::string WarningOf(const ChildResult& result) {
  switch (result.end) {
    case ChildResult::End::kExited:
      break;
    case ChildResult::End::kNotStarted:
      return std::string(kNotCopied) + (result.error == ENOENT
                                            ? "exiftool is not installed"
                                            : "exiftool cannot be started: " + base::ErrorText(result.error));
    default:
      return std::string(kNotCopied) + "exiftool did not come to its end";
  }
  if (result.status == 0) return {};
  std::string why = LineStarting(result.output, "Error");
  if (why.empty()) why = base::PrintableName(result.output.substr(0, result.output.find('\n')));
  return std::string(kNotCopied) + "exiftool failed" + (why.empty() ? "" : " (" + why + ")");
}

}  // namespace

std::string CopyMetadata(const std::filesystem::path& source, const std::filesystem::path& workFile,
                         FREE_IMAGE_FORMAT format, const base::RunControl* control) {
  if (format == FIF_BMP) return std::string(kNotCopied) + "BMP files cannot hold any";
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(source, error);
  const std::filesystem::path folder = workFile.parent_path();
  if (!error) std::filesystem::create_symlink(absolute, folder / kSourceName, error);
  if (error) return kNotCopied + error.message();
  const std::vector<std::string> arguments = {
      "exiftool",  "-q",       "-overwrite_original", "-tagsfromfile",
      kSourceName, "-all:all", "-icc_profile",        workFile.filename().string()};
  return WarningOf(base::RunChild(arguments, folder, control));
}

}  // namespace mirellon::imageio
