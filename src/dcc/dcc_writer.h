// The XML of a digital calibration certificate.
// SPDX-License-Identifier: MIT
#pragma once

#include "dcc/certificate.h"

#include <string>

namespace pelmora::dcc {

// UTF-8, namespaces https://ptb.de/dcc (schema version 3.3.0) and https://ptb.de/si. Columns
// in other units than those of the SI are stated twice: converted, and as printed.
//
// Errors: BadData naming the first thing that missingFrom finds.
[[nodiscard]] std::string certificateXml(const Certificate& certificate);

}  // namespace pelmora::dcc
