// What a run that ends early says of what it has stored. It needs no memory.
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

namespace pelmora::cli {

// What this run has made final so far: one note for the process, as there is one exit code. Threads
// may note.
void noteNothingStored() noexcept;
void noteStored() noexcept;
void noteFileWritten() noexcept;
void noteSeriesStored(std::size_t stored, std::size_t all) noexcept;

using ShortText = std::array<char, 120>;  // ends in 0

[[nodiscard]] bool isAnythingStored() noexcept;
// "nothing was stored", "the change is stored", "the file is written", or
// "12 of 300 series are stored, the others are unchanged".
[[nodiscard]] ShortText storedWords() noexcept;

// One line on standard error about memory. Returns the exit code.
[[nodiscard]] int sayOutOfMemory() noexcept;

// Where memory ends inside code that may not throw, the process ends with that line and code too.
void endOutOfMemoryInOrder() noexcept;

}  // namespace pelmora::cli
