#include "engine/denoise_image.h"

#include "engine/denoise_region.h"

namespace mirellon::engine {

int DenoiseImage(EngineContext& context, const DenoiseRequest& request) {
  const picture::SBxPicBuf& source = *request.source;
  picture::SBxPicBuf& destination = *request.destination;
  picture::CBxPicBufAPI::ReinitHeap(destination, source);
  if (destination.samples == nullptr) return 1;
  const picture::CBxRect<int> whole{0, 0, source.width, source.height};
  return DenoiseRegion(context, request, source, {whole, whole}, destination);
}

}  // namespace mirellon::engine
