// A calibration with everything that a certificate states, and what reads one.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/end_to_end/command.h"

#include <cstdlib>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace pelmora::test {

inline bool isInstalled(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}
inline bool succeeds(const std::string& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

inline std::set<std::string> wordsOf(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

// Every number of the curves and every K of the points with its U.
inline std::vector<std::string> certifiedNumbers(const std::string& xml) {
  const std::regex list(
      "<si:valueXMLList>([^<]*)</si:valueXMLList>\\s*<si:unitXMLList>(?:pulses/gal|"
      "\\\\hertz[^<]*)</si:unitXMLList>\\s*(?:<si:measurementUncertaintyUnivariateXMLList>\\s*"
      "<si:expandedMUXMLList>\\s*<si:valueExpandedMUXMLList>([^<]*)<)?");
  std::vector<std::string> numbers;
  std::size_t uncertainties = 0;
  for (std::sregex_iterator at(xml.begin(), xml.end(), list), end; at != end; ++at) {
    const std::set<std::string> values = wordsOf((*at)[1].str()), us = wordsOf((*at)[2].str());
    uncertainties += us.size();
    numbers.insert(numbers.end(), values.begin(), values.end());
    numbers.insert(numbers.end(), us.begin(), us.end());
  }
  EXPECT_GT(numbers.size(), 300U);
  EXPECT_GT(uncertainties, 20U);
  return numbers;
}

class certificate : public CommandTest {
 protected:
  void SetUp() override { initCalibrated(); }
  Arguments meter(const Arguments& more) const {
    Arguments arguments{"meter", "set", curves, "--meter", "M1"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }
  void recordEverything() const {
    done({"laboratory", "set", curves, "--name", "Flow <lab> & sons", "--city", "Town", "--country",
          "DE", "--nominal-flow-column", "V14", "--nominal-flow-unit", "gpm"});
    done(meter({"--certificate-number",
                "2026-17",
                "--date",
                "2026-11-20",
                "--maker",
                "Maker",
                "--model",
                "T-1",
                "--size",
                "1 in",
                "--customer",
                "Customer",
                "--customer-city",
                "City",
                "--roshko-unit",
                "Hz/cSt",
                "--strouhal-unit",
                "1/gal",
                "--flow-unit",
                "gal/s",
                "--frequency-unit",
                "Hz",
                "--viscosity-unit",
                "cSt",
                "--temperature-unit",
                "F",
                "--ambient-temperature",
                "70.5 F",
                "--limit",
                "0.3 %",
                "--signatory",
                "A. Signer, head of laboratory",
                "--signatory",
                "B. Operator",
                "--remark",
                "first",
                "--remark",
                "second"}));
  }
  void recordStand() const {
    done({"stand", "uncertainty", curves,
          write("stand.ini",
                "[stand]\nname = Stand 3\ncmc = 0.05 %\n[flow]\nexpanded = 0.04 %\nk = 2\n"
                "[reproducibility]\nstandard = 0.01 %\ntype = A\ndegrees of freedom = 14\n"),
          "--meter", "M1"});
  }
  std::string written(const std::string& name, const Arguments& more = {}) const {
    Arguments arguments{"report", curves, "--meter", "M1", "-o", scratch.file(name)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    done(arguments);
    return bytesOf(scratch.file(name));
  }
  // Makes key.pem and cert.pem.
  [[nodiscard]] bool makeKey(const std::string& kind) const {
    return succeeds("openssl req -x509 -newkey " + kind + " -nodes -days 2 -subj /CN=Laboratory " +
                    "-keyout '" + scratch.file("key.pem") + "' -out '" + scratch.file("cert.pem") +
                    "'");
  }
  [[nodiscard]] bool isVerified(const std::string& name) const {
    return succeeds("xmlsec1 --verify --pubkey-cert-pem '" + scratch.file("cert.pem") + "' '" +
                    scratch.file(name) + "'");
  }
};

}  // namespace pelmora::test
