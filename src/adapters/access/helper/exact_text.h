// Values that SQL has no type for, as texts that lose nothing.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/bytes.h"

#include <string>

namespace pelmora::access {

// In ten-thousandths: "-0.0001".
[[nodiscard]] std::string currencyText(std::int64_t value);
// From a sign and 16 bytes, with `scale` digits after the point. Errors: Damage.
[[nodiscard]] std::string decimalText(Bytes field, unsigned scale);
// From days since 30 December 1899; the fraction counts forward from midnight even before that day.
// "2019-03-14 15:09:26", without the time at midnight, and with milliseconds only if there are any.
// Errors: Damage for a day outside the years 100 to 9999.
[[nodiscard]] std::string dateText(double days);
// "{12345678-1234-1234-1234-123456789ABC}". Errors: Damage.
[[nodiscard]] std::string identityText(Bytes field);
// "0x000102ff"
[[nodiscard]] std::string hexText(Bytes field);

}  // namespace pelmora::access
