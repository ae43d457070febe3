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
  // Our unit that the numbers are converted to before they are stated in `si`. If that changes
  // them, the certificate states both.
  std::string_view convertedTo;
};

[[nodiscard]] bool isCertificateUnit(std::string_view symbol);
// Errors: BadData for a unit that no certificate states.
[[nodiscard]] const CertificateUnit& certificateUnit(std::string_view symbol);

// Whether a text consists of unit names, prefixes and powers alone:
// "\milli\metre\tothe{2}\second\tothe{-1}".
//
// Source: D-SI metadata model, version 2; names of siunitx.
[[nodiscard]] bool isSiUnit(std::string_view unit);

}  // namespace pelmora::dcc
