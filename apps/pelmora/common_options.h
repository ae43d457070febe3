// Options that several commands share, worded once.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/database_option.h"
#include "apps/pelmora/question.h"
#include "apps/pelmora/series_fit.h"
#include "apps/pelmora/stand_import.h"

#include <CLI/App.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::cli {

// An option that may be repeated, each time with one value: byte for byte, also "[a,b]".
CLI::Option& addTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                      const std::string& help);
// A positional of one value or more; last of its command.
CLI::Option& addValues(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                       const std::string& help);
// A file or folder. A path that would not be shown as it is reads as another one: it is refused.
CLI::Option& addPath(CLI::App& command, const std::string& name, std::string& path,
                     const std::string& help);
// A path to a database alone.
void addDatabase(CLI::App& command, std::string& path);
// With --wait, for commands that work on a database that is there.
void addDatabase(CLI::App& command, DatabaseOption& curves);
void addMeter(CLI::App& command, std::string& serialNumber, bool isRequired);
// One series; `isRequired` where the command works on one alone.
void addSeries(CLI::App& command, std::string& name, bool isRequired);
// Any number of series, all of the meter where none is named.
void addSeriesList(CLI::App& command, std::vector<std::string>& names);
void addCalibration(CLI::App& command, std::int16_t& reCalID);
// An option that takes a whole number from `lowest` to 32767.
void addSmallInteger(CLI::App& command, const std::string& name, std::int16_t& value,
                     std::int64_t lowest, const std::string& help);
void addJson(CLI::App& command, bool& asJson);
// For commands that write: everything is done and then undone, so that what it says is what would
// be.
void addDryRun(CLI::App& command, bool& isDryRun);
// For commands that ask; the others get it without effect, so that scripts can pass it to any.
void addNoInput(CLI::App& command, bool& neverAsks);
// --yes and --no-input, for commands that ask before something goes.
void addConsent(CLI::App& command, Consent& consent);

// The runs of an import, as they stand on the command line.
struct RunOptions {
  std::vector<std::string> jobs, fluids, operators;
};
// Everything of an import but the database; runs go to `runs`.
void addImport(CLI::App& command, ImportRequest& request, RunOptions& runs);

// What import and calibrate share of a fit's options: points, band, equations.
void addFitTests(CLI::App& command, FitOptions& options);

}  // namespace pelmora::cli
