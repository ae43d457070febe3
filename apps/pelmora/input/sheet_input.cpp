// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/sheet_input.h"

#include "base/text_flaw.h"

#include <cstdio>

namespace pelmora::cli {
namespace {

char separatorNamed(const std::string& text) {
  if (text == "comma") return ',';
  if (text == "semicolon") return ';';
  if (text == "tab") return '\t';
  const bool isSign = text.size() == 1 && text[0] > ' ' && text[0] < '\x7F' && text[0] != '"' &&
                      text[0] != '.' && text[0] != '-' && text[0] != '+';
  const bool isWord = text.size() == 1 &&
                      ((text[0] >= '0' && text[0] <= '9') || (text[0] >= 'A' && text[0] <= 'Z') ||
                       (text[0] >= 'a' && text[0] <= 'z'));
  if (isSign && !isWord) return text[0];
  if (text == "\t") return '\t';
  throw Trouble(ExitCode::usage, "--separator: '" + shortened(text) + "' is not allowed",
                "give comma, semicolon, tab or one other sign");
}

}  // namespace

void addSheetStyle(Command& command, sheets::Style& style) {
  command.addText({"--separator", "SIGN",
                   "Between the fields of the file: comma, semicolon, tab or one other sign "
                   "(default: recognised)"},
                  [&style](const std::string& text) { style.separator = separatorNamed(text); });
  command.addChoice(
      {"--decimal", "point|comma", "Decimal sign of the numbers in the file (default: recognised)"},
      [&style](const std::string& text) { style.decimal = text == "point" ? '.' : ','; });
}

std::string remedyWithOption(const std::string& remedy, sheets::SheetError::Doubt doubt) {
  switch (doubt) {
    case sheets::SheetError::Doubt::separator:
      return remedy + ": --separator comma, --separator semicolon or --separator tab";
    case sheets::SheetError::Doubt::decimal: return remedy + ": --decimal point or --decimal comma";
    case sheets::SheetError::Doubt::none: break;
  }
  return remedy;
}

Trouble sheetTrouble(const std::string& path, const sheets::SheetError& error) {
  const sheets::SheetError placed = error.inFile(path, error.number());
  return {ExitCode::badInput, placed.place() + ": " + placed.problem(),
          remedyWithOption(placed.remedy(), placed.doubt())};
}

void sayNote(const std::string& note) {
  std::fprintf(stderr, "pelmora: note: %s\n", oneLine(note).c_str());
}

void sayRecognised(const std::string& path, const sheets::Recognised& recognised) {
  if (const std::string words = recognised.words(); !words.empty())
    sayNote("file '" + path + "' was read with " + words);
}

}  // namespace pelmora::cli
