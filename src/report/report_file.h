// A report's bytes as a file.
// SPDX-License-Identifier: MIT
#pragma once

#include <stop_token>
#include <string>

namespace pelmora::report {

// FILE is the old report or the new one, never a part of it; its rights and a symbolic link stay
// (files/replace_file.h). Asked to stop, or if it fails, it leaves FILE as it was.
//
// Errors: calibration::Unusable if the file cannot be written; calibration::Cancelled.
void writeFile(const std::string& file, const std::string& content, const std::stop_token& stop);

}  // namespace pelmora::report
