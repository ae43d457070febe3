// Damaged curve databases: what the doctor says of them, and what it brings into a new one.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <set>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr std::size_t pageSize = 4096;
constexpr std::size_t headerSize = 100;

// Every row of a table, its id and its values, as one text.
using Rows = std::set<std::string>;
using Tables = std::map<std::string, Rows>;

class Reader {
 public:
  explicit Reader(const std::string& path) {
    EXPECT_EQ(sqlite3_open_v2(path.c_str(), &database_, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK);
  }
  ~Reader() { sqlite3_close(database_); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  [[nodiscard]] Rows rows(const std::string& sql) const {
    Rows rows;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database_);
    while (sqlite3_step(statement) == SQLITE_ROW) {
      std::string row;
      for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
        row += (i > 0 ? "|" : "") + (text == nullptr ? std::string("NULL") : std::string(text));
      }
      rows.insert(row);
    }
    sqlite3_finalize(statement);
    return rows;
  }
  [[nodiscard]] std::string text(const std::string& sql) const {
    const Rows found = rows(sql);
    return found.empty() ? "" : *found.begin();
  }
  [[nodiscard]] Tables tables() const {
    Tables all;
    for (const std::string& name :
         rows("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%'")) {
      // Numbers to the last bit.
      std::string columns = "rowid";
      for (const std::string& column : rows("SELECT name FROM pragma_table_info('" + name + "')"))
        columns += ", quote(\"" + column + "\")";
      all[name] = rows("SELECT " + columns + " FROM \"" + name + "\"");
    }
    return all;
  }

 private:
  sqlite3* database_ = nullptr;
};

class salvage : public CommandTest {
 protected:
  // A calibrated meter with a history, and enough points for trees of several levels.
  static void SetUpTestSuite() {
    folder_ = std::make_unique<ScratchFolder>();
    original_ = folder_->file("original.db");
  }
  static void TearDownTestSuite() { folder_.reset(); }
  void SetUp() override {
    if (!std::filesystem::exists(original_)) makeOriginal();
    bytes_ = bytesOf(original_);
    expected_ = Reader(original_).tables();
  }

  void makeOriginal() const {
    initCalibrated();
    done({"delete", curves, "--meter", "M1", "--series", "Ratio", "--yes"});
    std::mt19937 random(7);
    std::uniform_real_distribution<double> number(1, 5000);
    for (int meter = 1; meter <= 6; ++meter) {
      std::ostringstream points;
      for (int i = 0; i < 120; ++i) points << number(random) << "," << number(random) << "\n";
      done({"raw", curves, write("p.csv", points.str()), "--meter", "P" + std::to_string(meter),
            "--register", "--series", "S"});
    }
    std::filesystem::copy_file(curves, original_);
  }

  [[nodiscard]] static std::size_t pages() {
    return std::filesystem::file_size(original_) / pageSize;
  }
  [[nodiscard]] std::size_t rootOf(const std::string& name) const {
    return std::stoul(
        Reader(original_).text("SELECT rootpage FROM sqlite_master WHERE name = '" + name + "'"));
  }
  void fillPage(std::size_t page, char value) {
    std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>((page - 1) * pageSize), pageSize,
                value);
  }
  // Writes the damaged bytes, brings them over and holds the new database against the original.
  nlohmann::json salvaged(const std::string& what) {
    const std::string damaged = write("damaged.db", bytes_), brought = scratch.file("new.db");
    std::filesystem::remove(brought);
    const CommandResult result = run({"doctor", damaged, "--salvage", brought, "--json"});
    EXPECT_TRUE(result.exitCode == 0 || result.exitCode == 5) << what << result.error;
    if (result.output.empty()) return {};
    auto report = result.json();
    EXPECT_EQ(result.exitCode, report["whole"] == true ? 0 : 5) << what;
    const Reader reader(brought);
    EXPECT_EQ(reader.text("PRAGMA integrity_check"), "ok") << what;
    found_ = reader.tables();
    checkRows(what);
    checkCounts(report, what);
    if (result.exitCode == 0) {
      EXPECT_EQ(found_, expected_) << what;
    }
    return report;
  }
  void checkRows(const std::string& what) const {
    for (const auto& [table, rows] : found_) {
      if (table == "pelmora_salvaged_part") continue;
      for (const std::string& row : rows)
        EXPECT_TRUE(expected_.contains(table) && expected_.at(table).contains(row))
            << what << ": no such row in " << table << ": " << row;
    }
  }
  void checkCounts(const nlohmann::json& report, const std::string& what) const {
    for (const auto& table : report["tables"]) {
      const std::string name = table["table"];
      EXPECT_EQ(table["read"], found_.at(name).size()) << what << " " << name;
      if (table["lost"].is_null() || !expected_.contains(name)) continue;
      EXPECT_EQ(table["read"].get<std::size_t>() + table["lost"].get<std::size_t>(),
                expected_.at(name).size())
          << what << " " << name;
    }
  }

  std::string bytes_;
  Tables expected_, found_;

 private:
  static inline std::unique_ptr<ScratchFolder> folder_;
  static inline std::string original_;
};

