// A whole curve database from an Access file.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/support/plain_database.h"

#include <sys/stat.h>

#include <algorithm>
#include <map>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class import_access_command : public CommandTest {
 protected:
  // A file is made by the command; on a server, the tables are there before.
  import_access_command() {
    if (isRunOnServer()) init();
  }
  void expectNothingStored() const {
    if (isRunOnServer()) {
      EXPECT_EQ(PlainDatabase(curves).count("meter"), 0);
    } else {
      EXPECT_FALSE(std::filesystem::exists(curves));
    }
  }
  static std::string accessFile(const std::string& name) {
    return data("../../tests/data/access/" + name);
  }
  // A copy of the file in which the first page with rows of raw1 is zeros. Such a page begins with
  // the bytes 1, 1 and names the page that defines its table: for raw1, page 60.
  [[nodiscard]] std::string damagedFile() const {
    std::string bytes = bytesOf(accessFile("curves.mdb"));
    for (std::size_t at = 0; at < bytes.size(); at += 4096) {
      if (bytes.compare(at, 2, "\x01\x01") != 0) continue;
      if (bytes.compare(at + 4, 4, std::string("\x3C\0\0\0", 4)) != 0) continue;
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), 4096, '\0');
      return write("damaged.mdb", bytes);
    }
    ADD_FAILURE() << "no such page";
    return "";
  }
  [[nodiscard]] std::map<std::string, std::uint64_t> counts(const nlohmann::json& sheet,
                                                            const char* member) const {
    std::map<std::string, std::uint64_t> rows;
    for (const auto& table : sheet["tables"]) rows[table["table"]] = table[member];
    return rows;
  }
};

TEST_F(import_access_command, proves_that_every_row_of_the_file_was_written) {
  const auto sheet = done({"import-access", accessFile("curves.mdb"), curves, "--json"}).json();
  EXPECT_TRUE(sheet["complete"]);
  EXPECT_TRUE(sheet["missing"].empty());
  // The rows of the CSV files beside it, which come from the same run of the generator.
  const std::map<std::string, std::uint64_t> rows{
      {"meter", 5},          {"masterMeterList", 1}, {"series", 4},
      {"raw1", 173},         {"raw2", 173},          {"raw3", 0},
      {"raw4", 0},           {"merge", 45},          {"curve", 21},
      {"DataFitResults", 1}, {"Fluids", 2},          {"Operator", 3},
      {"CalSetup", 4},       {"CalDataPoint", 83}};
  for (const char* count : {"expected", "read", "written"})
    EXPECT_EQ(counts(sheet, count), rows) << count;
  for (const auto& table : sheet["tables"])
    EXPECT_EQ(table["checksumRead"], table["checksumWritten"]) << table["table"];
}

TEST_F(import_access_command, keeps_ids_and_numbers_as_the_file_has_them) {
  done({"import-access", accessFile("curves.mdb"), curves});
  // Prints a note: the merged points in the file do not come from the parts of this series.
  const auto shown =
      run({"show", curves, "--meter", "TF-10021", "--series", "TF-10021 recal 2", "--json"}).json();
  EXPECT_EQ(shown["seriesId"], 2);
  std::vector<std::vector<double>> written;
  const auto rows = rowsOf(accessFile("curves.raw1.csv"));
  for (const auto& row : rows) {
    if (row[0] == "2") written.push_back({std::stod(row[1]), std::stod(row[2])});
  }
  ASSERT_EQ(written.size(), 45U);
  EXPECT_EQ(shown["raw"][0].get<std::vector<std::vector<double>>>(), written);
}

TEST_F(import_access_command, prints_a_proof_sheet_for_people) {
  const std::string text = done({"import-access", accessFile("curves.mdb"), curves}).output;
  EXPECT_THAT(text, HasSubstr("raw1                  173   173      173"));
  EXPECT_THAT(text, HasSubstr("Nothing is missing."));
}

TEST_F(import_access_command, copies_the_rest_of_a_damaged_file_and_ends_with_5) {
  const std::string file = damagedFile();
  const CommandResult result = run({"import-access", file, curves, "--json"});
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_THAT(result.error, HasSubstr("not everything in '" + file + "' was copied"));
  const auto sheet = result.json();
  EXPECT_FALSE(sheet["complete"]);
  auto written = counts(sheet, "written");
  EXPECT_LT(written["raw1"], 173U);
  EXPECT_EQ(written["raw2"], 173U);
  EXPECT_EQ(counts(sheet, "expected")["raw1"], 173U);
  ASSERT_FALSE(sheet["missing"].empty());
  for (const auto& gap : sheet["missing"]) {
    EXPECT_EQ(gap["table"], "raw1");
    EXPECT_NE(gap["reason"], "");
  }
}

