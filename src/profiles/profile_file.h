// The text of a profile file.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/parameters.h"

namespace mirellon::profiles {

inline constexpr const wchar_t* kUnknownCamera = L"<<Unknown Camera>>";

// ISO speeds: those that sets are added for, and the highest that a file may hold (the lowest is 0).
inline constexpr std::int32_t kLowestAddedIso = 16;
inline constexpr std::int32_t kHighestAddedIso = 409600;
inline constexpr std::int32_t kHighestStoredIso = 1000000;

// A chrominance noise below this is that of a grey photograph.
inline constexpr double kNoChrominance = 1e-5;

inline constexpr int kStoredDecimals = 2;

// One real number of a parameter set, as the file keeps it.
struct StoredValue {
  const wchar_t* key;
  double engine::DenoiseParameters::*member;
  double fallback;  // for a missing key
  double low;
  double high;
};

// In the order in which they are written; m_iUseMedian, a whole number from 0 to 2, follows them.
inline constexpr std::array<StoredValue, 9> kStoredValues{{
    {L"m_dStrength", &engine::DenoiseParameters::m_dStrength, 10.0, 0.0, 50.0},
    {L"m_dStrengthChroma", &engine::DenoiseParameters::m_dStrengthChroma, 10.0, 0.0, 50.0},
    {L"m_dStrengthChromaLarge", &engine::DenoiseParameters::m_dStrengthChromaLarge, 0.0, 0.0, 50.0},
    {L"m_dDynamics", &engine::DenoiseParameters::m_dDynamics, 0.0, -2.0, 2.0},
    {L"m_dSharp1", &engine::DenoiseParameters::m_dSharp1, 1.0, 0.0, 4.0},
    {L"m_dSharp2", &engine::DenoiseParameters::m_dSharp2, 1.0, 0.0, 4.0},
    {L"m_dSharp3", &engine::DenoiseParameters::m_dSharp3, 1.0, 0.0, 4.0},
    {L"m_dImmerkaerY", &engine::DenoiseParameters::m_dImmerkaerY, 5.0, 0.0, 10000.0},
    {L"m_dImmerkaerUV", &engine::DenoiseParameters::m_dImmerkaerUV, 5.0, 0.0, 10000.0},
}};

struct CameraProfile {
  std::uint32_t index = 0;  // the position that the file gave it; not renumbered by insertions
  std::wstring name;        // camera key, at most 127 characters
  std::vector<engine::DenoiseParameters> parameters;  // one a speed
  std::vector<std::uint32_t> isoValues;               // ascending when built by additions
};

struct ProfileData {
  std::vector<CameraProfile> cameras;  // camera 0 is the catch-all
  std::uint32_t actualCamera = 0;      // read and written back
  std::uint32_t actualIso = 0;         // likewise; deleting a speed may change it
};

// What is wrong with a text. The data is filled all the same, with defaults for what is missing.
enum class ProfileFault {
  kNone,
  kNotText,     // UTF-16, or not to be parsed
  kNoGeneral,   // no section "General": not a profile file, or an empty one
  kIncomplete,  // cameras, speeds or sets are missing that the file counts
  kMemory,      // refused; what could be read is there
};

// Absurd counts are held: beyond a thousand, cameras to the last one that has a name, and beyond 20 000, all
// cameras' speeds together to the number of sections; each to 70 000 (more than this program can have written
// into a file of the accepted size).
[[nodiscard]] ProfileFault ParseProfiles(std::string_view text, ProfileData& data);

// UTF-8 with byte-order mark and CR LF. Empty when memory is refused.
[[nodiscard]] std::string ProfilesText(const ProfileData& data);

// The set that a file gives back: numbers held to their ranges and to two decimals. May throw std::bad_alloc.
[[nodiscard]] engine::DenoiseParameters AsStored(const engine::DenoiseParameters& parameters);

// Whether a camera's name comes back from a file as it was: no line ends or other controls, no "]", and no
// "<<<" at the head, which to the file means something else.
[[nodiscard]] bool IsStorableName(std::wstring_view name);

}  // namespace mirellon::profiles
