// Signing off a stored curve: a person says that it is right, and later changes show.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/values.h>
#include <pelmora/export.h>

#include <cstdint>
#include <string>

namespace pelmora::calibration {

// A signature under the points, exclusions, settings and curve of a series as they were.
struct SignOff {
  std::int64_t id = 0;
  std::string name;      // of the person who signs
  std::string remark;    // may be empty
  std::string signedAt;  // UTC, ISO 8601
  std::string userName;  // of the process
  std::string fingerprint;
  std::string softwareVersion;
};

// What a signature is put under, as lines: meter, calibration and series; every raw point; every
// excluded point with its reason; the settings of the fit; the curve's table. Numbers with 17
// significant digits.
[[nodiscard]] PELMORA_API std::string signedContents(const StoredSeries& series);
// SHA-256 of signedContents() in hexadecimal.
[[nodiscard]] PELMORA_API std::string signedFingerprint(const StoredSeries& series);

}  // namespace pelmora::calibration
