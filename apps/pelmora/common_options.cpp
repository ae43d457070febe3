// SPDX-License-Identifier: MIT
#include "apps/pelmora/common_options.h"

#include "apps/pelmora/names.h"
#include "apps/pelmora/strict_number.h"
#include "apps/pelmora/text_table.h"
#include "apps/pelmora/trouble.h"

#include <cmath>
#include <limits>

namespace pelmora::cli {
namespace {

constexpr double mostSeconds = 86400;
constexpr std::int64_t mostSmall = std::numeric_limits<std::int16_t>::max();

}  // namespace

void addSmallInteger(CLI::App& command, const std::string& name, std::int16_t& value,
                     std::int64_t lowest, const std::string& help) {
  command
      .add_option_function<std::string>(
          name,
          [&value, name, lowest](const std::string& text) {
            value = static_cast<std::int16_t>(integerOption(name, text, lowest, mostSmall));
          },
          help)
      ->type_name("N");
}

CLI::Option& addTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                      const std::string& help) {
  const auto store = [&values](const CLI::results_t& given) {
    values = given;
    return true;
  };
  return *command.add_option(name, store, help)
              ->expected(1)
              ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

CLI::Option& addValues(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                       const std::string& help) {
  return *addTexts(command, name, values, help).expected(1, mostSmall)->required();
}

CLI::Option& addPath(CLI::App& command, const std::string& name, std::string& path,
                     const std::string& help) {
  const std::string shown = name.substr(name.find(',') + 1);
  return *command
              .add_option_function<std::string>(
                  name,
                  [&path, shown](const std::string& text) {
                    requirePath(shown, text);
                    path = text;
                  },
                  help)
              ->type_name("FILE");
}

void addDatabase(CLI::App& command, std::string& path) {
  command
      .add_option_function<std::string>(
          "CURVES",
          [&path](const std::string& text) {
            requireDatabasePath("CURVES", text);
            path = text;
          },
          "Curve database")
      ->required()
      ->type_name("FILE");
}

void addDatabase(CLI::App& command, DatabaseOption& curves) {
  addDatabase(command, curves.path);
  command
      .add_option_function<std::string>(
          "--wait",
          [&curves](const std::string& text) {
            const double seconds = numberOption("--wait", text);
            if (seconds < 0 || seconds > mostSeconds) {
              throw Trouble(ExitCode::usage, "--wait: '" + text + "' is out of range",
                            "give seconds, from 0 to " + significantText(mostSeconds, 6));
            }
            curves.wait = std::chrono::milliseconds(std::llround(seconds * 1000));
          },
          "How long to wait while another program has the database locked (default 30)")
      ->type_name("SECONDS");
}

void addMeter(CLI::App& command, std::string& serialNumber, bool isRequired) {
  command.add_option("--meter", serialNumber, "Serial number of the meter")
      ->required(isRequired)
      ->type_name("SN");
}

void addSeries(CLI::App& command, std::string& name, bool isRequired) {
  command.add_option("--series", name, "Name of the series")
      ->required(isRequired)
      ->type_name("NAME");
}

void addSeriesList(CLI::App& command, std::vector<std::string>& names) {
  addTexts(command, "--series", names,
           "Name of a series; repeat for more (default: all of the meter)")
      .type_name("NAME");
}

void addCalibration(CLI::App& command, std::int16_t& reCalID) {
  addSmallInteger(command, "--calibration", reCalID, 0,
                  "Number of the meter's calibration (default: the latest)");
}

void addJson(CLI::App& command, bool& asJson) {
  command.add_flag("--json", asJson, "Write JSON instead of tables");
}

void addDryRun(CLI::App& command, bool& isDryRun) {
  command.add_flag("--dry-run", isDryRun, "Show what would be done and change nothing");
}

void addNoInput(CLI::App& command, bool& neverAsks) {
  command.add_flag("--no-input", neverAsks, "Never ask");
}

void addConsent(CLI::App& command, Consent& consent) {
  command.add_flag("--yes,-y", consent.isGiven, "Answer the question with yes in advance");
  command.add_flag("--no-input", consent.neverAsks, "Never ask: without --yes nothing is changed");
}

void addImport(CLI::App& command, ImportRequest& request, RunOptions& runs) {
  addMeter(command, request.meter, true);
  addPath(command, "--stand", request.stand,
          "Stand database, or CSV export with header JobRecordID,V1..V37")
      .required();
  addTexts(command, "--job", runs.jobs,
           "Job of a run; repeat for each run (of two jobs A:B the import takes the first and says "
           "so)")
      .required()
      ->type_name("A[:B]");
  addTexts(command, "--fluid", runs.fluids, "Fluid of a run; one for each --job")
      .required()
      ->type_name("NAME");
  addTexts(command, "--operator", runs.operators,
           "Operator of a run; one for each --job or one for all")
      .type_name("NAME");
  addSmallInteger(command, "--stand-number", request.standID, 0, "Number of the stand");
  addSmallInteger(command, "--position", request.positionID, 0,
                  "Position of the meter on the stand");
  addCalibration(command, request.reCalID);
  command.add_flag("--new-calibration", request.newCalibration,
                   "Start the meter's next calibration");
}

void addFitTests(CLI::App& command, FitOptions& options) {
  command
      .add_option_function<std::string>(
          "--points",
          [&options](const std::string& text) {
            options.points =
                static_cast<std::int16_t>(integerOption("--points", text, 2, mostSmall));
          },
          "Points of the fitted curve (default 40)")
      ->type_name("N");
  command
      .add_option_function<std::string>(
          "--band",
          [&options](const std::string& text) {
            options.band = numberOption("--band", text);
            if (options.band >= 0) return;
            throw Trouble(ExitCode::usage, "--band: '" + text + "' is negative",
                          "give per cent, 0 or more");
          },
          "Band of the band test in per cent (default " + significantText(defaultBand, 6) + ")")
      ->type_name("PERCENT");
  addPath(command, "--equations", options.equations,
          "Equation file, or folder with 'equations.txt' and 'ratio equations.txt'")
      .type_name("PATH");
}

}  // namespace pelmora::cli
