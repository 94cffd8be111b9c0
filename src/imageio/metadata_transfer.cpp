#include "imageio/metadata_transfer.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/child_process.h"
#include "base/file_descriptor.h"
#include "base/text.h"
#include "imageio/png_shell.h"

namespace mirellon::imageio {

namespace {

namespace fs = std::filesystem;
using base::ChildResult;

// A name that the tool can take for nothing but a name.
constexpr const char* kSourceName = "source";
// What the tool appends to a name for the file that it is writing; it refuses to start where one lies about.
constexpr const char* kUnfinished = "_exiftool_tmp";
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
  fs::remove(second, error);
  fs::create_hard_link(workFile, second, error);
  if (error) fs::copy_file(workFile, second, error);
  return !error;
}

ChildResult RunAlone(const fs::path& folder, const std::string& name, const base::RunControl* control) {
  std::vector<std::string> arguments = CopyArguments(kSourceName, name);
  arguments.insert(arguments.begin(), "exiftool");
  return base::RunChild(arguments, folder, control);
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

// What the tool works on, and what becomes of it.
class WorkCopy {
 public:
  WorkCopy(const fs::path& picture, FREE_IMAGE_FORMAT format)
      : picture_(picture), tagged_(picture.parent_path() / ("tagged" + picture.extension().string())) {
    isShell_ = format == FIF_PNG && !MakePngShell(picture, tagged_);
  }

  [[nodiscard]] std::string name() const { return tagged_.filename().string(); }
  // False when it cannot be made.
  bool Make(std::error_code& error) const { return isShell_ || MakeSecondName(picture_, tagged_, error); }
  // Makes a whole picture of it again. True = failed: it is damaged.
  [[nodiscard]] bool Finish() {
    if (!isShell_) return !LooksWhole(tagged_, picture_);
    const fs::path joined = tagged_.parent_path() / ("joined" + tagged_.extension().string());
    if (FillPngShell(picture_, tagged_, joined)) return true;
    tagged_ = joined;
    return false;
  }
  void PutInPlace(std::error_code& error) const { fs::rename(tagged_, picture_, error); }

 private:
  fs::path picture_;
  fs::path tagged_;
  bool isShell_ = false;
};

}  // namespace

std::string CopyMetadata(const fs::path& source, const fs::path& workFile, FREE_IMAGE_FORMAT format,
                         const base::RunControl* control, MetadataTool* tool) {
  if (format == FIF_BMP) return std::string(kNotCopied) + "BMP files cannot hold any";
  std::error_code error;
  const fs::path folder = workFile.parent_path();
  const fs::path absolute = fs::absolute(source, error);
  if (!error) fs::create_symlink(absolute, folder / kSourceName, error);
  if (error) return kNotCopied + error.message();
  WorkCopy copy(workFile, format);
  if (!copy.Make(error)) return kNotCopied + error.message();

  ChildResult result;
  if (tool != nullptr) {
    result = tool->Copy(folder, kSourceName, copy.name(), control);
    if (result.end == ChildResult::End::kUnknown) {  // which may have left it half changed
      fs::remove(folder / copy.name(), error);
      fs::remove(folder / (copy.name() + kUnfinished), error);
      copy = WorkCopy(workFile, format);
      if (!copy.Make(error)) return kNotCopied + error.message();
    }
  }
  if (result.end == ChildResult::End::kUnknown) result = RunAlone(folder, copy.name(), control);
  std::string warning = WarningOf(result);
  if (!warning.empty()) return warning;
  if (copy.Finish()) return std::string(kNotCopied) + "exiftool left a damaged file";
  copy.PutInPlace(error);
  if (error) return kNotCopied + error.message();
  const std::string complaint = LineStarting(result.output, "Warning");
  return complaint.empty() ? complaint : "the metadata may be incomplete" + InBrackets(complaint);
}

}  // namespace mirellon::imageio
