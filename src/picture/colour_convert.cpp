#include "picture/colour_convert.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace mirellon::picture {

namespace {

// Products of 8-bit samples fit 32 bits; those of 16-bit samples do not.
template <typename T>
using Product = std::conditional_t<sizeof(T) == 1, std::int32_t, std::int64_t>;

template <typename T>
inline constexpr Product<T> kMiddle = sizeof(T) == 1 ? 128 : 32768;

template <typename T>
T Clamped(Product<T> value) {
  constexpr Product<T> kLargest = sizeof(T) == 1 ? 255 : 65535;
  return static_cast<T>(std::clamp<Product<T>>(value, 0, kLargest));
}

template <typename T>
T Luminance(Product<T> red, Product<T> green, Product<T> blue) {
  return Clamped<T>((19595 * red + 38470 * green + 7471 * blue + 32768) >> 16);
}

template <typename T>
void RowRGBtoYUV(const T* bgr, T* yuv, int pixels) {
  for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(pixels) * 3; i += 3) {
    const Product<T> blue = bgr[i];
    const Product<T> green = bgr[i + 1];
    const Product<T> red = bgr[i + 2];
    yuv[i] = Luminance<T>(red, green, blue);
    yuv[i + 1] = Clamped<T>(((-11059 * red - 21709 * green + 32768 * blue + 32768) >> 16) + kMiddle<T>);
    yuv[i + 2] = Clamped<T>(((32768 * red - 27439 * green - 5329 * blue + 32768) >> 16) + kMiddle<T>);
  }
}

template <typename T>
void RowYUVtoRGB(const T* yuv, T* bgr, int pixels) {
  for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(pixels) * 3; i += 3) {
    const Product<T> y = yuv[i];
    const Product<T> u = yuv[i + 1] - kMiddle<T>;
    const Product<T> v = yuv[i + 2] - kMiddle<T>;
    bgr[i] = Clamped<T>(y + ((116130 * u + 32768) >> 16));
    bgr[i + 1] = Clamped<T>(y + ((-22554 * u - 46802 * v + 32768) >> 16));
    bgr[i + 2] = Clamped<T>(y + ((91881 * v + 32768) >> 16));
  }
}

template <typename T>
void RowRGBtoY(const T* bgr, T* grey, int pixels) {
  for (std::ptrdiff_t x = 0; x < pixels; ++x)
    grey[x] = Luminance<T>(bgr[3 * x + 2], bgr[3 * x + 1], bgr[3 * x]);
}

}  // namespace

void ConvertRowRGBtoYUV(const std::uint8_t* bgr, std::uint8_t* yuv, int pixels) {
  RowRGBtoYUV(bgr, yuv, pixels);
}
void ConvertRowRGBtoYUV(const std::uint16_t* bgr, std::uint16_t* yuv, int pixels) {
  RowRGBtoYUV(bgr, yuv, pixels);
}
void ConvertRowYUVtoRGB(const std::uint8_t* yuv, std::uint8_t* bgr, int pixels) {
  RowYUVtoRGB(yuv, bgr, pixels);
}
void ConvertRowYUVtoRGB(const std::uint16_t* yuv, std::uint16_t* bgr, int pixels) {
  RowYUVtoRGB(yuv, bgr, pixels);
}
void ConvertRowRGBtoY(const std::uint8_t* bgr, std::uint8_t* grey, int pixels) {
  RowRGBtoY(bgr, grey, pixels);
}
void ConvertRowRGBtoY(const std::uint16_t* bgr, std::uint16_t* grey, int pixels) {
  RowRGBtoY(bgr, grey, pixels);
}

}  // namespace mirellon::picture
