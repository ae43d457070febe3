// Standard output that nobody can write: said once, with what was stored.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <sys/stat.h>

namespace pelmora::test {
namespace {

using testing::HasSubstr;

class standard_output : public CommandTest {
 protected:
  standard_output() { init(); }
  // The one line of a command whose output leads nowhere; its exit code must be 1. before: what the
  // shell does first, where its output leads there, too.
  std::string failure(const std::string& arguments, const std::string& redirect,
                      const std::string& before = "") const {
    const std::string error = scratch.file("error"), code = scratch.file("code");
    const std::string line = "{ " + before + " '" PELMORA_PROGRAM "' " + arguments +
                             "; echo $? >'" + code + "'; } 2>'" + error + "' " + redirect;
    EXPECT_EQ(std::system(line.c_str()), 0);
    EXPECT_EQ(bytesOf(code), "1\n") << arguments << redirect;
    const std::string text = bytesOf(error);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    return text;
  }
  std::string raw(const std::string& more = "") const {
    return "raw '" + curves + "' '" + write("p.csv", "1,2\n3,4\n") +
           "' --meter P --register --series S" + more;
  }
  std::size_t meters() const { return done({"show", curves, "--json"}).json()["meters"].size(); }
};

TEST_F(standard_output, that_is_closed_does_not_hide_what_was_stored) {
  EXPECT_THAT(failure(raw(), ">&-"),
              HasSubstr("standard output cannot be written: it is closed; the change is stored"));
  EXPECT_EQ(meters(), 1U);
}

TEST_F(standard_output, that_is_full_does_not_hide_what_was_stored) {
  EXPECT_THAT(failure(raw(" --json"), ">/dev/full"), HasSubstr("the change is stored"));
  EXPECT_EQ(meters(), 1U);
}

TEST_F(standard_output, whose_reader_has_gone_does_not_hide_what_was_stored) {
  // The reader says that it has closed its end before the program starts.
  const std::string gone = scratch.file("gone");
  ASSERT_EQ(mkfifo(gone.c_str(), 0600), 0);
  EXPECT_THAT(failure(raw(), "| { exec <&-; echo >'" + gone + "'; }", "read line <'" + gone + "';"),
              HasSubstr("the change is stored"));
  EXPECT_EQ(meters(), 1U);
}

TEST_F(standard_output, of_a_dry_run_that_is_closed_stores_nothing) {
  EXPECT_THAT(failure(raw(" --dry-run"), ">&-"), HasSubstr("nothing was stored"));
  EXPECT_EQ(meters(), 0U);
}

TEST_F(standard_output, that_is_full_fails_for_help_and_version) {
  for (const std::string arguments : {"--help", "fit --help", "--version"}) {
    EXPECT_THAT(failure(arguments, ">/dev/full"), HasSubstr("nothing was stored"));
    EXPECT_THAT(failure(arguments, ">&-"), HasSubstr("it is closed"));
  }
}

TEST_F(standard_output, that_is_closed_never_lands_in_a_file) {
  const std::string report = scratch.file("points.csv");
  done(
      {"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "P", "--register", "--series", "S"});
  const std::string line =
      "'" PELMORA_PROGRAM "' export '" + curves + "' --meter P -o '" + report + "' >&- 2>&- <&-";
  EXPECT_EQ(std::system(line.c_str()), 0);
  EXPECT_THAT(bytesOf(report), testing::StartsWith("series,points,roshko,strouhal\n"));
}

}  // namespace
}  // namespace pelmora::test
