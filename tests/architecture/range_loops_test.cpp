// A range-for loop keeps alive what its range expression returns, but not what that came from: in
// `for (auto& x : f()["a"])` the result of f() is destroyed before the first round.
// SPDX-License-Identifier: MIT
#include "tests/architecture/sources.h"
#include "tests/support/places.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr auto nowhere = std::string_view::npos;
constexpr std::size_t fewestLoops = 1000;

// Functions of which a loop may read a part, wherever they are called.
bool isLender(const std::string& name) {
  static const std::set<std::string> references{"at",    "drawn", "function", "schemaTable",
                                                "sheet", "table", "value"};
  return references.contains(name);
}

bool isNamePart(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool isOpening(char c) { return c == '(' || c == '[' || c == '{'; }
bool isClosing(char c) { return c == ')' || c == ']' || c == '}'; }

// Where the comment or the literal that starts at `at` ends; `at` if none starts there.
std::size_t endOfHidden(std::string_view text, std::size_t at) {
  const auto after = [&](const std::string& end, std::size_t from) {
    const std::size_t found = text.find(end, from);
    return found == nowhere ? text.size() : found + end.size();
  };
  const std::string_view rest = text.substr(at);
  if (rest.starts_with("//")) return std::min(text.find('\n', at), text.size());
  if (rest.starts_with("/*")) return after("*/", at + 2);
  if (rest.starts_with("R\"")) {
    const std::size_t open = std::min(text.find('(', at), text.size());
    return after(")" + std::string(text.substr(at + 2, open - at - 2)) + "\"", open);
  }
  const char quote = text[at];
  const bool isDigitSeparator =
      quote == '\'' && at > 0 && std::isxdigit(static_cast<unsigned char>(text[at - 1])) != 0;
  if ((quote != '"' && quote != '\'') || isDigitSeparator) return at;
  std::size_t end = at + 1;
  while (end < text.size() && text[end] != quote) end += text[end] == '\\' ? 2 : 1;
  return std::min(end + 1, text.size());
}

// The text without comments and literals; its line breaks stay.
std::string codeOf(std::string_view text) {
  std::string code;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = endOfHidden(text, at);
    if (end == at) {
      const std::size_t next = std::min(text.find_first_of("/\"'R", at + 1), text.size());
      code += text.substr(at, next - at);
      at = next;
      continue;
    }
    const std::string_view hidden = text.substr(at, end - at);
    code.append(static_cast<std::size_t>(std::count(hidden.begin(), hidden.end(), '\n')), '\n');
    at = end;
  }
  return code;
}

struct RangeLoop {
  std::size_t line = 0;
  std::string range;  // what follows the colon
};

// What follows the colon of the loop whose parenthesis opens at `open`; empty if it has no range.
std::string_view rangeOf(std::string_view code, std::size_t open) {
  int depth = 0, semicolons = 0;
  std::size_t colon = nowhere;
  for (std::size_t at = open; at < code.size(); ++at) {
    const char c = code[at];
    if (isOpening(c)) ++depth;
    if (isClosing(c) && --depth == 0) {
      const bool hasRange = colon != nowhere && semicolons < 2;
      return hasRange ? code.substr(colon + 1, at - colon - 1) : std::string_view();
    }
    if (depth != 1) continue;
    if (c == ';') {  // what came before it is an initial statement
      ++semicolons;
      colon = nowhere;
    }
    if (code.substr(at, 2) == "::")
      ++at;
    else if (c == ':' && colon == nowhere)
      colon = at;
  }
  return {};
}

