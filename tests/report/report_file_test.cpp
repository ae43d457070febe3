// A report's file is the old one or the new one, and nothing unfinished stays behind.
// SPDX-License-Identifier: MIT
#include "report/report_file.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pelmora/calibration/failure.h>

#include <filesystem>
#include <fstream>
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

TEST(report_file, holds_every_byte_of_several_portions) {
  const ScratchFolder folder;
  const std::string file = folder.file("report.json");
  std::string content(std::size_t{3} << 20, '\0');
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 7 / 5);
  writeFile(file, content, {});
  EXPECT_TRUE(contentOf(file) == content);
  EXPECT_FALSE(fs::exists(file + ".unfinished"));
}

TEST(report_file, stays_the_old_one_after_a_stop) {
  const ScratchFolder folder;
  const std::string file = folder.file("report.json");
  writeFile(file, "old", {});
  std::stop_source stop;
  stop.request_stop();
  EXPECT_THROW(writeFile(file, "new", stop.get_token()), calibration::Cancelled);
  EXPECT_EQ(contentOf(file), "old");
  EXPECT_FALSE(fs::exists(file + ".unfinished"));
}

TEST(report_file, that_cannot_be_named_leaves_nothing_behind) {
  const ScratchFolder folder;
  const std::string file = folder.file("report.json");
  fs::create_directory(file);
  fs::create_directory(file + "/inside");
  try {
    writeFile(file, "new", {});
    FAIL() << "a folder became a report";
  } catch (const calibration::Unusable& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("report.json' cannot be written"));
  }
  EXPECT_FALSE(fs::exists(file + ".unfinished"));
}

}  // namespace
}  // namespace pelmora::report
