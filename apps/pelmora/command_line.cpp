// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"

#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/failure_trouble.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/options/program.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/terminal_colour.h"
#include "apps/pelmora/trouble.h"

#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace pelmora::cli {
namespace {

int report(const Trouble& trouble) {
  const std::string line = errorLine(trouble);
  const std::size_t label = errorLabel.size();
  std::fprintf(stderr, "%s%s\n", coloured(stderr, Colour::red, line.substr(0, label)).c_str(),
               line.substr(label).c_str());
  return static_cast<int>(trouble.code());
}

void addCommands(Program& program) {
  addInitCommand(program);
  addImportCommand(program);
  addImportCurveCommand(program);
  addImportAccessCommand(program);
  addCopyCommand(program);
  addRawCommand(program);
  addPlotCommand(program);
  addPointsCommand(program);
  addExcludeCommand(program);
  addIncludeCommand(program);
  addFitCommand(program);
  addRefitCommand(program);
  addFleetCommand(program);
  addWorkerCommand(program);
  addEquationsCommand(program);
  addEvaluateCommand(program);
  addCompareCommand(program);
  addExportCommand(program);
  addShowCommand(program);
  addCalibrateCommand(program);
  addMeterCommand(program);
  addLaboratoryCommand(program);
  addStandCommand(program);
  addFlowCommand(program);
  addDriftCommand(program);
  addFluidCommand(program);
  addReportCommand(program);
  addCheckDccCommand(program);
  addDeleteCommand(program);
  addDoctorCommand(program);
  addHistoryCommand(program);
  addRestoreCommand(program);
  addWorkbenchCommand(program);
  addCompletionCommand(program);
  addManCommand(program);
  addNamesCommand(program);
}

void parseAndRun(int argc, const char* const* argv) {
  Program program;
  addCommands(program);
  program.run(argc, argv);
}

// A signal ends waits, too: what they meant by it is not what went wrong.
void runUnlessInterrupted(int argc, const char* const* argv) {
  try {
    parseAndRun(argc, argv);
  } catch (const std::runtime_error&) {
    requireNotInterrupted();
    throw;
  }
}

int runWithTroubleTold(int argc, const char* const* argv) {
  try {
    runUnlessInterrupted(argc, argv);
    return static_cast<int>(ExitCode::ok);
  } catch (const Interrupted& interruption) {
    (void)report({ExitCode::unexpected, std::string("interrupted: ") + storedWords().data(), ""});
    return exitCodeOf(interruption);
  } catch (const Trouble& trouble) {
    return report(trouble);
  } catch (const calibration::Failure& failure) {
    return report(troubleOf(failure));
  } catch (const Error& error) {
    requireMemory(error);
    return report({ExitCode::unexpected, error.what(), ""});
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return report({ExitCode::unexpected, error.what(), ""});
  }
}

}  // namespace

int run(int argc, const char* const* argv) noexcept {
  endOutOfMemoryInOrder();
  prepareStandardStreams();
  noteNothingStored();
  const InterruptionHandlers handlers;
  try {
    return runWithTroubleTold(argc, argv);
  } catch (...) {
    return sayOutOfMemory();  // no other error is left: to tell of it took memory too
  }
}

}  // namespace pelmora::cli
