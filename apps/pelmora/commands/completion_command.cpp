// SPDX-License-Identifier: MIT
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/options/common_options.h"
#include "apps/pelmora/description/shell_completion.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/trouble.h"

#include <pelmora/calibration.h>

#include <chrono>
#include <memory>

namespace pelmora::cli {
namespace {

std::string completionOf(const std::string& shell, const ProgramDescription& program) {
  if (shell == "bash") return bashCompletion(program);
  return shell == "zsh" ? zshCompletion(program) : fishCompletion(program);
}

struct NamesOptions {
  std::string kind, path, meter;
};

// Whoever presses a key waits neither for a lock nor for a server that does not answer.
constexpr std::chrono::milliseconds mostWaitForLock{250};
constexpr std::chrono::milliseconds mostWait{1500};

// One name a line, for the completion of a half-typed line: what cannot be told is left out.
void listNames(const NamesOptions& options) {
  const auto end = std::chrono::steady_clock::now() + mostWait;
  const calibration::Database lab(
      options.path, {.mode = calibration::Mode::read,
                     .patience = {.limit = mostWaitForLock, .goesOn = {}, .stopRequested = [end] {
                                    return std::chrono::steady_clock::now() > end;
                                  }}});
  std::vector<std::string> names;
  if (options.kind == "meters") {
    names = lab.serials();
  } else if (!options.meter.empty()) {
    names = lab.seriesOf(lab.meter(options.meter));
  }
  std::string text;
  for (const std::string& name : names) text += oneLine(name) + "\n";
  printData(text);
}

}  // namespace

void addCompletionCommand(Program& program) {
  Command command = program.add(
      "completion",
      "Write the completion script of a shell. For example: pelmora completion bash >> ~/.bashrc");
  const auto shell = std::make_shared<std::string>();
  command.addChoice({"SHELL", "bash|zsh|fish", "Shell that will complete", true}, *shell);
  command.onRun([&program, shell] { printData(completionOf(*shell, program.description())); });
}

void addNamesCommand(Program& program) {
  Command command = program.add("names", "List names of a curve database");
  command.hide();  // for the completion scripts, not for people
  const auto options = std::make_shared<NamesOptions>();
  command.addChoice({"KIND", "meters|series", "What to list", true}, options->kind);
  addDatabase(command, options->path);
  command.addText({"--meter", "SN", "Serial number of the meter"}, options->meter);
  command.onRun([options] { listNames(*options); });
}

}  // namespace pelmora::cli
