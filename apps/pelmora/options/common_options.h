// Options that several commands share, worded once.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/options/command.h"
#include "apps/pelmora/options/database_option.h"
#include "apps/pelmora/input/question.h"

#include <pelmora/sheet.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::cli {

// A file or folder. A path that would not be shown as it is reads as another one: it is refused.
void addPath(Command& command, const OptionText& option, std::string& path);
// A path to a database alone.
void addDatabase(Command& command, const OptionText& option, std::string& path);
void addDatabase(Command& command, std::string& path);
// With --wait, for commands that work on a database that is there.
void addDatabase(Command& command, DatabaseOption& curves);
void addWait(Command& command, DatabaseOption& curves);
// A name to look for. Errors when it is parsed: as for requireName().
void addName(Command& command, const OptionText& option, std::string& name);
void addMeter(Command& command, std::string& serialNumber, bool isRequired);
// One series; `isRequired` where the command works on one alone.
void addSeries(Command& command, std::string& name, bool isRequired);
// Any number of series, all of the meter where none is named.
void addSeriesList(Command& command, std::vector<std::string>& names);
void addCalibration(Command& command, std::int16_t& reCalID);
// An option that takes a whole number from `lowest` to 32767.
void addSmallInteger(Command& command, const std::string& name, std::int16_t& value,
                     std::int64_t lowest, const std::string& help);
void addJson(Command& command, bool& asJson);
// For commands that write: everything is done and then undone, so that what it says is what would
// be.
void addDryRun(Command& command, bool& isDryRun);
// For commands that ask; the others get it without effect, so that scripts can pass it to any.
void addNoInput(Command& command, bool& neverAsks);
// --yes and --no-input, for commands that ask before something goes.
void addConsent(Command& command, Consent& consent);

// --separator and --decimal.
void addSheetStyle(Command& command, sheets::Style& style);

// An import as it stands on the command line.
struct ImportOptions {
  std::string meter, stand;
  std::vector<std::string> jobs, fluids, operators;
  std::int16_t calibration = -1, standNumber = -1, position = -1;
  bool newCalibration = false, update = false;
  std::string date;
  sheets::Style style;
};
void addImport(Command& command, ImportOptions& options);

}  // namespace pelmora::cli
