// The engines that keep curve databases: what every one of them must do is tested on each.
//
//     template <class Curves>
//     class deleting : public CurveContract<Curves> {};
//     TYPED_TEST_SUITE(deleting, Engines);
//     TYPED_TEST(deleting, leaves_other_rows) { const TypeParam curves; ... }
//
// Each engine's type makes a fresh curve database with an open connection, as CurveFile does.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/contract/server_curves.h"
#include "tests/support/curve_file.h"

#include <gtest/gtest.h>

namespace pelmora::test {

struct FileCurves : CurveFile {
  static std::string lack() { return {}; }
  [[nodiscard]] ConnectionPtr another() const {
    ConnectionPtr other = sqliteConnection(path);
    other->open();
    return other;
  }
};

template <class Curves>
class CurveContract : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const std::string lack = Curves::lack(); !lack.empty()) GTEST_SKIP() << lack;
  }
};

#if defined(PELMORA_TEST_POSTGRESQL)
using Engines = ::testing::Types<FileCurves, ServerCurves>;
#else
using Engines = ::testing::Types<FileCurves>;
#endif

}  // namespace pelmora::test
