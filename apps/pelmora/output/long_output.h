// Output that may be long: printed while it grows, so that no more than a part of it is in memory.
// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace pelmora::cli {

// Errors of all below: those of printData().

// A text, some kilobytes at a time.
class LongText {
 public:
  void add(std::string_view text);
  // Prints what is left.
  void end();

 private:
  std::string text_;
};

// A JSON object whose last member is a long list.
class LongList {
 public:
  // head: the object, the list in it being empty.
  explicit LongList(const nlohmann::json::object_t& head);
  void add(const nlohmann::json& element);
  void end();

 private:
  std::string frame_;
  std::size_t inside_;  // where the elements belong
  bool isEmpty_ = true;
  LongText text_;
};

}  // namespace pelmora::cli
