// RGB to YUV and back, one row at a time.
//
// Fixed-point BT.601 at full range, >> an arithmetic shift, results clamped to the depth; M = 128 at 8 bits
// and 32768 at 16 (where the products as written need more than 32 bits):
//   Y = (19595 R + 38470 G + 7471 B + 32768) >> 16
//   U = ((-11059 R - 21709 G + 32768 B + 32768) >> 16) + M
//   V = ((32768 R - 27439 G - 5329 B + 32768) >> 16) + M
//   R = Y + ((91881 (V - M) + 32768) >> 16)
//   G = Y + ((-22554 (U - M) - 46802 (V - M) + 32768) >> 16)
//   B = Y + ((116130 (U - M) + 32768) >> 16)
#pragma once

#include <cstdint>

namespace mirellon::picture {

// `pixels` interleaved triples: blue, green, red on one side, Y, U, V on the other. In place is allowed.
void ConvertRowRGBtoYUV(const std::uint8_t* bgr, std::uint8_t* yuv, int pixels);
void ConvertRowRGBtoYUV(const std::uint16_t* bgr, std::uint16_t* yuv, int pixels);
void ConvertRowYUVtoRGB(const std::uint8_t* yuv, std::uint8_t* bgr, int pixels);
void ConvertRowYUVtoRGB(const std::uint16_t* yuv, std::uint16_t* bgr, int pixels);

// The same with Y, U and V apart, each of `pixels` samples.
void ConvertRowRGBtoPlanes(const std::uint8_t* bgr, std::uint8_t* y, std::uint8_t* u, std::uint8_t* v,
                           int pixels);
void ConvertRowRGBtoPlanes(const std::uint16_t* bgr, std::uint16_t* y, std::uint16_t* u, std::uint16_t* v,
                           int pixels);
void ConvertRowPlanesToRGB(const std::uint8_t* y, const std::uint8_t* u, const std::uint8_t* v,
                           std::uint8_t* bgr, int pixels);
void ConvertRowPlanesToRGB(const std::uint16_t* y, const std::uint16_t* u, const std::uint16_t* v,
                           std::uint16_t* bgr, int pixels);

// Y alone, `pixels` samples out.
void ConvertRowRGBtoY(const std::uint8_t* bgr, std::uint8_t* grey, int pixels);
void ConvertRowRGBtoY(const std::uint16_t* bgr, std::uint16_t* grey, int pixels);

}  // namespace mirellon::picture
