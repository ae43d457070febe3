// SPDX-License-Identifier: MIT
#include "history/fingerprint.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>
#include <utility>

namespace pelmora::history {
namespace {

class Mixer {
 public:
  // The finaliser of the generator SplitMix64 (Steele, Lea and Flood 2014): every bit of the word
  // reaches every bit of the state, so that changes of neighbouring words do not cancel out.
  void add(std::uint64_t word) {
    state_ = (state_ ^ word) + 0x9e3779b97f4a7c15U;
    state_ = (state_ ^ (state_ >> 30)) * 0xbf58476d1ce4e5b9U;
    state_ = (state_ ^ (state_ >> 27)) * 0x94d049bb133111ebU;
    state_ ^= state_ >> 31;
  }
  void add(std::string_view text) {
    add(std::uint64_t{text.size()});
    for (std::size_t at = 0; at < text.size(); at += sizeof(std::uint64_t)) {
      std::uint64_t word = 0;
      std::memcpy(&word, text.data() + at, std::min(sizeof word, text.size() - at));
      add(word);
    }
  }
  void add(const Value& value) {
    add(std::uint64_t{value.index()});
    if (const auto* whole = std::get_if<std::int64_t>(&value))
      add(std::bit_cast<std::uint64_t>(*whole));
    if (const auto* real = std::get_if<double>(&value)) add(std::bit_cast<std::uint64_t>(*real));
    if (const auto* text = std::get_if<std::string>(&value)) add(std::string_view(*text));
  }
  [[nodiscard]] std::uint64_t state() const { return state_; }

 private:
  std::uint64_t state_ = 0;
};

Scope with(Scope scope, std::vector<std::string> tables) {
  scope.Tables.insert(scope.Tables.begin(), std::make_move_iterator(tables.begin()),
                      std::make_move_iterator(tables.end()));
  return scope;
}

}  // namespace

std::uint64_t fingerprint(const ConnectionPtr& curves, const Scope& scope) {
  Mixer mixer;
  for (const std::string& name : scope.Tables) {
    const KeptTable& table = keptTable(name);
    std::uint64_t count = 0;
    if (!table.MayBeMissing || hasTable(curves, name)) {
      const auto rows =
          read(curves, "Select * from [" + name + "]" + condition(curves, scope, table));
      for (; !rows->atEnd(); rows->moveNext(), ++count) {
        for (std::size_t field = 0; field < rows->fieldCount(); ++field)
          mixer.add(rows->value(field));
      }
    }
    mixer.add(count);
  }
  return mixer.state();
}

Scope fittedPoints(std::int32_t MeterID, std::int32_t SeriesID) {
  return {MeterID, SeriesID, {"meter", "series", "raw1", "raw2", "raw3", "raw4"}};
}

Scope fittedPointsAndCurve(std::int32_t MeterID, std::int32_t SeriesID) {
  return with(fittedCurve(MeterID, SeriesID), fittedPoints(MeterID, SeriesID).Tables);
}

}  // namespace pelmora::history
