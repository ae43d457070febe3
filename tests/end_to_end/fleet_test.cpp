// Workers of a fleet that are killed or frozen: every series is refitted exactly once.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"
#include "tests/end_to_end/running_command.h"
#include "tests/support/postgres_server.h"

#include <sqlite3.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::test {
namespace {

enum class Engine { file, server };

std::string nameOf(const testing::TestParamInfo<Engine>& info) {
  return info.param == Engine::file ? "of_a_file" : "of_a_server";
}

class workers : public CommandTest, public testing::WithParamInterface<Engine> {
 protected:
  void SetUp() override {
    if (GetParam() == Engine::server && !PostgresServer::lack().empty())
      GTEST_SKIP() << PostgresServer::lack();
  }
  // Roshko and Strouhal of a series.
  static std::vector<std::pair<std::string, double>> points(int series) {
    std::vector<std::pair<std::string, double>> list;
    for (int i = 0; i < 15; ++i) {
      const double x = 10 * std::pow(100.0, i / 14.0), log = std::log10(x);
      list.emplace_back(std::to_string(x), 1300 + series + 20 * log - 4 * log * log);
    }
    return list;
  }
  void makeSeries(int count) {
    init();
    sqlite3* file = nullptr;
    ASSERT_EQ(sqlite3_open(curves.c_str(), &file), SQLITE_OK);
    std::string sql = "BEGIN; INSERT INTO meter VALUES (1, 'M', 'M', 0);";
    for (int series = 1; series <= count; ++series) {
      const std::string id = std::to_string(series);
      sql += "INSERT INTO series VALUES (" + id + ", 'S" + id + "', 1);";
      for (const auto& [x, y] : points(series))
        sql += "INSERT INTO raw1 VALUES (" + id + ", " + x + ", " + std::to_string(y) + ");";
    }
    sql += "COMMIT";
    EXPECT_EQ(sqlite3_exec(file, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(file);
    location_ = curves;
    if (GetParam() == Engine::file) return;
    PostgresServer& server = PostgresServer::running();
    location_ = server.address(server.newDatabase());
    done({"init", location_});
    done({"copy", curves, location_});
  }
  // The number that a question in plain SQL delivers, past the program.
  [[nodiscard]] int ask(const std::string& question) const {
    if (GetParam() == Engine::server) return std::stoi(PostgresServer::ask(location_, question));
    sqlite3* file = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open(location_.c_str(), &file);
    sqlite3_busy_timeout(file, 30000);
    EXPECT_EQ(sqlite3_prepare_v2(file, question.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(file);
    EXPECT_EQ(sqlite3_step(statement), SQLITE_ROW) << sqlite3_errmsg(file);
    const int number = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    sqlite3_close(file);
    return number;
  }
  [[nodiscard]] int count(const std::string& rows) const {
    return ask("SELECT count(*) FROM " + rows);
  }
  [[nodiscard]] std::unique_ptr<RunningCommand> start(const Arguments& more,
                                                      const std::string& output) const {
    Arguments arguments{"worker", location_};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return std::make_unique<RunningCommand>(
        arguments,
        RunningCommand::Streams{
            .input = "/dev/null", .output = output, .error = scratch.file("workers.txt")});
  }
  // Gives every series its first curve; what comes later replaces it.
  void fitAll() const {
    done({"fleet", "start", location_, "--choose", "adjusted-r2"});
    done({"worker", location_, "--jobs", "2"});
    ASSERT_EQ(count("pelmora_history_entry"), 0);
  }
  void expectEverySeriesOnce(int series, int job) const {
    EXPECT_EQ(count("pelmora_history_entry WHERE \"Command\" = 'fleet'"), series);
    EXPECT_EQ(ask("SELECT count(DISTINCT \"SeriesID\") FROM pelmora_history_entry"), series);
    EXPECT_EQ(count("pelmora_fleet_result WHERE \"JobID\" = " + std::to_string(job)), series);
    for (const char* table : {"curve", "pelmora_history_curve"}) {
      const std::string key = std::string(table) == "curve" ? "\"seriesID\"" : "\"EntryID\"";
      EXPECT_EQ(count(std::string("(SELECT ") + key + " FROM " + table + " GROUP BY " + key +
                      " HAVING count(*) = 40) AS whole"),
                series)
          << table;
    }
    EXPECT_EQ(count("pelmora_fit_settings"), series);
    EXPECT_EQ(count("\"DataFitResults\""), series);
  }

  std::string location_;
};

TEST_P(workers, that_are_killed_leave_no_series_out_and_store_none_twice) {
  constexpr int series = 150;
  makeSeries(series);
  fitAll();
  done({"fleet", "start", location_, "--range", "5", "--fit-min", "12"});
  std::mt19937 random(7);
  std::vector<std::unique_ptr<RunningCommand>> running(3);
  const auto isDone = [&] {
    return count("pelmora_fleet_job WHERE \"ID\" = 2 AND \"State\" = 3") == 1;
  };
  for (int kills = 0; kills < 15 && !isDone(); ++kills) {
    for (auto& worker : running) {
      if (!worker) worker = start({"--lease", "1"}, "/dev/null");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(random() % 150));
    running[random() % running.size()].reset();  // kills it
  }
  for (auto& worker : running) {
    if (!worker) continue;
    EXPECT_EQ(worker->end(), 0) << bytesOf(scratch.file("workers.txt"));
  }
  done({"worker", location_, "--lease", "1"});
  EXPECT_TRUE(isDone());
  expectEverySeriesOnce(series, 2);
}

// A frozen process keeps its locks of a file.
class frozen_workers : public workers {};

TEST_P(frozen_workers, that_wake_up_after_their_lease_store_nothing) {
  constexpr int series = 150;
  makeSeries(series);
  fitAll();
  // A trusted fit takes so long that the worker is met at work.
  done({"fleet", "start", location_, "--choose", "trusted"});
  const std::string output = scratch.file("frozen.json");
  const auto frozen = start({"--lease", "1", "--json"}, output);
  ASSERT_TRUE(comesTrue(
      [&] { return count("pelmora_fleet_range WHERE \"JobID\" = 2 AND \"State\" = 1") == 1; }));
  frozen->send(SIGSTOP);
  ASSERT_EQ(count("pelmora_fleet_range WHERE \"JobID\" = 2 AND \"State\" = 1"), 1);
  const CommandResult other = done({"worker", location_, "--lease", "30", "--json"});
  EXPECT_EQ(other.json().at("series"), series);
  frozen->send(SIGCONT);
  EXPECT_EQ(frozen->end(), 0) << bytesOf(scratch.file("workers.txt"));
  const auto lost = nlohmann::json::parse(bytesOf(output));
  EXPECT_EQ(lost.at("series"), 0);
  EXPECT_EQ(lost.at("lostRanges"), 1);
  expectEverySeriesOnce(series, 2);
}

TEST_P(workers, that_are_asked_to_end_give_their_range_back) {
  makeSeries(150);
  done({"fleet", "start", location_, "--choose", "trusted"});
  const auto worker = start({}, "/dev/null");
  ASSERT_TRUE(comesTrue([&] { return count("pelmora_fleet_range WHERE \"State\" = 1") == 1; }));
  worker->send(SIGTERM);
  EXPECT_EQ(worker->end(), 143);
  EXPECT_EQ(ask("SELECT \"State\" FROM pelmora_fleet_range"), 0);
}

TEST_P(workers, wait_while_their_job_is_paused_and_end_when_it_is_cancelled) {
  makeSeries(10);
  const auto state = [&](const char* action) {
    const auto answer = done({"fleet", action, location_, "--json"}).json();
    return answer.at("jobs").at(0).at("state").get<std::string>();
  };
  EXPECT_EQ(state("start"), "running");
  EXPECT_EQ(state("pause"), "paused");
  const auto worker = start({}, "/dev/null");
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(count("pelmora_fleet_range WHERE \"State\" <> 0"), 0);
  EXPECT_EQ(state("resume"), "running");
  EXPECT_EQ(worker->end(), 0);
  EXPECT_EQ(state("status"), "done");
  EXPECT_EQ(state("start"), "running");
  EXPECT_EQ(state("cancel"), "cancelled");
  EXPECT_EQ(done({"worker", location_, "--json"}).json().at("ranges"), 0);
  EXPECT_THAT(trouble(4, {"fleet", "pause", location_}), testing::HasSubstr("no job"));
}

TEST_P(workers, leave_a_list_of_the_curves_that_moved) {
  makeSeries(4);
  fitAll();
  std::string moved;
  for (const auto& [x, y] : points(2)) moved += x + "," + std::to_string(1.03 * y) + "\n";
  done({"raw", location_, write("s.csv", moved), "--meter", "M", "--series", "S2"});
  done({"fleet", "start", location_, "--changed", "2"});
  done({"worker", location_});
  const auto status = done({"fleet", "status", location_, "--json"}).json();
  ASSERT_EQ(status.at("changed").size(), 1U);
  EXPECT_EQ(status.at("changed")[0].at("series"), "S2");
  EXPECT_GT(status.at("changed")[0].at("largestShift").at("percent"), 2);
  EXPECT_EQ(status.at("jobs")[0].at("series").at("changed"), 1);
  const std::string text = done({"fleet", "status", location_}).output;
  EXPECT_THAT(text, testing::HasSubstr("4 of 4 series (100 %)"));
  EXPECT_THAT(text, testing::HasSubstr("S2"));
}

INSTANTIATE_TEST_SUITE_P(engines, workers, testing::Values(Engine::file, Engine::server), nameOf);
INSTANTIATE_TEST_SUITE_P(engines, frozen_workers, testing::Values(Engine::server), nameOf);

}  // namespace
}  // namespace pelmora::test