std::vector<RangeLoop> rangeLoopsOf(const std::string& code) {
  constexpr std::string_view start = "for (";  // as the formatter writes it
  std::vector<RangeLoop> loops;
  std::size_t line = 1, counted = 0;
  for (std::size_t at = code.find(start); at != nowhere; at = code.find(start, at + 1)) {
    if (at > 0 && isNamePart(code[at - 1])) continue;
    const std::string_view range = rangeOf(code, at + start.size() - 1);
    if (range.empty()) continue;
    line +=
        static_cast<std::size_t>(std::count(code.begin() + static_cast<std::ptrdiff_t>(counted),
                                            code.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    counted = at;
    loops.push_back({line, std::string(range)});
  }
  return loops;
}

// "f" for f(, ns::f<int>( and T{; empty for a parenthesis that calls nothing.
std::string calledAt(std::string_view range, std::size_t open) {
  std::size_t end = open;
  if (end > 0 && range[end - 1] == '>') {
    for (int depth = 0; end > 0;) {
      --end;
      if (range[end] == '>') ++depth;
      if (range[end] == '<' && --depth == 0) break;
    }
  }
  std::size_t begin = end;
  while (begin > 0 && isNamePart(range[begin - 1])) --begin;
  return std::string(range.substr(begin, end - begin));
}

// The function or type of whose result the loop reads a part that may be gone; empty if there is
// none.
std::string temporaryOf(std::string_view range) {
  std::vector<std::size_t> open;
  for (std::size_t at = 0; at < range.size(); ++at) {
    if (isOpening(range[at])) open.push_back(at);
    if (!isClosing(range[at]) || open.empty()) continue;
    const std::string called = range[at] == ']' ? "" : calledAt(range, open.back());
    open.pop_back();
    if (!open.empty() || called.empty() || isLender(called)) continue;
    const std::size_t next = range.find_first_not_of(" \n", at + 1);
    if (next == nowhere) continue;
    const std::string_view rest = range.substr(next);
    if (rest[0] == '[' || rest[0] == '.' || rest.starts_with("->")) return called;
  }
  return {};
}

std::vector<std::string> temporariesOf(std::string_view source) {
  std::vector<std::string> found;
  for (const RangeLoop& loop : rangeLoopsOf(codeOf(source))) {
    const std::string name = temporaryOf(loop.range);
    if (!name.empty()) found.push_back(std::to_string(loop.line) + " " + name);
  }
  return found;
}

TEST(range_loops, read_nothing_of_a_temporary) {
  const std::filesystem::path sources = pelmora::test::sourceFolder();
  std::size_t loops = 0;
  for (const char* folder : {"src", "apps", "include", "tests", "bindings"}) {
    for (const std::filesystem::path& file : pelmora::test::sourcesIn(sources / folder)) {
      const std::string code = codeOf(pelmora::test::textOf(file));
      for (const RangeLoop& loop : rangeLoopsOf(code)) {
        ++loops;
        const std::string name = temporaryOf(loop.range);
        EXPECT_EQ(name, "") << file.string() << ":" << loop.line << ": the result of " << name
                            << " may be gone before the first round; name it before the loop";
      }
    }
  }
  EXPECT_GT(loops, fewestLoops);
}

TEST(range_loops_check, finds_parts_of_temporaries) {
  const auto found = [](const char* source) { return temporariesOf(source); };
  using Found = std::vector<std::string>;
  EXPECT_EQ(found("\n// for (;;)\nfor (const json& x : f()[\"a\"]) {"), Found{"3 f"});
  EXPECT_EQ(found("for (auto& x : f().items())"), Found{"1 f"});
  EXPECT_EQ(found("for (auto& c : make(\")\", ')').columns)"), Found{"1 make"});
  EXPECT_EQ(found("for (int x : ns::find<A<int>>(a, b)\n         ->list)"), Found{"1 find"});
  EXPECT_EQ(found("for (const auto& [a, b] : Reader{file}.rows())"), Found{"1 Reader"});
  EXPECT_EQ(found("for (int n = 0; auto& x : reader.all()[n])"), Found{"1 all"});
  EXPECT_EQ(found("for (auto& x : f().at(\"a\"))"), Found{"1 f"});
  EXPECT_EQ(found("for (auto& x : a)\n  for (auto& y : g()[0])"), Found{"2 g"});
}

TEST(range_loops_check, passes_what_outlives_the_loop) {
  for (const char* source :
       {"for (auto& x : list)", "for (auto& x : f(g()[0]))", "for (auto& x : object.list())",
        "for (auto& x : object[\"a\"].list)", "for (auto& x : *object->list)",
        "for (auto& x : {f(), g()})", "for (auto& x : object.at(\"a\").list)",
        "for (auto all = f(); auto& x : all[\"a\"])", "for (int i = 0; i < (a ? b : f()[0]); ++i)",
        "for (std::string s; next(s) ? f().more() : false;)", "// for (auto& x : f()[0])",
        "\"for (auto& x : f()[0])\"", "R\"x(for (auto& x : f()[0]))x\"",
        "wait_for (auto& x : f()[0])"}) {
    EXPECT_TRUE(temporariesOf(source).empty()) << source;
  }
}

}  // namespace
