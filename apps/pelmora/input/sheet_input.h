// A user's text files with measurements.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/trouble.h"

#include <pelmora/sheet.h>

#include <string>

namespace pelmora::cli {

// The remedy, with the option that settles the doubt if there is one.
[[nodiscard]] std::string remedyWithOption(const std::string& remedy,
                                           sheets::SheetError::Doubt doubt);

// Code badInput.
[[nodiscard]] Trouble sheetTrouble(const std::string& path, const sheets::SheetError& error);

// A note on standard error of how a file was read; none for plain CSV.
void sayRecognised(const std::string& path, const sheets::Recognised& recognised);

}  // namespace pelmora::cli
