// The command line reads and writes decimal points in every locale of its environment.
// SPDX-License-Identifier: MIT
#include "tests/support/comma_locale.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

namespace pelmora::test {
namespace {

// What a command says, on both outputs, with its exit code.
std::string outputOf(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(
      popen((command + " 2>&1; echo \"exit $?\"").c_str(), "r"), pclose);
  std::string output;
  std::array<char, 4096> buffer;
  while (pipe &&
         std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe.get()) != nullptr) {
    output += buffer.data();
  }
  return output;
}

// A whole session in a folder of its own; paths are relative so that outputs can be compared.
std::string session(const std::string& environment) {
  const ScratchFolder folder;
  std::ofstream points(folder.file("points.csv"));
  points << "roshko,strouhal\n";
  for (int i = 1; i <= 24; ++i) {
    points << 10 * i << ".5," << 1000 + i << '.' << (i * 37) % 10 << '\n';
  }
  points.close();
  const std::string pelmora =
      "cd '" + folder.path().string() + "' && " + environment + " '" PELMORA_CLI "' ";
  std::string output = outputOf(pelmora + "init curves.db");
  output += outputOf(pelmora + "raw curves.db points.csv --meter M1 --register --series S");
  output += outputOf(pelmora + "fit curves.db --meter M1 --series S --band 0.5 --json");
  output += outputOf(pelmora + "fit curves.db --meter M1 --series S --band 0,5");
  output += outputOf(pelmora + "show curves.db --meter M1 --series S");
  return output;
}

TEST(command_line_locale, does_not_matter) {
  if (!CommaLocale().isSet()) GTEST_SKIP() << CommaLocale::missing;
  const std::string plain = session("LC_ALL=C");
  EXPECT_NE(plain.find("exit 0"), std::string::npos) << plain;
  EXPECT_NE(plain.find("10.5"), std::string::npos) << plain;
  EXPECT_EQ(session("LOCPATH='" + CommaLocale::folder() + "' LC_ALL=de_DE.UTF-8"), plain);
}

// Otherwise the comparison above would say nothing.
TEST(command_line_locale, is_one_that_programs_find) {
  if (!CommaLocale().isSet()) GTEST_SKIP() << CommaLocale::missing;
  EXPECT_EQ(
      outputOf("LOCPATH='" + CommaLocale::folder() + "' LC_ALL=de_DE.UTF-8 locale decimal_point"),
      ",\nexit 0\n");
}

}  // namespace
}  // namespace pelmora::test
