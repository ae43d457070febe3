// A report's file is the old one or the new one, and nothing unfinished stays behind.
// SPDX-License-Identifier: MIT
#include "report/report_file.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pelmora/calibration/failure.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <stop_token>
#include <string>

namespace pelmora::report {
namespace {

namespace fs = std::filesystem;
using pelmora::test::ScratchFolder;
using testing::HasSubstr;

std::string contentOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::size_t filesIn(const ScratchFolder& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder.path()), {}));
}

TEST(report_file, holds_every_byte_of_several_portions) {
  const ScratchFolder folder;
  const std::string file = folder.file("report.json");
  std::string content(std::size_t{3} << 20, '\0');
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 7 / 5);
  writeFile(file, content, {});
  EXPECT_TRUE(contentOf(file) == content);
  EXPECT_EQ(filesIn(folder), 1U);
}

TEST(report_file, keeps_the_rights_of_the_old_one_and_a_link_to_it) {
  const ScratchFolder folder;
  const std::string file = folder.file("report.json");
  const std::string link = folder.file("link.json");
  writeFile(file, "old", {});
  fs::permissions(file, fs::perms::owner_read);
  fs::create_symlink("report.json", link);
  writeFile(link, "new", {});
  EXPECT_EQ(contentOf(file), "new");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(filesIn(folder), 2U);
}

TEST(report_file, of_two_writers_at_once_is_that_of_one) {
  const ScratchFolder folder;
  const std::string file = folder.file("report.json");
  const std::string zeros(std::size_t{3} << 20, '0');
  const std::string ones(std::size_t{5} << 20, '1');
  const auto write = [&](const std::string& content) {
    for (int i = 0; i < 5; ++i) writeFile(file, content, {});
  };
  auto other = std::async(std::launch::async, [&] { EXPECT_NO_THROW(write(ones)); });
  EXPECT_NO_THROW(write(zeros));
  other.wait();
  const std::string content = contentOf(file);
  EXPECT_TRUE(content == zeros || content == ones);
  EXPECT_EQ(filesIn(folder), 1U);
}

TEST(report_file, leaves_alone_what_lies_beside_it) {
  const ScratchFolder folder;
  const std::string file = folder.file("report.json");
  writeFile(file + ".unfinished", "of someone else", {});
  writeFile(file, "new", {});
  EXPECT_EQ(contentOf(file + ".unfinished"), "of someone else");
}

TEST(report_file, stays_the_old_one_after_a_stop) {
  const ScratchFolder folder;
  const std::string file = folder.file("report.json");
  writeFile(file, "old", {});
  std::stop_source stop;
  stop.request_stop();
  EXPECT_THROW(writeFile(file, "new", stop.get_token()), calibration::Cancelled);
  EXPECT_EQ(contentOf(file), "old");
  EXPECT_EQ(filesIn(folder), 1U);
}

TEST(report_file, takes_the_place_of_no_folder_and_no_pipe) {
  const ScratchFolder folder;
  const std::string file = folder.file("report.json");
  const std::string pipe = folder.file("pipe.json");
  fs::create_directory(file);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path : {file, pipe}) {
    try {
      writeFile(path, "new", {});
      ADD_FAILURE() << path << " became a report";
    } catch (const calibration::Unusable& failure) {
      EXPECT_THAT(failure.what(), HasSubstr(path + "' cannot be written: it is "));
    }
  }
  EXPECT_TRUE(fs::is_directory(file) && fs::is_fifo(pipe));
  EXPECT_EQ(filesIn(folder), 2U);
}

}  // namespace
}  // namespace pelmora::report
