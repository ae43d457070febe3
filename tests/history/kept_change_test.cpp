// What is kept of a change, and when.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "tests/history/history_fixture.h"
#include "tests/support/earlier_settings.h"

#include <pelmora/curve_settings.h>

namespace pelmora::test {
namespace {

using history::entries;
using history::fittedCurve;
using history::KeptChange;
using history::rawPart;
using history::wholeSeries;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

class kept_change : public HistoryTest {};

TEST_F(kept_change, tells_who_changed_what_and_how_many_rows_it_replaced) {
  const auto id = change("fit", fittedCurve(1, 1), {"Delete * from curve where seriesID=1"});
  const auto list = entries(curves.connection);
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0].ID, id);
  EXPECT_EQ(list[0].Note, note("fit"));
  EXPECT_EQ(list[0].SerialNumber, "M1");
  EXPECT_EQ(list[0].ReCalID, 0);
  EXPECT_EQ(list[0].SeriesName, "Rotor A");
  EXPECT_EQ(list[0].Kept, fittedCurve(1, 1));
  EXPECT_THAT(list[0].Rows, UnorderedElementsAre(Pair("curve", 3U), Pair("merge", 3U),
                                                 Pair("DataFitResults", 1U)));
}

TEST_F(kept_change, makes_no_entry_and_no_tables_where_nothing_is_replaced) {
  EXPECT_EQ(change("raw", rawPart(1, 1, 4), {"Insert into raw4 (seriesID) VALUES (1)"}), 0);
  EXPECT_FALSE(hasTable(curves.connection, "pelmora_history_entry"));
  EXPECT_TRUE(entries(curves.connection).empty());
  EXPECT_EQ(curves.count("raw4"), 1);
}

TEST_F(kept_change, keeps_the_rows_of_before_once) {
  KeptChange kept(curves.connection, note("calibrate"));
  EXPECT_EQ(kept.keep(history::importedRuns(1)), 1);
  curves.execute("Update curve set Roshko=4 where seriesID=1");
  EXPECT_EQ(kept.keep(fittedCurve(1, 1)), 0);
  EXPECT_EQ(kept.keep(rawPart(1, 2, 3)), 0);
  EXPECT_EQ(kept.keep(fittedCurve(2, 3)), 2);
  kept.commit();
}

TEST_F(kept_change, without_commit_changes_and_keeps_nothing) {
  const auto before = everything();
  {
    KeptChange kept(curves.connection, note("delete"));
    EXPECT_GT(kept.keep(wholeSeries(1, 1)), 0);
    curves.execute("Delete * from raw1");
  }
  EXPECT_EQ(everything(), before);
  EXPECT_FALSE(hasTable(curves.connection, "pelmora_history_entry"));
}

TEST_F(kept_change, waits_for_nobody_else_who_writes) {
  const ConnectionPtr other = sqliteConnection(curves.path);
  other->open();
  const KeptChange first(curves.connection, note("fit"));
  EXPECT_EQ(failureOf([&] { KeptChange second(other, note("fit")); }).number, genericFailure);
}

TEST_F(kept_change, of_a_fit_with_settings_keeps_them_too) {
  CurveSettings settings;
  settings.BandPercent = 0.3;
  settings.Choice = "trusted";
  settings.FitMin = 20;
  settings.Only = {"Polynomial 3rd Order", "Reference curve"};
  keepCurveSettings(curves.connection, 1, settings);
  const auto before = everything();
  const auto id =
      change("fit", fittedCurve(1, 1), {"Update pelmora_fit_settings set BandPercent=0.5"});
  (void)restored(id);
  EXPECT_EQ(everything(), before);
  EXPECT_EQ(keptCurveSettings(curves.connection, 1), settings);
}

// Versions before the choice of a rule made this table without its columns.
TEST_F(kept_change, of_settings_that_an_earlier_version_stored_keeps_them_too) {
  keepEarlierSettings(curves.connection, 1, "0.3");
  const auto before = keptCurveSettings(curves.connection, 1);
  const auto id = change("fit", fittedCurve(1, 1), {"Delete * from pelmora_fit_settings"});
  CurveSettings now;
  now.Choice = "trusted";
  keepCurveSettings(curves.connection, 1, now);
  EXPECT_EQ(keptCurveSettings(curves.connection, 1), now);
  (void)restored(id);
  EXPECT_EQ(keptCurveSettings(curves.connection, 1), before);
}

}  // namespace
}  // namespace pelmora::test
