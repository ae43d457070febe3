// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"

#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/failure_trouble.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/options/configuration_file.h"
#include "apps/pelmora/options/program.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/output/terminal_colour.h"
#include "apps/pelmora/trouble.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <new>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace pelmora::cli {
namespace {

int report(const Trouble& trouble) {
  const std::string line = errorLine(trouble);
  const std::size_t label = errorLabel.size();
  std::fprintf(stderr, "%s%s\n", coloured(stderr, Colour::red, line.substr(0, label)).c_str(),
               line.substr(label).c_str());
  return static_cast<int>(trouble.code());
}

struct NamedCommand {
  std::string_view name;
  void (*add)(Program&);
  bool describesAll = false;  // it needs all commands
};

// In the order in which the help lists them.
constexpr std::array<NamedCommand, 36> commands{{{"init", addInitCommand},
                                                 {"import", addImportCommand},
                                                 {"import-curve", addImportCurveCommand},
                                                 {"import-access", addImportAccessCommand},
                                                 {"copy", addCopyCommand},
                                                 {"raw", addRawCommand},
                                                 {"plot", addPlotCommand},
                                                 {"points", addPointsCommand},
                                                 {"exclude", addExcludeCommand},
                                                 {"include", addIncludeCommand},
                                                 {"fit", addFitCommand},
                                                 {"refit", addRefitCommand},
                                                 {"fleet", addFleetCommand},
                                                 {"worker", addWorkerCommand},
                                                 {"equations", addEquationsCommand},
                                                 {"evaluate", addEvaluateCommand},
                                                 {"compare", addCompareCommand},
                                                 {"export", addExportCommand},
                                                 {"show", addShowCommand},
                                                 {"calibrate", addCalibrateCommand},
                                                 {"meter", addMeterCommand},
                                                 {"laboratory", addLaboratoryCommand},
                                                 {"stand", addStandCommand},
                                                 {"flow", addFlowCommand},
                                                 {"drift", addDriftCommand},
                                                 {"fluid", addFluidCommand},
                                                 {"report", addReportCommand},
                                                 {"check-dcc", addCheckDccCommand},
                                                 {"delete", addDeleteCommand},
                                                 {"doctor", addDoctorCommand},
                                                 {"history", addHistoryCommand},
                                                 {"restore", addRestoreCommand},
                                                 {"workbench", addWorkbenchCommand},
                                                 {"completion", addCompletionCommand, true},
                                                 {"man", addManCommand, true},
                                                 {"names", addNamesCommand}}};

// Commands have some hundred options together: where the first argument names one, or asks for the
// version, the others are left out.
void addCommands(Program& program, std::span<const char* const> arguments) {
  if (!arguments.empty() && !hasConfiguration(arguments)) {
    const std::string_view first = arguments.front();
    if (first == "--version" && arguments.size() == 1) return;
    for (const NamedCommand& command : commands) {
      if (command.name == first && !command.describesAll) return command.add(program);
    }
  }
  for (const NamedCommand& command : commands) command.add(program);
}

void parseAndRun(int argc, const char* const* argv) {
  Program program;
  const std::span all(argv, static_cast<std::size_t>(argc));
  addCommands(program, all.empty() ? all : all.subspan(1));
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
