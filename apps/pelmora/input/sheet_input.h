// Text files with measurements that a user brings.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/trouble.h"

#include <pelmora/sheet.h>

#include <string>

namespace pelmora::cli {

// The remedy and the option that settles the doubt, if there is one.
[[nodiscard]] std::string remedyWithOption(const std::string& remedy,
                                           sheets::SheetError::Doubt doubt);

// Code badInput.
[[nodiscard]] Trouble sheetTrouble(const std::string& path, const sheets::SheetError& error);

// Says on standard error how a file was read; nothing about a plain one.
void sayRecognised(const std::string& path, const sheets::Recognised& recognised);

// One line on standard error.
void sayNote(const std::string& note);

}  // namespace pelmora::cli
