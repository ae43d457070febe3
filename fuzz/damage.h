// Damage to a valid file, so that the fuzzer gets past the checks of its structure.
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace pelmora::fuzz {

// The fuzzer's bytes as edits: three bytes for the place, one for the length (up to 32), then
// the new bytes.
// A length of 0 cuts the file off at the place.
inline std::string damaged(std::string content, const std::uint8_t* data, std::size_t size) {
  const std::uint8_t* const end = data + size;
  while (end - data >= 4 && !content.empty()) {
    const std::size_t place =
        (data[0] | std::size_t{data[1]} << 8 | std::size_t{data[2]} << 16) % content.size();
    const std::size_t wanted = data[3] % 33;
    data += 4;
    if (wanted == 0) {
      content.resize(place);
      continue;
    }
    const std::size_t length =
        std::min({wanted, static_cast<std::size_t>(end - data), content.size() - place});
    std::copy_n(data, length, content.begin() + static_cast<std::ptrdiff_t>(place));
    data += length;
  }
  return content;
}

}  // namespace pelmora::fuzz
