// What the component asks of ADO: statements, properties, the order of calls, and what becomes of
// errors. SPDX-License-Identifier: MIT
#include "tests/bindings/com/ado_double.h"
#include "tests/bindings/com/component.h"

#include "adapters/ado/ado_connection.h"
#include "base/run_time_error.h"

#include <pelmora/database.h>
#include <pelmora/own_tables.h>

#include <algorithm>
#include <iterator>

namespace pelmora::test {
namespace {

using Lines = std::vector<std::string>;

class ado : public ComponentTest {
 protected:
  ado() {
    journal.database = newDatabase();
    connection = new AdoDoubleConnection(journal);
    connection->openAt(journal.database);
    passed = connection;
  }
  ~ado() override { connection->Release(); }

  void registerMeter() {
    useDatabase();
    LONG id = 0;
    check(data->setMeterSN(meter, nullptr, &id), "setMeterSN");
  }
  // Past ADO.
  void useDatabase() {
    ::DatabaseLocation location{};
    check(data->dbDirSetByString(Text(journal.database), &location), "dbDirSetByString");
  }
  void useAccessName(const char* path) {
    ::DatabaseLocation location{};
    check(data->dbDirSetByString(Text(path), &location), "dbDirSetByString");
  }

  AdoJournal journal;
  AdoClasses classes{journal};
  AdoDoubleConnection* connection = nullptr;
  IDispatch* passed = nullptr;
  Text meter{"M1"}, series{"Rotor A"};
  VARIANT_BOOL no = VARIANT_FALSE, answer = VARIANT_FALSE;
};

TEST_F(ado, gets_the_statements_of_a_look_up_word_for_word) {
  registerMeter();
  ::MeterInfo info{};
  EXPECT_EQ(data->FindLastCalID(meter, &passed, &info), S_OK);
  EXPECT_EQ(info.Source, 1);
  EXPECT_EQ(journal.lines, (Lines{"Recordset.Open SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted "
                                  "from meter where serialnumber='M1' "
                                  "ORDER BY ReCalID DESC | 0 3",
                                  "Recordset.Close"}));
  EXPECT_TRUE(connection->connection()->isOpen());
}

TEST_F(ado, is_made_by_the_component_for_an_access_location) {
  registerMeter();
  useAccessName("c:\\nowhere\\Pelmora.mdb");
  ::MeterInfo info{};
  EXPECT_EQ(data->FindLastCalID(meter, nullptr, &info), S_OK);
  EXPECT_EQ(info.Source, 1);
  ASSERT_EQ(journal.lines.size(), 6U);
  EXPECT_EQ(journal.lines[0], "Connection.CursorLocation=3");
  EXPECT_EQ(journal.lines[1],
            "Connection.ConnectionString=Provider=Microsoft.Jet.OLEDB.4.0;Data "
            "Source='c:\\nowhere\\Pelmora.mdb';"
            "Persist Security Info=False;User ID=Admin");
  EXPECT_EQ(journal.lines[2], "Connection.Open    -1");
  EXPECT_EQ(journal.lines[5], "Connection.Close");
}

TEST_F(ado, takes_raw_points_in_one_batch) {
  registerMeter();
  useAccessName("c:\\nowhere\\curves");
  SAFEARRAY* table = arrayOf({{1, 10.5}, {2, 20.5}});
  short dataSet = 0;
  EXPECT_EQ(data->SetRaw(series, meter, &table, &dataSet, &no, nullptr, &answer), S_OK);
  SafeArrayDestroy(table);
  EXPECT_EQ(answer, VARIANT_TRUE);
  const auto opened = std::ranges::find_if(
      journal.lines, [](const std::string& line) { return line.ends_with("| 2 4"); });
  ASSERT_NE(opened, journal.lines.end());
  EXPECT_EQ(*opened, "Recordset.Open Select * from raw1 where seriesID=1 | 2 4");
  const Lines written(opened + 1, journal.lines.end());
  ASSERT_GE(written.size(), 11U);
  EXPECT_EQ(Lines(written.begin(), written.begin() + 11),
            (Lines{"Recordset.AddNew", "Field.seriesID=1", "Field.Roshko=1", "Field.Strouhal=10.5",
                   "Recordset.Update", "Recordset.AddNew", "Field.seriesID=1", "Field.Roshko=2",
                   "Field.Strouhal=20.5", "Recordset.Update", "Recordset.UpdateBatch"}));
  EXPECT_EQ(journal.lines.back(), "Connection.Close");
}

TEST_F(ado, shows_its_errors_with_their_descriptions) {
  registerMeter();
  journal.failures.push_back({"Recordset.Open", 0, static_cast<SCODE>(0x80040E14),
                              "Microsoft JET Database Engine", "Syntax error in FROM clause."});
  BoxAnswerer boxes;
  ::MeterInfo info{};
  EXPECT_EQ(data->FindLastCalID(meter, &passed, &info), S_OK);
  EXPECT_EQ(info.Source, -1);
  EXPECT_EQ(boxes.lastText(), "Error in RawData:LastCalID\r\nSyntax error in FROM clause.");
  EXPECT_TRUE(connection->connection()->isOpen());
}

// An earlier call's error, a warning and the failure itself are in the list.
TEST_F(ado, is_asked_for_what_a_failed_call_does_not_tell) {
  for (const AdoTells tells : {AdoTells::number, AdoTells::nothing}) {
    registerMeter();
    journal.errors = {{0, "Provider", "Changed database context."}};
    if (tells == AdoTells::number)
      journal.errors.push_back({static_cast<SCODE>(0x80040E37), "Provider", "an earlier error"});
    journal.failures = {{"Recordset.Open", 0, static_cast<SCODE>(0x80040E14),
                         "Microsoft JET Database Engine", "Syntax error in FROM clause.", 1,
                         tells}};
    BoxAnswerer boxes;
    ::MeterInfo info{};
    EXPECT_EQ(data->FindLastCalID(meter, &passed, &info), S_OK);
    EXPECT_EQ(boxes.lastText(), "Error in RawData:LastCalID\r\nSyntax error in FROM clause.");
  }
}

TEST_F(ado, whose_errors_are_of_an_earlier_call_names_the_member_that_failed) {
  registerMeter();
  journal.failures = {
      {"Recordset.Open", 0, static_cast<SCODE>(0x80040E14), "", "", 1, AdoTells::number}};
  journal.errors = {{static_cast<SCODE>(0x80040E37), "Provider", "an earlier error"}};
  BoxAnswerer boxes;
  ::MeterInfo info{};
  EXPECT_EQ(data->FindLastCalID(meter, &passed, &info), S_OK);
  EXPECT_EQ(boxes.lastText(),
            "Error in RawData:LastCalID\r\nThe database connection failed in 'Open'");
}

TEST_F(ado, holds_changes_together) {
  const ConnectionPtr curves = adoConnection(passed);
  const auto meters = [&] {
    return curves
        ->openRecordset("Select * from meter", CursorType::forwardOnly, LockType::optimistic)
        ->recordCount();
  };
  const std::string insert = "INSERT INTO meter (serialnumber) VALUES ('M2')";
  {
    const Transaction undone(curves);
    curves->execute(insert);
    EXPECT_THROW(Transaction second(curves), Error);
  }
  EXPECT_EQ(meters(), 0);
  Transaction kept(curves);
  curves->execute(insert);
  kept.commit();
  EXPECT_EQ(meters(), 1);
  Lines told;
  std::ranges::copy_if(journal.lines, std::back_inserter(told),
                       [](const std::string& line) { return line.starts_with("Connection."); });
  EXPECT_EQ(told, (Lines{"Connection.BeginTrans", "Connection.Execute " + insert,
                         "Connection.RollbackTrans", "Connection.BeginTrans",
                         "Connection.Execute " + insert, "Connection.CommitTrans"}));
}

TEST_F(ado, that_refuses_a_commit_is_told_to_undo) {
  const ConnectionPtr curves = adoConnection(passed);
  journal.failures = {{"Connection.CommitTrans", 0, static_cast<SCODE>(0x80004005),
                       "Microsoft JET Database Engine", "currently locked", 1, AdoTells::nothing}};
  {
    Transaction refused(curves);
    try {
      refused.commit();
      ADD_FAILURE() << "the commit went through";
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), genericFailure);
      EXPECT_STREQ(error.what(), "currently locked");
    }
  }
  EXPECT_EQ(journal.lines.back(), "Connection.RollbackTrans");
}

