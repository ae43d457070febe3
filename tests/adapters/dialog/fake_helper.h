// Helper programs made of a few lines of shell, for the host's side without a display.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/dialog/window_request.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <sys/wait.h>

namespace pelmora::test {

class FakeHelperTest : public testing::Test {
 protected:
  FakeHelperTest() { setenv("DISPLAY", ":none", 1); }
  // Every test, failing or not: nothing may be left behind, running or dead.
  ~FakeHelperTest() override {
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
  }

  // Path of a program with these lines.
  std::string helper(const std::string& lines) {
    const std::string path = folder_.file("helper");
    std::ofstream(path) << "#!/bin/sh\n" << lines << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }
  // One that reads its request first, so that sending it cannot fail.
  std::string readingHelper(const std::string& lines) {
    return helper("dd bs=64k count=1 of=/dev/null 2>/dev/null\n" + lines);
  }
  [[nodiscard]] std::string file(const std::string& name) const { return folder_.file(name); }
  [[nodiscard]] std::string contentsOf(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(folder_.file(name)).rdbuf();
    return text.str();
  }

  static dialog::WindowRequest yesNo() {
    dialog::WindowRequest request;
    request.title = "title";
    request.text = "text";
    request.buttons = {{"&Yes", 6, {}}, {"&No", 7, {}}};
    return request;
  }

 private:
  ScratchFolder folder_;
};

// Longer than any loaded machine needs for what is expected to happen; nothing waits so long unless
// it fails.
constexpr std::chrono::seconds patience{300};

// Seconds since it was made. Only a lower bound of them says something: a loaded machine takes any
// time.
class StopWatch {
 public:
  [[nodiscard]] double seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace pelmora::test
