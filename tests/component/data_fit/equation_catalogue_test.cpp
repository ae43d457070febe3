// SPDX-License-Identifier: MIT
#include "calibration/steps/equation_catalogue.h"
#include "tests/component/data_fit/fit_fixture.h"

#include <pelmora/error.h>

#include <sys/stat.h>

#include <filesystem>

namespace pelmora {
namespace {

using steps::builtInEquations;
using steps::parseEquationFile;
using Equations = std::vector<Equation>;

// A logarithmic polynomial, written out from its order.
Equation polynomial(int order) {
  std::string expression = "a+b*log(x)";
  for (int power = 2; power <= order; ++power) {
    expression +=
        "+" + std::string(1, static_cast<char>('a' + power)) + "*log(x)^" + std::to_string(power);
  }
  return {"Polynomial " + std::to_string(order) + "th Order", expression};
}

Equations sixBuiltIn() {
  return {polynomial(6),
          polynomial(7),
          polynomial(8),
          polynomial(9),
          polynomial(10),
          {"TC eq6405",
           "a+b*ln(x)+c/ln(x)+d*(ln(x))^2+e/(ln(x))^2+f*(ln(x))^3+g/(ln(x))^3"
           "+h*(ln(x))^4+i/(ln(x))^4"}};
}

TEST(built_in_equations, are_five_polynomials_and_one_with_reciprocals) {
  EXPECT_EQ(builtInEquations(), sixBuiltIn());
}

class equation_catalogue : public FitFixture {};

TEST_F(equation_catalogue, is_built_in_where_no_file_exists) {
  EXPECT_EQ(makeFitting()->equations(), sixBuiltIn());
}

TEST_F(equation_catalogue, loading_without_a_file_gives_no_text_and_changes_nothing) {
  const auto fitting = makeFitting();
  EXPECT_EQ(fitting->LoadEquations(), "");
  EXPECT_EQ(fitting->equations(), sixBuiltIn());
}

TEST_F(equation_catalogue, file_is_read_from_its_last_line_to_its_first) {
  writeFile("equations.txt", "A\tx1\r\n;a comment\r\nB\tx2");
  EXPECT_EQ(makeFitting()->equations(), (Equations{{"B", "x2"}, {"A", "x1"}}));
}

TEST_F(equation_catalogue, loading_returns_the_text_of_the_file) {
  writeFile("equations.txt", "A\tx1\r\n;note\r\nB\tx2\r\n");
  EXPECT_EQ(makeFitting()->LoadEquations(), "A\tx1\r\n;note\r\nB\tx2");
}

TEST_F(equation_catalogue, line_without_a_tab_is_skipped) {
  writeFile("equations.txt", "A\tx1\r\njust words\r\nB\tx2\r\n");
  EXPECT_EQ(makeFitting()->equations(), (Equations{{"B", "x2"}, {"A", "x1"}}));
}

TEST_F(equation_catalogue, third_field_is_ignored) {
  writeFile("equations.txt", "A\tx1\tpreferred\t1995\r\n");
  EXPECT_EQ(makeFitting()->equations(), (Equations{{"A", "x1"}}));
}

TEST_F(equation_catalogue, comment_may_hold_what_looks_like_an_equation) {
  writeFile("equations.txt", ";A\tx1\r\nB\tx2\r\n;\tx3\r\n");
  EXPECT_EQ(makeFitting()->equations(), (Equations{{"B", "x2"}}));
}

TEST_F(equation_catalogue, blanks_belong_to_the_fields) {
  writeFile("equations.txt", " A b \t x + 1 \r\n ;A\tx\r\n");
  EXPECT_EQ(makeFitting()->equations(), (Equations{{" ;A", "x"}, {" A b ", " x + 1 "}}));
}

TEST_F(equation_catalogue, line_that_begins_with_a_tab_has_an_empty_name) {
  writeFile("equations.txt", "\tx1\r\n");
  EXPECT_EQ(makeFitting()->equations(), (Equations{{"", "x1"}}));
}

TEST_F(equation_catalogue, empty_lines_give_no_equations) {
  writeFile("equations.txt", "\r\nA\tx1\r\n\r\n\r\n\r\nB\tx2\r\n\r\nC\tx3\r\n");
  EXPECT_EQ(makeFitting()->equations(), (Equations{{"C", "x3"}, {"B", "x2"}, {"A", "x1"}}));
}

TEST(equation_file, doubled_line_breaks_are_halved_in_one_pass) {
  EXPECT_EQ(parseEquationFile("A\tx\r\n\r\nB\ty").text, "A\tx\r\nB\ty");
  EXPECT_EQ(parseEquationFile("A\tx\r\n\r\n\r\nB\ty").text, "A\tx\r\n\r\nB\ty");
  EXPECT_EQ(parseEquationFile("A\tx\r\n\r\n\r\n\r\nB\ty").text, "A\tx\r\n\r\nB\ty");
}

TEST(equation_file, one_closing_line_break_is_cut_off) {
  EXPECT_EQ(parseEquationFile("A\tx\r\n").text, "A\tx");
  EXPECT_EQ(parseEquationFile("A\tx\r\n\r\n").text, "A\tx");
  EXPECT_EQ(parseEquationFile("A\tx\r\n\r\n\r\n").text, "A\tx\r\n");
}

TEST_F(equation_catalogue, ratio_curves_take_their_own_file_alone) {
  writeFile("equations.txt", "A\tx1");
  writeFile("ratio equations.txt", "R\tx2");
  const auto fitting = makeFitting();
  fitting->RatioCurve = true;
  EXPECT_EQ(fitting->LoadEquations(), "R\tx2");
  EXPECT_EQ(fitting->equations(), (Equations{{"R", "x2"}}));
}

TEST_F(equation_catalogue, other_curves_ignore_the_ratio_file) {
  writeFile("ratio equations.txt", "R\tx2");
  EXPECT_EQ(makeFitting()->equations(), sixBuiltIn());
}

TEST_F(equation_catalogue, ratio_curves_without_a_file_keep_what_construction_loaded) {
  writeFile("equations.txt", "A\tx1");
  const auto fitting = makeFitting();
  fitting->RatioCurve = true;
  EXPECT_EQ(fitting->LoadEquations(), "");
  EXPECT_EQ(fitting->equations(), (Equations{{"A", "x1"}}));
}

TEST_F(equation_catalogue, names_in_the_ansi_code_page_are_utf8_in_the_catalogue) {
  writeFile("equations.txt", "F\xFCnfte Ordnung\tx1\r\n");
  EXPECT_EQ(makeFitting()->equations(), (Equations{{"F\xC3\xBCnfte Ordnung", "x1"}}));
}

TEST_F(equation_catalogue, names_in_utf8_stay_as_they_are) {
  writeFile("equations.txt", "F\xC3\xBCnfte Ordnung\tx1\r\n");
  EXPECT_EQ(makeFitting()->equations(), (Equations{{"F\xC3\xBCnfte Ordnung", "x1"}}));
}

TEST_F(equation_catalogue, comments_alone_give_an_empty_catalogue) {
  writeFile("equations.txt", ";nothing here\r\n;yet\r\n");
  const auto fitting = makeFitting();
  EXPECT_EQ(fitting->equations(), Equations());
  EXPECT_EQ(fitting->LoadEquations(), ";nothing here\r\n;yet");
}

TEST_F(equation_catalogue, empty_file_counts_as_missing) {
  writeFile("equations.txt", "");
  EXPECT_EQ(makeFitting()->equations(), sixBuiltIn());
}

TEST_F(equation_catalogue, file_with_a_line_break_alone_counts_as_missing) {
  writeFile("equations.txt", "\r\n");
  EXPECT_EQ(makeFitting()->equations(), sixBuiltIn());
}

TEST_F(equation_catalogue, folder_of_that_name_is_no_file) {
  std::filesystem::create_directory(folder_.file("equations.txt"));
  EXPECT_EQ(makeFitting()->equations(), sixBuiltIn());
}

// A socket is there, but cannot be opened, whoever tries.
TEST_F(equation_catalogue, file_that_cannot_be_opened_is_an_error_of_construction) {
  ASSERT_EQ(mknod(folder_.file("equations.txt").c_str(), S_IFSOCK | 0600, 0), 0);
  try {
    makeFitting();
    FAIL() << "constructed";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 75);
  }
}

// The memory of a process opens and then refuses to be read at its beginning.
TEST_F(equation_catalogue, file_that_cannot_be_read_is_an_error_of_construction) {
  std::filesystem::create_symlink("/proc/self/mem", folder_.file("equations.txt"));
  try {
    makeFitting();
    FAIL() << "constructed";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 75);
  }
}

TEST_F(equation_catalogue, loading_again_sees_a_changed_file) {
  writeFile("equations.txt", "A\tx1");
  const auto fitting = makeFitting();
  writeFile("equations.txt", "B\tx2");
  EXPECT_EQ(fitting->LoadEquations(), "B\tx2");
  EXPECT_EQ(fitting->equations(), (Equations{{"B", "x2"}}));
}

}  // namespace
}  // namespace pelmora