TEST_F(salvage, brings_a_whole_database_over_with_its_ids_history_and_settings) {
  const auto report = salvaged("undamaged");
  EXPECT_EQ(report["whole"], true);
  EXPECT_EQ(found_, expected_);
  EXPECT_GT(found_["pelmora_history_entry"].size(), 0U);
  EXPECT_GT(found_["pelmora_fit_settings"].size(), 0U);
  done({"doctor", scratch.file("new.db")});
}

TEST_F(salvage, brings_everything_over_where_indexes_alone_are_damaged) {
  for (const char* index : {"raw1_series", "series_meter", "curve_series", "cal_data_point_setup"})
    fillPage(rootOf(index), '\xA7');
  EXPECT_EQ(salvaged("indexes")["whole"], true);
  EXPECT_EQ(found_, expected_);
}

TEST_F(salvage, brings_everything_over_where_the_header_of_the_file_is_damaged) {
  std::fill_n(bytes_.begin(), headerSize, '\0');
  (void)salvaged("header");
  EXPECT_EQ(found_, expected_);
  EXPECT_EQ(run({"doctor", scratch.file("damaged.db")}).exitCode, 5);
}

TEST_F(salvage, finds_the_tables_of_a_curve_database_without_its_first_page) {
  fillPage(1, '\0');
  (void)salvaged("first page");
  EXPECT_EQ(found_["raw1"], expected_["raw1"]);
  EXPECT_EQ(found_["curve"], expected_["curve"]);
}

TEST_F(salvage, takes_series_from_their_index_where_their_table_is_damaged) {
  fillPage(rootOf("series"), '\0');
  const auto report = salvaged("series");
  EXPECT_EQ(found_["series"], expected_["series"]);
  EXPECT_EQ(report["whole"], true);
}

TEST_F(salvage, finds_the_pages_below_a_damaged_root) {
  fillPage(rootOf("raw1"), '\0');
  const auto report = salvaged("root of raw1");
  EXPECT_EQ(found_["raw1"], expected_["raw1"]);
}

TEST_F(salvage, names_meters_that_are_lost_and_never_gives_their_ids_again) {
  fillPage(rootOf("meter"), '\0');
  const auto report = salvaged("meter");
  EXPECT_EQ(report["lostNames"].size(), expected_["meter"].size());
  EXPECT_THAT(report["lostNames"][0].get<std::string>(), HasSubstr("'M1'"));
  EXPECT_GT(report["orphanedRows"].get<int>(), 0);
  const std::string brought = scratch.file("new.db");
  done({"raw", brought, write("q.csv", "1,2\n3,4\n"), "--meter", "New", "--register", "--series",
        "S"});
  EXPECT_EQ(Reader(brought).text("SELECT ID FROM meter"), "8");
}

