// SPDX-License-Identifier: MIT
#include "points/point_fingerprint.h"

#include "base/word_mixer.h"

#include <array>
#include <charconv>

namespace pelmora {

std::string fingerprintOf(std::span<const PointArray> parts) {
  WordMixer mixer;
  for (const PointArray& points : parts) {
    mixer.add(std::uint64_t{points.size()});
    for (std::size_t i = 0; i < points.size(); ++i) {
      mixer.add(points(i, 0));
      mixer.add(points(i, 1));
    }
  }
  constexpr std::size_t digits = 16;
  std::array<char, digits> text{};
  const auto end = std::to_chars(text.data(), text.data() + digits, mixer.state(), 16).ptr;
  const auto length = static_cast<std::size_t>(end - text.data());
  return std::string(digits - length, '0') + std::string(text.data(), length);
}

}  // namespace pelmora
