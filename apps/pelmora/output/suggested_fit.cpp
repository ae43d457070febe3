// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/suggested_fit.h"

#include "apps/pelmora/output/suggested_command.h"
#include "base/readable_number.h"

#include <vector>

namespace pelmora::cli {
namespace {

class FitWords {
 public:
  explicit FitWords(const FitCall& call) : words_{"fit", call.database} {
    addSeriesWords(words_, call.meter, call.calibration, call.series);
  }
  void add(const char* option, const std::optional<double>& value) {
    if (value) words_.insert(words_.end(), {option, exactText(*value)});
  }
  void add(const char* option, const std::string& text) {
    if (!text.empty()) words_.insert(words_.end(), {option, text});
  }
  void add(const char* option, const std::vector<std::string>& texts) {
    for (const std::string& text : texts) add(option, text);
  }
  void addFlag(const char* option, bool isGiven) {
    if (isGiven) words_.emplace_back(option);
  }
  [[nodiscard]] std::string text() const { return suggestedCommand(words_); }

 private:
  std::vector<std::string> words_;
};

template <class Number>
std::string wholeText(const std::optional<Number>& number) {
  return number ? std::to_string(*number) : std::string();
}

}  // namespace

std::string fitCommand(const FitCall& call) {
  const calibration::SettingsChange& given = call.choices.given;
  FitWords words(call);
  words.add("--min", call.min);
  words.add("--max", call.max);
  words.add("--points", wholeText(call.tests.points));
  words.add("--band", call.tests.band);
  words.add("--equations", call.tests.equations);
  words.add("--choose", given.choice ? calibration::choiceKey(*given.choice) : std::string());
  words.add("--only", call.choices.only);
  words.add("--without", call.choices.without);
  words.add("--spacing", given.spacing ? calibration::spacingKey(*given.spacing) : std::string());
  words.add("--max-order", wholeText(given.maxOrder));
  words.add("--fit-min", given.fitMin);
  words.add("--fit-max", given.fitMax);
  words.add("--merge-band", given.mergeBand);
  words.addFlag("--no-cut", given.cutsOverlap == false);
  words.addFlag("--strict", call.choices.isStrict);
  words.addFlag("--ratio", call.ratio);
  words.addFlag("--inverted", call.inverted);
  words.addFlag("--ignore-residuals", call.ignoreResiduals);
  words.add("--on-range", call.onRange);
  return words.text();
}

}  // namespace pelmora::cli
