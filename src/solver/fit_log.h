// The engine's own account of a fit, as a text file.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/fit_engine.h>

#include <string>

namespace pelmora::solver {

// Replaces the file. A path that cannot be written is passed over: the log is a help, and its
// absence must not end a fit run.
void writeFitLog(const FitModel& model, const std::string& path);

}  // namespace pelmora::solver
