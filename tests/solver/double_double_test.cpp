// SPDX-License-Identifier: MIT
#include "solver/arithmetic/decimal_number.h"
#include "solver/arithmetic/double_double_functions.h"

#include <gtest/gtest.h>

#include <quadmath.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace pelmora::solver {
namespace {

__extension__ using Quad = __float128;
Quad quad(DoubleDouble a) { return static_cast<Quad>(a.hi) + a.lo; }
DoubleDouble thirdOf(double a) { return DoubleDouble(a) / DoubleDouble(3); }

double relativeError(DoubleDouble value, Quad exact) {
  return static_cast<double>(fabsq(quad(value) - exact) / fabsq(exact));
}

struct Function {
  std::string name;
  std::function<DoubleDouble(DoubleDouble)> ours;
  std::function<Quad(Quad)> exact;
  std::vector<double> thrice;  // arguments, three times as large
};

TEST(double_double, functions_have_28_digits) {
  const std::vector<Function> functions{
      {"exp",
       [](DoubleDouble a) { return exp(a); },
       expq,
       {-2000, -30, -1, 1e-9, 0.7, 5, 100, 2100}},
      {"log",
       [](DoubleDouble a) { return log(a); },
       logq,
       {1e-300, 0.3, 2.9999, 3.0001, 3.4, 20, 1e300}},
      {"sqrt", [](DoubleDouble a) { return sqrt(a); }, sqrtq, {1e-200, 0.5, 2, 1e200}},
      {"sin", [](DoubleDouble a) { return sin(a); }, sinq, {1e-9, 1, 2, 5, -7, 100, 12345}},
      {"cos", [](DoubleDouble a) { return cos(a); }, cosq, {1e-9, 1, 2, 5, -7, 100, 12345}},
      {"tan", [](DoubleDouble a) { return tan(a); }, tanq, {1e-9, 1, 2, 5, -7, 100}},
      {"asin", [](DoubleDouble a) { return asin(a); }, asinq, {1e-9, 1, -2, 2.9}},
      {"acos", [](DoubleDouble a) { return acos(a); }, acosq, {1e-9, 1, -2, 2.9, 2.9999}},
      {"atan", [](DoubleDouble a) { return atan(a); }, atanq, {1e-9, 1, -2, 50, 1e17}},
      {"sinh", [](DoubleDouble a) { return sinh(a); }, sinhq, {1e-9, 1, -2, 50}},
      {"cosh", [](DoubleDouble a) { return cosh(a); }, coshq, {1e-9, 1, -2, 50}},
      {"tanh", [](DoubleDouble a) { return tanh(a); }, tanhq, {1e-9, 1, -2, 50, 200}},
  };
  for (const Function& function : functions) {
    for (const double thrice : function.thrice) {
      const DoubleDouble argument = thirdOf(thrice);
      EXPECT_LE(relativeError(function.ours(argument), function.exact(quad(argument))), 1e-28)
          << function.name << " of a third of " << thrice;
    }
  }
}

TEST(double_double, powers_have_28_digits) {
  EXPECT_LE(relativeError(pow(thirdOf(5), thirdOf(7)), powq(Quad(5) / 3, Quad(7) / 3)), 1e-28);
  EXPECT_LE(relativeError(pow(thirdOf(-5), DoubleDouble(-7)), powq(Quad(-5) / 3, -7)), 1e-28);
  EXPECT_EQ(pow(DoubleDouble(0), thirdOf(1)).hi, 0);
  EXPECT_TRUE(std::isnan(pow(DoubleDouble(-1), thirdOf(1)).hi));
}

TEST(double_double, arithmetic_has_30_digits) {
  const DoubleDouble a = thirdOf(1), b = thirdOf(22);
  EXPECT_LE(relativeError(a + b, quad(a) + quad(b)), 1e-31);
  EXPECT_LE(relativeError(a - b, quad(a) - quad(b)), 1e-31);
  EXPECT_LE(relativeError(a * b, quad(a) * quad(b)), 1e-30);
  EXPECT_LE(relativeError(a / b, quad(a) / quad(b)), 1e-30);
}

TEST(double_double, values_outside_the_domain_are_no_numbers) {
  EXPECT_TRUE(std::isnan(log(DoubleDouble(-1)).hi));
  EXPECT_TRUE(std::isnan(sqrt(DoubleDouble(-1)).hi));
  EXPECT_TRUE(std::isnan(asin(DoubleDouble(1.5)).hi));
  EXPECT_TRUE(std::isnan(acos(DoubleDouble(-1.5)).hi));
  EXPECT_TRUE(std::isinf(exp(DoubleDouble(1000)).hi));
}

TEST(double_double, decimals_are_read_beyond_double_precision) {
  for (const std::string text :
       {"0.1", "3.14159265358979323846264338327950288", "123456789012345678901234567890", "1e-20",
        "2.5E+30", ".3333333333333333333333333333"}) {
    const DecimalNumber number = readDecimalNumber(text);
    EXPECT_EQ(number.length, text.size());
    EXPECT_EQ(number.value.hi, std::stod(text)) << text;
    EXPECT_LE(relativeError(number.value, strtoflt128(text.c_str(), nullptr)), 1e-30) << text;
  }
  EXPECT_EQ(readDecimalNumber("1e-999").value.hi, 0);
  EXPECT_TRUE(std::isinf(readDecimalNumber("1e999").value.hi));
  EXPECT_EQ(readDecimalNumber("x").length, 0U);
}

}  // namespace
}  // namespace pelmora::solver