TEST_F(ado, that_cannot_open_a_file_says_so) {
  useAccessName("c:\\nowhere\\Pelmora.mdb");
  journal.failures.push_back({"Connection.Open", 0, static_cast<SCODE>(0x80004005),
                              "Microsoft JET Database Engine",
                              "Could not find file 'c:\\nowhere\\Pelmora.mdb'."});
  BoxAnswerer boxes;
  ::MeterInfo info{};
  EXPECT_EQ(data->FindLastCalID(meter, nullptr, &info), S_OK);
  EXPECT_EQ(boxes.lastText(),
            "Error in RawData:LastCalID\r\nCould not find file 'c:\\nowhere\\Pelmora.mdb'.");
}

class ado_stand : public ado {
 protected:
  ado_stand() {
    registerMeter();
    stand_ = new AdoDoubleConnection(standJournal);
    const std::string path = newDatabase("stand.db");
    stand_->openAt(path);
    // A stand's own table: the job and its 37 values.
    stand = stand_;
  }
  ~ado_stand() override { stand_->Release(); }
  bool copy() {
    LONG setup = 1;
    check(data->copyCaldb(&setup, Text("7"), Text("8"), &stand, &passed, &answer), "copyCaldb");
    return answer != VARIANT_FALSE;
  }
  [[nodiscard]] auto inserts() const {
    return std::ranges::count_if(standJournal.lines, [](const std::string& line) {
      return line.starts_with("Connection.Execute INSERT");
    });
  }

