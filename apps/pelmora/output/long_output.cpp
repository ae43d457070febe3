// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/long_output.h"

#include "apps/pelmora/output/standard_output.h"
#include "report/json_values.h"

namespace pelmora::cli {
namespace {

// With every line indented as an element of a list in an object.
std::string elementText(const nlohmann::json& value) {
  std::string text = report::jsonText(value);
  text.pop_back();  // the line end
  constexpr std::string_view indent = "\n    ";
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += indent.size())
    text.replace(at, 1, indent);
  return text;
}

}  // namespace

void LongText::add(std::string_view text) {
  constexpr std::size_t enough = 1U << 16U;
  text_ += text;
  if (text_.size() >= enough) end();
}

void LongText::end() {
  printData(text_);
  text_.clear();
}

LongList::LongList(const nlohmann::json::object_t& head)
    : frame_(report::jsonText(head)), inside_(frame_.rfind(']')) {
  text_.add(std::string_view(frame_).substr(0, inside_));
}

void LongList::add(const nlohmann::json& element) {
  text_.add(isEmpty_ ? "\n    " : ",\n    ");
  isEmpty_ = false;
  text_.add(elementText(element));
}

void LongList::end() {
  if (!isEmpty_) text_.add("\n  ");
  text_.add(std::string_view(frame_).substr(inside_));
  text_.end();
}

}  // namespace pelmora::cli
