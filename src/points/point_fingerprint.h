// A fingerprint of points that can be kept.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <span>
#include <string>

namespace pelmora {

// Sixteen hexadecimal digits made from every bit of the points, Roshko and Strouhal, in their
// order: the same on every machine and for every database.
[[nodiscard]] std::string fingerprintOf(std::span<const PointArray> parts);

}  // namespace pelmora
