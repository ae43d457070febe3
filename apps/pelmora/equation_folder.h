// The folder in which the component finds equation files and writes its log.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/temporary_folder.h"

#include <optional>
#include <string>

namespace pelmora::cli {

// A private temporary folder, made platform().componentFolder while it lives and removed at its
// end. The user's equation files are copied into it, so that the log never lands beside them.
class EquationFolder {
 public:
  // `equations`: empty for the built-in equations, else a folder that holds "equations.txt" ("ratio
  // equations.txt" where `ratio`) or a file. Lines may end in LF or CR LF.
  // Errors: Trouble badInput.
  EquationFolder(const std::string& equations, bool ratio);
  ~EquationFolder();
  EquationFolder(const EquationFolder&) = delete;
  EquationFolder& operator=(const EquationFolder&) = delete;

  // What the component reads, lines ended by CR LF; nothing for the built-in equations.
  [[nodiscard]] const std::optional<std::string>& text() const { return text_; }

 private:
  TemporaryFolder folder_;
  std::optional<std::string> text_;
  std::string before_;
};

}  // namespace pelmora::cli
