// JSON that is written value by value, so that a long list is never in memory as a whole.
// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pelmora::report {

// Writes the same text as jsonText(), piece by piece. Members of an object appear in the order in
// which they are written: for the same text, in the order of their keys.
class JsonStream {
 public:
  using Sink = std::function<void(std::string_view)>;

  // sink: takes the next piece of the text. What it throws leaves the stream unusable.
  explicit JsonStream(Sink sink) : sink_(std::move(sink)) {}

  // An element of a list, the value after a key, or the whole. end() closes the innermost one.
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
