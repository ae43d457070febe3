// SPDX-License-Identifier: MIT
#include "adapters/stand_csv/csv_reader.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pelmora::stand {
namespace {

using Record = std::vector<std::string>;

std::vector<Record> records(std::string_view text) {
  CsvReader reader(text);
  std::vector<CsvField> fields;
  std::vector<Record> result;
  while (reader.next(fields)) {
    result.emplace_back();
    for (const CsvField& field : fields) result.back().push_back(field.text);
  }
  return result;
}

TEST(csv_reader, fields_stand_between_commas) {
  EXPECT_EQ(records("a,b,,d\n1,,"), (std::vector<Record>{{"a", "b", "", "d"}, {"1", "", ""}}));
}

TEST(csv_reader, lines_may_end_in_any_way) {
  const std::vector<Record> expected{{"a", "b"}, {"c", "d"}};
  for (const char* text :
       {"a,b\nc,d", "a,b\nc,d\n", "a,b\r\nc,d\r\n", "a,b\rc,d\r", "\n\na,b\n\n\nc,d\n\n"}) {
    EXPECT_EQ(records(text), expected);
  }
}

TEST(csv_reader, quoted_fields_hold_anything) {
  EXPECT_EQ(records("\"a,\"\"b\"\"\r\nc\",d\n\"\""),
            (std::vector<Record>{{"a,\"b\"\r\nc", "d"}, {""}}));
}

TEST(csv_reader, a_byte_order_mark_is_no_text) {
  EXPECT_EQ(records("\xEF\xBB\xBF"
                    "a"),
            (std::vector<Record>{{"a"}}));
  EXPECT_TRUE(records("\xEF\xBB\xBF").empty());
}

TEST(csv_reader, lines_are_counted_from_one) {
  CsvReader reader("a\n\n\"b\nb\"\r\nc");
  std::vector<CsvField> fields;
  std::vector<std::size_t> lines;
  while (reader.next(fields)) lines.push_back(reader.line());
  EXPECT_EQ(lines, (std::vector<std::size_t>{1, 3, 5}));
}

TEST(csv_reader, quotes_must_be_closed_before_a_comma) {
  EXPECT_THROW(records("a,\"b"), Error);
  EXPECT_THROW(records("\"a\"b,c"), Error);
}

}  // namespace
}  // namespace pelmora::stand
