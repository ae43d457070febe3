// What a certificate states in addition to the measured numbers: laboratory, meter, customer,
// conditions, units.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <map>
#include <string>
#include <vector>

namespace pelmora::calibration {

// What a detail belongs to. Details of a meter also apply to its later calibrations, until one of
// them changes them; details of a calibration apply to it alone.
enum class DetailOf { laboratory = 0, meter = 1, calibration = 2 };

enum class DetailKind {
  text = 0,
  list = 1,     // several texts, one per line
  date = 2,     // YYYY-MM-DD
  country = 3,  // two capital letters
  measure = 4,  // a number and its unit: "21.5 C"
  unit = 5,     // "pulses/gal"
  column = 6    // one of the stand's values: V1 to V37
};

struct DetailField {
  std::string key;    // "certificate-number"
  std::string label;  // "Certificate number"
  std::string help;
  DetailOf of = DetailOf::meter;
  DetailKind kind = DetailKind::text;
  std::string quantity;  // that a measure or unit must be of: "temperature" ...
};

// All fields, in the order in which a certificate shows them.
[[nodiscard]] PELMORA_API const std::vector<DetailField>& detailFields();
// Errors: BadData for an unknown key; the remedy suggests similar ones.
[[nodiscard]] PELMORA_API const DetailField& detailField(const std::string& key);

// Texts by key; none is empty. Units are spelled as in the list of units, and values are stored as
// they were given: nothing is converted.
using Details = std::map<std::string, std::string>;

}  // namespace pelmora::calibration
