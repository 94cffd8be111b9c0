// mirellon-time-opencv PICTURE plane|colour THREADS [wall|processor]: the milliseconds that OpenCV's
// non-local means takes, with patches of 7 x 7 and a search window of 21 x 21 pixels.
#include <cstdio>
#include <cstdlib>
#include <string>

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/photo.hpp>

#include "stopwatch.h"

namespace {

using mirellon::bench::Clock;

constexpr int kPatch = 7;
constexpr int kWindow = 21;
constexpr float kStrength = 10.0F;  // the time does not depend on it

double Time(const std::string& picture, bool colour, int threads, Clock clock) {
  cv::setNumThreads(threads);
  const cv::Mat source = cv::imread(picture, colour ? cv::IMREAD_COLOR : cv::IMREAD_GRAYSCALE);
  if (source.empty()) return -1.0;
  cv::Mat result;
  return mirellon::bench::MedianMilliseconds(clock, 1, [&] {
    if (colour) {
      cv::fastNlMeansDenoisingColored(source, result, kStrength, kStrength, kPatch, kWindow);
    } else {
      cv::fastNlMeansDenoising(source, result, kStrength, kPatch, kWindow);
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) {
    std::fprintf(stderr, "usage: mirellon-time-opencv PICTURE plane|colour THREADS [wall|processor]\n");
    return 2;
  }
  const Clock clock = argc == 5 && std::string(argv[4]) == "processor" ? Clock::kProcessor : Clock::kWall;
  double milliseconds = -1.0;
  try {
    milliseconds = Time(argv[1], std::string(argv[2]) == "colour", std::atoi(argv[3]), clock);
  } catch (const cv::Exception& fault) {
    std::fprintf(stderr, "mirellon-time-opencv: %s\n", fault.what());
  }
  if (milliseconds < 0.0) return 1;
  std::printf("%.2f\n", milliseconds);
  return 0;
}
