// A stand's own database in place of its CSV export.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <sqlite3.h>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class stand_database : public CommandTest {
 protected:
  stand_database() {
    init();
    const auto rows = rowsOf(data("stand-dual-rotor.csv"));
    std::string sql = "BEGIN; CREATE TABLE DataPoint (";
    for (std::size_t i = 0; i < rows[0].size(); ++i)
      sql += (i == 0 ? "" : ", ") + rows[0][i] + (i == 0 ? " INTEGER" : " REAL");
    sql += ");";
    for (std::size_t r = 1; r < rows.size(); ++r) {
      sql += "INSERT INTO DataPoint VALUES (";
      for (std::size_t i = 0; i < rows[r].size(); ++i) sql += (i == 0 ? "" : ",") + rows[r][i];
      sql += ");";
    }
    execute(sql + "COMMIT");
  }
  void execute(const std::string& sql) const {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(stand.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
  }
  Arguments import() const {
    return {"import", curves,  "--meter", "M1",      "--stand",
            stand,    "--job", "1001",    "--fluid", "spirit"};
  }
  const std::string stand = scratch.file("stand.db");
};

TEST_F(stand_database, gives_the_same_points_as_its_export) {
  done(import());
  done({"import", curves, "--meter", "Export", "--stand", data("stand-dual-rotor.csv"), "--job",
        "1001", "--fluid", "spirit"});
  for (const char* series : {"Rotor A", "Rotor B", "Rotor Sum", "Ratio"}) {
    const auto raw =
        done({"show", curves, "--meter", "M1", "--series", series, "--json"}).json()["raw"];
    EXPECT_EQ(raw[0].size(), 24U);
    EXPECT_EQ(
        raw,
        done({"show", curves, "--meter", "Export", "--series", series, "--json"}).json()["raw"]);
  }
}

TEST_F(stand_database, is_only_read) {
  const std::string before = bytesOf(stand);
  done(import());
  EXPECT_EQ(bytesOf(stand), before);
}

TEST_F(stand_database, with_a_null_or_a_text_is_refused) {
  execute("UPDATE DataPoint SET V5 = NULL WHERE JobRecordID = 1001 AND V15 = 3");
  EXPECT_THAT(trouble(5, import()), AllOf(HasSubstr("point 3: V5 (viscosity) is empty"),
                                          HasSubstr("nothing was imported")));
  execute("UPDATE DataPoint SET V5 = 'thick' WHERE JobRecordID = 1001 AND V15 = 3");
  EXPECT_THAT(trouble(5, import()), HasSubstr("point 3: V5 (viscosity) is the text 'thick'"));
  EXPECT_THAT(done({"show", curves}).output, HasSubstr("No meter"));
}

TEST_F(stand_database, without_points_has_no_jobs) {
  execute("DELETE FROM DataPoint");
  EXPECT_THAT(trouble(4, import()), HasSubstr("it holds no data points"));
}

}  // namespace
}  // namespace pelmora::test
