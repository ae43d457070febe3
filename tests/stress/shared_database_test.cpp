// Several processes, and several threads in each, on one database.
// SPDX-License-Identifier: MIT
#include "tests/support/curve_place.h"
#include "tests/support/plain_sqlite.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::test {
namespace {

using Arguments = std::vector<std::string>;

bool isLong() { return std::getenv("PELMORA_STRESS") != nullptr; }
int rounds() {
  if (isLong()) return 25;
  return isRunOnServer() ? 1 : 2;
}

// PELMORA_STRESS_SECONDS asks for another time.
std::chrono::seconds secondsOfWriting() {
  const char* seconds = std::getenv("PELMORA_STRESS_SECONDS");
  if (seconds != nullptr) return std::chrono::seconds(std::atoi(seconds));
  return std::chrono::seconds(isLong() ? 15 : 3);
}

// A program that runs beside the test; its output goes to a file.
class Running {
 public:
  Running(const Arguments& command, const std::string& output) {
    process_ = fork();
    if (process_ != 0) return;
    if (std::freopen(output.c_str(), "w", stdout) == nullptr || dup2(1, 2) < 0) _exit(126);
    std::vector<char*> arguments;
    for (const std::string& argument : command)
      arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  ~Running() {
    if (process_ > 0) (void)exitCode();
  }
  Running(Running&& other) noexcept : process_(std::exchange(other.process_, -1)) {}
  Running& operator=(Running&&) = delete;

  // Waits for its end.
  int exitCode() {
    int status = 0;
    waitpid(std::exchange(process_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  [[nodiscard]] bool isAtWork() {
    int status = 0;
    if (process_ > 0 && waitpid(process_, &status, WNOHANG) == process_) process_ = -1;
    return process_ > 0;
  }

 private:
  pid_t process_ = -1;
};

class shared_database : public testing::Test {
 protected:
  void SetUp() override {
    if (const std::string lack = lackOfServer(); !lack.empty()) GTEST_SKIP() << lack;
  }
  [[nodiscard]] Running program(Arguments arguments, const std::string& output = "out.txt") const {
    arguments.insert(arguments.begin(), PELMORA_PROGRAM);
    return {arguments, scratch.file(output)};
  }
  void done(const Arguments& arguments) const {
    EXPECT_EQ(program(arguments).exitCode(), 0) << arguments[0] << ": " << text("out.txt");
  }
  [[nodiscard]] std::string text(const std::string& name) const {
    std::ifstream file(scratch.file(name));
    return {std::istreambuf_iterator<char>(file), {}};
  }
  // Points of a curve that is fitted well; `level` tells one set from another.
  std::string points(const std::string& name, double level) const {
    std::ofstream file(scratch.file(name));
    for (int x = 10; x < 40; ++x) file << x << ',' << level + 0.01 * x - 0.00004 * x * x << '\n';
    return scratch.file(name);
  }
  [[nodiscard]] Arguments raw(const std::string& series, const std::string& csv) const {
    return {"raw", curves, csv, "--meter", "M", "--register", "--series", series};
  }
  // The answer of the engine itself, without the component.
  [[nodiscard]] std::string asked(const std::string& question) const {
    return isRunOnServer() ? PostgresServer::ask(curves, question) : askedFile(question);
  }
  void changed(const std::string& statement) const {
    if (isRunOnServer()) {
      (void)PostgresServer::ask(curves, statement);
    } else {
      PlainSqlite(curves).run(statement);
    }
  }
  // In a process of its own, which holds no lock and has no connection.
  [[nodiscard]] std::string askedFile(const std::string& question) const {
    int answer[2];
    if (pipe(answer) != 0) std::abort();
    const pid_t child = fork();
    if (child == 0) {
      const PlainSqlite database(curves);
      sqlite3_exec(
          database.get(), question.c_str(),
          [](void* to, int, char** values, char**) {
            const std::string value = values[0] == nullptr ? "null" : values[0];
            return write(*static_cast<int*>(to), value.data(), value.size()) < 0 ? 1 : 0;
          },
          &answer[1], nullptr);
      _exit(0);
    }
    close(answer[1]);
    std::string text;
    for (char c = 0; read(answer[0], &c, 1) == 1;) text += c;
    close(answer[0]);
    waitpid(child, nullptr, 0);
    return text;
  }
  void expectWhole(int series) const {
    if (!isRunOnServer()) {
      EXPECT_EQ(asked("PRAGMA integrity_check"), "ok");
    }
    const std::string count = std::to_string(series);
    // SetRaw whose look-up of the meter is refused says so and stores under no meter.
    const std::string ofMeters = " FROM series WHERE meterid IN (SELECT \"ID\" FROM meter)";
    EXPECT_EQ(asked("SELECT count(*)" + ofMeters), count);
    EXPECT_EQ(asked("SELECT count(DISTINCT name)" + ofMeters), count);
  }

  const ScratchFolder scratch;
  std::string curves = newCurvePlace(scratch);
};

TEST_F(shared_database, stays_whole_while_one_process_refits_and_another_stores) {
  const int series = isLong() ? 60 : 20;
  done({"init", curves});
  const std::vector<std::string> csv{points("a.csv", 2), points("b.csv", 3)};
  for (int i = 0; i < series; ++i) done(raw("S" + std::to_string(i), csv[0]));
  for (int round = 0; round < rounds(); ++round) {
    // Every curve is another one each time, so that each refit stores all of them.
    for (int i = 0; i < series; i += 7)
      done(raw("S" + std::to_string(i), csv[static_cast<std::size_t>(round + 1) % 2]));
    changed("DELETE FROM curve");
    Running refit = program({"refit", curves, "--all", "--jobs", "32"}, "refit.txt");
    for (int i = 0; refit.isAtWork(); i = (i + 1) % series)
      done(raw("S" + std::to_string(i), csv[static_cast<std::size_t>(round) % 2]));
    expectWhole(series);
    EXPECT_EQ(
        asked(
            "SELECT count(*) FROM (SELECT \"seriesID\" FROM raw1 WHERE \"seriesID\" IN (SELECT "
            "\"ID\" FROM series WHERE meterid IN (SELECT \"ID\" FROM meter)) GROUP BY \"seriesID\" "
            "HAVING count(*) = 30) AS x"),
        std::to_string(series));
    if (HasFailure()) FAIL() << "in round " << round << ": " << text("refit.txt");
  }
}

TEST_F(shared_database, stays_whole_while_two_hosts_of_four_threads_store) {
  const int series = isLong() ? 40 : 15;
  done({"init", curves});
  done(raw("first", points("a.csv", 2)));
  for (int round = 0; round < rounds(); ++round) {
    const auto host = [&](const std::string& name) {
      const std::string prefix = name + std::to_string(round);
      return Running({PELMORA_HOST, curves, prefix, "4", std::to_string(series)},
                     scratch.file(name + ".txt"));
    };
    Running a = host("a"), b = host("b");
    EXPECT_EQ(a.exitCode(), 0) << text("a.txt");
    EXPECT_EQ(b.exitCode(), 0) << text("b.txt");
    const int stored = 8 * series * (round + 1);
    expectWhole(stored + 1);
    EXPECT_EQ(
        asked(
            "SELECT count(*) FROM (SELECT \"seriesID\" FROM raw1 WHERE \"seriesID\" IN (SELECT "
            "\"ID\" FROM series WHERE meterid IN (SELECT \"ID\" FROM meter)) GROUP BY \"seriesID\" "
            "HAVING count(*) = 20) AS x"),
        std::to_string(stored));
    if (HasFailure()) FAIL() << "in round " << round;
  }
}

// Threads of one number have the same series in both processes.
TEST_F(shared_database, gets_no_series_and_no_calibration_twice) {
  const int series = isLong() ? 30 : 20;
  constexpr int roundsOfDatabase = 5;  // every call reads all calibrations of its meter
  std::optional<ScratchFolder> folder;
  for (int round = 0; round < rounds(); ++round) {
    const int number = round % roundsOfDatabase + 1;
    if (number == 1) {
      folder.emplace();
      curves = newCurvePlace(*folder);
      done({"init", curves});
      done(raw("first", points("a.csv", 2)));
    }
    const auto host = [&](const std::string& output) {
      return Running({PELMORA_HOST, curves, "R" + std::to_string(round), "4",
                      std::to_string(series), "register"},
                     scratch.file(output));
    };
    Running a = host("a.txt"), b = host("b.txt");
    EXPECT_EQ(a.exitCode(), 0) << text("a.txt");
    EXPECT_EQ(b.exitCode(), 0) << text("b.txt");
    EXPECT_EQ(asked("SELECT count(*) FROM (SELECT 1 FROM series GROUP BY meterid, name HAVING "
                    "count(*) > 1) AS x"),
              "0");
    EXPECT_EQ(asked("SELECT count(*) FROM (SELECT 1 FROM meter GROUP BY \"SerialNumber\", "
                    "\"ReCalID\" HAVING count(*) > 1) AS x"),
              "0");
    // Every call has added a calibration, and each has its own number: none is missing up to the
    // last. A call that is refused after it has added one is made again, so there may be more.
    const int all = 8 * series * number;
    EXPECT_GE(std::stoi(asked("SELECT count(*) FROM meter WHERE \"SerialNumber\" = 'Shared'")),
              all);
    EXPECT_EQ(
        asked("SELECT count(*) - max(\"ReCalID\") FROM meter WHERE \"SerialNumber\" = 'Shared'"),
        "1");
    expectWhole(4 * series * number + 1);
    if (HasFailure()) FAIL() << "in round " << round;
  }
}

TEST_F(shared_database, is_written_by_twenty_processes_at_once_without_a_refusal) {
  constexpr int writers = 20;
  const auto end = std::chrono::steady_clock::now() + secondsOfWriting();
  done({"init", curves});
  done(raw("first", points("a.csv", 2)));
  const std::string csv = scratch.file("a.csv");
  std::vector<std::pair<pid_t, int>> running;  // with the reading end of its count
  for (int writer = 0; writer < writers; ++writer) {
    int count[2];
    ASSERT_EQ(pipe(count), 0);
    const pid_t child = fork();
    if (child == 0) {
      const std::string name = "W" + std::to_string(writer);
      int stored = 0;
      bool isDone = true;
      while (isDone && (stored == 0 || std::chrono::steady_clock::now() < end)) {
        isDone =
            program(raw(name + "-" + std::to_string(stored), csv), name + ".txt").exitCode() == 0;
        if (isDone) ++stored;
      }
      _exit(write(count[1], &stored, sizeof stored) == sizeof stored && isDone ? 0 : 1);
    }
    close(count[1]);
    running.emplace_back(child, count[0]);
  }
  int all = 0;
  for (int writer = 0; writer < writers; ++writer) {
    const auto [process, count] = running[static_cast<std::size_t>(writer)];
    int stored = 0, status = 0;
    EXPECT_EQ(read(count, &stored, sizeof stored), static_cast<ssize_t>(sizeof stored));
    close(count);
    waitpid(process, &status, 0);
    EXPECT_EQ(status, 0) << text("W" + std::to_string(writer) + ".txt");
    EXPECT_GT(stored, 0);
    all += stored;
  }
  expectWhole(all + 1);
  EXPECT_EQ(asked("SELECT count(*) FROM raw1"), std::to_string(30 * (all + 1)));
  RecordProperty("stored", all);
}

}  // namespace
}  // namespace pelmora::test
