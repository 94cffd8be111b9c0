#include "cli/report.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "base/text.h"
#include "cli/json_parts.h"
#include "cli/parameter_options.h"

namespace mirellon::cli {

namespace {

Json ExifJson(const imageio::ExifSummary& exif) {
  Json object;
  object["fNumber"] = base::Utf8FromWide(exif.fNumber);
  object["exposure"] = base::Utf8FromWide(exif.exposure);
  object["dimensions"] = base::Utf8FromWide(exif.dimensions);
  object["iso"] = base::Utf8FromWide(exif.iso);
  object["make"] = base::Utf8FromWide(exif.make);
  object["model"] = base::Utf8FromWide(exif.model);
  object["dateTaken"] = base::Utf8FromWide(exif.dateTaken);
  return object;
}

Json ProfileJson(const ProfileReport& profile) {
  Json object;
  object["camera"] = nullptr;
  object["iso"] = nullptr;
  if (profile.camera) {
    object["camera"] = base::Utf8FromWide(*profile.camera);
    object["iso"] = profile.iso;
  }
  return object;
}

std::string ProfileText(const ProfileReport& profile) {
  if (!profile.camera) return "none";
  return base::Utf8FromWide(*profile.camera) + ", ISO " + std::to_string(profile.iso) + " (" + profile.rule +
         ")";
}

std::string Decimals(double value) {
  std::array<char, 64> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.2f", value);
  return length < 0 ? std::string() : std::string(buffer.data());
}

void PrintLine(std::ostream& out, std::string_view label, std::string_view value) {
  constexpr std::size_t kColumn = 16;
  std::string line(label);
  line += ':';
  line.resize(std::max(kColumn, line.size() + 1), ' ');
  line += value.empty() ? std::string("-") : base::PrintableName(value);
  out << line << '\n';
}

void PrintLine(std::ostream& out, std::string_view label, const std::wstring& value) {
  PrintLine(out, label, base::Utf8FromWide(value));
}

}  // namespace

void PrintJson(std::ostream& out, const DenoiseReport& report) {
  Json object;
  object["schema"] = kReportSchema;
  SetName(object, "input", report.input);
  SetName(object, "output", report.output);
  SetGeometry(object, report.geometry);
  object["parameters"] = ParametersJson(report.parameters);
  object["quality"] = WordFor(kQualityChoices, static_cast<int>(report.quality));
  object["profile"] = ProfileJson(report.profile);
  object["profile"]["rule"] = report.profile.rule;
  object["backend"] = report.backend;
  object["simd"] = report.simd;
  object["threads"] = report.threads;
  object["warnings"] = report.warnings;
  object["ms"] = TimingJson(report.milliseconds);
  Print(out, object, JsonLayout::kLines);
}

void PrintJson(std::ostream& out, const InfoReport& report) {
  Json object;
  object["schema"] = kReportSchema;
  SetName(object, "file", report.file);
  object["format"] = report.format;
  SetGeometry(object, report.geometry);
  object["exif"] = ExifJson(report.exif);
  object["cameraKey"] = base::Utf8FromWide(report.cameraKey);
  object["noise"] = {{"luminance", report.noise.luminance}, {"chrominance", report.noise.chrominance}};
  object["profile"] = ProfileJson(report.profile);
  object["profile"]["rule"] = report.profile.rule;
  object["batchProfile"] = ProfileJson(report.batchProfile);
  Print(out, object, JsonLayout::kLines);
}

void PrintText(std::ostream& out, const InfoReport& report) {
  const Geometry& geometry = report.geometry;
  PrintLine(out, "File", report.file.native());
  PrintLine(out, "Format", report.format);
  PrintLine(out, "Size", std::to_string(geometry.width) + " x " + std::to_string(geometry.height));
  PrintLine(out, "Components", std::to_string(geometry.components));
  PrintLine(out, "Bits", std::to_string(geometry.bits));
  PrintLine(out, "F-number", report.exif.fNumber);
  PrintLine(out, "Exposure", report.exif.exposure);
  PrintLine(out, "Dimensions", report.exif.dimensions);
  PrintLine(out, "ISO", report.exif.iso);
  PrintLine(out, "Maker", report.exif.make);
  PrintLine(out, "Model", report.exif.model);
  PrintLine(out, "Date taken", report.exif.dateTaken);
  PrintLine(out, "Camera key", report.cameraKey);
  PrintLine(out, "Noise",
            "luminance " + Decimals(report.noise.luminance) + ", chrominance " +
                Decimals(report.noise.chrominance));
  PrintLine(out, "Profile", ProfileText(report.profile));
  PrintLine(out, "Batch profile", ProfileText(report.batchProfile));
}

void PrintJson(std::ostream& out, const GpuReport& report) {
  const auto textOrNull = [](const std::string& text) { return text.empty() ? Json() : Json(text); };
  Json object;
  object["schema"] = kReportSchema;
  object["usable"] = report.usable;
  object["refusal"] = textOrNull(report.refusal);
  object["vendor"] = textOrNull(report.vendor);
  object["renderer"] = textOrNull(report.renderer);
  object["version"] = textOrNull(report.version);
  for (const auto& [name, there] : report.extensions) object["extensions"][name] = there;
  object["largestTile"] = report.largestTile;
  object["format"] = textOrNull(report.format);
  object["largestDifference"] = report.largestDifference ? Json(*report.largestDifference) : Json();
  Print(out, object, JsonLayout::kLines);
}

void PrintText(std::ostream& out, const GpuReport& report) {
  PrintLine(out, "Usable", report.usable ? std::string("yes") : "no: " + report.refusal);
  PrintLine(out, "Renderer", report.renderer);
  PrintLine(out, "Vendor", report.vendor);
  PrintLine(out, "OpenGL", report.version);
  for (const auto& [name, there] : report.extensions) PrintLine(out, name, there ? "yes" : "no");
  PrintLine(out, "Largest tile", std::to_string(report.largestTile));
  PrintLine(out, "Format", report.format);
  PrintLine(out, "Agreement test",
            report.largestDifference ? "largest difference " + std::to_string(*report.largestDifference)
                                     : std::string());
}

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      const auto byte = at + i < bytes.size() ? static_cast<std::uint8_t>(bytes[at + i]) : 0U;
      group = (group << 8U) | byte;
    }
    for (std::size_t i = 0; i < 4; ++i) {
      const bool padding = at + i > bytes.size();
      text += padding ? '=' : kDigits[(group >> (18U - 6U * i)) & 63U];
    }
  }
  return text;
}

}  // namespace mirellon::cli
