// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/sheet_input.h"

namespace pelmora::cli {

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

void sayRecognised(const std::string& path, const sheets::Recognised& recognised) {
  if (const std::string words = recognised.words(); !words.empty())
    printNote("file '" + path + "' was read with " + words);
}

}  // namespace pelmora::cli
