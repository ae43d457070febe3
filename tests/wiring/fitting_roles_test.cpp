// SPDX-License-Identifier: MIT
#include <pelmora/platform.h>

#include <gtest/gtest.h>

namespace pelmora::test {
namespace {

TEST(default_platform, has_an_engine_that_delivers_models) {
  ASSERT_TRUE(platform().createFitEngine);
  const auto engine = platform().createFitEngine();
  ASSERT_NE(engine, nullptr);
  EXPECT_NE(engine->createModel(), nullptr);
}

TEST(default_platform, has_a_band_tester) {
  ASSERT_TRUE(platform().createBandTester);
  EXPECT_NE(platform().createBandTester(), nullptr);
}

}  // namespace
}  // namespace pelmora::test
