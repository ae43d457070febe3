// SPDX-License-Identifier: MIT
#include "adapters/access/message.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace pelmora::access {
namespace {

Message travelled(const Message& message) {
  const std::string bytes = encoded(message);
  std::string_view left = bytes;
  const auto taken = takeMessage(left);
  EXPECT_TRUE(left.empty());
  return taken.value();
}

TEST(access_message, values_arrive_as_they_were) {
  const TableRow row{{Value(), std::int64_t{-5}, std::numeric_limits<double>::denorm_min(), -0.0,
                      std::string("caf\xC3\xA9")}};
  const auto arrived = std::get<TableRow>(travelled(row));
  EXPECT_EQ(arrived.values, row.values);
  EXPECT_TRUE(std::signbit(std::get<double>(arrived.values[3])));
}

TEST(access_message, tables_and_notes_arrive_as_they_were) {
  const auto table = std::get<TableStart>(travelled(TableStart{
      "raw1", 7, {{"seriesID", OwnColumnType::whole}, {"Roshko", OwnColumnType::real}}}));
  EXPECT_EQ(table.name, "raw1");
  EXPECT_EQ(table.rows, 7U);
  ASSERT_EQ(table.columns.size(), 2U);
  EXPECT_EQ(table.columns[1].Name, "Roshko");
  EXPECT_EQ(table.columns[1].Type, OwnColumnType::real);
  const auto note =
      std::get<LeftOutNote>(travelled(LeftOutNote{LeftOutNote::Kind::value, 1, "page 3", "why"}));
  EXPECT_EQ(note.kind, LeftOutNote::Kind::value);
  EXPECT_EQ(note.reason, "why");
}

TEST(access_message, is_not_taken_before_it_is_complete) {
  const std::string bytes = encoded(FileFailure{"it is damaged"});
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    std::string_view part = std::string_view(bytes).substr(0, size);
    EXPECT_FALSE(takeMessage(part).has_value());
    EXPECT_EQ(part.size(), size);
  }
}

TEST(access_message, invalid_bytes_are_refused) {
  const auto refuse = [](std::string bytes) {
    std::string_view left = bytes;
    EXPECT_THROW(static_cast<void>(takeMessage(left)), InvalidMessage) << bytes;
  };
  refuse("Hello world");                           // no such kind
  refuse(std::string("\x04\xFF\xFF\xFF\xFF", 5));  // 4 GB
  refuse(std::string("\x04\x02\0\0\0ab", 7));      // ends inside its text
  refuse(
      std::string("\x03\x09\0\0\0"
                  "123456789",
                  14));                                // more than its fields
  refuse(std::string("\x01\x03\0\0\0\x01\0\x07", 8));  // a value of no kind
}

}  // namespace
}  // namespace pelmora::access
