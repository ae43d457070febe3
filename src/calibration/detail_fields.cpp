// SPDX-License-Identifier: MIT
#include "base/suggestion.h"

#include <pelmora/calibration/details.h>
#include <pelmora/calibration/failure.h>

#include <algorithm>

namespace pelmora::calibration {
namespace {

// Labels appear on certificates, help texts at the command line.
std::vector<DetailField> allFields() {
  using enum DetailOf;
  using enum DetailKind;
  return {
      {"name", "Laboratory", "Name of the laboratory", laboratory, text, {}},
      {"street", "Street", "Street and number", laboratory, text, {}},
      {"post-code", "Post code", "Post code", laboratory, text, {}},
      {"city", "City", "City", laboratory, text, {}},
      {"country", "Country", "Country as two letters, such as US", laboratory, country, {}},
      {"email", "E-mail", "E-mail address", laboratory, text, {}},
      {"accreditation", "Accreditation", "Number of the accreditation", laboratory, text, {}},
      {"nominal-flow-column",
       "Column of the nominal flow",
       "Which of the stand's values is the nominal flow: V1 to V37",
       laboratory,
       column,
       {}},
      {"nominal-flow-unit", "Unit of the nominal flow", "Such as gpm or l/min", laboratory, unit,
       "volume flow"},

      {"certificate-number",
       "Certificate number",
       "Number of the certificate",
       calibration,
       text,
       {}},
      {"order-number", "Order number", "The customer's order", calibration, text, {}},
      {"date",
       "Date of calibration",
       "Day of the measurements, the first of several: 2026-11-20",
       calibration,
       date,
       {}},
      {"date-to", "Last day", "Last day of the measurements", calibration, date, {}},
      {"issue-date",
       "Date of issue",
       "Day on which the certificate is issued",
       calibration,
       date,
       {}},
      {"place",
       "Place of calibration",
       "Where it was calibrated, if not in the laboratory",
       calibration,
       text,
       {}},

      {"description", "Item", "What the meter is (default: Turbine flow meter)", meter, text, {}},
      {"maker", "Maker", "Maker of the meter", meter, text, {}},
      {"model", "Model", "The maker's model", meter, text, {}},
      {"size", "Size", "Nominal size, such as '1 in'", meter, text, {}},
      {"inventory-number",
       "Inventory number",
       "The customer's number of the meter",
       meter,
       text,
       {}},
      {"diameter", "Diameter", "Inner diameter with its unit, such as '25.4 mm'", meter, measure,
       "length"},
      {"expansion", "Linear expansion",
       "Coefficient of linear thermal expansion with its unit, such as '1.6e-5 1/K'", meter,
       measure, "expansion"},

      {"customer", "Customer", "Name of the customer", meter, text, {}},
      {"customer-street", "Customer's street", "Street and number", meter, text, {}},
      {"customer-post-code", "Customer's post code", "Post code", meter, text, {}},
      {"customer-city", "Customer's city", "City", meter, text, {}},
      {"customer-country", "Customer's country", "Country as two letters", meter, country, {}},
      {"customer-email", "Customer's e-mail", "E-mail address", meter, text, {}},

      {"method", "Method", "Method of the calibration", calibration, text, {}},
      {"procedure", "Procedure", "Number or name of the procedure", calibration, text, {}},
      {"traceability",
       "Traceability",
       "How the reference is traceable to the SI",
       calibration,
       text,
       {}},
      {"ambient-temperature", "Ambient temperature", "With its unit, such as '21.5 C'", calibration,
       measure, "temperature"},
      {"ambient-humidity", "Ambient humidity", "Relative humidity, such as '45 %'", calibration,
       measure, "relative size"},
      {"ambient-pressure", "Ambient pressure", "With its unit, such as '1013 hPa'", calibration,
       measure, "pressure"},
      {"line-pressure", "Line pressure", "Pressure in the meter, such as '3 bar'", calibration,
       measure, "pressure"},
      {"limit", "Limit of the deviation",
       "Largest allowed deviation of a measured point from the curve, such as '0.25 %': the "
       "certificate then says pass or fail",
       meter, measure, "relative size"},
      {"remark", "Remark", "Remark; may be repeated", calibration, list, {}},
      {"signatory",
       "Signatory",
       "'NAME, ROLE' of a person who signs, the responsible one first; may be repeated",
       calibration,
       list,
       {}},

      {"roshko-unit", "Unit of the Roshko number", "Such as Hz/cSt", meter, unit,
       "frequency over viscosity"},
      {"strouhal-unit", "Unit of the Strouhal number", "Such as pulses/gal or pulses/l", meter,
       unit, "pulses per volume"},
      {"flow-unit", "Unit of the flow", "Of the stand's volume over its time, such as gal/s or l/s",
       meter, unit, "volume flow"},
      {"frequency-unit", "Unit of the frequency", "Such as Hz", meter, unit, "frequency"},
      {"viscosity-unit", "Unit of the viscosity", "Such as cSt", meter, unit,
       "kinematic viscosity"},
      {"temperature-unit", "Unit of the temperature", "Such as F", meter, unit, "temperature"},
  };
}

}  // namespace

const std::vector<DetailField>& detailFields() {
  static const std::vector<DetailField> fields = allFields();
  return fields;
}

const DetailField& detailField(const std::string& key) {
  const auto& fields = detailFields();
  const auto found = std::ranges::find(fields, key, &DetailField::key);
  if (found != fields.end()) return *found;
  std::vector<std::string> keys;
  for (const DetailField& field : fields) keys.push_back(field.key);
  throw BadData({"'" + key + "' is not a detail of a certificate", "", suggestion(key, keys)});
}

}  // namespace pelmora::calibration
