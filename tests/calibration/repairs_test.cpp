// Deletions that are shown first, the history's end, result files, and repairs.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"
#include "tests/support/plain_sqlite.h"

#include <filesystem>
#include <fstream>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Repairs : public ServiceTest {
 protected:
  Repairs() : db_(lab()), meter_(db_.registerMeter("M1")) {
    db_.storeRaw(meter_, "K", 1, smoothPoints(12));
    db_.storeRaw(meter_, "L", 1, smoothPoints(5));
  }
  void sql(const std::string& statements) const {
    pelmora::test::PlainSqlite(path()).run(statements);
  }
  [[nodiscard]] std::vector<std::string> findings() const {
    std::vector<std::string> ids;
    for (const Finding& finding : db_.examine()) ids.push_back(finding.id);
    return ids;
  }
  Database db_;
  Meter meter_;
};

TEST_F(Repairs, a_removal_shows_what_goes_and_changes_nothing) {
  const Removal removal = db_.removal(meter_, " K ");
  EXPECT_EQ(removal.rows, (std::map<std::string, std::size_t>{{"raw1", 12}, {"series", 1}}));
  EXPECT_EQ(db_.removal(meter_).rows.at("raw1"), 17U);
  EXPECT_EQ(db_.seriesOf(meter_).size(), 2U);
  EXPECT_EQ(db_.remove(removal).rows, removal.rows);
  EXPECT_THAT(db_.seriesOf(meter_), ElementsAre("L"));
}

TEST_F(Repairs, a_removal_does_not_delete_what_has_changed_since) {
  const Removal series = db_.removal(meter_, "K"), all = db_.removal(meter_);
  open(path()).storeRaw(meter_, "K", 2, smoothPoints(3));
  EXPECT_THAT(failureOf<Changed>([&] { (void)db_.remove(series); }).what(),
              HasSubstr("series 'K' of meter 'M1'"));
  (void)failureOf<Changed>([&] { (void)db_.remove(all); });
  EXPECT_EQ(db_.series(meter_, "K").rawPoints(), 15U);
  (void)db_.remove(db_.removal(meter_, "K"));
  (void)failureOf<Changed>([&] { (void)db_.remove(series); });
}

TEST_F(Repairs, what_is_pruned_is_what_was_shown) {
  for (const std::size_t count : {3U, 4U, 5U}) db_.storeRaw(meter_, "L", 1, smoothPoints(count));
  const auto old = db_.prunable({.before = {}, .keep = 1});
  ASSERT_EQ(old.size(), 2U);
  db_.storeRaw(meter_, "L", 1, smoothPoints(6));
  db_.prune(old);
  EXPECT_EQ(db_.history().size(), 2U);
  EXPECT_EQ(db_.prune({.before = {}, .keep = 0}).size(), 2U);
  EXPECT_TRUE(db_.history().empty());
}

TEST_F(Repairs, an_entry_whose_series_is_gone_cannot_be_restored) {
  db_.storeRaw(meter_, "K", 1, smoothPoints(3));
  const HistoryEntryId old = db_.history().front().id;
  (void)db_.remove(meter_, "K");
  EXPECT_THAT(failureOf<NotRestorable>([&] { (void)db_.restore(old); }).what(),
              HasSubstr("has been deleted"));
}

TEST_F(Repairs, points_of_a_result_file_replace_the_curve_and_join_the_merged_points) {
  (void)db_.store(db_.fit(meter_, "K"));
  const PointArray points = resultPoints("a\r\nb\r\nc\r\n20.5 6\r\n10.25   5\r\n", "'r.txt'");
  EXPECT_EQ(points, (PointArray{{10.25, 5}, {20.5, 6}}));
  const HistoryEntryId kept = db_.importResult(meter_, "K", points);
  EXPECT_TRUE(db_.series(meter_, "K").curve.empty());
  EXPECT_EQ(db_.series(meter_, "K").merged.size(), 14U);
  (void)db_.restore(kept);
  EXPECT_EQ(db_.series(meter_, "K").merged.size(), 12U);
}

TEST_F(Repairs, a_result_file_that_cannot_be_read_is_named_with_its_line) {
  for (const std::string text : {"", "a\r\nb\r\nc\r\n", "a\r\nb\r\nc\r\n10 5\r\n"}) {
    EXPECT_THAT(failureOf<BadData>([&] { (void)resultPoints(text, "'r.txt'"); }).what(),
                HasSubstr("'r.txt'"));
  }
  EXPECT_THAT(failureOf<BadData>([&] {
                (void)resultPoints("a\r\nb\r\nc\r\n1 2\r\n3 x\r\n", "'r.txt'");
              }).what(),
              HasSubstr("line 5"));
}

TEST_F(Repairs, orphaned_rows_go_and_come_back) {
  EXPECT_THAT(findings(), ElementsAre());
  sql("DELETE FROM series WHERE ID = 1; DROP INDEX raw1_series");
  EXPECT_THAT(findings(), ElementsAre("orphaned-rows", "missing-indexes"));
  EXPECT_TRUE(hasProblems(db_.examine()));
  {
    Change change = db_.begin("doctor");
    EXPECT_TRUE(db_.repair().after.empty());
  }
  EXPECT_EQ(findings().size(), 2U);
  const Repaired repaired = db_.repair();
  EXPECT_EQ(repaired.before.size(), 2U);
  EXPECT_TRUE(repaired.after.empty());
  EXPECT_THAT(findings(), ElementsAre());
  (void)db_.restore(db_.history().front().id);
  EXPECT_THAT(findings(), ElementsAre("orphaned-rows"));
}

TEST_F(Repairs, a_whole_file_has_no_damage_and_comes_over_as_it_is) {
  EXPECT_TRUE(damageOf(path()).empty());
  const std::string copy = scratchFile("new.db");
  EXPECT_TRUE(salvage(path(), copy).isWhole());
  EXPECT_EQ(open(copy).series(meter_, "K").raw, db_.series(meter_, "K").raw);
  (void)failureOf<Exists>([&] { (void)salvage(path(), copy); });
}

TEST_F(Repairs, a_file_that_never_was_a_database_is_unusable) {
  const std::string file = scratchFile("words.txt");
  std::ofstream(file) << "hello, world\n";
  (void)failureOf<Unusable>([&] { (void)damageOf(file); });
  (void)failureOf<Unusable>([&] { (void)salvage(file); });
  (void)failureOf<NotFound>([&] { (void)damageOf(scratchFile("none")); });
}

TEST_F(Repairs, an_examination_ends_when_it_is_asked_to) {
  sql("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000) "
      "INSERT INTO raw1 SELECT 1, i, i FROM n");
  bool isStopRequested = false;
  OpenOptions options;
  options.patience.stopRequested = [&] { return isStopRequested; };
  Database db(path(), options);
  EXPECT_FALSE(hasProblems(db.examine()));
  isStopRequested = true;
  (void)failureOf<Cancelled>([&] { (void)db.examine(); });
  (void)failureOf<Cancelled>([&] { (void)damageOf(path(), options.patience); });
}

TEST_F(Repairs, a_salvage_that_is_ended_leaves_nothing_behind) {
  const std::string there = scratchFile("salvaged.db");
  int pages = 0;
  Patience patience;
  patience.stopRequested = [&] { return ++pages > 20; };
  (void)failureOf<Cancelled>([&] { (void)salvage(path(), there, patience); });
  EXPECT_FALSE(std::filesystem::exists(there));
  EXPECT_TRUE(salvage(path(), there).isWhole());
}

}  // namespace
}  // namespace pelmora::calibration::test
