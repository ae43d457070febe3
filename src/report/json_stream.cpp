// SPDX-License-Identifier: MIT
#include "report/json_stream.h"

#include "report/json_values.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace pelmora::report {

std::string JsonStream::lineBreak() const { return "\n" + std::string(2 * levels_.size(), ' '); }

void JsonStream::separate() {
  if (!std::exchange(followsKey_, false) && !levels_.empty())
    sink_((std::exchange(levels_.back().isEmpty, false) ? "" : ",") + lineBreak());
}

void JsonStream::begin(char opening, char closing) {
  separate();
  sink_({&opening, 1});
  levels_.push_back({closing});
}

void JsonStream::end() {
  const Level level = levels_.back();
  levels_.pop_back();
  if (!level.isEmpty) sink_(lineBreak());
  sink_({&level.closing, 1});
  if (levels_.empty()) sink_("\n");
}

void JsonStream::key(std::string_view name) {
  separate();
  std::string text = jsonText(nlohmann::json(name));
  text.pop_back();  // the line end
  sink_(text + ": ");
  followsKey_ = true;
}

void JsonStream::value(const nlohmann::json& value) {
  separate();
  std::string text = jsonText(value);
  if (levels_.empty()) return sink_(text);
  text.pop_back();  // the line end
  // Text within quotes holds no line break.
  const std::string indented = lineBreak();
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += indented.size())
    text.replace(at, 1, indented);
  sink_(text);
}

}  // namespace pelmora::report
