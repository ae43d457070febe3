// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/arguments.h"

#include "apps/pelmora/options/strict_number.h"
#include "base/utf8_text.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>

namespace pelmora::cli::workbench {

using calibration::BadData;
using nlohmann::json;

namespace {

// Values are copied by recursion: what nests without end would take the whole stack.
bool isDeeplyNested(std::string_view text) {
  constexpr int deepest = 32;
  int depth = 0;
  bool isInText = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (isInText) {
      if (c == '\\') ++i;
      if (c == '"') isInText = false;
      continue;
    }
    if (c == '"') isInText = true;
    if (c == '[' || c == '{') ++depth;
    if (c == ']' || c == '}') --depth;
    if (depth > deepest) return true;
  }
  return false;
}

}  // namespace

Arguments Arguments::ofQuery(const http::Fields& query) {
  json values = json::object();
  for (const auto& [name, value] : query) {
    if (!isUtf8(name) || !isUtf8(value))
      throw BadData({"the query is not UTF-8", "the address", "encode it as UTF-8"});
    if (values.contains(name))
      throw BadData({"'" + name + "' is given twice", "the query", "give it once"});
    values[name] = value;
  }
  return {std::move(values), "", true};
}

Arguments Arguments::ofBody(const std::string& body) {
  json values = isDeeplyNested(body) ? json() : json::parse(body, nullptr, false);
  if (!values.is_object())
    throw BadData({"the body is not a JSON object", "the body of the request",
                   "send an object as api/openapi.json describes it"});
  return {std::move(values), "", false};
}

Arguments Arguments::member(const std::string& name) const {
  const json* value = find(name);
  if (value == nullptr) return {json::object(), placeOf(name), false};
  if (!value->is_object()) refuse(name, "an object");
  return {*value, placeOf(name), false};
}

std::vector<Arguments> Arguments::list(const std::string& name) const {
  std::vector<Arguments> members;
  const json* value = find(name);
  if (value == nullptr) return members;
  if (!value->is_array()) refuse(name, "a list of objects");
  for (const json& element : *value) {
    if (!element.is_object()) refuse(name, "a list of objects");
    members.push_back(
        Arguments(element, placeOf(name) + "[" + std::to_string(members.size()) + "]", false));
  }
  return members;
}

void Arguments::requireOnly(std::initializer_list<std::string_view> names) const {
  for (const auto& [name, value] : values_.items()) {
    if (std::find(names.begin(), names.end(), name) != names.end()) continue;
    std::string known;
    for (const std::string_view other : names)
      known += (known.empty() ? "" : ", ") + std::string(other);
    throw BadData({"'" + placeOf(name) + "' is not an argument of this request", "the request",
                   known.empty() ? "it takes none" : "it takes " + known});
  }
}

std::string Arguments::text(const std::string& name) const {
  auto value = findText(name);
  if (!value || value->empty()) refuse(name, "a text");
  return *std::move(value);
}

std::optional<std::string> Arguments::findText(const std::string& name) const {
  const json* value = find(name);
  if (value == nullptr) return std::nullopt;
  if (!value->is_string()) refuse(name, "a text");
  return value->get<std::string>();
}

std::vector<std::string> Arguments::texts(const std::string& name) const {
  std::vector<std::string> list;
  const json* value = find(name);
  if (value == nullptr) return list;
  if (!value->is_array()) refuse(name, "a list of texts");
  for (const json& element : *value) {
    if (!element.is_string()) refuse(name, "a list of texts");
    list.push_back(element.get<std::string>());
  }
  return list;
}

std::optional<double> Arguments::findNumber(const std::string& name) const {
  const json* value = find(name);
  if (value == nullptr) return std::nullopt;
  std::optional<double> number;
  if (areTexts_)
    number = strictNumber(value->get<std::string>());
  else if (value->is_number())
    number = value->get<double>();
  if (!number || !std::isfinite(*number)) refuse(name, "a number");
  return number;
}

std::int64_t Arguments::integer(const std::string& name, std::int64_t lowest,
                                std::int64_t highest) const {
  const auto value = findInteger(name, lowest, highest);
  if (!value)
    refuse(name,
           "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
  return *value;
}

std::optional<std::int64_t> Arguments::findInteger(const std::string& name, std::int64_t lowest,
                                                   std::int64_t highest) const {
  const json* value = find(name);
  if (value == nullptr) return std::nullopt;
  std::optional<std::int64_t> number;
  if (areTexts_)
    number = strictInteger(value->get<std::string>());
  else if (value->is_number_unsigned() && value->get<std::uint64_t>() <= INT64_MAX)
    number = value->get<std::int64_t>();
  else if (value->is_number_integer() && !value->is_number_unsigned())
    number = value->get<std::int64_t>();
  if (!number || *number < lowest || *number > highest)
    refuse(name,
           "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
  return number;
}

bool Arguments::flag(const std::string& name, bool otherwise) const {
  const json* value = find(name);
  if (value == nullptr) return otherwise;
  if (areTexts_ && (*value == "true" || *value == "false")) return *value == "true";
  if (!value->is_boolean()) refuse(name, "true or false");
  return value->get<bool>();
}

const json* Arguments::find(const std::string& name) const {
  const auto found = values_.find(name);
  return found == values_.end() || found->is_null() ? nullptr : &*found;
}

void Arguments::refuse(const std::string& name, const std::string& wanted) const {
  throw BadData({"'" + placeOf(name) + "' must be " + wanted, "the request",
                 has(name) ? "correct it" : "give it"});
}

std::string Arguments::placeOf(const std::string& name) const {
  return place_.empty() ? name : place_ + "." + name;
}

}  // namespace pelmora::cli::workbench
