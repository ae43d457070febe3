// A signature under a series in words.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// What the signature still says: "Signed off", or that it is void.
[[nodiscard]] inline std::string signatureState(const Signature& signature) {
  return signature.isValid ? "Signed off" : "Void, changed since it was signed off";
}

// "by Ada Byron, 2026-11-22T09:15:00Z: as found"
[[nodiscard]] inline std::string signedBy(const Signature& signature) {
  const calibration::SignOff& entry = signature.entry;
  return "by " + entry.name + ", " + entry.signedAt +
         (entry.remark.empty() ? "" : ": " + entry.remark);
}

}  // namespace pelmora::report
