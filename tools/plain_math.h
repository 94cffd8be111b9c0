// Elementary functions that give the same bits on every machine, which those of the C library do not promise.
#pragma once

#include <cmath>
#include <cstdint>

namespace mirellon::tools {

inline double Mix(double a, double b, double t) {
  return a + (b - a) * t;
}

inline double Saturate(double x) {
  return x < 0.0 ? 0.0 : (x > 1.0 ? 1.0 : x);
}

// 0 below `low`, 1 above `high`, smooth between.
inline double SmoothStep(double low, double high, double x) {
  const double t = Saturate((x - low) / (high - low));
  return t * t * (3.0 - 2.0 * t);
}

// 2 to the power x.
inline double Exp2(double x) {
  const double whole = std::floor(x);
  const double t = (x - whole) * 0.69314718055994530942;
  double sum = 1.0;
  for (int i = 14; i >= 1; --i) sum = 1.0 + sum * t / i;
  return std::ldexp(sum, static_cast<int>(whole));
}

// The binary logarithm of a positive x.
inline double Log2(double x) {
  int exponent = 0;
  const double mantissa = std::frexp(x, &exponent);  // [0.5, 1)
  const double t = (mantissa - 0.75) / (mantissa + 0.75);
  double sum = 0.0;
  for (int i = 19; i >= 1; i -= 2) sum = sum * t * t + 1.0 / i;
  return exponent + 2.0 * sum * t * 1.44269504088896340736 - 0.41503749927884381855;
}

inline double Exp(double x) {
  return Exp2(x * 1.44269504088896340736);
}

// x to the power y, x not negative.
inline double Power(double x, double y) {
  return x <= 0.0 ? 0.0 : Exp2(y * Log2(x));
}

// The sine of x turns (1 = a full circle).
inline double SineOfTurns(double x) {
  double t = x - std::floor(x + 0.5);  // [-0.5, 0.5)
  if (t > 0.25) t = 0.5 - t;
  if (t < -0.25) t = -0.5 - t;
  t *= 6.28318530717958647693;
  double sum = 1.0;
  for (int i = 8; i >= 1; --i) sum = 1.0 - sum * t * t / (2.0 * i * (2.0 * i + 1.0));
  return sum * t;
}

// A good mixing of 64 bits (splitmix64's finisher).
inline std::uint64_t MixBits(std::uint64_t z) {
  z += 0x9E3779B97F4A7C15ULL;
  z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27U)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31U);
}

// [0, 1) from the upper bits.
inline double UnitFromBits(std::uint64_t bits) {
  return static_cast<double>(bits >> 11U) * 0x1.0p-53;
}

}  // namespace mirellon::tools
