// JSON that is written value by value: a long list never stands in memory as a whole.
// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pelmora::report {

// Writes the same text as jsonText does. Objects take their members in the order in which they
// come.
class JsonStream {
 public:
  using Sink = std::function<void(std::string_view)>;

  explicit JsonStream(Sink sink) : sink_(std::move(sink)) {}

  // Begin an element of a list, the value after a key, or the whole. end() closes the innermost
  // one.
  void beginObject() { begin('{', '}'); }
  void beginList() { begin('[', ']'); }
  void end();

  void key(std::string_view name);
  void value(const nlohmann::json& value);

 private:
  struct Level {
    char closing;
    bool isEmpty = true;
  };

  void begin(char opening, char closing);
  void separate();  // from the value before, if a value begins here that no key precedes
  [[nodiscard]] std::string lineBreak() const;

  Sink sink_;
  std::vector<Level> levels_;
  bool followsKey_ = false;
};

}  // namespace pelmora::report
