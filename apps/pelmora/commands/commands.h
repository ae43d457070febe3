// The commands, one file each; every function adds its subcommand with options and action.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/options/program.h"

namespace pelmora::cli {

void addInitCommand(Program& program);
void addImportCommand(Program& program);
void addImportCurveCommand(Program& program);
void addImportAccessCommand(Program& program);
void addCopyCommand(Program& program);
void addRawCommand(Program& program);
void addCompareCommand(Program& program);
void addEquationsCommand(Program& program);
void addEvaluateCommand(Program& program);
void addExportCommand(Program& program);
void addFitCommand(Program& program);
void addShowCommand(Program& program);
void addCalibrateCommand(Program& program);
void addReportCommand(Program& program);
void addPlotCommand(Program& program);
void addPointsCommand(Program& program);
void addExcludeCommand(Program& program);
void addIncludeCommand(Program& program);
void addCheckDccCommand(Program& program);
void addMeterCommand(Program& program);
void addLaboratoryCommand(Program& program);
void addDriftCommand(Program& program);
void addFlowCommand(Program& program);
void addFluidCommand(Program& program);
void addStandCommand(Program& program);
void addDeleteCommand(Program& program);
void addDoctorCommand(Program& program);
void addHistoryCommand(Program& program);
void addRefitCommand(Program& program);
void addFleetCommand(Program& program);
void addWorkerCommand(Program& program);
void addRestoreCommand(Program& program);
void addCompletionCommand(Program& program);
void addManCommand(Program& program);
void addNamesCommand(Program& program);
void addWorkbenchCommand(Program& program);

}  // namespace pelmora::cli
