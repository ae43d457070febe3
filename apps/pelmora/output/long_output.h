// Output that may be long: printed while it grows, so that no more than a part of it is in memory.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/json_stream.h"

#include <nlohmann/json_fwd.hpp>

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
  // members: the object without the list, whose key `list` stands behind theirs.
  LongList(const nlohmann::json& members, std::string_view list);
  LongList(const LongList&) = delete;
  LongList& operator=(const LongList&) = delete;
  void add(const nlohmann::json& element) { stream_.value(element); }
  void end();

 private:
  LongText text_;
  report::JsonStream stream_;
};

}  // namespace pelmora::cli
