// SPDX-License-Identifier: MIT
#include "report/json_stream.h"
#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace pelmora::test::json_stream_test {
namespace {

using nlohmann::json;
using report::JsonStream;

// Writes the value piece by piece: what is nested by the stream, what is plain by nlohmann's own
// text.
void write(JsonStream& stream, const json& value) {
  if (value.is_object()) {
    stream.beginObject();
    for (const auto& [key, member] : value.items()) {
      stream.key(key);
      write(stream, member);
    }
    stream.end();
  } else if (value.is_array()) {
    stream.beginList();
    for (const json& element : value) write(stream, element);
    stream.end();
  } else {
    stream.value(value);
  }
}

std::string streamed(const json& value) {
  std::string text;
  JsonStream stream([&](std::string_view piece) { text += piece; });
  write(stream, value);
  return text;
}

TEST(json_stream, writes_the_text_of_the_whole_value) {
  for (const char* text :
       {R"({"a": 1, "b": [1.5, null, "x\ny"], "c": {"d": [], "e": {}, "f": [[], [{}], [1, [2]]]}})",
        R"([{"name": "line\nbreak and \"quotes\"", "key\n2": true}, {}, []])", "[]", "{}", "7",
        R"("\n")"}) {
    const json value = json::parse(text);
    EXPECT_EQ(streamed(value), report::jsonText(value));
  }
}

TEST(json_stream, indents_a_value_of_several_lines_as_deep_as_it_stands) {
  std::string text;
  JsonStream stream([&](std::string_view piece) { text += piece; });
  const json deep = json::parse(R"({"a": [1, {"b": "two\nlines"}]})");
  stream.beginObject();
  stream.key("list");
  stream.beginList();
  stream.value(deep);
  stream.value(deep);
  stream.end();
  stream.end();
  EXPECT_EQ(text, report::jsonText({{"list", {deep, deep}}}));
}

TEST(json_stream, replaces_text_that_is_not_utf_8) {
  std::string text;
  JsonStream stream([&](std::string_view piece) { text += piece; });
  stream.beginObject();
  stream.key("a\xff");
  stream.value("b\xff");
  stream.end();
  EXPECT_EQ(text, "{\n  \"a\xEF\xBF\xBD\": \"b\xEF\xBF\xBD\"\n}\n");
}

}  // namespace
}  // namespace pelmora::test::json_stream_test
