// What the shells complete, and the man pages, from the program's own description.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <cstdio>
#include <filesystem>

namespace pelmora::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// What a shell command writes; nothing where it fails.
std::string outputOf(const std::string& line) {
  std::string text;
  FILE* pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) return text;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) text += static_cast<char>(c);
  return pclose(pipe) == 0 ? text : std::string();
}

bool isInstalled(const std::string& program) { return !outputOf("command -v " + program).empty(); }

class completion : public CommandTest {
 protected:
  completion() {
    init();
    for (const char* series : {"Rotor A", "Rotor B"}) {
      done({"raw", curves, write("p.csv", "1,2\n3,4\n"), "--meter", "M $1", "--register",
            "--series", series});
    }
  }
  std::string script(const std::string& shell) const {
    return write("completion." + shell, done({"completion", shell}).output);
  }
  // What bash offers for the last of these words.
  std::string bash(const std::vector<std::string>& words) const {
    std::string line =
        "source '" + script("bash") + "'; compopt() { :; }; COMP_WORDS=('" PELMORA_PROGRAM "'";
    for (const std::string& word : words) line += " '" + word + "'";
    line += "); COMP_CWORD=" + std::to_string(words.size()) +
            "; _pelmora; printf '%s\\n' \"${COMPREPLY[@]}\"";
    return outputOf("bash --norc -c \"$(cat '" + write("line.sh", line) + "')\"");
  }
  // What an interactive zsh shows when a tab follows `line`; it clears the line and says so
  // afterwards, which tells that it is done.
  std::string zsh(const std::string& line) const {
    script("zsh");
    std::filesystem::rename(scratch.file("completion.zsh"), scratch.file("_pelmora"));
    const std::string session =
        "zmodload zsh/zpty\n"
        "zpty shell zsh -f -i\n"
        "zpty -w shell \"stty columns 400; unsetopt beep list_ambiguous; LISTMAX=9999; "
        "PATH=${1:h}:\\$PATH; fpath=(${2:h} \\$fpath)\"\n"
        "zpty -w shell \"autoload -Uz compinit; compinit -u -D; PROMPT=REA''DY\"\n"
        "zpty -r shell shown '*READY*'\n"
        "zpty -w -n shell \"$3\"$'\\t'\n"
        "zpty -w shell $'\\C-U'\"print DO''NE\"\n"
        "zpty -r shell shown '*DONE*'\n"
        "print -r -- $shown\n";
    return outputOf("HOME='" + scratch.file("") + "' timeout 60 zsh -f '" +
                    write("session.zsh", session) + "' '" PELMORA_PROGRAM "' '" +
                    scratch.file("_pelmora") + "' '" + line + "'");
  }
};

TEST_F(completion, of_bash_offers_commands_and_options) {
  EXPECT_THAT(bash({"im"}),
              AllOf(HasSubstr("import\n"), HasSubstr("import-curve\n"), Not(HasSubstr("init"))));
  EXPECT_THAT(bash({"fit", curves, "--on-"}), testing::Eq("--on-range\n"));
  EXPECT_THAT(bash({"fit", curves, "--on-range", ""}), testing::Eq("abort\nretry\nignore\n"));
}

TEST_F(completion, of_bash_knows_meters_and_series_of_the_database) {
  EXPECT_EQ(bash({"show", curves, "--meter", ""}), "M\\ \\$1\n");
  EXPECT_EQ(bash({"show", curves, "--meter", "M $1", "--series", "Rot"}), "Rotor\\ A\nRotor\\ B\n");
  EXPECT_EQ(bash({"show", "missing.db", "--meter", ""}), "\n");
}

TEST_F(completion, of_bash_offers_files_elsewhere) {
  EXPECT_EQ(bash({"show", scratch.file("cur")}), curves + "\n");
}

TEST_F(completion, of_fish_offers_commands_choices_and_names) {
  if (!isInstalled("fish")) GTEST_SKIP() << "fish is not installed";
  const auto fish = [&](const std::string& line) {
    return outputOf("HOME='" + scratch.file("") +
                    "' PATH=\"$(dirname '" PELMORA_PROGRAM
                    "'):$PATH\" fish --no-config -c 'source " +
                    script("fish") + "; complete -C \"" + line + "\"'");
  };
  EXPECT_THAT(fish("pelmora im"), AllOf(HasSubstr("import\t"), HasSubstr("import-curve\t")));
  EXPECT_THAT(fish("pelmora fit --on-range "), AllOf(HasSubstr("abort"), HasSubstr("ignore")));
  EXPECT_THAT(fish("pelmora show " + curves + " --meter "), HasSubstr("M"));
}

TEST_F(completion, of_zsh_offers_commands_choices_and_names) {
  if (!isInstalled("zsh")) GTEST_SKIP() << "zsh is not installed";
  EXPECT_THAT(zsh("pelmora eval"), HasSubstr("pelmora evaluate"));
  EXPECT_THAT(zsh("pelmora im"), AllOf(HasSubstr("import "), HasSubstr("import-curve")));
  EXPECT_THAT(zsh("pelmora fit --on-range "),
              AllOf(HasSubstr("abort"), HasSubstr("retry"), HasSubstr("ignore")));
  EXPECT_THAT(zsh("pelmora show " + curves + " --meter "), HasSubstr("--meter M\\ \\$1"));
  EXPECT_THAT(zsh("pelmora show " + curves + " --meter M\\ \\$1 --series Rot"),
              AllOf(HasSubstr("Rotor\\ A"), HasSubstr("Rotor\\ B")));
}

TEST_F(completion, of_an_unknown_shell_is_refused) {
  EXPECT_THAT(trouble(2, {"completion", "tcsh"}), HasSubstr("SHELL"));
}

class man_pages : public CommandTest {
 protected:
  // Warnings of the typesetter.
  static std::string warnings(const std::string& page) {
    return outputOf("groff -man -ww -Tutf8 -z '" + page + "' 2>&1; true");
  }
};

TEST_F(man_pages, of_program_and_commands_are_typeset_without_a_warning) {
  if (!isInstalled("groff")) GTEST_SKIP() << "groff is not installed";
  EXPECT_EQ(warnings(write("pelmora.1", done({"man"}).output)), "");
  for (const char* command : {"init", "import", "raw", "fit", "show", "calibrate", "completion"}) {
    const std::string page = done({"man", command}).output;
    EXPECT_EQ(warnings(write("page.1", page)), "") << command;
    EXPECT_THAT(page, HasSubstr(".SH EXIT STATUS"));
  }
}

TEST_F(man_pages, tell_options_with_their_values) {
  const std::string page = done({"man", "fit"}).output;
  EXPECT_THAT(page, AllOf(HasSubstr("\\fB\\-\\-on\\-range\\fR \\fIabort|retry|ignore\\fR"),
                          HasSubstr("Serial number of the meter (required)")));
}

TEST_F(man_pages, of_unknown_commands_suggest_one) {
  EXPECT_THAT(trouble(2, {"man", "fitt"}), HasSubstr("did you mean 'fit'?"));
}

}  // namespace
}  // namespace pelmora::test
