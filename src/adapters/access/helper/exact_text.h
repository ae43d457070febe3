// Values that SQL has no type for, as texts that lose nothing.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/bytes.h"

#include <string>

namespace pelmora::access {

// In ten-thousandths: "-0.0001".
[[nodiscard]] std::string currencyText(std::int64_t value);
// A sign and 16 bytes, with `scale` digits behind the point. Errors: Damage.
[[nodiscard]] std::string decimalText(Bytes field, unsigned scale);
// Days since 30 December 1899; before it the fraction still counts forward from midnight.
// "2019-03-14 15:09:26", without the time at midnight, with milliseconds only where there are any.
// Errors: Damage for a day outside of the years 100 to 9999.
[[nodiscard]] std::string dateText(double days);
// "{12345678-1234-1234-1234-123456789ABC}". Errors: Damage.
[[nodiscard]] std::string identityText(Bytes field);
// "0x000102ff"
[[nodiscard]] std::string hexText(Bytes field);

}  // namespace pelmora::access
