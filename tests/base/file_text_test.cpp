// SPDX-License-Identifier: MIT
#include "base/file_text.h"

#include "tests/support/scratch_folder.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <string>
#include <utility>

namespace pelmora {
namespace {

class file_text : public testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.file(name), std::ios::binary) << text;
    return folder_.file(name);
  }
  static int errorOfReading(const std::string& path) {
    try {
      (void)readWholeFile(path);
    } catch (const Error& error) {
      return error.number();
    }
    return 0;
  }
  test::ScratchFolder folder_;
};

TEST_F(file_text, is_read_byte_for_byte) {
  const std::string bytes("a\r\n\0\xFF\x1A z\n", 9);
  EXPECT_EQ(readWholeFile(write("f", bytes)), bytes);
  EXPECT_EQ(readWholeFile(write("empty", "")), "");
}

TEST_F(file_text, path_keeps_utf8) {
  const std::string name = "Z\xC3\xA4hler.txt";
  EXPECT_EQ(utf8Text(filePath(name)), name);
  EXPECT_EQ(filePath(name).native().size(), name.size());  // on this system a path is its bytes
  write(name, "text");
  EXPECT_EQ(readWholeFile(filePath(folder_.file(name))), "text");
}

TEST_F(file_text, folder_and_missing_path_are_no_files) {
  EXPECT_TRUE(fileExists(write("f", "x")));
  EXPECT_FALSE(fileExists(folder_.file("missing")));
  EXPECT_FALSE(fileExists(folder_.path()));
  EXPECT_FALSE(fileExists(""));
  EXPECT_FALSE(fileExists(folder_.file("f") + "/below a file"));
  EXPECT_FALSE(fileExists(folder_.file(std::string(5000, 'n'))));
}

// Number and text of the error, or 0.
std::pair<int, std::string> refusal(const std::string& path) {
  try {
    requireRegularFile(path);
  } catch (const Error& error) {
    return {error.number(), error.what()};
  }
  return {};
}

TEST_F(file_text, what_is_required_may_be_missing_a_folder_or_a_pipe) {
  EXPECT_EQ(refusal(write("f", "x")).first, 0);
  const std::string missing = folder_.file("missing"), pipe = folder_.file("pipe");
  const std::string folder = folder_.path().string();
  EXPECT_EQ(refusal(missing),
            std::pair(53, "Could not find file '" + missing + "'. Check the folder and the name."));
  EXPECT_EQ(refusal("").first, 53);
  EXPECT_EQ(refusal(folder_.file("f") + std::string(1, '\0')).first, 53);
  EXPECT_EQ(refusal(folder_.file("f") + "/below a file").first, 53);
  EXPECT_EQ(refusal(folder), std::pair(75, "Could not open '" + folder +
                                               "': it is a folder. Name the file inside it."));
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(refusal(pipe), std::pair(75, "Could not open '" + pipe +
                                             "': it is not a regular file. Name another file."));
}

TEST_F(file_text, what_is_required_may_be_out_of_reach) {
  const std::string name = folder_.file(std::string(5000, 'n'));
  const auto [number, text] = refusal(name);
  EXPECT_EQ(number, 75);
  EXPECT_EQ(text.find("Could not open file '" + name + "': "), 0U) << text;
  EXPECT_NE(text.find(". Check the path and its permissions."), std::string::npos) << text;
}

TEST_F(file_text, what_cannot_be_read_is_a_path_access_error) {
  EXPECT_EQ(errorOfReading(folder_.file("missing")), 75);
  EXPECT_EQ(errorOfReading(folder_.path()), 75);
  // A socket cannot be opened as a file, whoever tries.
  ASSERT_EQ(mknod(folder_.file("socket").c_str(), S_IFSOCK | 0600, 0), 0);
  EXPECT_EQ(errorOfReading(folder_.file("socket")), 75);
}

}  // namespace
}  // namespace pelmora
