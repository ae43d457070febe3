// The folder in which the component finds equation files and writes its log.
// SPDX-License-Identifier: MIT
#pragma once

#include "apps/pelmora/temporary_folder.h"

#include <optional>
#include <string>

namespace pelmora::cli {

// The text of an equation file as the component reads it: lines end in CR LF. `place` names it in
// errors.
//
// Errors: Trouble badInput where no line is an equation.
[[nodiscard]] std::string cleanedEquations(std::string text, const std::string& place);

// `source`: empty for the built-in equations, which have no text; else a file, or a folder that
// holds "equations.txt" ("ratio equations.txt" where `ratio`). Lines may end in LF or CR LF.
//
// Errors: Trouble badInput.
[[nodiscard]] std::optional<std::string> equationsOf(const std::string& source, bool ratio);

// A private temporary folder that goes from fit to fit. Users' equation files are copied into it,
// so that the log never lands beside them.
class EquationFolder {
 public:
  // While it lives, the component of this thread works with the folder.
  class Use {
   public:
    explicit Use(const std::string& folder);
    ~Use();
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

   private:
    std::string before_;
  };

  // Fits then use these equations, from the file for `ratio` or the other one; absent: the built-in
  // ones.
  //
  // Errors: Trouble unexpected where the file cannot be written.
  [[nodiscard]] Use use(const std::optional<std::string>& text, bool ratio);

 private:
  struct File {
    std::string name, text;
    bool operator==(const File&) const = default;
  };

  TemporaryFolder folder_;
  std::optional<File> file_;  // never two: the component falls back from one name to the other
};

}  // namespace pelmora::cli
