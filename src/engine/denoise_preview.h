// A part of a photograph, as a run on the whole would leave it.
#pragma once

#include "engine/engine_context.h"
#include "engine/parameters.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

struct PreviewRequest {
  const picture::SBxPicBuf* source = nullptr;  // the whole photograph; read only
  picture::CBxRect<int> rectangle{};           // clipped to the photograph
  DenoiseParameters parameters;
  std::uint32_t quality = kQualityMedium;
  base::ProgressSink* progress = nullptr;  // null: none
};

// Denoises and sharpens the rectangle on the processor. The result equals, to the last bit, what
// DenoiseWholePicture and SharpenPicture make of the whole photograph there: tiles are cut as there, and from
// each only as much is filtered around the rectangle as the filters reach. True = failed: aborted, nothing
// of the rectangle inside the photograph, or out of memory; `result` is then empty.
[[nodiscard]] bool DenoisePreview(EngineContext& context, const PreviewRequest& request,
                                  picture::PicBuf& result);

}  // namespace mirellon::engine
