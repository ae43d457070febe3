// Functions that a curve database brings along, for what the server computes differently from the
// dialect.
//
//   pelmora_small(text)            small letters, by the letters that base/text_case.h knows
//   pelmora_number(text | jsonb)   the number that it reads as; state PE013 where it is none
//   pelmora_whole(double)          the same number as a whole one; state PE013 where it is not
//   pelmora_whole_result(op, a, b) a sum, difference or product of whole numbers
//   pelmora_times, pelmora_over    product and quotient; too small a result is 0, as in C++
//   pelmora_power                  the same; state 22012 for 0 to a negative power, PE005 for the
//                                  power of a negative number to a broken exponent
//   pelmora_plus(jsonb, jsonb)     texts are joined, numbers added
//   pelmora_joined(text, text)     null counts as nothing unless both are null
//   pelmora_text(double | jsonb)   15 significant digits
//   pelmora_json(double)           a number that is known to be real
//   pelmora_like(text, text)       the dialect's LIKE
//   pelmora_compare(jsonb, jsonb)  < 0, 0, > 0: numbers before texts, texts without regard to case
//   pelmora_loose(jsonb)           a text that reads as a number as that number
//   pelmora_truth(jsonb)           whether it counts as true
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::postgres {

// The statements that make the functions.
[[nodiscard]] std::vector<std::string> serverFunctions();

}  // namespace pelmora::postgres
