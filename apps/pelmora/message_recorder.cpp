// SPDX-License-Identifier: MIT
#include "apps/pelmora/message_recorder.h"

#include "apps/pelmora/interruption.h"
#include "apps/pelmora/trouble.h"

#include <pelmora/platform.h>

#include <new>
#include <string_view>

namespace pelmora::cli {
namespace {

constexpr int buttonSetMask = 15;
constexpr int abortRetryIgnore = 2;
constexpr int okPressed = 1;

// The number behind a label, up to the next blank.
std::string valueBehind(const std::string& text, const std::string& label) {
  const std::size_t at = text.find(label);
  if (at == std::string::npos) return "?";
  const std::size_t begin = at + label.size();
  return text.substr(begin, text.find_first_of("\r\n\t ", begin) - begin);
}

// "Error in RawData:SetRaw CR LF why" as "why (RawData:SetRaw)".
std::string errorText(const std::string& text) {
  constexpr std::string_view start = "Error in ";
  const std::size_t end = text.find("\r\n");
  if (!text.starts_with(start) || end == std::string::npos) return oneLine(text);
  const std::string where = oneLine(text.substr(start.size(), end - start.size()));
  return oneLine(text.substr(end)) + " (" + where + ")";
}

bool isAboutMemory(std::string_view text) {
  const std::size_t end = text.find("\r\n");
  return end != std::string_view::npos && text.substr(end + 2).starts_with("Out of memory");
}

}  // namespace

MessageRecorder::MessageRecorder() : before_(platform().messageBox) {
  platform().messageBox = [this](const std::string& text, int style, const std::string&) {
    return answer(text, style);
  };
}

MessageRecorder::~MessageRecorder() { platform().messageBox.swap(before_); }

const std::vector<std::string>& MessageRecorder::errors() const {
  requireTrustworthy();
  return errors_;
}

const std::optional<RangeAnswer>& MessageRecorder::rangeAnswered() const {
  requireTrustworthy();
  return rangeAnswered_;
}

void MessageRecorder::requireTrustworthy() const {
  requireNotInterrupted();
  if (isOutOfMemory_) throw std::bad_alloc();
}

int MessageRecorder::answer(const std::string& text, int style) {
  if ((style & buttonSetMask) == abortRetryIgnore) {
    rawRange_ =
        "from " + valueBehind(text, "Min Raw : ") + " to " + valueBehind(text, "Max Raw : ");
    rangeAnswered_ = rangeAnswer.value_or(RangeAnswer::abort);
    return static_cast<int>(*rangeAnswered_);
  }
  isOutOfMemory_ |= isAboutMemory(text);
  try {
    errors_.push_back(errorText(text));
  } catch (...) {
    isOutOfMemory_ = true;
  }
  return okPressed;
}

void MessageRecorder::forget() {
  errors_.clear();
  rawRange_.reset();
  rangeAnswered_.reset();
}

void MessageRecorder::throwIfAny(ExitCode code, const std::string& doing,
                                 const std::string& remedy) const {
  if (!errors().empty()) throw Trouble(code, doing + ": " + errors_.front(), remedy);
}

}  // namespace pelmora::cli
