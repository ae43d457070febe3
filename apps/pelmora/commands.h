// The commands, one file each; every function adds its subcommand with options and action.
// SPDX-License-Identifier: MIT
#pragma once

namespace CLI {
class App;
}

namespace pelmora::cli {

void addInitCommand(CLI::App& app);
void addImportCommand(CLI::App& app);
void addImportCurveCommand(CLI::App& app);
void addRawCommand(CLI::App& app);
void addCompareCommand(CLI::App& app);
void addEvaluateCommand(CLI::App& app);
void addExportCommand(CLI::App& app);
void addFitCommand(CLI::App& app);
void addShowCommand(CLI::App& app);
void addCalibrateCommand(CLI::App& app);
void addReportCommand(CLI::App& app);
void addDeleteCommand(CLI::App& app);
void addDoctorCommand(CLI::App& app);
void addHistoryCommand(CLI::App& app);
void addRefitCommand(CLI::App& app);
void addRestoreCommand(CLI::App& app);
void addCompletionCommand(CLI::App& app);
void addManCommand(CLI::App& app);
void addNamesCommand(CLI::App& app);

}  // namespace pelmora::cli
