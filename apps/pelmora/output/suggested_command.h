// Commands that a message suggests, ready to be pasted into a shell.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::cli {

// "pelmora fit curves.db --series 'Rotor A'": words that need it are quoted.
[[nodiscard]] std::string suggestedCommand(const std::vector<std::string>& words);

// The words that name a series: "--meter M1 --series 'Rotor A'", with --calibration if it is given.
void addSeriesWords(std::vector<std::string>& words, const std::string& meter, int calibration,
                    const std::string& series);

}  // namespace pelmora::cli
