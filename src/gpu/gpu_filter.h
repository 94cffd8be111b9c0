// The one object through which the program uses the graphics card.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "base/window_services.h"
#include "gpu/card_check.h"
#include "gpu/gl_context.h"
#include "gpu/passes.h"
#include "gpu/programs.h"
#include "gpu/tile_textures.h"
#include "picture/pic_buf_api.h"

namespace mirellon::gpu {

inline constexpr int kMaxTileSide = 1000;  // pixels

// What became known about the card.
struct CardInfo {
  std::string refusal;  // why the card is not used, one English sentence part; empty: it is
  std::string vendor;
  std::string renderer;
  std::string version;
  std::array<bool, kNeededExtensions.size()> extensions{};  // as kNeededExtensions; false if not asked
  std::string format;                                       // of one-channel textures
  int maxTextureSide = 0;                                   // texels
};

// For tests of what only some drivers do.
struct FilterOptions {
  FormatLimits formats;
  ProgramTexts texts = kProgramTexts;
};

// The context is current on a thread only while that thread runs Initialise, a Job or the destructor, so the
// object may be made on one thread, used on others and destroyed on a third, one at a time.
// Another context that is current on the thread is no longer so afterwards; one of another window system (GLX
// beside EGL) must be released before, or these steps fail.
class GpuFilter {
 public:
  // `windows` shows what goes wrong with the context (on the thread where it does); null: nobody. GLEW's
  // status goes to `out`, its errors and what the card says about a program it refuses to `err`. They must
  // outlive the object.
  GpuFilter(std::unique_ptr<GlContext> context, base::WindowServices* windows, std::ostream& out,
            std::ostream& err, FilterOptions options = {});
  virtual ~GpuFilter();
  GpuFilter(const GpuFilter&) = delete;
  GpuFilter& operator=(const GpuFilter&) = delete;

  // Opens the context, decides whether the card may be used, makes programs and textures. Once. Returns
  // hardwareUsable().
  bool Initialise();
  // The steps of Initialise and of the destructor. CreateGLWindow returns true when it succeeded; the context
  // is then current on this thread. Neither throws a message box more than once for one cause.
  bool CreateGLWindow();
  void KillGLWindow();

  [[nodiscard]] bool hardwareUsable() const { return hardwareUsable_; }
  [[nodiscard]] int maxTileSide() const { return maxTileSide_; }  // pixels; 0 until Initialise
  [[nodiscard]] const CardInfo& info() const { return info_; }

  // Has the card to itself, with the context current on this thread. The functions below need one.
  class Job {
   public:
    explicit Job(GpuFilter& filter);
    ~Job();
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;
    [[nodiscard]] bool failed() const { return failed_; }  // nothing may be done then

   private:
    GpuFilter& filter_;
    std::lock_guard<std::mutex> lock_;
    bool failed_;
  };

  // Takes over a tile of width x height pixels, both even, with a border of margin + 3 pixels on each side.
  // `source`: the padded tile, 1 or 3 components (`components`) of `depth` bits; `guide`: what similarity is
  // measured on, 8 bits, `channels` components, padded likewise; it may be the same picture. channels = 1:
  // one weight for all components; 3: one for each. True = failed (too large, or no memory, here or there).
  [[nodiscard]] bool Upload(const picture::SBxPicBuf& source, const picture::SBxPicBuf& guide, int width,
                            int height, int components, int margin, int channels, int depth);
  // Adds one displacement of half the search window; all but (0, 0) count both ways.
  void RenderDisplacement(int rowOffset, int columnOffset, const WeightSettings& settings);
  // Divides and writes the tile, without border, to `destination`: a picture of its geometry, with storage.
  // True = failed: the card reports an error, or values that are none; `destination` is then undefined.
  [[nodiscard]] bool ReadBack(picture::SBxPicBuf& destination);

  // For tests: what the passes left.
  [[nodiscard]] const TileTextures& textures() const { return textures_; }
  [[nodiscard]] const Programs& programs() const { return programs_; }
  [[nodiscard]] std::uint32_t framebuffer() const { return framebuffer_; }
  [[nodiscard]] bool accumulatorPhase() const { return accumulatorPhase_; }

 private:
  void Message(const wchar_t* text, const wchar_t* caption, base::MessageKind kind) const;
  bool FailCreation(const wchar_t* text, const char* refusal);
  void StartLoader();
  void Examine();
  void CompilePrograms();
  void ReleaseObjects();

  std::unique_ptr<GlContext> context_;
  base::WindowServices* windows_;
  std::ostream& out_;
  std::ostream& err_;
  FilterOptions options_;
  std::mutex mutex_;  // held by whoever has a Job

  // Which of the platform's things exist, as the release order sees it.
  bool window_ = false;
  bool deviceContext_ = false;
  bool renderContext_ = false;

  bool hardwareUsable_ = false;
  int maxTileSide_ = 0;
  CardInfo info_;

  std::uint32_t framebuffer_ = 0;
  TileTextures textures_;
  bool accumulatorPhase_ = true;
  Programs programs_;
  Passes passes_;

  TileGeometry tile_;
  int tileComponents_ = 0;
  int tileDepth_ = 0;
  std::size_t guideTexture_ = kGuide;
  std::vector<float> staging_;  // on its way up or down
};

}  // namespace mirellon::gpu
