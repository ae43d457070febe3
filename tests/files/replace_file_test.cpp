// A replaced file is complete and in its old place, and nothing else is left behind.
// SPDX-License-Identifier: MIT
#include "files/replace_file.h"

#include "tests/support/file_bytes.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace pelmora {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::StrEq;

const std::string severalPortions(std::size_t{5} << 19, 'n');

class replaced_file : public testing::Test {
 protected:
  static void goOn() {}
  static mode_t rightsOf(const std::string& file) {
    struct stat state {};
    EXPECT_EQ(stat(file.c_str(), &state), 0);
    return state.st_mode & 07777U;
  }
  void expectOld() const {
    EXPECT_EQ(test::bytesOf(file_), "old");
    expectNothingElse();
  }
  void expectNothingElse() const {
    for (const auto& entry : fs::directory_iterator(folder_.path()))
      EXPECT_THAT(entry.path().filename().string(), AnyOf("report", "link", "real"));
  }
  void writeOld() const { test::putBytes(file_, "old"); }
  [[nodiscard]] std::string whyNot(const std::string& file) const {
    try {
      replaceFile(file, "new", goOn);
    } catch (const CannotReplaceFile& failure) {
      return failure.what();
    }
    return "";
  }

  test::ScratchFolder folder_;
  std::string file_ = folder_.file("report");
};

TEST_F(replaced_file, has_the_rights_of_the_old_one) {
  writeOld();
  for (const mode_t rights : {0640U, 0444U, 0666U}) {
    ASSERT_EQ(chmod(file_.c_str(), rights), 0);
    replaceFile(file_, severalPortions, goOn);
    EXPECT_EQ(rightsOf(file_), rights);
    EXPECT_EQ(test::bytesOf(file_), severalPortions);
  }
  expectNothingElse();
}

TEST_F(replaced_file, has_the_rights_of_any_new_file_where_there_was_none) {
  const mode_t before = umask(027);
  replaceFile(file_, "new", goOn);
  EXPECT_EQ(umask(before), mode_t{027});
  EXPECT_EQ(rightsOf(file_), 0640U);
}

TEST_F(replaced_file, shows_others_nothing_that_the_old_one_hides) {
  writeOld();
  ASSERT_EQ(chmod(file_.c_str(), 0600), 0);
  replaceFile(file_, "new", [&] {
    for (const auto& entry : fs::directory_iterator(folder_.path()))
      EXPECT_EQ(rightsOf(entry.path().string()), 0600U) << entry.path();
  });
}

// The writer neither owns the old file nor belongs to its group.
TEST_F(replaced_file, gives_the_group_of_its_writer_no_more_than_everybody_had) {
  if (geteuid() != 0) GTEST_SKIP() << "only an administrator can become another user";
  ASSERT_EQ(chmod(folder_.path().c_str(), 0777), 0);
  for (const auto& [before, after] : {std::pair{0664U, 0644U}, {0640U, 0600U}, {0646U, 0646U}}) {
    writeOld();
    ASSERT_EQ(chown(file_.c_str(), 0, 0), 0);
    ASSERT_EQ(chmod(file_.c_str(), before), 0);
    const pid_t writer = fork();
    if (writer == 0) {
      const bool isAnother = setgroups(0, nullptr) == 0 && setgid(65534) == 0 && setuid(65534) == 0;
      _exit(isAnother && whyNot(file_).empty() ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(writer, &status, 0), writer);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(test::bytesOf(file_), "new");
    EXPECT_EQ(rightsOf(file_), after);
  }
}

TEST_F(replaced_file, keeps_its_owner_where_the_process_may_set_one) {
  writeOld();
  if (chown(file_.c_str(), 65534, 65534) != 0) GTEST_SKIP() << "only an administrator can";
  replaceFile(file_, "new", goOn);
  struct stat state {};
  ASSERT_EQ(stat(file_.c_str(), &state), 0);
  EXPECT_EQ(state.st_uid, 65534U);
  EXPECT_EQ(state.st_gid, 65534U);
}

TEST_F(replaced_file, lies_behind_the_link_that_names_it) {
  const std::string link = folder_.file("link");
  fs::create_directory(folder_.file("real"));
  fs::create_symlink("real/report", file_);
  fs::create_symlink("report", link);
  for (const char* content : {"made", "replaced"}) {
    replaceFile(link, content, goOn);
    EXPECT_TRUE(fs::is_symlink(link) && fs::is_symlink(file_));
    EXPECT_EQ(test::bytesOf(folder_.file("real/report")), content);
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.file("real")), {}), 1);
  expectNothingElse();
}

TEST_F(replaced_file, is_no_circle_of_links) {
  fs::create_symlink("report", folder_.file("link"));
  fs::create_symlink("link", file_);
  EXPECT_THAT(whyNot(file_), StrEq(std::generic_category().message(ELOOP)));
  expectNothingElse();
}

TEST_F(replaced_file, is_neither_folder_nor_pipe_nor_device) {
  EXPECT_EQ(whyNot(folder_.path().string()), "it is a folder");
  ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
  EXPECT_EQ(whyNot(file_), "it is not a regular file");
  fs::create_symlink("/dev/null", folder_.file("link"));
  EXPECT_EQ(whyNot(folder_.file("link")), "it is not a regular file");
  EXPECT_TRUE(fs::is_fifo(file_));
  expectNothingElse();
}

TEST_F(replaced_file, needs_its_folder) {
  EXPECT_THAT(whyNot(folder_.file("none/report")), StrEq(std::generic_category().message(ENOENT)));
}

TEST_F(replaced_file, is_the_old_one_until_the_last_question_and_after_each_no) {
  writeOld();
  int questions = 0;
  replaceFile(folder_.file("link"), severalPortions, [&] { ++questions; });
  EXPECT_EQ(questions, 4);  // three portions and the name
  for (int refused = 1; refused <= questions; ++refused) {
    int asked = 0;
    const auto refuse = [&] {
      EXPECT_EQ(test::bytesOf(file_), "old");
      if (++asked == refused) throw std::runtime_error("no");
    };
    EXPECT_THROW(replaceFile(file_, severalPortions, refuse), std::runtime_error);
    expectOld();
  }
}

TEST_F(replaced_file, is_the_old_one_where_there_is_no_room) {
  writeOld();
  struct rlimit before {};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const struct rlimit small { 1'500'000, before.rlim_max };
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_THROW(replaceFile(file_, severalPortions, goOn), CannotReplaceFile);
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  expectOld();
}

TEST_F(replaced_file, is_that_of_the_last_writer) {
  bool isFirst = true;
  replaceFile(file_, severalPortions, [&] {
    if (isFirst) replaceFile(file_, "other", goOn);
    isFirst = false;
    EXPECT_EQ(test::bytesOf(file_), "other");
  });
  EXPECT_TRUE(test::bytesOf(file_) == severalPortions);
  expectNothingElse();
}

}  // namespace
}  // namespace pelmora
