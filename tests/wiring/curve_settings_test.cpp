// The settings of a fit beside its curve, in a real curve database.
// SPDX-License-Identifier: MIT
#include "store/connection.h"
#include "tests/support/earlier_settings.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/curve_settings.h>
#include <pelmora/error.h>
#include <pelmora/own_tables.h>

#include <gtest/gtest.h>

namespace pelmora::test {
namespace {

class curve_settings : public testing::Test {
 protected:
  curve_settings() {
    createCurveDatabase(path);
    curves = openDatabase(path);
  }
  const ScratchFolder scratch;
  const std::string path = scratch.file("curves.db");
  ConnectionPtr curves;
};

CurveSettings everything() {
  CurveSettings settings;
  settings.BandPercent = 0.1;
  settings.Points = 32767;
  settings.Min = 0.36183999999999999;
  settings.Max = 1234.5;
  settings.RatioCurve = settings.Inverted = settings.IgnoreResiduals = true;
  settings.Equations = "; it's ours\r\nLine\ta+b*x\r\n";
  settings.SoftwareVersion = "1.2.3";
  settings.FittedAt = "2026-11-21T13:40:00Z";
  settings.Choice = "trusted";
  settings.FitMin = 1.5;
  settings.FitMax = 1000;
  settings.Only = {"Polynomial 3rd Order", "Ada's own"};
  settings.Without = {"TC eq6405"};
  settings.MaxOrder = 8;
  return settings;
}

TEST_F(curve_settings, are_nothing_in_a_database_that_never_kept_any) {
  EXPECT_EQ(keptCurveSettings(curves, 1), std::nullopt);
}

TEST_F(curve_settings, come_back_as_they_were_kept) {
  keepCurveSettings(curves, 7, everything());
  EXPECT_EQ(keptCurveSettings(openDatabase(path), 7), everything());
  EXPECT_EQ(keptCurveSettings(curves, 8), std::nullopt);
}

TEST_F(curve_settings, tell_the_whole_range_and_the_built_in_equations_by_their_absence) {
  keepCurveSettings(curves, 7, CurveSettings());
  EXPECT_EQ(keptCurveSettings(curves, 7), CurveSettings());
}

// An earlier version made the table; a program that only reads cannot add columns to it.
TEST_F(curve_settings, of_an_earlier_version_have_no_choice) {
  keepEarlierSettings(curves, 7, "0.3");
  CurveSettings expected;
  expected.BandPercent = 0.3;
  expected.Points = 30;
  expected.SoftwareVersion = "1.0";
  expected.FittedAt = "then";
  EXPECT_EQ(keptCurveSettings(curves, 7), expected);
  keepCurveSettings(curves, 8, everything());
  EXPECT_EQ(keptCurveSettings(curves, 8), everything());
  EXPECT_EQ(keptCurveSettings(curves, 7), expected);
}

TEST_F(curve_settings, replace_the_older_ones_of_their_series_alone) {
  CurveSettings other;
  other.BandPercent = 2;
  keepCurveSettings(curves, 7, everything());
  keepCurveSettings(curves, 8, everything());
  keepCurveSettings(curves, 7, other);
  EXPECT_EQ(keptCurveSettings(curves, 7), other);
  EXPECT_EQ(keptCurveSettings(curves, 8), everything());
}

TEST_F(curve_settings, need_a_database_that_can_be_written) {
  curves->close();
  EXPECT_THROW(keepCurveSettings(curves, 7, everything()), Error);
  EXPECT_THROW(keepCurveSettings(nullptr, 7, everything()), Error);
}

}  // namespace
}  // namespace pelmora::test
