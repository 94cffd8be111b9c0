#include "engine/card_jobs.h"

#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "engine/card_agreement.h"
#include "engine/card_checks.h"
#include "engine/fake_card.h"
#include "engine/whole_picture.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::PicBuf;
using test::FakeCard;
using Way = FakeCard::Way;

// A whole-picture run of two tiles, colour.
PicBuf Denoised(EngineContext& context, bool useGpu, int bits = 8) {
  PicBuf source = test::PhotoLikePicture(1100, 30, 3, bits, 3);
  PicBuf result;
  DenoiseRequest request{&result.record(), &source.record()};
  request.strength = request.strengthChroma = 30.0;
  request.strengthChromaLarge = 0.0;
  request.quality = 1;
  request.useGpu = useGpu;
  EXPECT_TRUE(DenoiseWholePicture(context, request, false));
  return result;
}

TEST(CardJobs, WhatTheCardGetsWrongTheProcessorDoesAgain) {
  const struct {
    Way way;
    int wrongFrom;
    int tried;
    CardFault fault;
  } cases[] = {{Way::kRight, 0, 2, CardFault::kNone},        {Way::kFails, 0, 1, CardFault::kFailed},
               {Way::kFails, 1, 2, CardFault::kFailed},      {Way::kBlack, 0, 1, CardFault::kImplausible},
               {Way::kBlack, 1, 2, CardFault::kImplausible}, {Way::kBright, 1, 2, CardFault::kImplausible},
               {Way::kIdle, 0, 1, CardFault::kDisagrees}};
  for (const int bits : {8, 16}) {
    EngineContext context;
    const PicBuf expected = Denoised(context, false, bits);
    for (const auto& c : cases) {
      FakeCard card;
      card.way = c.way;
      card.wrongFrom = c.wrongFrom;
      context.card = &card;
      for (int run = 0; run < 2; ++run) {  // a fault is not held against the card in the next run
        card.jobs = 0;
        EXPECT_TRUE(test::SamePicture(Denoised(context, true, bits), expected));
        EXPECT_EQ(card.jobs, c.tried);
        EXPECT_EQ(context.cardRun.fault, c.fault);
        EXPECT_EQ(context.cardRun.jobs, c.fault == CardFault::kNone ? 2 : c.wrongFrom);
        EXPECT_EQ(CardNote(context.cardRun).empty(), c.fault == CardFault::kNone);
      }
    }
  }
}

TEST(CardJobs, ACardThatTakesNoTilesIsNotUsed) {
  EngineContext context;
  const PicBuf expected = Denoised(context, false);
  for (const auto& [side, jobs] : {std::tuple{-1, 0}, {0, 0}, {99, 0}, {400, 3}, {5000, 2}}) {
    FakeCard card;
    card.maxTileSide = side;
    context.card = &card;
    EXPECT_TRUE(test::SamePicture(Denoised(context, true), expected));
    EXPECT_EQ(card.jobs, jobs) << side;
  }
}

// The margin is for the large-scale pass and for noise levels, which few cards read.
TEST(CardJobs, TheCardGetsNoMoreOfATileThanItNeeds) {
  EngineContext context;
  const PicBuf expected = Denoised(context, false);
  for (const bool readsNoiseLevels : {false, true}) {
    FakeCard card;
    card.readsNoiseLevels = readsNoiseLevels;
    context.card = &card;
    EXPECT_TRUE(test::SamePicture(Denoised(context, true), expected));
    EXPECT_EQ(card.widths, readsNoiseLevels ? (std::vector{1050, 150}) : (std::vector{1016, 116}));
    EXPECT_EQ(card.colours[1].noiseLevel > 0.0, readsNoiseLevels);
  }
}

TEST(CardJobs, AnAbortOnTheCardLeavesThePicture) {
  EngineContext context;
  FakeCard card;
  context.card = &card;
  card.onJob = [&](int) { context.control.RequestAbort(); };
  PicBuf source = test::PhotoLikePicture(60, 30, 3, 8, 3);
  PicBuf result;
  DenoiseRequest request{&result.record(), &source.record()};
  request.useGpu = true;
  EXPECT_FALSE(DenoiseWholePicture(context, request, false));
  EXPECT_TRUE(test::SamePicture(result, source));
  EXPECT_EQ(context.cardRun.fault, CardFault::kNone);
}

TEST(CardChecks, AveragesStayWithinTheSource) {
  const auto plane = [](unsigned a, unsigned b, int bits) {
    return test::MadeOf(4, 2, 1, bits, [=](int x, int, int) { return x < 2 ? a : b; });
  };
  const struct {
    unsigned from[2], to[2];
    int bits;
    bool plausible;
  } cases[] = {
      {{10, 90}, {10, 90}, 8, true},  {{10, 90}, {8, 92}, 8, true},    {{10, 90}, {7, 50}, 8, false},
      {{10, 90}, {50, 93}, 8, false}, {{0, 90}, {0, 0}, 8, false},     {{0, 90}, {0, 1}, 8, true},
      {{0, 1}, {0, 0}, 8, true},      {{300, 9}, {9, 303}, 16, false}, {{300, 9}, {9, 300}, 16, true}};
  for (const auto& c : cases) {
    EXPECT_EQ(PlausibleAverage(plane(c.from[0], c.from[1], c.bits), plane(c.to[0], c.to[1], c.bits)),
              c.plausible);
  }
}

// What is compared with a part of the plane is what the processor makes of the whole.
TEST(CardChecks, SamplesOfTheProcessorsOwnResultDoNotDiffer) {
  for (const auto& [width, height, bits, quality] :
       {std::tuple{240, 200, 8, 3U}, {200, 98, 16, 2U}, {300, 2, 8, 3U}, {2, 2, 16, 1U}}) {
    EngineContext context;
    PicBuf plane = test::PhotoLikePicture(width, height, 1, bits, 4);
    const PicBuf source = test::CopyOf(plane);
    const PlaneSettings settings = {30.0, quality, 0.5, nullptr, -1.0, true, 2};
    PlaneSettings onProcessor = settings;
    onProcessor.useGpu = false;
    ASSERT_EQ(FilterPaddedPlane(context, plane, onProcessor), 0);
    const SampleComparison same = CompareSamples(context, source, plane, settings);
    EXPECT_TRUE(same.known && same.Agrees());
    EXPECT_EQ(same.difference, 0.0) << width << "x" << height;
    const SampleComparison other = CompareSamples(context, source, source, settings);
    EXPECT_EQ(other.difference, other.effect);
    EXPECT_EQ(other.Agrees(), other.effect < 1.25) << other.effect;
  }
}

TEST(CardAgreement, PassesOnlyIfTheCardItselfAnswersAlike) {
  const struct {
    Way way;
    int wrongFrom;
    bool answered, passed;
  } cases[] = {{Way::kRight, 0, true, true},
               {Way::kFails, 0, false, false},
               {Way::kFails, 1, false, false},  // in the large-scale pass
               {Way::kBlack, 0, false, false}};
  for (const auto& c : cases) {
    FakeCard card;
    card.way = c.way;
    card.wrongFrom = c.wrongFrom;
    const CardAgreement agreement = TestCardAgreement(card);
    EXPECT_EQ(agreement.answered, c.answered);
    EXPECT_EQ(agreement.passed, c.passed);
    EXPECT_EQ(agreement.largestDifference, 0);
  }
}

}  // namespace
}  // namespace mirellon::engine
