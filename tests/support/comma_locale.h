// A German locale, with its decimal comma, for as long as the object lives.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/places.h"

#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace pelmora::test {

// Machines seldom have one ready: it is made once for each build folder, from the sources of
// Debian's package locales. isSet() is false where they are missing.
class CommaLocale {
 public:
  static constexpr const char* name = "de_DE.UTF-8";
  static constexpr const char* missing =
      "no locale with a decimal comma: install the package locales";

  // Follows the locale in these texts alone, or with LC_ALL in all.
  explicit CommaLocale(int category = LC_NUMERIC) : category_(category) {
    make();
    setenv("LOCPATH", folder().c_str(), 1);
    std::setlocale(category_, name);
    unsetenv("LOCPATH");
  }
  ~CommaLocale() { std::setlocale(category_, "C"); }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  [[nodiscard]] bool isSet() const { return std::string(std::localeconv()->decimal_point) == ","; }
  // What LOCPATH has to be for programs that are to find it.
  static std::string folder() { return buildFolder() + "/test_locales"; }

 private:
  // Made beside its place and moved there: another test may be making it at the same time.
  static void make() {
    namespace fs = std::filesystem;
    const fs::path place = fs::path(folder()) / name;
    if (fs::exists(place)) return;
    std::error_code ignored;
    fs::create_directories(folder(), ignored);
    const fs::path fresh = fs::path(folder()) / ("new" + std::to_string(getpid()));
    const std::string command =
        "localedef --no-archive -i de_DE -f UTF-8 '" + fresh.string() + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) == 0) fs::rename(fresh, place, ignored);
    fs::remove_all(fresh, ignored);
  }

  int category_;
};

}  // namespace pelmora::test
