// An invented certificate of a meter calibrated in two fluids.
// SPDX-License-Identifier: MIT
#pragma once

#include "dcc/certificate.h"

namespace pelmora::test {

inline dcc::Certificate sampleCertificate() {
  dcc::Certificate made;
  made.number = "LAB-2026-0001";
  made.countryCode = "DE";
  made.firstDate = "2026-11-19";
  made.lastDate = "2026-11-20";
  made.issueDate = "2026-11-21";
  made.softwareVersion = "0.1.0";
  made.laboratoryCode = "D-K-00000-01-00";
  made.laboratory = {"Flow <laboratory> & sons", "Street", "1", "12345", "Town", "DE", ""};
  made.customer = {"Customer", "", "", "", "City", "", "buyer@customer.invalid"};
  made.signatories = {{"A. Signer", "head of laboratory", true}, {"B. Operator", "", false}};
  made.item = {"Dual-rotor turbine flow meter", "Maker", "1 in", "SN-1001", "FT-7"};
  made.title = "Calibration in two fluids";
  made.methods = {{"Comparison with a volume standard", "Procedure 7"}};
  made.conditions = {{"ambient temperature", "F", "70.5"}, {"humidity", "%", "45"}};
  dcc::Uncertainties u{{"0.65", "0.60", "0.66"}, {"2.00"}, "0.9545"};
  made.results = {{"Rotor A",
                   "K factor over Roshko number",
                   {{"Roshko number", true, "Hz/cSt", {"10.1", "100.0", "1000"}, std::nullopt},
                    {"K factor", false, "pulses/gal", {"1201.12", "1305.50", "1318.00"}, u}}},
                  {"Ratio",
                   "",
                   {{"Roshko number", true, "Hz/cSt", {"20.8", "200"}, std::nullopt},
                    {"quotient",
                     false,
                     "1",
                     {"1.0571", "1.0210"},
                     dcc::Uncertainties{{"0.0011", "0.0010"}, {"2.00", "2.03"}, "0.9545"}}}}};
  made.statements = {"Results are traceable to the SI.", "U contains fit and stand."};
  return made;
}

}  // namespace pelmora::test
