// Signatures under a stored curve, and what makes them void.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

namespace pelmora::calibration::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class SignOffs : public ServiceTest {
 protected:
  SignOffs() : db_(lab()), meter_(db_.registerMeter("M1")) {
    db_.storeRaw(meter_, "K", 1, smoothPoints(24));
    fitAndStore();
  }
  void fitAndStore(double band = 0.3) { db_.store(db_.fit(meter_, "K", {.band = band})); }
  [[nodiscard]] StoredSeries stored() const { return db_.series(meter_, "K"); }
  [[nodiscard]] bool isVoid() const {
    return db_.signOffs(stored()).front().fingerprint != signedFingerprint(stored());
  }

  Database db_;
  Meter meter_;
};

TEST_F(SignOffs, a_signature_is_kept_with_name_remark_and_time) {
  EXPECT_THAT(db_.signOffs(stored()), IsEmpty());
  const SignOff entry = db_.signOff(stored(), " Ada Byron ", "seen with the stand's log");
  EXPECT_EQ(entry.name, "Ada Byron");
  EXPECT_EQ(entry.remark, "seen with the stand's log");
  EXPECT_EQ(entry.signedAt.size(), 20U);
  EXPECT_EQ(entry.fingerprint, signedFingerprint(stored()));
  EXPECT_FALSE(isVoid());
  const auto again = open(path()).signOffs(stored());
  ASSERT_THAT(again, SizeIs(1));
  EXPECT_EQ(again[0].id, entry.id);
}

TEST_F(SignOffs, the_newest_signature_comes_first) {
  (void)db_.signOff(stored(), "Ada");
  (void)db_.signOff(stored(), "Charles");
  const auto list = db_.signOffs(stored());
  ASSERT_THAT(list, SizeIs(2));
  EXPECT_EQ(list[0].name, "Charles");
}

TEST_F(SignOffs, an_exclusion_makes_a_signature_void_and_its_end_makes_it_valid_again) {
  (void)db_.signOff(stored(), "Ada");
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "air in the line");
  EXPECT_TRUE(isVoid());
  (void)db_.include(meter_, "K", {.all = true});
  EXPECT_FALSE(isVoid());
}

TEST_F(SignOffs, another_band_makes_a_signature_void) {
  (void)db_.signOff(stored(), "Ada");
  fitAndStore(0.5);
  EXPECT_TRUE(isVoid());
}

TEST_F(SignOffs, another_reason_for_an_exclusion_makes_a_signature_void) {
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "air in the line");
  fitAndStore();
  (void)db_.signOff(stored(), "Ada");
  (void)db_.include(meter_, "K", {.all = true});
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "no reason at all");
  EXPECT_TRUE(isVoid());
}

TEST_F(SignOffs, a_restored_series_has_its_signature) {
  (void)db_.signOff(stored(), "Ada");
  const HistoryEntry gone = db_.remove(meter_, "K");
  (void)db_.restore(gone.id);
  EXPECT_FALSE(isVoid());
}

TEST_F(SignOffs, nobody_signs_what_has_changed_since_it_was_seen) {
  const StoredSeries seen = stored();
  (void)open(path()).exclude(meter_, "K", {.part = 1, .numbers = {3}}, "air in the line");
  const auto failure = failureOf<Changed>([&] { (void)db_.signOff(seen, "Ada"); });
  EXPECT_THAT(failure.what(), HasSubstr("has changed since it was shown"));
  EXPECT_THAT(db_.signOffs(stored()), IsEmpty());
}

TEST_F(SignOffs, nobody_signs_a_curve_that_is_older_than_its_points) {
  (void)db_.exclude(meter_, "K", {.part = 1, .numbers = {3}}, "air in the line");
  EXPECT_THAT(failureOf<BadData>([&] { (void)db_.signOff(stored(), "Ada"); }).what(),
              HasSubstr("older than its raw points"));
}

TEST_F(SignOffs, a_signature_needs_a_curve_and_a_name_on_one_line) {
  db_.storeRaw(meter_, "L", 1, smoothPoints(24));
  EXPECT_THROW((void)db_.signOff(db_.series(meter_, "L"), "Ada"), NoCurve);
  EXPECT_THROW((void)db_.signOff(stored(), "  "), BadData);
  EXPECT_THROW((void)db_.signOff(stored(), "Ada\nCharles"), BadData);
  EXPECT_THROW((void)db_.signOff(stored(), std::string(201, 'a')), BadData);
  EXPECT_THAT(db_.signOffs(stored()), IsEmpty());
}

TEST_F(SignOffs, every_setting_is_signed) {
  const StoredSeries series = stored();
  ASSERT_TRUE(series.settings.has_value());
  using Change = void (*)(CurveSettings&);
  const Change changes[] = {[](CurveSettings& kept) { kept.BandPercent = 0.4; },
                            [](CurveSettings& kept) { kept.Points = 41; },
                            [](CurveSettings& kept) { kept.Min = 11; },
                            [](CurveSettings& kept) { kept.Max = 900; },
                            [](CurveSettings& kept) { kept.RatioCurve = true; },
                            [](CurveSettings& kept) { kept.Inverted = true; },
                            [](CurveSettings& kept) { kept.IgnoreResiduals = true; },
                            [](CurveSettings& kept) { kept.Choice = "adjusted-r2"; },
                            [](CurveSettings& kept) { kept.FitMin = 11; },
                            [](CurveSettings& kept) { kept.FitMax = 900; },
                            [](CurveSettings& kept) { kept.Only = {"Line"}; },
                            [](CurveSettings& kept) { kept.Without = {"Line"}; },
                            [](CurveSettings& kept) { kept.MaxOrder = 5; },
                            [](CurveSettings& kept) { kept.Equations = "Line\ta+b*x\r\n"; },
                            [](CurveSettings& kept) { kept.SoftwareVersion = "0.0.1"; },
                            [](CurveSettings& kept) { kept.MergeBandPercent = 0.2; },
                            [](CurveSettings& kept) { kept.KeepsOverlap = true; },
                            [](CurveSettings& kept) { kept.Spacing = "optimal"; }};
  std::size_t number = 0;
  for (const Change change : changes) {
    StoredSeries other = series;
    change(*other.settings);
    EXPECT_NE(signedContents(other), signedContents(series)) << "change " << number;
    ++number;
  }
}

// A reason that looks like the line of another point must not read as one.
TEST_F(SignOffs, no_two_contents_read_alike) {
  StoredSeries one = stored(), other = stored();
  one.excluded = {{1, 2, 3.0, 4.0, "", {"a\nexcluded\t1\t5\t6\t7\nreason\t1\tb", "", ""}}};
  other.excluded = {{1, 2, 3.0, 4.0, "", {"a", "", ""}}, {1, 5, 6.0, 7.0, "", {"b", "", ""}}};
  EXPECT_NE(signedContents(one), signedContents(other));
}

}  // namespace
}  // namespace pelmora::calibration::test
