// SPDX-License-Identifier: MIT
#include "uncertainty/stand_lines.h"

#include "base/text_flaw.h"
#include "base/text_lines.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>

namespace pelmora::uncertainty {
namespace {

std::string_view withoutBlanks(std::string_view text) {
  constexpr const char* blanks = " \t\r";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string quoted(std::string_view text) { return "'" + shortened(text) + "'"; }

void requireReadable(std::string_view line, std::size_t number, const std::string& where) {
  std::string plain(line);
  std::replace(plain.begin(), plain.end(), '\t', ' ');
  if (plain.ends_with('\r')) plain.pop_back();
  const TextFlaw flaw = flawOf(plain);
  if (flaw == TextFlaw::none) return;
  refuseLine(number,
             flaw == TextFlaw::malformed ? "the text is not UTF-8" : "there is a control character",
             where, "save the file as plain UTF-8 text");
}

template <class Named>
void requireNew(const std::vector<Named>& known, const Named& added, const std::string& what,
                const std::string& where) {
  const auto same = std::find_if(known.begin(), known.end(),
                                 [&](const Named& each) { return each.name == added.name; });
  if (same == known.end()) return;
  refuseLine(added.line,
             what + " " + quoted(added.name) + " is already in line " + std::to_string(same->line),
             where, "remove one of them, or give it another name");
}

bool isQuote(char c) { return c == '"' || c == '\''; }

// TOML puts its texts in quotes; INI does not.
std::string_view unquoted(std::string_view text) {
  const bool isQuoted = text.size() > 1 && isQuote(text.front()) && text.back() == text.front();
  return isQuoted ? text.substr(1, text.size() - 2) : text;
}

// A text in quotes or a number may be followed by a comment. In any other text, and in a name, # is
// a character like any other: "name = Stand #3", "name = 3rd stand #2".
std::string_view valueOf(std::string_view setting, std::string_view text) {
  if (text.empty()) return text;
  if (isQuote(text.front())) {
    const auto end = text.find(text.front(), 1);
    if (end == std::string_view::npos) return text;
    const std::string_view rest = withoutBlanks(text.substr(end + 1));
    return rest.empty() || rest.front() == '#' ? text.substr(1, end - 1) : text;
  }
  constexpr std::string_view startsOfNumber = "0123456789+-.";
  const bool isNumber =
      setting != "name" && startsOfNumber.find(text.front()) != std::string_view::npos;
  const auto comment = isNumber ? text.find('#') : std::string_view::npos;
  return comment == std::string_view::npos ? text : withoutBlanks(text.substr(0, comment));
}

// Where TOML's quotes around a label end; `at` if none begin there. An apostrophe inside a word is
// no quote: [flow: master's meter].
std::size_t endOfQuotes(std::string_view line, std::size_t at) {
  const std::string_view before = withoutBlanks(line.substr(0, at));
  if (!isQuote(line[at]) || !(before.ends_with('.') || before == "[")) return at;
  const auto end = line.find(line[at], at + 1);
  return end == std::string_view::npos ? at : end;
}

// [SECTION] without the comment after it. Brackets may stand in the name in pairs or in quotes, and
// in the comment.
std::string_view headOf(std::string_view line) {
  int depth = 0;
  for (std::size_t at = 0; at < line.size(); ++at) {
    at = endOfQuotes(line, at);
    if (line[at] == '[') ++depth;
    if (line[at] != ']' || --depth > 0) continue;
    const std::string_view rest = withoutBlanks(line.substr(at + 1));
    if (rest.empty() || rest.starts_with('#')) return line.substr(0, at + 1);
  }
  return line;
}

// TOML's bare keys have no blanks: degrees_of_freedom, half_width.
std::string nameOf(std::string_view text) {
  std::string name(unquoted(withoutBlanks(text)));
  std::replace(name.begin(), name.end(), '_', ' ');
  return name == "half width" ? "half-width" : name;
}

// [flow: master meter] or TOML's [flow."master meter"].
std::string sectionName(std::string_view text) {
  const auto dot = text.find('.');
  if (dot == std::string_view::npos || text.find(':') < dot) return std::string(unquoted(text));
  return std::string(withoutBlanks(text.substr(0, dot))) + ": " +
         std::string(unquoted(withoutBlanks(text.substr(dot + 1))));
}

Setting settingOf(std::string_view line, std::size_t number, const std::string& where) {
  const auto equals = line.find('=');
  if (equals == std::string_view::npos) {
    refuseLine(number, quoted(line) + " is neither a section nor a setting", where,
               "write [SECTION] or NAME = VALUE");
  }
  Setting setting{number, nameOf(line.substr(0, equals)), {}};
  setting.value = valueOf(setting.name, withoutBlanks(line.substr(equals + 1)));
  if (setting.name.empty())
    refuseLine(number, "there is no name", where, "write NAME = VALUE, or leave the line out");
  if (setting.value.empty()) {
    refuseLine(number, quoted(setting.name) + " has no value", where,
               "write NAME = VALUE, or leave the line out");
  }
  return setting;
}

}  // namespace

const Setting* Section::find(std::string_view setting) const {
  const auto found = std::find_if(settings.begin(), settings.end(),
                                  [&](const Setting& each) { return each.name == setting; });
  return found == settings.end() ? nullptr : &*found;
}

void refuseLine(std::size_t line, const std::string& what, const std::string& where,
                const std::string& remedy) {
  throw calibration::BadData({"line " + std::to_string(line) + ": " + what, where, remedy});
}

std::vector<Section> readSections(std::string_view text, const std::string& where) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  std::vector<Section> sections;
  std::size_t number = 0;
  for (const std::string_view whole : split(text, "\n")) {
    ++number;
    requireReadable(whole, number, where);
    const std::string_view line = withoutBlanks(whole);
    if (line.empty() || line.front() == '#' || line.front() == ';') continue;
    if (line.front() == '[') {
      const std::string_view head = headOf(line);
      if (head.back() != ']')
        refuseLine(number, quoted(line) + " has no closing bracket", where, "write [SECTION]");
      Section section{number, sectionName(withoutBlanks(head.substr(1, head.size() - 2))), {}};
      if (section.name.empty())
        refuseLine(number, "the section has no name", where, "write [SECTION]");
      requireNew(sections, section, "section", where);
      sections.push_back(std::move(section));
      continue;
    }
    Setting setting = settingOf(line, number, where);
    if (sections.empty()) {
      refuseLine(number, quoted(setting.name) + " comes before the first section", where,
                 "write [stand] or the section that it belongs to above it");
    }
    requireNew(sections.back().settings, setting, "setting", where);
    sections.back().settings.push_back(std::move(setting));
  }
  return sections;
}

}  // namespace pelmora::uncertainty
