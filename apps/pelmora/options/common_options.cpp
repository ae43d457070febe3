// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/common_options.h"

#include "apps/pelmora/options/names.h"
#include "apps/pelmora/options/strict_number.h"
#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "base/text_flaw.h"

#include <cmath>
#include <limits>
#include <string_view>

namespace pelmora::cli {
namespace {

constexpr double mostSeconds = 86400;
constexpr std::int64_t mostSmall = std::numeric_limits<std::int16_t>::max();

char separatorNamed(const std::string& text) {
  if (text == "comma") return ',';
  if (text == "semicolon") return ';';
  if (text == "tab") return '\t';
  // Anything but letters, digits, quotes, and the point and signs of numbers.
  constexpr std::string_view signs = "\t!#$%&'()*,/:;<=>?@[\\]^_`{|}~";
  if (text.size() == 1 && signs.find(text[0]) != std::string_view::npos) return text[0];
  throw Trouble(ExitCode::usage, "--separator: '" + shortened(text) + "' is not allowed",
                "give comma, semicolon, tab or any other single character");
}

}  // namespace

void addSmallInteger(Command& command, const std::string& name, std::int16_t& value,
                     std::int64_t lowest, const std::string& help) {
  command.addText({name, "N", help}, [&value, name, lowest](const std::string& text) {
    value = static_cast<std::int16_t>(integerOption(name, text, lowest, mostSmall));
  });
}

void addPath(Command& command, const OptionText& option, std::string& path) {
  const std::string shown = option.names.substr(option.names.find(',') + 1);
  command.addText(option, [&path, shown](const std::string& text) {
    requirePath(shown, text);
    path = text;
  });
}

void addDatabase(Command& command, const OptionText& option, std::string& path) {
  command.addText(option, [&path, name = option.names](const std::string& text) {
    requireDatabasePath(name, text);
    path = text;
  });
}

void addDatabase(Command& command, std::string& path) {
  addDatabase(command, {"CURVES", "FILE", "Curve database", true}, path);
}

void addDatabase(Command& command, DatabaseOption& curves) {
  addDatabase(command, curves.path);
  addWait(command, curves);
}

void addWait(Command& command, DatabaseOption& curves) {
  command.addText({"--wait", "SECONDS",
                   "How long to wait while another program has the database locked (default 30)"},
                  [&curves](const std::string& text) {
                    const double seconds = numberOption("--wait", text);
                    if (seconds < 0 || seconds > mostSeconds) {
                      throw Trouble(ExitCode::usage, "--wait: '" + text + "' is out of range",
                                    "give seconds, from 0 to " + significantText(mostSeconds, 6));
                    }
                    curves.wait = std::chrono::milliseconds(std::llround(seconds * 1000));
                  });
}

void addName(Command& command, const OptionText& option, std::string& name) {
  command.addText(option, [&name, names = option.names](const std::string& text) {
    requireName(names, text);
    const std::size_t first = text.find_first_not_of(' ');
    name = text.substr(first, text.find_last_not_of(' ') - first + 1);
  });
}

void addMeter(Command& command, std::string& serialNumber, bool isRequired) {
  addName(command, {"--meter", "SN", "Serial number of the meter", isRequired}, serialNumber);
}

void addSeries(Command& command, std::string& name, bool isRequired) {
  addName(command, {"--series", "NAME", "Name of the series", isRequired}, name);
}

void addSeriesList(Command& command, std::vector<std::string>& names) {
  command.addTexts(
      {"--series", "NAME", "Name of a series; repeat for more (default: all of the meter)"}, names);
}

void addCalibration(Command& command, std::int16_t& reCalID) {
  addSmallInteger(command, "--calibration", reCalID, 0,
                  "Number of the meter's calibration (default: the latest)");
}

void addJson(Command& command, bool& asJson) {
  command.addFlag("--json", asJson, "Write JSON instead of tables");
}

void addDryRun(Command& command, bool& isDryRun) {
  command.addFlag("--dry-run", isDryRun, "Show what would be done and change nothing");
}

void addNoInput(Command& command, bool& neverAsks) {
  command.addFlag("--no-input", neverAsks, "Never ask");
}

void addConsent(Command& command, Consent& consent) {
  command.addFlag("--yes,-y", consent.isGiven, "Answer the question with yes in advance");
  command.addFlag("--no-input", consent.neverAsks, "Never ask: without --yes nothing is changed");
}

void addSheetStyle(Command& command, sheets::Style& style) {
  command.addText(
      {"--separator", "SIGN",
       "Between the fields of the file: comma, semicolon, tab or any other single character "
       "(default: recognised)"},
      [&style](const std::string& text) { style.separator = separatorNamed(text); });
  command.addChoice(
      {"--decimal", "point|comma", "Decimal sign of the numbers in the file (default: recognised)"},
      [&style](const std::string& text) { style.decimal = text == "point" ? '.' : ','; });
}

void addImport(Command& command, ImportOptions& options) {
  addMeter(command, options.meter, true);
  addPath(
      command,
      {"--stand", "FILE",
       "Stand database, or text file such as CSV with the columns JobRecordID, V1 to V5, V12 (and "
       "V20, V21 of rotor B); how it is written is recognised",
       true},
      options.stand);
  addSheetStyle(command, options.style);
  command.addTexts({"--job", "A[:B]",
                    "Job of a run; repeat for each run (of two jobs A:B the import takes the first "
                    "and says so)",
                    true},
                   options.jobs);
  command.addTexts({"--fluid", "NAME", "Fluid of a run; one for each --job", true}, options.fluids);
  command.addTexts({"--operator", "NAME", "Operator of a run; one for each --job or one for all"},
                   options.operators);
  addSmallInteger(command, "--stand-number", options.standNumber, 0, "Number of the stand");
  addSmallInteger(command, "--position", options.position, 0, "Position of the meter on the stand");
  addCalibration(command, options.calibration);
  command.addText({"--date", "YYYY-MM-DD", "Date of the runs (default: today)"}, options.date);
  command.addFlag("--update", options.update,
                  "Give operator, stand number, position and date also to runs of fluids that the "
                  "meter has already; otherwise these keep theirs");
  command.addFlag("--new-calibration", options.newCalibration,
                  "Start the meter's next calibration");
}

}  // namespace pelmora::cli
