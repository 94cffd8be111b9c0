// A card without hardware: it computes as the processor does, or goes wrong when told to.
#pragma once

#include <functional>
#include <vector>

#include "engine/engine_context.h"
#include "engine/similarity_kernel.h"
#include "support/test_pictures.h"

namespace mirellon::test {

struct FakeCard : public engine::CardFilter {
  enum class Way { kRight, kFails, kBlack, kBright, kIdle };

  [[nodiscard]] bool HardwareUsable() const override { return usable; }
  [[nodiscard]] int MaxTileSide() const override { return maxTileSide; }

  [[nodiscard]] bool ReadsNoiseLevels() const override { return readsNoiseLevels; }

  [[nodiscard]] bool FilterPlane(const engine::PlaneJob& job) override {
    planes.push_back(job);
    widths.push_back(job.source->width);
    guideSample = Sample(*job.guide, 0, 0);
    if (Begin()) return true;
    Filter(*job.destination, *job.source, *job.guide, job.strength, job.quality, job.dynamicity);
    return false;
  }

  [[nodiscard]] bool FilterColour(const engine::ColourJob& job) override {
    colours.push_back(job);
    widths.push_back(job.source[0]->width);
    if (Begin()) return true;
    for (std::size_t c = 0; c < 3; ++c) {
      const double strength = c == 0 ? job.strength : job.strengthChroma;
      Filter(*job.destination[c], *job.source[c], *job.guide[c], strength, job.quality, job.dynamicity);
    }
    return false;
  }

  Way way = Way::kRight;
  int wrongFrom = 0;  // the first job, counted from 0, that goes that way
  bool usable = true;
  bool readsNoiseLevels = false;
  int maxTileSide = 1000;
  std::function<void(int)> onJob = [](int) {};  // gets the job's number

  // What it was given; the pictures are gone.
  std::vector<engine::PlaneJob> planes;
  std::vector<engine::ColourJob> colours;
  std::vector<int> widths;
  unsigned guideSample = 0;
  int jobs = 0;

 private:
  // True = fails.
  bool Begin() {
    onJob(jobs);
    now_ = jobs++ < wrongFrom ? Way::kRight : way;
    return now_ == Way::kFails;
  }

  void Filter(picture::SBxPicBuf& to, const picture::SBxPicBuf& from, const picture::SBxPicBuf& guide,
              double strength, std::uint32_t quality, double dynamicity) {
    picture::CBxPicBufAPI::Copy(to, from);
    if (now_ == Way::kIdle) return;
    if (now_ != Way::kRight) {
      const unsigned char byte = now_ == Way::kBlack ? 0 : 255;
      picture::CBxPicBufAPI::SetConst(to, {0, 0, to.width, to.height}, byte);
      return;
    }
    const engine::PlaneJob job{&to, &to, &guide, strength, quality, dynamicity};
    to.bitsPerComponent == 8 ? engine::DenoiseKernel8(context_, job) : engine::DenoiseKernel16(context_, job);
  }

  engine::EngineContext context_;
  Way now_ = Way::kRight;
};

}  // namespace mirellon::test
