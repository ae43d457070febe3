// Copies of curve databases. In the run on a server the target is there, the source a file.
// SPDX-License-Identifier: MIT
#include "store/curve_schema.h"
#include "store/reading.h"
#include "tests/calibration/service_fixture.h"
#include "tests/support/plain_sqlite.h"

#include <pelmora/calibration/copy.h>
#include <pelmora/own_tables.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::calibration::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Copies : public ServiceTest {
 protected:
  void SetUp() override {
    ServiceTest::SetUp();
    if (!IsSkipped()) fillSource();
  }

  // Two meters with runs, curves, an excluded point, and a curve that has been replaced.
  void fillSource() const {
    Database from = create(source());
    const Meter meter = from.registerMeter("M1");
    from.importRuns(meter, Stand(exampleData("stand-dual-rotor.csv")),
                    {{"1001", "Mineral spirit", "Ada"}, {"1002", "Glycol mix", "Ada"}});
    from.store(from.fit(meter, "Rotor A"));
    (void)from.exclude(meter, "Rotor A", {.part = 1, .numbers = {3}}, "air");
    from.store(from.fit(meter, "Rotor A"));
    const Meter other = from.registerMeter("M2");
    from.storeRaw(other, "K", 1, smoothPoints(12));
    from.storeRaw(other, "L", 2, smoothPoints(7, 20, 500));
    from.store(from.fit(other, "K"));
  }
  [[nodiscard]] std::string source() const { return scratchFile("from.db"); }
  void sql(const std::string& statements) const {
    pelmora::test::PlainSqlite(source()).run(statements);
  }
  // A server's curve database is made first, with its roles.
  void makeTarget() const {
    if (pelmora::test::isRunOnServer()) (void)create(path());
  }
  ProofSheet copy(const CopyOptions& options = {}, const Observer& observer = {}) const {
    return copyCurves(source(), path(), options, observer);
  }
  static std::vector<std::vector<Value>> rowsOf(const std::string& location,
                                                const SchemaTable& table) {
    const ConnectionPtr curves = openDatabase(location);
    std::vector<std::vector<Value>> all;
    if (isOwnTableName(table.Name) && !hasTable(curves, table.Name)) return all;
    for (const auto rows = readRows(*curves, "Select * from " + table.Name); !rows->atEnd();
         rows->moveNext()) {
      all.emplace_back();
      for (const OwnColumn& column : table.Columns) all.back().push_back(rows->value(column.Name));
    }
    return all;
  }
  // The rows of each owner in their order; copies in portions have the owners one after the other.
  static std::vector<std::vector<Value>> byOwner(std::vector<std::vector<Value>> rows) {
    std::ranges::stable_sort(rows, {}, [](const auto& row) { return row.front(); });
    return rows;
  }
  void expectWhole() const {
    for (const auto* tables : {&curveTables(), &ownTables()}) {
      for (const SchemaTable& table : *tables)
        EXPECT_EQ(byOwner(rowsOf(path(), table)), byOwner(rowsOf(source(), table))) << table.Name;
    }
  }
  // How two copies to one target end that begin at the same time.
  [[nodiscard]] std::vector<std::string> endsOfTwo(CopyOptions options) const {
    (void)create(path());
    options.open.patience = {.limit = std::chrono::minutes(1), .goesOn = {}};
    const auto attempt = [&] {
      try {
        return std::string(copy(options).isComplete() ? "complete" : "not complete");
      } catch (const Failure& failure) {
        return std::string(failure.what());
      }
    };
    auto other = std::async(std::launch::async, attempt);
    const std::string own = attempt();
    return {own, other.get()};
  }
  static std::string gaps(const ProofSheet& sheet) {
    std::string text;
    for (const ProofGap& gap : sheet.missing)
      text += gap.table + ", " + gap.place + ": " + gap.reason + "\n";
    return text;
  }
};

