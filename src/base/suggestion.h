// "Did you mean ...?": the known name that a mistyped one stands for.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora {

// Characters to insert, leave out, replace or swap with their neighbour to make one text the other
// (optimal string alignment), without regard to the case of ASCII letters.
[[nodiscard]] PELMORA_API std::size_t typingDistance(std::string_view a, std::string_view b);

// Those of `known` that are nearest to `name`, at most three; empty if none is as near as one
// typing error in each three characters.
[[nodiscard]] PELMORA_API std::vector<std::string> nearest(const std::string& name,
                                                           const std::vector<std::string>& known);

// "did you mean 'Rotor A'?", "did you mean 'Rotor A' or 'Rotor B'?"; else "choose among 'a', 'b'
// and 3 more".
//
// known: not empty.
[[nodiscard]] PELMORA_API std::string suggestion(const std::string& name,
                                                 const std::vector<std::string>& known);

}  // namespace pelmora
