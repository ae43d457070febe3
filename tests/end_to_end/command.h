// Runs the built program and keeps what it wrote.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/curve_place.h"
#include "tests/support/file_bytes.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace pelmora::test {

struct CommandResult {
  int exitCode = -1;
  std::string output, error;

  [[nodiscard]] nlohmann::json json() const { return nlohmann::json::parse(output); }
};

// Working files of one test, its curve database and the example data. What many tests begin with is
// made once in a process and copied then.
class CommandTest : public testing::Test {
 protected:
  using Arguments = std::vector<std::string>;

  [[nodiscard]] CommandResult run(const Arguments& arguments) const {
    const std::string error = scratch.file("stderr.txt");
    CommandResult result = run(arguments, " 2>" + quoted(error) + " </dev/null");
    result.error = bytesOf(error);
    return result;
  }
  // Runs a command with an operator at the terminal; `error` is what the terminal shows.
  [[nodiscard]] CommandResult runAt(const PseudoTerminal& terminal,
                                    const Arguments& arguments) const {
    const std::string device = quoted(terminal.path());
    CommandResult result = run(arguments, " 2>" + device + " <" + device);
    result.error = terminal.shown();
    return result;
  }
  // Runs a command that must succeed without a word on standard error.
  CommandResult done(const Arguments& arguments) const {
    CommandResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_EQ(result.error, "");
    return result;
  }
  // The one line of trouble of a command that must fail with this code.
  std::string trouble(int exitCode, const Arguments& arguments) const {
    const CommandResult result = run(arguments);
    EXPECT_EQ(result.exitCode, exitCode) << result.error << result.output;
    EXPECT_TRUE(result.error.starts_with("pelmora: error: ")) << result.error;
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    return result.error;
  }

  // An empty curve database.
  void init() const {
    static std::string bytes;
    if (bytes.empty() || isRunOnServer()) {
      done({"init", curves});
      if (isRunOnServer()) return;
      bytes = bytesOf(curves);
    } else {
      write("curves.db", bytes);
    }
  }
  // A curve database with the example meter, imported and fitted by one `calibrate`.
  void initCalibrated() const {
    static std::string bytes;
    if (bytes.empty() || isRunOnServer()) {
      init();
      done(twoFluids());
      if (isRunOnServer()) return;
      bytes = bytesOf(curves);
    } else {
      write("curves.db", bytes);
    }
  }
  Arguments calibration(const std::string& stand, const Arguments& more = {}) const {
    Arguments arguments{"calibrate", curves, "--meter", "M1", "--stand", stand};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  // Jobs 1001 and 1002 of the example stand: one meter in two fluids.
  Arguments twoFluids(const Arguments& more = {}) const {
    Arguments arguments = calibration(data("stand-dual-rotor.csv"),
                                      {"--job", "1001", "--fluid", "spirit", "--job", "1002",
                                       "--fluid", "glycol", "--operator", "Ada"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  // The database in a command that is shown to be copied.
  [[nodiscard]] std::string shownCurves() const {
    return isRunOnServer() ? quoted(curves) : curves;
  }
  std::string write(const std::string& name, const std::string& text) const {
    std::ofstream(scratch.file(name), std::ios::binary) << text;
    return scratch.file(name);
  }
  static std::string data(const std::string& name) {
    return std::string(PELMORA_DATA) + "/" + name;
  }

  const ScratchFolder scratch;
  const std::string curves = newCurvePlace(scratch);

 private:
  [[nodiscard]] CommandResult run(const Arguments& arguments, const std::string& redirects) const {
#ifdef PELMORA_SANITIZED
    // Leaks are left to the tests of the rooms: here the search would take as long as a command.
    std::string line =
        "ASAN_OPTIONS=detect_leaks=0:malloc_context_size=5 " + quoted(PELMORA_PROGRAM);
#else
    std::string line = quoted(PELMORA_PROGRAM);
#endif
    for (const std::string& argument : arguments) line += " " + quoted(argument);
    // A file of its own: a test may run a command while another one waits.
    const std::string output = scratch.file("stdout" + std::to_string(++calls_) + ".txt");
    line += " >" + quoted(output) + redirects;
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, bytesOf(output), {}};
  }
  mutable std::atomic<int> calls_ = 0;

  static std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
  }
};

// The rows of an example file, its header first.
inline std::vector<std::vector<std::string>> rowsOf(const std::string& path) {
  std::vector<std::vector<std::string>> rows;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    rows.emplace_back();
    for (std::string field; std::getline(fields, field, ',');) rows.back().push_back(field);
  }
  return rows;
}

inline std::size_t columnOf(const std::vector<std::string>& header, const std::string& name) {
  const auto found = std::find(header.begin(), header.end(), name);
  if (found == header.end()) throw std::out_of_range("no column " + name);
  return static_cast<std::size_t>(found - header.begin());
}

}  // namespace pelmora::test