TEST_F(Copies, of_a_whole_database_keep_every_row_its_id_and_the_history) {
  makeTarget();
  const ProofSheet sheet = copy();
  EXPECT_TRUE(sheet.isComplete()) << gaps(sheet);
  std::map<std::string, ProofTable> tables;
  for (const ProofTable& table : sheet.tables) tables[table.name] = table;
  EXPECT_EQ(tables["raw1"].written, rowsOf(source(), schemaTable("raw1")).size());
  EXPECT_EQ(tables["meter"].expected, 2U);
  EXPECT_NE(tables["curve"].checksumWritten, 0U);
  expectWhole();
  EXPECT_THAT(rowsOf(path(), schemaTable(historyEntryTable)), testing::Not(IsEmpty()));
  // It works on: the next id is a new one.
  Database to = open(path());
  const Meter meter = to.registerMeter("M3");
  EXPECT_GT(to.storeRaw(meter, "K", 1, smoothPoints(5)).seriesID, 0);
  EXPECT_EQ(to.series(to.meter("M2"), "K").raw, open(source()).series(to.meter("M2"), "K").raw);
}

TEST_F(Copies, of_a_whole_database_need_an_empty_one) {
  (void)lab().registerMeter("own");
  EXPECT_THAT(failureOf<Exists>([&] { (void)copy(); }).what(), HasSubstr("already holds rows"));
  EXPECT_EQ(lab().meters().size(), 1U);
}

TEST_F(Copies, with_new_ids_join_what_is_there) {
  Database to = lab();
  const Meter own = to.registerMeter("own");
  to.storeRaw(own, "K", 1, smoothPoints(9));
  to.importRuns(own, Stand(exampleData("stand-dual-rotor.csv")),
                {{"1001", "mineral SPIRIT", "Ada"}});
  const StoredSeries before = to.series(own, "K");
  const ProofSheet sheet = copy({.newIds = true});
  EXPECT_TRUE(sheet.isComplete()) << gaps(sheet);
  const Database from = open(source());
  const std::vector<std::pair<std::string, std::string>> series{
      {"M1", "Rotor A"}, {"M1", "Ratio"}, {"M2", "K"}, {"M2", "L"}};
  for (const auto& [serial, name] : series) {
    const StoredSeries copied = to.series(to.meter(serial), name);
    const StoredSeries original = from.series(from.meter(serial), name);
    EXPECT_EQ(copied.raw, original.raw) << name;
    EXPECT_EQ(copied.merged, original.merged) << name;
    EXPECT_EQ(copied.curve, original.curve) << name;
    EXPECT_EQ(copied.report, original.report) << name;
    EXPECT_EQ(to.curveAge(copied), from.curveAge(original)) << name;
  }
  EXPECT_EQ(to.points(to.meter("M1"), "Rotor A").size(),
            from.points(from.meter("M1"), "Rotor A").size());
  EXPECT_EQ(to.runs(to.meter("M1")).size(), 2U);
  EXPECT_EQ(to.runs(to.meter("M1")).front().fluid, "mineral SPIRIT");
  EXPECT_EQ(rowsOf(path(), schemaTable("Fluids")).size(), 2U);
  EXPECT_EQ(to.series(own, "K").raw, before.raw);
}

TEST_F(Copies, of_a_meter_take_no_other_one_along) {
  makeTarget();
  const ProofSheet sheet = copy({.meters = {"M2"}});
  EXPECT_TRUE(sheet.isComplete()) << gaps(sheet);
  const Database to = open(path()), from = open(source());
  EXPECT_THAT(to.serials(), ElementsAre("M2"));
  EXPECT_EQ(to.seriesID(to.meter("M2"), "K"), from.seriesID(from.meter("M2"), "K"));
  EXPECT_THAT(rowsOf(path(), schemaTable("Fluids")), IsEmpty());
  // The other one follows, with its own ids too.
  EXPECT_TRUE(copy({.meters = {"M1"}}).isComplete());
  EXPECT_THAT(to.serials(), ElementsAre("M1", "M2"));
}

TEST_F(Copies, take_no_place_of_another_row) {
  (void)lab().registerMeter("own");
  EXPECT_THAT(failureOf<Exists>([&] { (void)copy({.meters = {"M1"}}); }).what(),
              HasSubstr("the ID 1 is taken"));
  (void)copy({.meters = {"M1"}, .newIds = true});
  EXPECT_THAT(failureOf<Exists>([&] { (void)copy({.meters = {"M1"}, .newIds = true}); }).what(),
              HasSubstr("already has meter 'M1', calibration 0"));
  (void)failureOf<NotFound>([&] { (void)copy({.meters = {"M9"}}); });
  EXPECT_THAT(lab().serials(), ElementsAre("M1", "own"));
}

