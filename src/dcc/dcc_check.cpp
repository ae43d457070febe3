// SPDX-License-Identifier: MIT
#include "dcc/dcc_check.h"

#include "base/readable_number.h"
#include "base/text_flaw.h"
#include "dcc/dcc_units.h"
#include "dcc/xml_tree.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace pelmora::dcc {
namespace {

// An uncertainty that equals the CMC passes, even if rounding has lowered it by this share.
constexpr double roundedAway = 1e-6;

std::vector<std::string> wordsOf(const XmlElement* element) {
  std::vector<std::string> words;
  if (element == nullptr) return words;
  std::string word;
  for (const char c : element->text + " ") {
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r') {
      word += c;
    } else if (!word.empty()) {
      words.push_back(std::move(word));
      word.clear();
    }
  }
  return words;
}

enum class UnitRule {
  si,     // a unit of the SI is required
  any,    // a unit is required
  ofList  // the enclosing list may state it instead
};

class CertificateCheck {
 public:
  explicit CertificateCheck(const CheckRules& rules) : rules_(rules) {}

  void visit(const XmlElement& element, UnitRule unit) {
    const std::string_view name = element.localName();
    if (name == "realListXMLList") checkReal(element, "XMLList", unit);
    if (name == "real" || name == "constant") checkReal(element, "", unit);
    if (name == "complexListXMLList") checkComplex(element, "XMLList", unit);
    if (name == "complex") checkComplex(element, "", unit);
    if (name == "realList" || name == "complexList") checkListUnit(element);
    if (name == "list") checkLengths(element);
    UnitRule ofChild = element.child("listUnit") != nullptr ? UnitRule::ofList : UnitRule::si;
    for (const XmlElement& child : element.children) {
      visit(child, ofChild);
      // The further quantities of a hybrid may have any unit.
      if (name == "hybrid") ofChild = UnitRule::any;
    }
  }
  std::vector<Violation> take() { return std::move(found_); }

 private:
  void add(const XmlElement& at, const std::string& what) { found_.push_back({at.line, what}); }

  // The numbers of an element. Words that are not finite numbers are reported and become NaN.
  std::vector<double> numbersOf(const XmlElement* element, const std::string& thing) {
    std::vector<double> numbers;
    for (const std::string& word : wordsOf(element)) {
      double value = 0;
      const char* first = word.data() + (word.starts_with('+') ? 1 : 0);
      const char* last = word.data() + word.size();
      const auto [stop, trouble] = std::from_chars(first, last, value);
      const bool isNumber = trouble == std::errc() && stop == last && std::isfinite(value);
      if (!isNumber) add(*element, "'" + shortened(word) + "' is not a finite " + thing);
      numbers.push_back(isNumber ? value : std::nan(""));
    }
    return numbers;
  }

  // One for all, or one for each.
  void requireCount(const XmlElement& at, std::size_t count, std::size_t values,
                    const std::string& things) {
    if (count == 1 || count == values) return;
    add(at, std::to_string(values) + " values have " + std::to_string(count) + " " + things);
  }

  void checkReal(const XmlElement& real, const std::string& suffix, UnitRule rule) {
    const std::vector<double> values = numbersOf(real.child("value" + suffix), "value");
    if (values.empty()) add(real, "there is no value");
    checkUnit(real, suffix, values.size(), rule);
    checkUncertainty(real, suffix, values);
    // The second spelling is that of the schema inside si:realList.
    for (const char* name :
         {"measurementUncertaintyUnivariate", "measurementUncertaintyUnivaraite"}) {
      if (const XmlElement* univariate = real.child(name + suffix))
        checkUncertainty(*univariate, suffix, values);
    }
  }

  void checkComplex(const XmlElement& complex, const std::string& suffix, UnitRule rule) {
    std::size_t length = 0;
    for (const char* name : {"valueReal", "valueImag", "valueMagnitude", "valuePhase"})
      length = std::max(length, numbersOf(complex.child(name + suffix), "value").size());
    if (length == 0) add(complex, "there is no value");
    checkUnit(complex, suffix, length, rule);
    for (const char* name : {"ellipsoidalRegion", "rectangularRegion"}) {
      if (const XmlElement* region = complex.child(name + suffix))
        checkCoverage(*region, suffix, length);
    }
  }

  void checkListUnit(const XmlElement& list) {
    if (const XmlElement* unit = list.child("listUnit")) checkUnitNames(*unit);
    for (const char* name : {"listMeasurementUncertaintyUnivariate", "listUnivariateUnc"}) {
      if (const XmlElement* common = list.child(name)) checkUncertainty(*common, "", {});
    }
  }

  void checkUnit(const XmlElement& quantity, const std::string& suffix, std::size_t values,
                 UnitRule rule) {
    const XmlElement* unit = quantity.child("unit" + suffix);
    const std::size_t units = wordsOf(unit).size();
    if (units == 0) {
      if (rule != UnitRule::ofList) add(quantity, "there is no unit");
      return;
    }
    requireCount(*unit, units, values, "units");
    if (rule != UnitRule::any) checkUnitNames(*unit);
  }

