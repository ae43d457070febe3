// However the reading program ends, the host gets a message.
// SPDX-License-Identifier: MIT
#include "tests/adapters/access/collected_tables.h"
#include "tests/support/curve_file.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

namespace pelmora::test {
namespace {

class access_program : public testing::Test {
 protected:
  ~access_program() override {
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a program is left behind";
    EXPECT_EQ(errno, ECHILD);
  }
  // A program of these lines of shell in place of the real one.
  access::ProgramSettings shell(const std::string& lines) const {
    const std::string path = folder_.file("reader");
    std::ofstream(path) << "#!/bin/sh\n" << lines << "\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return {path};
  }
  static Failure failure(const access::ProgramSettings& settings) {
    CollectedTables tables;
    return failureOf([&] { readAccessTables(accessData("stand.mdb"), tables, settings); });
  }

  ScratchFolder folder_;
};

void expectWords(const Failure& failure, std::int32_t number, const std::string& words) {
  EXPECT_EQ(failure.number, number);
  EXPECT_NE(failure.description.find(words), std::string::npos) << failure.description;
  EXPECT_NE(failure.description.find("stand.mdb"), std::string::npos) << failure.description;
}

TEST_F(access_program, that_crashes_ends_in_a_message) {
  expectWords(failure(shell("kill -SEGV $$")), 321, "its reader ended unexpectedly (signal 11)");
}

TEST_F(access_program, that_ends_early_ends_in_a_message) {
  expectWords(failure(shell("exit 0")), 321, "its reader ended unexpectedly");
}

TEST_F(access_program, that_sends_invalid_messages_ends_in_a_message) {
  expectWords(failure(shell("echo hello, this is not a message")), 321, "invalid message");
  expectWords(failure(shell("exec cat /dev/zero")), 321, "invalid message");
}

TEST_F(access_program, that_is_missing_ends_in_a_message) {
  expectWords(failure({"/nowhere/pelmora-access"}), 91, "does not start");
}

TEST_F(access_program, that_sends_nothing_is_not_waited_for_forever) {
  access::ProgramSettings settings = shell("exec sleep 600");
  settings.silence = std::chrono::seconds(1);
  expectWords(failure(settings), 321, "sent nothing for 1 s");
}

TEST_F(access_program, that_takes_too_long_is_ended) {
  access::ProgramSettings settings =
      shell("ulimit -S -t \"$2\"; while :; do :; done");  // as the real one limits itself
  settings.processorSeconds = 1;
  expectWords(failure(settings), 321, "takes more than 1 s of processor time");
}

TEST_F(access_program, limits_its_own_memory) {
#ifdef PELMORA_SANITIZED
  GTEST_SKIP() << "sanitizers reserve terabytes";
#endif
  access::ProgramSettings settings = builtProgram();
  settings.memoryMegabytes = 4;
  EXPECT_EQ(failure(settings).number, 321);
  settings.memoryMegabytes = 128;
  EXPECT_EQ(failure(settings).number, 0);
}

TEST_F(access_program, gets_the_files_name_as_it_is) {
  const std::string name = folder_.file("it's \"Caf\xC3\xA9\" $HOME.mdb");
  std::filesystem::copy_file(accessData("stand.mdb"), name);
  EXPECT_EQ(readAll(name).tables.size(), 1U);
}

}  // namespace
}  // namespace pelmora::test