TEST_F(Copies, in_portions_go_on_where_they_were_interrupted) {
  makeTarget();
  ProofSheet sheet;
  int interrupted = 0;
  for (int most = 40; sheet.tables.empty(); most += 25) {
    std::stop_source stop;
    int steps = 0;
    Observer observer;
    observer.status = [&](const std::string&) {
      if (++steps == most) stop.request_stop();
    };
    observer.stop = stop.get_token();
    try {
      sheet = copy({.portion = 1}, observer);
    } catch (const Cancelled&) {
      ++interrupted;
    }
  }
  EXPECT_GT(interrupted, 1);
  EXPECT_TRUE(sheet.isComplete()) << gaps(sheet);
  EXPECT_GT(sheet.tables.front().written, 0U);
  expectWhole();
}

TEST_F(Copies, in_portions_have_the_checksums_of_a_whole_one) {
  makeTarget();
  const auto checksums = [](const ProofSheet& sheet) {
    std::map<std::string, std::pair<std::uint64_t, std::uint64_t>> all;
    for (const ProofTable& table : sheet.tables)
      all[table.name] = {table.checksumRead, table.checksumWritten};
    return all;
  };
  const auto inPortions = checksums(copy({.portion = 2}));
  EXPECT_EQ(inPortions, checksums(copyCurves(source(), scratchFile("whole.db"), {})));
}

TEST_F(Copies, that_were_interrupted_are_not_mixed_with_others) {
  makeTarget();
  std::stop_source stop;
  Observer observer;
  observer.status = [&](const std::string& step) {
    if (step == "Copying table DataFitResults") stop.request_stop();
  };
  observer.stop = stop.get_token();
  (void)failureOf<Cancelled>([&] { (void)copy({.portion = 1}, observer); });
  EXPECT_THAT(failureOf<Exists>([&] { (void)copy(); }).what(), HasSubstr("has not ended"));
  const std::string other = scratchFile("other.db");
  (void)create(other);
  EXPECT_THAT(failureOf<Exists>([&] { (void)copyCurves(other, path(), {.portion = 1}); }).what(),
              HasSubstr("has not ended"));
}

// The one that comes later waits, and finds the rows of the other.
TEST_F(Copies, that_come_at_the_same_time_are_not_mixed) {
  EXPECT_THAT(endsOfTwo({}),
              testing::UnorderedElementsAre("complete", HasSubstr("already holds rows")));
  expectWhole();
}

// On a server the other one has its turn between two portions, and goes on with the copy.
TEST_F(Copies, in_portions_that_come_at_the_same_time_are_not_mixed) {
  EXPECT_THAT(endsOfTwo({.portion = 1}),
              testing::UnorderedElementsAre(
                  "complete", testing::AnyOf(HasSubstr("already holds rows"),
                                             HasSubstr("another program has continued the copy"))));
  expectWhole();
}

TEST_F(Copies, list_what_cannot_be_stored) {
  makeTarget();
  sql("UPDATE raw1 SET Roshko = 'word' WHERE rowid = (SELECT min(rowid) FROM raw1);"
      "UPDATE raw1 SET Strouhal = -9e999 WHERE rowid = (SELECT min(rowid) + 1 FROM raw1)");
  const ProofSheet sheet = copy();
  EXPECT_FALSE(sheet.isComplete());
  EXPECT_EQ(gaps(sheet),
            "raw1, row 1 of those read, column Roshko: 'word' cannot be stored there\n"
            "raw1, row 2 of those read, column Strouhal: '-inf' cannot be stored there\n");
}

TEST_F(Copies, with_new_ids_say_how_many_rows_belong_to_nothing) {
  makeTarget();
  sql("INSERT INTO series (name, meterid) VALUES ('lost', 99)");
  const ProofSheet sheet = copy({.newIds = true});
  EXPECT_FALSE(sheet.isComplete());
  EXPECT_EQ(gaps(sheet), "series, : 1 row belongs to no row that is copied\n");
}

TEST_F(Copies, have_two_places) {
  (void)failureOf<BadData>([&] { (void)copyCurves(source(), source()); });
  (void)failureOf<BadData>([&] { (void)copy({.newIds = true, .portion = 5}); });
  (void)failureOf<NotFound>([&] { (void)copyCurves(scratchFile("none.db"), path()); });
}

}  // namespace
}  // namespace pelmora::calibration::test
