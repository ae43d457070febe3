// The built program while it runs, and signals to it.
// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace pelmora::test {

class RunningCommand {
 public:
  // Where its standard streams lead: files or a terminal.
  struct Streams {
    std::string input = "/dev/null", output = "/dev/null", error = "/dev/null";
  };

  RunningCommand(const std::vector<std::string>& arguments, const Streams& streams)
      : child_(fork()) {
    if (child_ == 0) become(arguments, streams);
    if (child_ < 0) throw std::runtime_error("no process");
  }
  ~RunningCommand() {
    if (child_ <= 0) return;
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
  RunningCommand(const RunningCommand&) = delete;
  RunningCommand& operator=(const RunningCommand&) = delete;

  void send(int signal) const { kill(child_, signal); }
  // What it has worked so far; Linux counts in hundredths of a second.
  [[nodiscard]] double processorSeconds() const {
    std::ifstream file("/proc/" + std::to_string(child_) + "/stat");
    std::string line;
    std::getline(file, line);
    // The fields behind the name in brackets: utime and stime are the 14th and 15th of all.
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string skipped;
    for (int i = 3; i < 14; ++i) fields >> skipped;
    double user = 0, system = 0;
    fields >> user >> system;
    return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
  }
  // The exit code; minus the number of the signal that has killed it.
  [[nodiscard]] int end() {
    int status = 0;
    rusage usage{};
    wait4(child_, &status, 0, &usage);
    child_ = -1;
    mostMemory_ = usage.ru_maxrss;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
  // Peak memory in KiB. Known after end().
  [[nodiscard]] long mostMemory() const { return mostMemory_; }

 private:
  static void lead(int stream, const std::string& path) {
    const int flags = stream == STDIN_FILENO ? O_RDONLY : O_WRONLY | O_CREAT;
    const int opened = open(path.c_str(), flags | O_NOCTTY, 0600);
    if (opened < 0 || dup2(opened, stream) < 0) _exit(126);
  }
  [[noreturn]] static void become(const std::vector<std::string>& arguments,
                                  const Streams& streams) {
    lead(STDIN_FILENO, streams.input);
    lead(STDOUT_FILENO, streams.output);
    lead(STDERR_FILENO, streams.error);
    std::vector<char*> words{const_cast<char*>(PELMORA_PROGRAM)};
    for (const std::string& argument : arguments)
      words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    execv(PELMORA_PROGRAM, words.data());
    _exit(127);
  }

  pid_t child_;
  long mostMemory_ = 0;
};

// Waits for something that another process brings about, up to a minute.
template <class Condition>
[[nodiscard]] bool comesTrue(const Condition& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace pelmora::test
