// What the shells complete, and the man pages, from the program's own description.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/command.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
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
  // An address as COMP_WORDS has it: divided where COMP_WORDBREAKS says.
  static std::vector<std::string> dividedByBash(const std::string& word) {
    if (!word.starts_with("postgresql:")) return {word};
    std::vector<std::string> parts;
    bool wasBreak = true;
    for (const char c : word) {
      const bool isBreak = std::string("@=:").find(c) != std::string::npos;
      if (parts.empty() || isBreak != wasBreak) parts.emplace_back();
      parts.back() += c;
      wasBreak = isBreak;
    }
    return parts;
  }
  // What bash offers for the last of these words.
  std::string bash(const std::vector<std::string>& words) const {
    std::string line =
        "source '" + script("bash") + "'; compopt() { :; }; COMP_WORDS=('" PELMORA_PROGRAM "'";
    std::string typed = "pelmora";
    std::size_t count = 0;
    for (const std::string& word : words) {
      typed += " " + word;
      for (const std::string& part : dividedByBash(word)) {
        line += " '" + part + "'";
        ++count;
      }
    }
    line += "); COMP_LINE='" + typed + "'; COMP_CWORD=" + std::to_string(count) +
            "; _pelmora; printf '%s\\n' \"${COMPREPLY[@]}\"";
    return outputOf("bash --norc -c \"$(cat '" + write("line.sh", line) + "')\"");
  }
  // A location as a shell takes it that knows the question mark.
  static std::string typed(const std::string& location) {
    const std::size_t question = location.find('?');
    return question == std::string::npos
               ? location
               : location.substr(0, question) + "\\" + location.substr(question);
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

// Of which one accepts connections and never says a word, and the other does not exist.
TEST_F(completion, of_bash_never_waits_long_for_a_server) {
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(listener, 1), 0);
  socklen_t size = sizeof address;
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  const std::string silent =
      "postgresql://lab@127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/lab";
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(bash({"show", silent, "--meter", ""}), "\n");
  EXPECT_EQ(bash({"show", "postgresql:///lab?host=/nonexistent", "--meter", ""}), "\n");
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(8));
  close(listener);
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
  EXPECT_THAT(fish("pelmora show " + typed(curves) + " --meter "), HasSubstr("M"));
}

TEST_F(completion, of_zsh_offers_commands_choices_and_names) {
  if (!isInstalled("zsh")) GTEST_SKIP() << "zsh is not installed";
  EXPECT_THAT(zsh("pelmora eval"), HasSubstr("pelmora evaluate"));
  EXPECT_THAT(zsh("pelmora im"), AllOf(HasSubstr("import "), HasSubstr("import-curve")));
  EXPECT_THAT(zsh("pelmora fit --on-range "),
              AllOf(HasSubstr("abort"), HasSubstr("retry"), HasSubstr("ignore")));
  EXPECT_THAT(zsh("pelmora show " + typed(curves) + " --meter "), HasSubstr("--meter M\\ \\$1"));
  EXPECT_THAT(zsh("pelmora show " + typed(curves) + " --meter M\\ \\$1 --series Rot"),
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
