// SPDX-License-Identifier: MIT
#include "component/location.h"

#include "tests/support/operation_test.h"

namespace pelmora::test {
namespace {

DatabaseLocation location(std::string full, std::string folder, std::string file, std::string drive,
                          std::string extension) {
  return {std::move(full), std::move(folder), std::move(file), std::move(drive),
          std::move(extension)};
}

TEST(splitLocation, splits_the_default_path) {
  EXPECT_EQ(splitLocation("c:\\program files\\quorvane\\Pelmora.mdb"),
            location("c:\\program files\\quorvane\\Pelmora.mdb", "c:\\program files\\quorvane\\",
                     "Pelmora.mdb", "c:", ".mdb"));
  EXPECT_STREQ(defaultLocation, "c:\\program files\\quorvane\\Pelmora.mdb");
}

TEST(splitLocation, takes_a_text_without_a_dot_as_a_folder) {
  EXPECT_EQ(splitLocation("d:\\curves"), location("d:\\curves", "d:\\curves\\", "", "d:", ""));
}

TEST(splitLocation, adds_a_backslash_to_a_folder_that_has_one) {
  EXPECT_EQ(splitLocation("d:\\curves\\"),
            location("d:\\curves\\", "d:\\curves\\\\", "", "d:", ""));
}

TEST(splitLocation, takes_a_dot_in_a_folder_name_for_a_file) {
  EXPECT_EQ(splitLocation("d:\\data.old\\meters"),
            location("d:\\data.old\\meters", "d:\\data.old\\", "meters", "d:", ".old\\meters"));
}

TEST(splitLocation, begins_the_extension_at_the_last_dot) {
  EXPECT_EQ(splitLocation("e:\\a.b.c.db").Extension, ".db");
  EXPECT_EQ(splitLocation("e:\\a.").Extension, ".");
  EXPECT_EQ(splitLocation(".").FileName, ".");
}

TEST(splitLocation, leaves_the_folder_of_a_bare_file_name_empty) {
  EXPECT_EQ(splitLocation("curves.db"), location("curves.db", "", "curves.db", "", ".db"));
}

TEST(splitLocation, leaves_the_drive_of_a_relative_text_empty) {
  EXPECT_EQ(splitLocation("data\\curves.db"),
            location("data\\curves.db", "data\\", "curves.db", "", ".db"));
}

TEST(splitLocation, ends_the_drive_at_the_first_colon) {
  EXPECT_EQ(splitLocation("host:5432:x.db").Drive, "host:");
  EXPECT_EQ(splitLocation(":").Drive, ":");
}

TEST(splitLocation, looks_for_backslashes_alone) {
  EXPECT_EQ(splitLocation("/srv/curves.db"),
            location("/srv/curves.db", "", "/srv/curves.db", "", ".db"));
}

TEST(splitLocation, gives_an_empty_record_for_an_empty_text) {
  EXPECT_EQ(splitLocation(""), DatabaseLocation());
}

class getConnectionOf : public ScriptedOperationTest {
 protected:
  ConnectionPtr connect(std::string& text) { return getConnection(text, shared, platform()); }
};

TEST_F(getConnectionOf, a_location_is_not_opened) {
  std::string text = "e:\\other.db";
  const ConnectionPtr connection = connect(text);
  ASSERT_NE(connection, nullptr);
  EXPECT_FALSE(connection->isOpen());
  EXPECT_THAT(locations, testing::ElementsAre("e:\\other.db"));
}

TEST_F(getConnectionOf, an_empty_text_is_the_shared_full_path_also_in_the_callers_variable) {
  shared.location = splitLocation("d:\\curves");
  std::string text;
  (void)connect(text);
  EXPECT_EQ(text, "d:\\curves");
  EXPECT_THAT(locations, testing::ElementsAre("d:\\curves"));
}

TEST_F(getConnectionOf, nothing_at_all_is_an_error_of_its_own) {
  shared.location = splitLocation("");
  std::string text;
  try {
    (void)connect(text);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(static_cast<std::uint32_t>(error.number()), 0x80040207U);
    EXPECT_EQ(error.source(), "Pelmora:getConnection");
    EXPECT_STREQ(error.what(), "Empty database location");
  }
}

TEST_F(getConnectionOf, a_location_without_a_driver_is_not_taken_for_a_locked_one) {
  platform().createConnection = nullptr;
  std::string text = "e:\\other.db";
  try {
    (void)connect(text);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_NE(static_cast<std::uint32_t>(error.number()), 0x80004005U);
    EXPECT_THAT(error.what(), testing::HasSubstr("e:\\other.db"));
  }
}

}  // namespace
}  // namespace pelmora::test
