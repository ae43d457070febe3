// SPDX-License-Identifier: MIT
#include "calibration/steps/equation_catalogue.h"

#include "base/text_lines.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace pelmora::calibration::steps {
namespace {

std::string replaceAll(std::string_view text, std::string_view part, std::string_view with) {
  std::string result;
  std::size_t begin = 0;
  for (std::size_t at = 0; (at = text.find(part, begin)) != std::string_view::npos;
       begin = at + part.size()) {
    result.append(text.substr(begin, at - begin)).append(with);
  }
  return result.append(text.substr(begin));
}

}  // namespace

std::vector<Equation> builtInEquations() {
  return {
      {"Polynomial 6th Order", "a+b*log(x)+c*log(x)^2+d*log(x)^3+e*log(x)^4+f*log(x)^5+g*log(x)^6"},
      {"Polynomial 7th Order",
       "a+b*log(x)+c*log(x)^2+d*log(x)^3+e*log(x)^4+f*log(x)^5+g*log(x)^6+h*log(x)^7"},
      {"Polynomial 8th Order",
       "a+b*log(x)+c*log(x)^2+d*log(x)^3+e*log(x)^4+f*log(x)^5+g*log(x)^6+h*log(x)^7+i*log(x)^8"},
      {"Polynomial 9th Order",
       "a+b*log(x)+c*log(x)^2+d*log(x)^3+e*log(x)^4+f*log(x)^5+g*log(x)^6+h*log(x)^7+i*log(x)^8"
       "+j*log(x)^9"},
      {"Polynomial 10th Order",
       "a+b*log(x)+c*log(x)^2+d*log(x)^3+e*log(x)^4+f*log(x)^5+g*log(x)^6+h*log(x)^7+i*log(x)^8"
       "+j*log(x)^9+k*log(x)^10"},
      {"TC eq6405",
       "a+b*ln(x)+c/ln(x)+d*(ln(x))^2+e/(ln(x))^2+f*(ln(x))^3+g/(ln(x))^3+h*(ln(x))^4+i/(ln(x))^4"},
  };
}

std::vector<Equation> trustedEquations() {
  std::vector<Equation> equations{
      {"Bearing drag, viscous", "a+b/x"},
      {"Bearing drag, viscous and static", "a+b/x+c/x^2"},
      {"Torque balance, laminar", "a+b/sqrt(x)+c/x"},
      {"Torque balance, laminar and static", "a+b/sqrt(x)+c/x+d/x^2"},
      {"Torque balance, turbulent", "a+b/x^0.2+c/x"},
      {"Torque balance, turbulent and static", "a+b/x^0.2+c/x+d/x^2"},
      {"Torque balance, both layers", "a+b/x^0.2+c/sqrt(x)+d/x"},
      {"Torque balance, both layers and static", "a+b/x^0.2+c/sqrt(x)+d/x+e/x^2"},
  };
  constexpr int lowOrders = 5;  // the built-in ones begin behind them
  constexpr std::array<const char*, lowOrders> names{"1st", "2nd", "3rd", "4th", "5th"};
  std::string expression = "a+b*log(x)";
  char parameter = 'c';
  for (int order = 1; order <= lowOrders; ++order) {
    if (order > 1)
      expression += std::string("+") + parameter++ + "*log(x)^" + std::to_string(order);
    equations.push_back({std::string("Polynomial ") + names[order - 1U] + " Order", expression});
  }
  const std::vector<Equation> builtIn = builtInEquations();
  equations.insert(equations.end(), builtIn.begin(), builtIn.end());
  std::reverse(equations.begin(), equations.end());
  return equations;
}

EquationFile parseEquationFile(std::string text) {
  EquationFile file;
  if (text.find('\r') == std::string::npos) text = replaceAll(text, "\n", lineBreak);
  file.text = replaceAll(text, "\r\n\r\n", lineBreak);
  if (file.text.ends_with(lineBreak)) file.text.resize(file.text.size() - lineBreak.size());

  const std::vector<std::string_view> lines = split(file.text, lineBreak);
  for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
    if (line->empty() || line->starts_with(';')) continue;
    const std::vector<std::string_view> fields = split(*line, "\t");
    if (fields.size() < 2) continue;
    file.equations.push_back({std::string(fields[0]), std::string(fields[1])});
  }
  return file;
}

const char* equationFileName(bool ratioCurve) {
  return ratioCurve ? "ratio equations.txt" : "equations.txt";
}

}  // namespace pelmora::calibration::steps
