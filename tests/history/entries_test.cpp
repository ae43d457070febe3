// Listing what the history holds and taking old entries out.
// SPDX-License-Identifier: MIT
#include "tests/history/history_fixture.h"

namespace pelmora::test {
namespace {

using namespace history;
using testing::ElementsAre;

class history_entries : public HistoryTest {
 protected:
  [[nodiscard]] Ids ids(const EntryFilter& filter = {}) const {
    Ids list;
    for (const Entry& entry : entries(curves.connection, filter)) list.push_back(entry.ID);
    return list;
  }
  void changeThrice() const {
    (void)change("import", importedRuns(1), {}, "2026-01-01T00:00:00Z");
    (void)change("fit", fittedCurve(1, 2), {}, "2026-01-02T00:00:00Z");
    (void)change("fit", fittedCurve(2, 3), {}, "2026-01-03T00:00:00Z");
  }
  // Entries 4 to 6000, of meter M1 if i, the number, is even, else of M9. columns: SeriesID,
  // SeriesName and KeptTables of i, and what follows in the statement from FROM n on.
  void addEntries(const std::string& columns) const {
    PlainSqlite(curves.path)
        .run(
            "WITH RECURSIVE n(i) AS (SELECT 4 UNION ALL SELECT i + 1 FROM n WHERE i < 6000) "
            "INSERT INTO pelmora_history_entry (ID, SerialNumber, ReCalID, MeterID, SeriesID, "
            "SeriesName, KeptTables) SELECT i, CASE WHEN i % 2 = 0 THEN 'M1' ELSE 'M9' END, 0, "
            "1, " +
            columns);
  }
};

TEST_F(history_entries, are_none_in_a_database_without_history) {
  EXPECT_TRUE(entries(curves.connection).empty());
  EXPECT_TRUE(prunable(curves.connection, {}).empty());
}

TEST_F(history_entries, stand_from_the_newest_to_the_oldest) {
  changeThrice();
  EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
}

TEST_F(history_entries, can_be_those_of_a_meter_a_calibration_a_series) {
  changeThrice();
  EXPECT_THAT(ids({"m1", "", {}}), ElementsAre(3, 2, 1));
  EXPECT_THAT(ids({"M2", "", {}}), ElementsAre());
  EXPECT_THAT(ids({"M1", "", 1}), ElementsAre(3));
  EXPECT_THAT(ids({"M1", "Rotor B", {}}), ElementsAre(2, 1));
  EXPECT_THAT(ids({"M1", "rotor a", {}}), ElementsAre(3, 1));
  EXPECT_THAT(ids({"M1", "it's", {}}), ElementsAre());
}

TEST_F(history_entries, of_a_series_count_its_rows_alone) {
  changeThrice();
  const auto ofB = entries(curves.connection, {"M1", "Rotor B", {}});
  ASSERT_EQ(ofB.size(), 2U);
  EXPECT_EQ(ofB[1].rowsOf("raw1"), 1U);
  EXPECT_EQ(ofB[1].rowsOf("curve"), 1U);
  EXPECT_EQ(ofB[1].rowsOf("CalDataPoint"), 0U);
  EXPECT_EQ(entries(curves.connection)[2].rowsOf("raw1"), 4U);
}

TEST_F(history_entries, count_their_rows_however_many_there_are) {
  constexpr std::size_t many = 60;
  for (std::size_t i = 0; i < many; ++i)
    (void)change("fit", fittedCurve(1, 1), {}, "2026-01-01T00:00:00Z");
  const auto all = entries(curves.connection);
  ASSERT_EQ(all.size(), many);
  for (const Entry& entry : all) {
    EXPECT_EQ(entry.rowsOf("curve"), 3U);
    EXPECT_EQ(findEntry(curves.connection, entry.ID)->rowsOf("curve"), 3U);
  }
}

// More than are in memory at a time, with gaps between their numbers.
TEST_F(history_entries, are_delivered_one_by_one_however_many_there_are) {
  changeThrice();
  addEntries(
      "CASE WHEN i % 5 = 0 THEN 0 ELSE 2 END, CASE WHEN i % 5 <> 0 THEN 'Rotor B' END, "
      "CASE WHEN i % 3 = 0 THEN 'curve' ELSE 'raw1' END FROM n WHERE i % 7 <> 0;"
      "INSERT INTO pelmora_history_curve (EntryID, seriesID) "
      "SELECT ID, 2 FROM pelmora_history_entry WHERE ID > 3 AND ID % 3 = 0");
  const auto isThere = [](std::int64_t id) { return id % 7 != 0; };
  std::int64_t next = 6000;
  visitEntries(curves.connection, {}, [&](const Entry& entry) {
    while (!isThere(next)) --next;
    EXPECT_EQ(entry.ID, next--);
    if (entry.ID <= 3) return;
    EXPECT_EQ(entry.rowsOf("curve"), entry.ID % 3 == 0 ? 1U : 0U);
    EXPECT_EQ(entry.Kept.Tables.front(), entry.ID % 3 == 0 ? "curve" : "raw1");
    EXPECT_EQ(entry.Kept.SeriesID, entry.ID % 5 == 0 ? 0 : 2);
  });
  EXPECT_EQ(next, 0);

  std::vector<std::int64_t> ofSeries;
  for (std::int64_t id = 6000; id > 3; --id) {
    const bool isOfCalibration = id % 5 == 0;
    if (isThere(id) && id % 2 == 0 && (!isOfCalibration || id % 3 == 0)) ofSeries.push_back(id);
  }
  ofSeries.insert(ofSeries.end(), {2, 1});
  EXPECT_EQ(ids({"M1", "Rotor B", {}}), ofSeries);
}

// Every second entry belongs to another meter, and ten of eleven to another series.
TEST_F(history_entries, are_at_most_as_many_of_the_newest_as_wanted) {
  changeThrice();
  addEntries(
      "CASE WHEN i % 11 = 0 THEN 2 ELSE 3 END, CASE WHEN i % 11 = 0 THEN 'Rotor B' END, 'raw1' "
      "FROM n");
  const auto newest = [&](std::size_t count, std::int64_t step) {
    std::vector<std::int64_t> list;
    for (std::int64_t id = 6000; list.size() < count; --id)
      if (id % step == 0) list.push_back(id);
    return list;
  };
  EXPECT_EQ(ids({"", "", {}, 1}), newest(1, 1));
  EXPECT_EQ(ids({"M1", "", {}, 2500}), newest(2500, 2));
  EXPECT_EQ(ids({"M1", "Rotor B", {}, 3}), newest(3, 22));
  EXPECT_EQ(ids({"M1", "Rotor B", {}, 260}), newest(260, 22));
  EXPECT_EQ(ids({"", "", {}, 9999}).size(), 6000U);
}

TEST_F(history_entries, that_are_old_can_be_taken_out) {
  changeThrice();
  const auto prune = [&](const Pruning& pruning) {
    for (const Entry& entry : prunable(curves.connection, pruning))
      removeEntry(curves.connection, entry.ID);
  };
  prune({"2026-01-02T00:00:00Z", 3});
  EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
  prune({"2026-01-02T00:00:00Z", 0});
  EXPECT_THAT(ids(), ElementsAre(3, 2));
  EXPECT_TRUE(rows("pelmora_history_CalDataPoint").empty());
  EXPECT_EQ(rows("pelmora_history_curve").size(), 2U);
  prune({{}, 1});
  EXPECT_THAT(ids(), ElementsAre(3));
  EXPECT_EQ(rows("pelmora_history_curve").size(), 1U);
  EXPECT_EQ(change("fit", fittedCurve(1, 1), {}), 4);
}

}  // namespace
}  // namespace pelmora::test
