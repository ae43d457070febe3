// SPDX-License-Identifier: MIT
#include <pelmora/platform.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

namespace pelmora::test {
namespace {

TEST(default_platform, shows_boxes_and_makes_connections) {
  const Platform& own = platform();
  EXPECT_TRUE(own.messageBox);
  EXPECT_TRUE(own.createConnection);
}

TEST(default_platform, pumps_nothing_and_has_no_window) {
  const auto pump = platform().pumpMessages;
  EXPECT_NO_THROW(pump ? pump() : void());
  EXPECT_FALSE(platform().createFormPresenter);
}

TEST(default_platform, has_the_folder_of_the_library_as_component_folder) {
  EXPECT_TRUE(std::filesystem::is_directory(platform().componentFolder));
  // The library is linked into this program.
  const auto program = std::filesystem::read_symlink("/proc/self/exe");
  EXPECT_TRUE(std::filesystem::equivalent(platform().componentFolder, program.parent_path()));
}

TEST(default_platform, is_the_threads_own) {
  const Platform saved = platform();
  platform().componentFolder = "changed here";
  std::string elsewhere;
  std::thread([&] { elsewhere = platform().componentFolder; }).join();
  EXPECT_EQ(platform().componentFolder, "changed here");
  EXPECT_EQ(elsewhere, saved.componentFolder);
  platform() = saved;
}

TEST(default_platform, makes_connections_that_are_not_open_yet) {
  EXPECT_NE(platform().createConnection("/there/is/no/such/file.db"), nullptr);
}

}  // namespace
}  // namespace pelmora::test