  void checkUnitNames(const XmlElement& unit) {
    for (const std::string& each : wordsOf(&unit)) {
      if (!isSiUnit(each)) add(unit, "'" + shortened(each) + "' is not an SI unit");
    }
  }

  // In the current form, and in the earlier one that the schema still accepts: expandedUnc.
  void checkUncertainty(const XmlElement& holder, const std::string& suffix,
                        const std::vector<double>& values) {
    if (const XmlElement* expanded = holder.child("expandedMU" + suffix))
      checkExpanded(*expanded, "valueExpandedMU" + suffix, suffix, values);
    if (const XmlElement* expanded = holder.child("expandedUnc" + suffix))
      checkExpanded(*expanded, "uncertainty" + suffix, suffix, values);
    if (const XmlElement* standard = holder.child("standardMU" + suffix))
      (void)checkUncertainties(standard->child("valueStandardMU" + suffix), *standard, values);
  }

  std::vector<double> checkUncertainties(const XmlElement* element, const XmlElement& parent,
                                         const std::vector<double>& values) {
    std::vector<double> all = numbersOf(element, "uncertainty");
    if (all.empty()) {
      add(parent, "there is no uncertainty");
    } else {
      requireCount(*element, all.size(), values.size(), "uncertainties");
    }
    if (std::any_of(all.begin(), all.end(), [](double u) { return u < 0; }))
      add(*element, "an uncertainty is negative");
    return all;
  }

  void checkExpanded(const XmlElement& expanded, const std::string& name, const std::string& suffix,
                     const std::vector<double>& values) {
    const XmlElement* at = expanded.child(name);
    const std::vector<double> all = checkUncertainties(at, expanded, values);
    checkCoverage(expanded, suffix, values.size());
    if (!rules_.cmcPercent || (all.size() != 1 && all.size() != values.size())) return;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const double u = all[all.size() == 1 ? 0 : i];
      const double least = std::abs(values[i]) * *rules_.cmcPercent / 100;
      if (u >= least * (1 - roundedAway) || std::isnan(u) || std::isnan(least)) continue;
      add(*at, "the uncertainty " + significantText(u, 6) + " of value " + std::to_string(i + 1) +
                   " is below the CMC of " + significantText(*rules_.cmcPercent, 6) + " %");
    }
  }

  void checkCoverage(const XmlElement& holder, const std::string& suffix, std::size_t values) {
    checkRange(holder, "coverageFactor" + suffix, "coverage factor", values, 1e300);
    checkRange(holder, "coverageProbability" + suffix, "coverage probability", values, 1);
  }

  void checkRange(const XmlElement& expanded, const std::string& name, const std::string& thing,
                  std::size_t values, double most) {
    const XmlElement* element = expanded.child(name);
    const std::vector<double> all = numbersOf(element, thing);
    if (all.empty()) {
      add(expanded, "an expanded uncertainty has no " + thing);
      return;
    }
    requireCount(*element, all.size(), values,
                 thing == "coverage factor" ? "coverage factors" : "probabilities");
    if (std::any_of(all.begin(), all.end(), [&](double v) { return v <= 0 || v > most; })) {
      add(*element, "a " + thing + " is not " + (most > 1 ? "above 0" : "between 0 and 1"));
    }
  }

  // The quantities directly inside a dcc:list must have the same length.
  void checkLengths(const XmlElement& list) {
    std::size_t length = 0;
    for (const XmlElement& quantity : list.children) {
      if (quantity.localName() != "quantity") continue;
      const XmlElement* numbers = &quantity;
      if (const XmlElement* hybrid = quantity.child("hybrid")) numbers = hybrid;
      for (const XmlElement& real : numbers->children) {
        if (real.localName() != "realListXMLList") continue;
        const std::size_t here = wordsOf(real.child("valueXMLList")).size();
        if (length == 0) length = here;
        if (here != length) {
          add(real, "a quantity has " + std::to_string(here) + " values and the first one " +
                        std::to_string(length));
        }
      }
    }
  }

  CheckRules rules_;
  std::vector<Violation> found_;
};

}  // namespace

std::vector<Violation> checkCertificate(std::string_view xml, const std::string& where,
                                        const CheckRules& rules) {
  const XmlElement root = readXml(xml, where);
  if (root.localName() != "digitalCalibrationCertificate") {
    throw calibration::BadData(
        {"<" + shortened(root.name) + "> is not a digital calibration certificate", where,
         "give a file that starts with "
         "<dcc:digitalCalibrationCertificate>"});
  }
  CertificateCheck check(rules);
  check.visit(root, UnitRule::si);
  std::vector<Violation> found = check.take();
  std::stable_sort(found.begin(), found.end(),
                   [](const Violation& a, const Violation& b) { return a.line < b.line; });
  return found;
}

}  // namespace pelmora::dcc
