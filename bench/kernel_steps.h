// The steps of the similarity filter's kernel, each on its own and in the best form that we know, to find out
// how fast the machine could do them. They share no code with the kernel on purpose.
#pragma once

#include <cstddef>
#include <cstdint>

namespace mirellon::bench {

// Rows of the first-level cache's size or below; all storage lies on 64-byte boundaries with a vector of room
// at the end. Blocks are 2 x 2 pixels, `blocks` a multiple of 64.
struct StepData {
  std::ptrdiff_t blocks = 0;
  const std::uint8_t* upper = nullptr;     // 2 rows of pixels,
  const std::uint8_t* lower = nullptr;     //
  const std::uint8_t* upper2 = nullptr;    // and those they are compared with, at an odd address
  const std::uint8_t* lower2 = nullptr;    //
  const std::uint16_t* table = nullptr;    // kTableEntries weights
  std::uint16_t* sums = nullptr;           // rows of blocks ...
  std::uint16_t* oldest = nullptr;         //
  std::uint16_t* middle = nullptr;         //
  std::uint16_t* newest = nullptr;         //
  std::uint16_t* distances = nullptr;      // each below kTableEntries
  std::uint16_t* weights = nullptr;        //
  const std::uint32_t* pairs = nullptr;    // kPairs rows of weight pairs of two displacements, `blocks` apart
  const std::uint32_t* samples = nullptr;  // rows of sample pairs for each of a block's pixels
  std::int32_t* totals = nullptr;          // rows of sums for each of them, and one for the weights
  bool fusedProducts = false;              // whether one instruction may multiply and add

  [[nodiscard]] const std::uint32_t* Samples(std::ptrdiff_t pixel) const {
    return samples + pixel * (blocks + 32);
  }
  [[nodiscard]] std::int32_t* Totals(std::ptrdiff_t pixel) const { return totals + pixel * blocks; }
};

inline constexpr int kTableEntries = 256;  // a little more than what the default strength needs
inline constexpr int kPairs = 11;          // of displacements in a row of the largest window

// Each works through one row of blocks for one displacement; Accumulate for kPairs times two of them, in one
// direction.
void AbsoluteDifferences(const StepData& data);  // 4 a block, summed over the block
void BoxSums(const StepData& data);              // 3 across, 3 down, held to a limit
void LookUpFromMemory(const StepData& data);     // one 16-bit weight a block
// The same with the table in registers; without that, 64 entries a step, on targets that lack the instruction
// it does nothing and returns false.
bool LookUpFromRegisters(const StepData& data);
void Accumulate(const StepData& data);  // 4 multiply-adds a block and pair, and the sum of the weights

// Moving bytes: `bytes` is a multiple of 256.
std::uint64_t LoadBytes(const std::uint8_t* from, std::size_t bytes);
void StoreBytes(std::uint8_t* to, std::size_t bytes);
void CopyBytes(const std::uint8_t* from, std::uint8_t* to, std::size_t bytes);

}  // namespace mirellon::bench
