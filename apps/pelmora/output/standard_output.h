// A command's data, on standard output.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

// Before anything is opened: a standard stream that was closed stays one that cannot be used,
// rather than the number that the next opened file gets; a reader that has gone is an error of the
// write.
void prepareStandardStreams() noexcept;

// Errors: Trouble unexpected where it cannot be written, with what the run has stored by then.
//         Interrupted where nobody reads and a signal comes.
void printData(const std::string& text);

}  // namespace pelmora::cli
