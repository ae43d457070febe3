// Any XML is checked as a certificate, or refused. After an odd first byte, the others are edits of
// a whole certificate (damage.h): so the fuzzer gets past the parser.
// SPDX-License-Identifier: MIT
#include "dcc/dcc_check.h"
#include "dcc/dcc_writer.h"
#include "fuzz/damage.h"
#include "fuzz/scratch_file.h"
#include "tests/dcc/sample_certificate.h"

#include <pelmora/calibration/failure.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora;
  static const std::string whole = dcc::certificateXml(test::sampleCertificate());
  if (size == 0) return 0;
  const std::string xml = data[0] % 2 != 0 ? fuzz::damaged(whole, data + 1, size - 1)
                                           : std::string(fuzz::textOf(data + 1, size - 1));
  try {
    for (const dcc::Violation& violation : dcc::checkCertificate(xml, "dcc.xml", {0.05}))
      if (violation.what.empty()) __builtin_trap();
  } catch (const calibration::BadData& failure) {
    if (std::string(failure.what()).empty()) __builtin_trap();
  }
  return 0;
}