  AdoJournal standJournal;
  IDispatch* stand = nullptr;

 private:
  AdoDoubleConnection* stand_ = nullptr;
};

// The statement is not for the double to run: it only has to arrive.
TEST_F(ado_stand, waits_and_tries_again_while_the_database_is_locked) {
  const AdoFailure locked{"Connection.Execute INSERT", 0, static_cast<SCODE>(0x80004005),
                          "Microsoft JET Database Engine", "Could not update; currently locked."};
  AdoFailure lockedUntold = locked;
  lockedUntold.tells = AdoTells::nothing;
  standJournal.failures = {locked, lockedUntold};
  standJournal.failures.push_back({"Connection.Execute INSERT", 0, static_cast<SCODE>(0x80040E37),
                                   "Microsoft JET Database Engine", "no such table"});
  BoxAnswerer boxes;
  EXPECT_FALSE(copy());
  EXPECT_EQ(inserts(), 3);
  EXPECT_NE(boxes.lastText().find("no such table"), std::string::npos);
}

TEST_F(ado_stand, does_not_wait_on_other_errors) {
  standJournal.failures.push_back({"Connection.Execute INSERT", 0, static_cast<SCODE>(0x80040E37),
                                   "Microsoft JET Database Engine", "no such table"});
  BoxAnswerer boxes;
  EXPECT_FALSE(copy());
  EXPECT_EQ(inserts(), 1);
}

TEST_F(ado_stand, gets_the_copy_word_for_word_and_is_closed) {
  standJournal.swallowed = "INSERT";
  EXPECT_TRUE(copy());
  ASSERT_FALSE(journal.lines.empty());
  EXPECT_EQ(journal.lines.front(),
            "Connection.Execute Delete * from CalDataPoint where CalDataPoint.calsetupid=1");
  ASSERT_EQ(standJournal.lines.size(), 3U);
  std::string columns = "JobRecordID";
  for (int i = 1; i <= 37; ++i) columns += ", V" + std::to_string(i);
  EXPECT_EQ(standJournal.lines.front(),
            "Connection.Execute INSERT INTO CalDataPoint ( CalSetupID, " + columns + " ) IN '" +
                journal.database + "'SELECT 1 as CalSetupID, " + columns +
                " FROM DataPoint WHERE (((JobRecordID)=7));");
  EXPECT_EQ(standJournal.lines[1],
            "Connection.Execute INSERT INTO CalDataPoint IN '" + journal.database +
                "' 1, (Select * from DataPoint Where ((DataPoint.JobRecordID=8)));");
  EXPECT_EQ(standJournal.lines[2], "Connection.Close");
}

}  // namespace
}  // namespace pelmora::test