TEST_F(import_access_command, shows_what_a_file_without_a_curve_database_holds) {
  const CommandResult result = run({"import-access", accessFile("stand.mdb"), curves});
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_THAT(result.output, AllOf(HasSubstr("Not part of a curve database"),
                                   HasSubstr("DataPoint        97    97")));
}

TEST_F(import_access_command, leaves_nothing_behind_if_it_cannot_read_the_file) {
  EXPECT_THAT(trouble(5, {"import-access", accessFile("stand.mdb"), curves}),
              HasSubstr("does not contain a curve database"));
  EXPECT_THAT(trouble(5, {"import-access", write("text.mdb", "no database"), curves}),
              HasSubstr("Unrecognized database format"));
  EXPECT_THAT(trouble(3, {"import-access", scratch.file("missing.mdb"), curves}),
              HasSubstr("Could not find file"));
  expectNothingStored();
}

TEST_F(import_access_command, says_that_a_path_names_a_folder_or_a_pipe) {
  const std::string pipe = scratch.file("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_THAT(trouble(3, {"import-access", scratch.path().string(), curves}),
              HasSubstr("it is a folder. Name the file inside it"));
  for (const std::string& path : {pipe, std::string("/dev/zero")}) {
    EXPECT_THAT(trouble(3, {"import-access", path, curves}),
                HasSubstr("Could not open '" + path + "': it is not a regular file."));
  }
  expectNothingStored();
}

TEST_F(import_access_command, does_not_mix_two_databases) {
  done({"import-access", accessFile("curves.mdb"), curves});
  const std::string before = PlainDatabase(curves).contents();
  EXPECT_THAT(trouble(3, {"import-access", accessFile("curves.mdb"), curves}),
              HasSubstr("already holds rows"));
  EXPECT_EQ(PlainDatabase(curves).contents(), before);
}

TEST_F(import_access_command, access_file_is_a_curve_database_to_read) {
  const std::string file = accessFile("curves.mdb");
  done({"import-access", file, curves});
  const Arguments series{"--meter", "TF-10021", "--series", "TF-10021 recal 2", "--json"};
  for (const char* command : {"show", "points", "export"}) {
    auto of = [&](const std::string& database) {
      Arguments arguments{command, database};
      arguments.insert(arguments.end(), series.begin(), series.end());
      auto json = run(arguments).json();
      json.erase("database");
      return json;
    };
    EXPECT_EQ(of(file), of(curves)) << command;
  }
  EXPECT_EQ(done({"show", file, "--json"}).json()["meters"],
            done({"show", curves, "--json"}).json()["meters"]);
}

TEST_F(import_access_command, change_of_an_access_file_is_refused_with_what_to_do) {
  const std::string bytes = bytesOf(accessFile("curves.mdb"));
  const std::string file = write("old.mdb", bytes);
  const Arguments series{"--meter", "TF-10021", "--series", "TF-10021 recal 2"};
  for (const char* command : {"fit", "delete"}) {
    Arguments arguments{command, file};
    arguments.insert(arguments.end(), series.begin(), series.end());
    if (command == std::string("delete")) arguments.emplace_back("--yes");
    EXPECT_THAT(trouble(3, arguments), AllOf(HasSubstr("An Access file can only be read here"),
                                             HasSubstr("'pelmora import-access'")))
        << command;
  }
  EXPECT_EQ(bytesOf(file), bytes);
}

TEST_F(import_access_command, damaged_access_file_is_refused_as_a_database) {
  const std::string file = damagedFile();
  EXPECT_THAT(trouble(3, {"show", file}),
              AllOf(HasSubstr("is damaged: table raw1"), HasSubstr("Repair it in Access")));
  EXPECT_THAT(trouble(3, {"doctor", file}), HasSubstr("'pelmora import-access'"));
}

TEST_F(import_access_command, runs_come_from_an_access_stand) {
  if (!isRunOnServer()) init();
  const auto imported = done({"import", curves, "--meter", "M1", "--stand", accessFile("stand.mdb"),
                              "--job", "1043", "--fluid", "spirit", "--json"})
                            .json();
  EXPECT_EQ(imported["series"][0]["rawPoints"], nlohmann::json({40, 0, 0, 0}));
}

}  // namespace
}  // namespace pelmora::test
