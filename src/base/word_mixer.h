// One number made from many values, to tell whether any of them has changed.
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace pelmora {

// Two equal states mean the same values in the same order, but for one chance in 2^64.
class WordMixer {
 public:
  // The finaliser of the generator SplitMix64 (Steele, Lea and Flood 2014): every bit of the word
  // reaches every bit of the state, so that changes of neighbouring words do not cancel out.
  void add(std::uint64_t word) {
    state_ = (state_ ^ word) + 0x9e3779b97f4a7c15U;
    state_ = (state_ ^ (state_ >> 30)) * 0xbf58476d1ce4e5b9U;
    state_ = (state_ ^ (state_ >> 27)) * 0x94d049bb133111ebU;
    state_ ^= state_ >> 31;
  }
  void add(double value) { add(std::bit_cast<std::uint64_t>(value)); }
  void add(std::string_view text) {
    add(std::uint64_t{text.size()});
    for (std::size_t at = 0; at < text.size(); at += sizeof(std::uint64_t)) {
      std::uint64_t word = 0;
      std::memcpy(&word, text.data() + at, std::min(sizeof word, text.size() - at));
      add(word);
    }
  }
  [[nodiscard]] std::uint64_t state() const { return state_; }

 private:
  std::uint64_t state_ = 0;
};

}  // namespace pelmora
