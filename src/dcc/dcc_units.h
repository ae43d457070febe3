// Units in the notation of the digital system of units.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace pelmora::dcc {

// How a certificate states a quantity in one of our units.
struct CertificateUnit {
  std::string_view symbol;  // ours
  std::string_view si;      // "\hertz"
  // The unit of ours that the values are converted to for `si`; equal to `symbol` where none is
  // needed. Otherwise both are stated.
  std::string_view convertedTo;
};

[[nodiscard]] bool isCertificateUnit(std::string_view symbol);
// Errors: BadData for a unit that no certificate states.
[[nodiscard]] const CertificateUnit& certificateUnit(std::string_view symbol);

// Whether a text is made of the names of the SI brochure, prefixes and powers only:
// "\milli\metre\tothe{2}\second\tothe{-1}".
//
// Source: D-SI metadata model, version 2; names of siunitx.
[[nodiscard]] bool isSiUnit(std::string_view unit);

}  // namespace pelmora::dcc
