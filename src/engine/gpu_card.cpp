#include "engine/gpu_card.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "engine/mirror_border.h"
#include "engine/picture_view.h"
#include "engine/similarity_kernel.h"
#include "engine/work_picture.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using gpu::GpuFilter;
using gpu::WeightSettings;
using picture::CBxPicBufAPI;
using picture::PicBuf;
using picture::SBxPicBuf;

// A strength of 0 must give weights of 0 for all but equal patches, not a division by zero.
double VarianceOf(double strength) {
  return std::max(std::pow(strength, 3.5), 1e-20);
}

// The plane with a mirrored border; empty when memory was refused.
PicBuf Bordered(const SBxPicBuf& plane, int border) {
  PicBuf bordered(plane.width + 2 * border, plane.height + 2 * border, 1, plane.bitsPerComponent);
  if (bordered.empty()) return bordered;
  SBxPicBuf inner = ViewOf(bordered, {border, border, border + plane.width, border + plane.height});
  CBxPicBufAPI::Copy(inner, plane);
  plane.bitsPerComponent == 8 ? MirrorBorder8(bordered, border) : MirrorBorder16(bordered, border);
  return bordered;
}

// Three bordered planes as one picture; empty when memory was refused.
PicBuf BorderedColour(const std::array<const SBxPicBuf*, 3>& planes, int border) {
  PicBuf colour;
  for (unsigned c = 0; c < 3; ++c) {
    PicBuf plane = Bordered(*planes[c], border);
    if (c == 0) colour = PicBuf(plane, 3);
    if (plane.empty() || colour.empty()) return {};
    CBxPicBufAPI::InsertComponent(colour, c, plane);
  }
  return colour;
}

// False when the job was aborted.
template <typename Job>
bool WalkDisplacements(GpuFilter& filter, const Job& job, const WeightSettings& settings) {
  const int side = SearchWindow(job.quality);
  const int half = side / 2;
  for (int k = 0; k < DisplacementCount(job.quality); ++k) {
    filter.RenderDisplacement(k / side - half, k % side - half, settings);
    if (job.progressWindow != nullptr) job.progressWindow->Advance(1);
    if (job.control != nullptr && job.control->Aborted()) return false;
  }
  return true;
}

}  // namespace

int CardMargin(int width, int height, std::uint32_t quality) {
  // A patch reaches 3 pixels beyond its pixel, and its partner half a window further.
  const int half = SearchWindow(quality) / 2;
  const int border = half + 3;
  return border + (border + BorderOf(width, height, half)) % 2 - 3;
}

bool GpuCard::FilterPlane(const PlaneJob& job) {
  const SBxPicBuf& tile = *job.source;
  const int margin = CardMargin(tile.width, tile.height, job.quality);
  const PicBuf source = Bordered(tile, margin + 3);
  PicBuf apart;
  if (job.guide != job.source) {
    apart = Bordered(*job.guide, margin + 3);
    if (apart.empty()) return true;
  }
  const PicBuf& guide = job.guide == job.source ? source : apart;
  if (source.empty()) return true;
  const GpuFilter::Job use(filter_);
  if (use.failed() ||
      filter_.Upload(source, guide, tile.width, tile.height, 1, margin, 1, tile.bitsPerComponent)) {
    return true;
  }
  if (!WalkDisplacements(filter_, job, {VarianceOf(job.strength), 0.0, job.dynamicity})) return false;
  return filter_.ReadBack(*job.destination);
}

bool GpuCard::FilterColour(const ColourJob& job) {
  const SBxPicBuf& tile = *job.source[0];
  const int margin = CardMargin(tile.width, tile.height, job.quality);
  const PicBuf source = BorderedColour(job.source, margin + 3);
  PicBuf apart;
  if (job.guide != job.source) {
    apart = BorderedColour(job.guide, margin + 3);
    if (apart.empty()) return true;
  }
  const PicBuf& guide = job.guide == job.source ? source : apart;
  PicBuf result(tile, 3);
  if (source.empty() || result.empty()) return true;
  {
    const GpuFilter::Job use(filter_);
    if (use.failed() ||
        filter_.Upload(source, guide, tile.width, tile.height, 3, margin, 3, tile.bitsPerComponent)) {
      return true;
    }
    const WeightSettings settings = {VarianceOf(job.strength), VarianceOf(job.strengthChroma),
                                     job.dynamicity};
    if (!WalkDisplacements(filter_, job, settings)) return false;
    if (filter_.ReadBack(result)) return true;
  }
  for (unsigned c = 0; c < 3; ++c) CBxPicBufAPI::ExtractComponent(*job.destination[c], c, result);
  return false;
}

}  // namespace mirellon::engine
