// SPDX-License-Identifier: MIT
#include "adapters/dialog/window_host.h"

#include "adapters/dialog/helper_process.h"
#include "adapters/os/helper_program.h"
#include "base/run_time_error.h"

#include <cstdlib>
#include <string_view>
#include <utility>

namespace pelmora::dialog {

namespace {

using Clock = HelperProcess::Clock;

constexpr std::chrono::milliseconds pumpInterval{50};
constexpr std::string_view answerStart = "answer ";

// The answer must be one of the buttons that were asked for.
int codeIn(std::string_view digits, const WindowRequest& request) {
  for (const WindowButton& button : request.buttons) {
    if (std::to_string(button.code) == digits) return button.code;
  }
  throw windowFailure("The window answers nonsense");
}

std::optional<int> awaitAnswer(HelperProcess& helper, const WindowRequest& request,
                               const WindowSettings& settings) {
  // Counted in waits and not by the clock: a host that was stopped or suspended for a while has not
  // listened, and the helper was not silent.
  std::chrono::milliseconds silence{0};
  for (;;) {
    const auto line = helper.receiveLine(Clock::now() + pumpInterval);
    if (!line) {
      silence += pumpInterval;
      if (silence >= settings.silenceLimit) throw windowFailure("The display no longer answers");
    } else if (*line == "closed") {
      return std::nullopt;
    } else if (line->starts_with(answerStart)) {
      return codeIn(std::string_view(*line).substr(answerStart.size()), request);
    } else if (*line == "alive") {
      silence = {};
    } else {
      throw windowFailure("The window answers nonsense");
    }
    if (settings.pump) settings.pump();
  }
}

}  // namespace

WindowHost::WindowHost(WindowSettings settings) : settings_(std::move(settings)) {}

std::optional<int> WindowHost::show(const WindowRequest& request) {
  const char* display = std::getenv("DISPLAY");
  if (display == nullptr || *display == '\0') throw windowFailure("There is no display");
  if (Clock::now() < refusedUntil_) throw windowFailure("The display did not answer a moment ago");
  const std::string program = settings_.helperProgram.empty() ? os::helperProgram("pelmora-dialog")
                                                              : settings_.helperProgram;
  if (program.empty()) throw windowFailure("The program that shows windows is not installed");
  const std::string wire = toWire(request);
  if (wire.size() > wireHeaderSize + wireBodyLimit)
    throw windowFailure("The text is too long to show");

  const auto readyBy = Clock::now() + settings_.readyWithin;
  HelperProcess helper(program);
  helper.send(wire, readyBy);
  const auto ready = helper.receiveLine(readyBy);
  if (!ready) {
    refusedUntil_ = Clock::now() + settings_.refusal;
    throw windowFailure("The display does not answer");
  }
  if (*ready != "ready") throw windowFailure("The window answers nonsense");
  return awaitAnswer(helper, request, settings_);
}

}  // namespace pelmora::dialog
