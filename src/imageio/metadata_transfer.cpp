#include "imageio/metadata_transfer.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "base/child_process.h"
#include "base/file_descriptor.h"
#include "base/text.h"

namespace mirellon::imageio {

namespace {

namespace fs = std::filesystem;
using base::ChildResult;

// A name that the tool can take for nothing but a name.
constexpr const char* kSourceName = "source";
constexpr const char* kNotCopied = "the metadata was not copied: ";

// The first of the tool's lines that starts so and tells of more than a trifle; empty when there is none.
std::string LineStarting(std::string_view output, std::string_view start) {
  while (!output.empty()) {
    const std::string_view line = output.substr(0, output.find('\n'));
    const bool trifle = line.find("[minor]") != std::string_view::npos ||
                        line.find("No writable tags set") != std::string_view::npos;
    if (line.substr(0, start.size()) == start && !trifle) return base::PrintableName(line);
    output.remove_prefix(std::min(output.size(), line.size() + 1));
  }
  return {};
}

std::string InBrackets(const std::string& text) {
  return text.empty() ? text : " (" + text + ")";
}

std::string WarningOf(const ChildResult& result) {
  switch (result.end) {
    case ChildResult::End::kExited:
      break;
    case ChildResult::End::kNotStarted:
      // A folder of PATH that may not be searched makes a missing program one that is not permitted.
      if (result.error == ENOENT || result.error == EACCES)
        return std::string(kNotCopied) + "exiftool is not installed";
      return std::string(kNotCopied) + "exiftool cannot be started: " + base::ErrorText(result.error);
    default:
      return std::string(kNotCopied) + "exiftool did not come to its end";
  }
  if (result.status == 0) return {};
  std::string why = LineStarting(result.output, "Error");
  if (why.empty()) why = LineStarting(result.output, "");
  return std::string(kNotCopied) + "exiftool failed" + InBrackets(why);
}

// A second name for the encoded picture, for the tool to work on: it puts a new file in that name's place,
// and the picture itself stays for the case that it goes wrong.
bool MakeSecondName(const fs::path& workFile, const fs::path& second, std::error_code& error) {
  fs::create_hard_link(workFile, second, error);
  if (error) fs::copy_file(workFile, second, error);
  return !error;
}

// The tool may add to a file, but takes nothing of weight away.
bool LooksWhole(const fs::path& tagged, const fs::path& workFile) {
  constexpr std::uintmax_t kSlack = 4096;
  std::error_code error;
  const std::uintmax_t size = fs::file_size(tagged, error);
  if (error || size == 0) return false;
  const std::uintmax_t before = fs::file_size(workFile, error);
  return !error && size + kSlack >= before;
}

}  // namespace

std::string CopyMetadata(const fs::path& source, const fs::path& workFile, FREE_IMAGE_FORMAT format,
                         const base::RunControl* control) {
  if (format == FIF_BMP) return std::string(kNotCopied) + "BMP files cannot hold any";
  std::error_code error;
  const fs::path folder = workFile.parent_path();
  const fs::path tagged = folder / ("tagged" + workFile.extension().string());
  const fs::path absolute = fs::absolute(source, error);
  if (!error) fs::create_symlink(absolute, folder / kSourceName, error);
  if (error || !MakeSecondName(workFile, tagged, error)) return kNotCopied + error.message();

  const std::string name = tagged.filename().string();
  const base::ChildResult result = base::RunChild({"exiftool", "-q", "-overwrite_original", "-tagsfromfile",
                                                   kSourceName, "-all:all", "-icc_profile", name},
                                                  folder, control);
  std::string warning = WarningOf(result);
  if (!warning.empty()) return warning;
  if (!LooksWhole(tagged, workFile)) return std::string(kNotCopied) + "exiftool left a damaged file";
  fs::rename(tagged, workFile, error);
  if (error) return kNotCopied + error.message();
  const std::string complaint = LineStarting(result.output, "Warning");
  return complaint.empty() ? complaint : "the metadata may be incomplete" + InBrackets(complaint);
}

}  // namespace mirellon::imageio
