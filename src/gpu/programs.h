// The sixteen fragment programs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>

#include "gpu/program_texts.h"

namespace mirellon::gpu {

// The values are slots: places in the arrays of names. Slots 16 and 17 are never used.
enum class Program : std::uint8_t {
  kDivide = 0,
  kDiff1 = 1,
  kSum4One = 2,
  kBox9One = 3,
  kCopy1 = 4,
  kWeight1 = 5,
  kAdd = 6,
  kAccumulate = 7,
  kAccumulateDual = 8,
  kDiff3 = 9,
  kSum4Three = 10,
  kBox9Three = 11,
  kCopy3 = 12,
  kWeight3 = 13,
  kWeightDirect1 = 14,
  kWeightDirect3 = 15,
};
inline constexpr std::size_t kProgramSlots = 18;

struct ProgramInfo {
  const char* name;
  std::array<const char*, 6> uniforms;  // in the order of their look-up; null beyond the last
};
[[nodiscard]] const ProgramInfo& InfoOf(Program program);
[[nodiscard]] const char* TextOf(Program program);
// In this order they are compiled.
[[nodiscard]] std::span<const Program> CompileOrder();

// Names of GL objects: every function but the constructor needs the context that they belong to.
class Programs {
 public:
  // Compiles and links all of them. True = failed: a program was refused; its log and text go to `log`. What
  // was made by then is kept until Release.
  [[nodiscard]] bool Compile(const ProgramTexts& texts, std::ostream& log);
  // Finds their uniforms, once they are linked.
  void LookUpUniforms();
  void Release();

  void Use(Program program) const;
  // Of the program in use; `uniform` counts in the order of ProgramInfo. The first takes a texture unit.
  void SetSampler(Program program, std::size_t uniform, int unit) const;
  void SetNumber(Program program, std::size_t uniform, float value) const;

  [[nodiscard]] const std::array<std::uint32_t, kProgramSlots>& shaders() const { return shaders_; }
  [[nodiscard]] const std::array<std::uint32_t, kProgramSlots>& programs() const { return programs_; }
  [[nodiscard]] std::int32_t Location(Program program, std::size_t uniform) const;

 private:
  [[nodiscard]] bool Make(Program program, const char* text, std::ostream& log);

  std::array<std::uint32_t, kProgramSlots> shaders_{};
  std::array<std::uint32_t, kProgramSlots> programs_{};
  std::array<std::array<std::int32_t, 6>, kProgramSlots> locations_{};
};

}  // namespace mirellon::gpu
