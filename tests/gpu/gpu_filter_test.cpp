#include "gpu/gpu_filter.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <thread>

#include "gpu/open_card.h"
#include "gpu/sample_transfer.h"
#include "support/test_pictures.h"

namespace mirellon::gpu {
namespace {

using Texts = std::vector<std::string>;

// A context that is none: every step does nothing, or fails when its name is in `failing`.
class FakeContext : public GlContext {
 public:
  FakeContext(std::string failing, Texts& calls) : failing_(std::move(failing)), calls_(calls) {}
  bool OpenWindow() override { return Step("window"); }
  bool OpenDevice() override { return Step("device"); }
  bool ChoosePixelFormat() override { return Step("choose"); }
  bool SetPixelFormat() override { return Step("set"); }
  bool CreateContext() override { return Step("context"); }
  bool MakeCurrent() override { return Step("current"); }
  bool ReleaseCurrent() override { return Step("-current"); }
  bool DestroyContext() override { return Step("-context"); }
  bool CloseDevice() override { return Step("-device"); }
  bool CloseWindow() override { return Step("-window"); }
  bool UnregisterWindowClass() override { return Step("-class"); }

 private:
  bool Step(const std::string& name) {
    calls_.push_back(name);
    return (" " + failing_ + " ").find(" " + name + " ") != std::string::npos;
  }
  std::string failing_;
  Texts& calls_;
};

TEST(GpuFilter, AFailedStepIsToldOnceAndEverythingMadeIsReleased) {
  const struct {
    const char* failing;
    Texts released;
    Texts shown;
  } cases[] = {
      {"device", {"-window", "-class"}, {"ERROR: Can't Create A GL Device Context. (!)"}},
      {"choose", {"-device", "-window", "-class"}, {"ERROR: Can't Find A Suitable PixelFormat. (!)"}},
      {"set", {"-device", "-window", "-class"}, {"ERROR: Can't Set The PixelFormat. (!)"}},
      {"context", {"-device", "-window", "-class"}, {"ERROR: Can't Create A GL Rendering Context. (!)"}},
      {"current",
       {"-current", "-context", "-device", "-window", "-class"},
       {"ERROR: Can't Activate The GL Rendering Context. (!)"}},
      {"current -current -context -device -window -class",
       {"-current", "-context", "-device", "-window", "-class"},
       {"SHUTDOWN ERROR: Release Rendering Context Failed. (i)",
        "SHUTDOWN ERROR: Release Device Context Failed. (i)", "SHUTDOWN ERROR: Could Not Release hWnd. (i)",
        "SHUTDOWN ERROR: Could Not Unregister Class. (i)",
        "ERROR: Can't Activate The GL Rendering Context. (!)"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.failing);
    Texts calls;
    test::RecordingWindows windows;
    std::ostringstream lines;
    GpuFilter filter(std::make_unique<FakeContext>(c.failing, calls), &windows, lines, lines);
    EXPECT_FALSE(filter.Initialise());
    EXPECT_FALSE(filter.hardwareUsable());
    EXPECT_FALSE(filter.info().refusal.empty());
    EXPECT_EQ(windows.shown, c.shown);
    EXPECT_EQ(Texts(std::find_if(calls.begin(), calls.end(), [](auto& call) { return call[0] == '-'; }),
                    calls.end()),
              c.released);
    EXPECT_EQ(lines.str(), "");
    EXPECT_EQ(filter.framebuffer() + filter.textures().names()[0] + filter.programs().programs()[0], 0U);
    EXPECT_TRUE(GpuFilter::Job(filter).failed());
  }
}

TEST(GpuFilter, WindowAndDeviceAreForgottenOnlyWhenTheirReleaseFailed) {
  for (const bool failing : {false, true}) {
    Texts calls;
    std::ostringstream lines;
    GpuFilter filter(std::make_unique<FakeContext>(failing ? "-context -device -window" : "", calls), nullptr,
                     lines, lines);
    EXPECT_TRUE(filter.CreateGLWindow());
    filter.KillGLWindow();
    calls.clear();
    filter.KillGLWindow();
    EXPECT_EQ(calls, failing ? Texts({"-class"}) : Texts({"-device", "-window", "-class"}));
  }
}

TEST(CardCheck, ExcludesTwoCardsAndAsksForThreeExtensions) {
  const std::map<std::string, bool> renderers = {
      {"ATI Radeon X1050", true},      {"Radeon X1300/X1550 Series", true},
      {"1300 Radeon", true},           {"ATI radeon X1050", false},
      {"GeForce 1050 Ti", false},      {"ATI Radeon X1950", false},
      {"Intel(R) HD Graphics", false}, {"", false}};
  for (const auto& [renderer, excluded] : renderers)
    EXPECT_EQ(RendererExcluded(renderer), excluded) << renderer;
  Texts asked;
  const auto lacking = [&asked](const std::string& missing) {
    return [&asked, missing](const char* name) {
      asked.emplace_back(name);
      return name != missing;
    };
  };
  EXPECT_EQ(FirstMissingExtension(lacking("")), nullptr);
  EXPECT_EQ(asked, Texts({"GL_EXT_framebuffer_object", "GL_ARB_shading_language_100",
                          "GL_ARB_texture_non_power_of_two"}));
  asked.clear();
  EXPECT_STREQ(FirstMissingExtension(lacking("GL_ARB_shading_language_100")), "GL_ARB_shading_language_100");
  EXPECT_EQ(asked.size(), 2U);
}

TEST(GpuFilter, MachinesWithoutADriverAreRefusedQuietly) {
  const auto refusal = [](const std::string& library) {
    test::OpenCard card({}, MakeEglContext(EglSource::kAny, library));
    EXPECT_FALSE(card.filter.hardwareUsable());
    EXPECT_EQ(card.windows.shown, Texts({"ERROR: Can't Create A GL Device Context. (!)"}));
    return card.filter.info().refusal;
  };
  EXPECT_EQ(refusal("libEGL-not-there.so.1"), "no graphics driver can be opened");
  EXPECT_EQ(refusal("libc.so.6"), "no graphics driver can be opened");
}

TEST(GpuFilter, TellsWhatTheCardIs) {
  test::OpenCard card;
  ASSERT_USABLE(card);
  const CardInfo& info = card.filter.info();
  std::cout << info.renderer << ", " << info.version << ", " << info.format << "\n";
  EXPECT_EQ(info.refusal, "");
  EXPECT_FALSE(info.renderer.empty() || info.vendor.empty() || info.version.empty());
  EXPECT_EQ(info.extensions, (std::array<bool, 3>{true, true, true}));
  EXPECT_EQ(card.filter.maxTileSide(), 1000);
  const std::string lines = card.lines.str();
  EXPECT_TRUE(lines.starts_with("Status: Using GLEW ")) << lines;
  EXPECT_EQ(lines.find('\n'), lines.size() - 1);
  EXPECT_EQ(card.windows.shown, Texts());
  test::OpenCard red({.formats = {.withoutLuminance = true}});
  ASSERT_USABLE(red);
  EXPECT_EQ(red.filter.info().format, "GL_R32F");
}

// ---- Tiles ----

constexpr int kMargin = 3;

// A grey tile of 12 x 8 pixels with a border of 6.
bool FilterOnce(GpuFilter& filter, const picture::PicBuf& padded, picture::PicBuf& result) {
  const GpuFilter::Job job(filter);
  if (job.failed() ||
      filter.Upload(padded, padded, padded->width - 12, padded->height - 12, 1, kMargin, 1, 8)) {
    return true;
  }
  filter.RenderDisplacement(0, -1, {1e6, 0.0, 0.0});
  filter.RenderDisplacement(0, 0, {1e6, 0.0, 0.0});
  return filter.ReadBack(result);
}

TEST(GpuFilter, TheContextMovesBetweenThreadsAndFilters) {
  const picture::PicBuf padded = test::RandomPicture(24, 20, 1, 8, 1);
  picture::PicBuf expected(12, 8, 1, 8);
  auto card = std::make_unique<test::OpenCard>();
  ASSERT_USABLE(*card);
  ASSERT_FALSE(FilterOnce(card->filter, padded, expected));
  for (int run = 0; run < 3; ++run) {
    test::OpenCard other;  // a second one in the process, made and destroyed meanwhile
    ASSERT_USABLE(other);
    std::thread([&] {
      for (GpuFilter* filter : {&card->filter, &other.filter}) {
        picture::PicBuf result(12, 8, 1, 8);
        EXPECT_FALSE(FilterOnce(*filter, padded, result));
        EXPECT_TRUE(test::SamePicture(result, expected));
      }
    }).join();
  }
  EXPECT_EQ(card->windows.shown, Texts());
  std::thread([&] { card.reset(); }).join();
}

// As it is when the driver loses the context: calls go nowhere, and tell nothing.
TEST(GpuFilter, ATileWhoseContextIsGoneHasFailed) {
  test::OpenCard card;
  ASSERT_USABLE(card);
  const picture::PicBuf padded = test::RandomPicture(24, 20, 1, 8, 1);
  picture::PicBuf result(12, 8, 1, 8);
  ASSERT_FALSE(FilterOnce(card.filter, padded, result));
  EXPECT_TRUE(card.filter.ReadBack(result));  // without a job
  EXPECT_FALSE(FilterOnce(card.filter, padded, result));
}

TEST(GpuFilter, EveryWayToAContextGivesTheSame) {
  const picture::PicBuf padded = test::RandomPicture(24, 20, 1, 8, 2);
  picture::PicBuf expected(12, 8, 1, 8);
  test::OpenCard any;
  ASSERT_FALSE(FilterOnce(any.filter, padded, expected));
  for (const EglSource source : {EglSource::kSurfaceless, EglSource::kDevice}) {
    test::OpenCard card({}, MakeEglContext(source));
    ASSERT_USABLE(card);
    picture::PicBuf result(12, 8, 1, 8);
    EXPECT_FALSE(FilterOnce(card.filter, padded, result));
    EXPECT_TRUE(test::SamePicture(result, expected));
  }
}

TEST(GpuFilter, RefusesWhatDoesNotFitAndGoesOn) {
  test::OpenCard card;
  ASSERT_USABLE(card);
  const int side = card.filter.info().maxTextureSide;
  const picture::PicBuf large = test::ConstantPicture(side + 2, 14, 1, 8, 9);
  const picture::PicBuf largest = test::ConstantPicture(side, 14, 1, 8, 9);
  picture::PicBuf result(side - 10, 2, 1, 8);
  EXPECT_TRUE(FilterOnce(card.filter, large, result));
  result = picture::PicBuf(side - 12, 2, 1, 8);
  ASSERT_FALSE(FilterOnce(card.filter, largest, result));
  EXPECT_TRUE(test::SamePicture(result, test::ConstantPicture(side - 12, 2, 1, 8, 9)));
}

// The driver says that textures of this size may be, and then has no room for them.
TEST(GpuFilter, ACardWithoutRoomRefusesTheTileAndGoesOn) {
  test::OpenCard card;
  ASSERT_USABLE(card);
  const int side = card.filter.info().maxTextureSide;
  const picture::PicBuf small = test::RandomPicture(24, 20, 1, 8, 1);
  picture::PicBuf expected(12, 8, 1, 8);
  picture::PicBuf result(12, 8, 1, 8);
  ASSERT_FALSE(FilterOnce(card.filter, small, expected));
  const picture::PicBuf large(side, side, 1, 8);
  ASSERT_FALSE(large.empty());
  for (int run = 0; run < 2; ++run) {
    EXPECT_TRUE(FilterOnce(card.filter, large, result));
    EXPECT_FALSE(FilterOnce(card.filter, small, result));
    EXPECT_TRUE(test::SamePicture(result, expected));
  }
  EXPECT_TRUE(card.filter.hardwareUsable());
}

TEST(GpuFilter, ARefusedProgramIsToldWithItsLogAndText) {
  FilterOptions options;
  options.texts[static_cast<std::size_t>(Program::kBox9Three)] = "void main() { nobodyKnowsThis(); }\n";
  options.texts[static_cast<std::size_t>(Program::kAdd)] = "void notMain() {}\n";  // compiles, does not link
  test::OpenCard card(options);
  EXPECT_FALSE(card.filter.hardwareUsable());
  EXPECT_EQ(card.filter.info().refusal, "the graphics driver refuses the filter's programs");
  const std::string lines = card.lines.str();
  const std::size_t box = lines.find("The graphics card refuses the program BOX9_3:\n");
  const std::size_t add = lines.find("The graphics card refuses the program ADD:\n");
  ASSERT_TRUE(box < add && add < lines.size()) << lines;
  const std::string log = lines.substr(box, add - box);
  EXPECT_LT(log.find("nobodyKnowsThis"), log.rfind("nobodyKnowsThis"))
      << log;  // in its log, then in its text
  EXPECT_TRUE(lines.ends_with("\nvoid notMain() {}\n")) << lines;
  EXPECT_EQ(card.filter.framebuffer() + card.filter.textures().names()[0], 0U);
  EXPECT_EQ(card.filter.programs().programs(), (std::array<std::uint32_t, kProgramSlots>{}));
  EXPECT_TRUE(GpuFilter::Job(card.filter).failed());
  EXPECT_EQ(card.windows.shown, Texts());
}

TEST(SampleTransfer, RoundsHalfUpHoldsTheDepthAndRefusesWhatIsNoNumber) {
  picture::PicBuf bytes(4, 1, 1, 8);
  picture::PicBuf words(1, 1, 3, 16);
  EXPECT_FALSE(SamplesOf({0.49F, 0.5F, 254.5F, 300.0F}, bytes));
  EXPECT_TRUE(test::SamePicture(bytes, test::MadeOf(4, 1, 1, 8, [](int x, int, int) {
                                  return std::array{0U, 1U, 255U, 255U}.at(static_cast<std::size_t>(x));
                                })));
  EXPECT_FALSE(SamplesOf({1.0F / 512, 255.99F, 1e9F}, words));
  EXPECT_EQ(test::Sample(words, 0, 0, 0), 1U);
  EXPECT_EQ(test::Sample(words, 0, 0, 1), 65533U);
  EXPECT_EQ(test::Sample(words, 0, 0, 2), 65535U);
  for (const float bad : {std::numeric_limits<float>::quiet_NaN(), -1.0F}) {
    EXPECT_TRUE(SamplesOf({1.0F, bad, 1.0F}, words));
  }
}

}  // namespace
}  // namespace mirellon::gpu