TEST_F(salvage, names_the_series_whose_points_are_incomplete_and_marks_them) {
  // A leaf of raw1: the first page of its kind after the root that only raw1 leads to.
  const std::size_t root = rootOf("raw1");
  const auto* page = reinterpret_cast<const unsigned char*>(bytes_.data()) + (root - 1) * pageSize;
  ASSERT_EQ(page[0], 5) << "raw1 should have several pages";
  const std::size_t cell = static_cast<std::size_t>(page[12]) << 8U | page[13];
  const std::size_t leaf = static_cast<std::size_t>(page[cell + 2]) << 8U | page[cell + 3];
  fillPage(leaf, '\x5A');
  const auto report = salvaged("leaf of raw1");
  ASSERT_FALSE(report["incompleteSeries"].empty());
  std::size_t lost = 0;
  for (const auto& series : report["incompleteSeries"])
    lost += series["parts"][0]["lost"].get<std::size_t>();
  EXPECT_EQ(lost, expected_["raw1"].size() - found_["raw1"].size());

  const std::string brought = scratch.file("new.db");
  const CommandResult later = run({"doctor", brought, "--json"});
  EXPECT_EQ(later.exitCode, 5);
  EXPECT_THAT(later.output, HasSubstr("incomplete-series"));
  const CommandResult shown = run({"doctor", scratch.file("damaged.db")});
  EXPECT_EQ(shown.exitCode, 5);
  EXPECT_THAT(shown.output, AllOf(HasSubstr("The file is damaged"), HasSubstr("Rows lost"),
                                  HasSubstr("Not whole"), HasSubstr("raw1 ")));
  EXPECT_THAT(shown.error, HasSubstr("--salvage"));
  std::istringstream lines(shown.output);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

TEST_F(salvage, never_writes_over_a_file_and_leaves_nothing_behind_where_it_fails) {
  const std::string there = write("there.db", "precious");
  EXPECT_THAT(trouble(3, {"doctor", write("d.db", bytes_), "--salvage", there}),
              HasSubstr("exists"));
  EXPECT_EQ(bytesOf(there), "precious");
  const std::string text = write("text.txt", "this never was a database");
  EXPECT_THAT(trouble(3, {"doctor", text, "--salvage", scratch.file("new.db")}),
              HasSubstr("nothing in the file"));
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(scratch.file("x")).parent_path()))
    EXPECT_THAT(entry.path().filename().string(), testing::Not(testing::StartsWith("new.db")));
}

TEST_F(salvage, is_refused_together_with_a_repair) {
  EXPECT_THAT(
      trouble(2, {"doctor", write("d.db", bytes_), "--salvage", scratch.file("n.db"), "--repair"}),
      HasSubstr("--salvage"));
}

// Damage of many kinds; salvaged() holds every result against the original.
class salvage_of_any_damage : public salvage, public testing::WithParamInterface<int> {};

TEST_P(salvage_of_any_damage, invents_no_row_and_counts_right) {
  std::mt19937 random(static_cast<unsigned>(GetParam()));
  const auto below = [&](std::size_t end) { return random() % end; };
  const auto fill = [&](std::size_t at, std::size_t size, bool isZero) {
    for (std::size_t i = at; i < std::min(at + size, bytes_.size()); ++i)
      bytes_[i] = isZero ? '\0' : static_cast<char>(random());
  };
  const auto original = bytes_;
  for (int round = 0; round < 3; ++round) {
    bytes_ = original;
    const std::size_t kind = below(8);
    const bool isZero = below(2) == 0;
    switch (kind) {
      case 0: fill(below(pages()) * pageSize, pageSize, isZero); break;
      case 1: fill(below(bytes_.size()), 64 + below(1024), isZero); break;
      case 2: bytes_.resize(pageSize + below(bytes_.size() - pageSize)); break;
      case 3: fill(0, headerSize, isZero); break;
      case 4: fill(0, pageSize, isZero); break;
      case 5: fill(32, 8, isZero); break;  // the list of free pages
      case 6: {
        const std::size_t from = below(pages()) * pageSize,
                          to = (1 + below(pages() - 1)) * pageSize;
        std::copy_n(original.begin() + static_cast<std::ptrdiff_t>(from), pageSize,
                    bytes_.begin() + static_cast<std::ptrdiff_t>(to));
        break;
      }
      default:
        for (int i = 0; i < 6; ++i) fill(below(pages()) * pageSize, pageSize, isZero);
    }
    (void)salvaged("seed " + std::to_string(GetParam()) + ", round " + std::to_string(round) +
                   ", kind " + std::to_string(kind));
  }
}

INSTANTIATE_TEST_SUITE_P(seeds, salvage_of_any_damage, testing::Range(1, 35));

}  // namespace
}  // namespace pelmora::test
