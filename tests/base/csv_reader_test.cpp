// SPDX-License-Identifier: MIT
#include "base/csv_reader.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pelmora {
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
  for (const char* text : {"a,b\nc,d", "a,b\nc,d\n", "a,b\r\nc,d\r\n", "a,b\rc,d\r",
                           "\n\na,b\n\n\nc,d\n\n", "\r\ra,b\r\r\nc,d\r\n\r", "a,b\n\rc,d"}) {
    EXPECT_EQ(records(text), expected) << text;
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
  for (const char* text : {"a\n\n\"b\nb\"\r\nc", "a\r\r\"b\rb\"\rc", "a\r\n\n\"b\r\nb\"\rc"}) {
    CsvReader reader(text);
    std::vector<CsvField> fields;
    std::vector<std::size_t> lines;
    while (reader.next(fields)) lines.push_back(reader.line());
    EXPECT_EQ(lines, (std::vector<std::size_t>{1, 3, 5})) << text;
  }
}

TEST(csv_reader, another_separator_may_be_chosen) {
  CsvReader reader("a,b;\"c;d\"", {.Separator = ';'});
  std::vector<CsvField> fields;
  ASSERT_TRUE(reader.next(fields));
  ASSERT_EQ(fields.size(), 2U);
  EXPECT_EQ(fields[0].text, "a,b");
  EXPECT_EQ(fields[1].text, "c;d");
  EXPECT_FALSE(fields[0].isQuoted);
  EXPECT_TRUE(fields[1].isQuoted);
}

TEST(csv_reader, comment_lines_may_be_left_out) {
  const auto isComment = [](std::string_view line) { return line.starts_with('#'); };
  CsvReader reader("# a \"title\nx,y\n#\r\n1,#2\n# end", {.IsComment = isComment});
  std::vector<CsvField> fields;
  ASSERT_TRUE(reader.next(fields));
  EXPECT_EQ(fields[0].text, "x");
  EXPECT_EQ(reader.line(), 2U);
  ASSERT_TRUE(reader.next(fields));
  EXPECT_EQ(fields[1].text, "#2");
  EXPECT_EQ(reader.line(), 4U);
  EXPECT_FALSE(reader.next(fields));
}

std::string failureOf(std::string_view text) {
  try {
    (void)records(text);
  } catch (const CsvError& error) {
    EXPECT_EQ(error.number(), 13);
    return error.what();
  }
  return {};
}

TEST(csv_reader, a_quote_that_is_not_closed_is_named_by_the_line_where_it_opened) {
  EXPECT_EQ(failureOf("x\na,\"b\nc"),
            "Line 2, field 2: a quote is not closed; close it, or write a quote inside a quoted "
            "field twice.");
}

TEST(csv_reader, text_behind_a_closing_quote_is_refused) {
  const std::string remedy =
      "; put a separator between them, or write a quote inside a quoted field twice.";
  EXPECT_EQ(failureOf("1,2\n\"1\"x,2"), "Line 2, field 1: 'x' follows a closing quote" + remedy);
  EXPECT_EQ(failureOf("1,\"2\" 3"), "Line 1, field 2: ' 3' follows a closing quote" + remedy);
  EXPECT_NE(failureOf("\"1\" \"2\""), "");
}

TEST(csv_reader, what_a_message_quotes_is_cut_at_60_characters) {
  const std::string text = failureOf("\"1\"" + std::string(100000, 'y'));
  EXPECT_NE(text.find("'" + std::string(60, 'y') + "...'"), std::string::npos)
      << text.substr(0, 200);
}

TEST(csv_reader, quotes_inside_a_plain_field_are_its_text) {
  EXPECT_EQ(records("5\" pipe,2"), (std::vector<Record>{{"5\" pipe", "2"}}));
}

}  // namespace
}  // namespace pelmora
