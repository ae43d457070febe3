// SPDX-License-Identifier: MIT
#include "calibration/row_checksum.h"

#include "base/word_mixer.h"

#include <string>
#include <string_view>

namespace pelmora::calibration {

std::uint64_t rowChecksum(std::span<const Value> row) {
  WordMixer mixer;
  for (const Value& value : row) {
    mixer.add(std::uint64_t{value.index()});
    if (const auto* whole = std::get_if<std::int64_t>(&value))
      mixer.add(static_cast<std::uint64_t>(*whole));
    if (const auto* real = std::get_if<double>(&value)) mixer.add(*real);
    if (const auto* text = std::get_if<std::string>(&value)) mixer.add(std::string_view(*text));
  }
  return mixer.state();
}

}  // namespace pelmora::calibration
