// A number locale with a decimal comma, for as long as the object lives.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/scratch_folder.h"

#include <clocale>
#include <cstdlib>
#include <string>

namespace pelmora::test {

// An installed one, or one made from the system's sources; isSet() is false where there is neither.
class CommaLocale {
 public:
  CommaLocale() {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE", "fr_FR"}) {
      if (std::setlocale(LC_NUMERIC, name) != nullptr) return;
    }
    const std::string make =
        "localedef -i de_DE -f UTF-8 '" + made_.file("de_DE.UTF-8") + "' >/dev/null 2>&1";
    if (std::system(make.c_str()) != 0) return;
    setenv("LOCPATH", made_.path().c_str(), 1);
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    unsetenv("LOCPATH");
  }
  ~CommaLocale() { std::setlocale(LC_NUMERIC, "C"); }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  [[nodiscard]] bool isSet() const { return std::string(std::localeconv()->decimal_point) == ","; }

 private:
  ScratchFolder made_;
};

}  // namespace pelmora::test
