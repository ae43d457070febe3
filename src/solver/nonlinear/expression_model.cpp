// SPDX-License-Identifier: MIT
#include "solver/nonlinear/expression_model.h"

#include "solver/equations/block_evaluator.h"
#include "solver/arithmetic/dual.h"
#include "solver/linear/householder.h"
#include "solver/equations/linear_form.h"

#include <algorithm>

namespace pelmora::solver {
namespace {

// Second derivatives cost about p evaluations of every node at every point.
constexpr double longestCurvature = 4e6;

template <class T>
std::array<T, 26> byLetter(const std::vector<int>& letters, const std::vector<T>& parameters) {
  std::array<T, 26> result{};
  for (std::size_t k = 0; k < letters.size(); ++k) {
    result[static_cast<std::size_t>(letters[k])] = parameters[k];
  }
  return result;
}

class ExpressionModel : public RegressionModel {
 public:
  ExpressionModel(const Expression& expression, std::span<const double> x,
                  std::span<const double> y)
      : expression_(expression),
        x_(x),
        y_(y),
        letters_(expression.letters()),
        responseLength_(lengthOf(std::vector<double>(y.begin(), y.end()))),
        plain_(expression, {{expression.root}}) {}

  [[nodiscard]] std::size_t points() const override { return x_.size(); }
  [[nodiscard]] std::size_t parameters() const override { return letters_.size(); }

  [[nodiscard]] double responseLength() const override { return responseLength_; }

  [[nodiscard]] double work() const override {
    return static_cast<double>(points()) * static_cast<double>(expression_.nodes().size());
  }

  [[nodiscard]] std::vector<bool> isLinearIn() const override {
    const std::vector<int> linear = jointlyLinearLetters(expression_);
    std::vector<bool> result;
    for (const int letter : letters_) {
      result.push_back(std::find(linear.begin(), linear.end(), letter) != linear.end());
    }
    return result;
  }

  void evaluate(const std::vector<double>& parameters, std::vector<double>& residuals,
                std::vector<std::vector<double>>* slopes) const override {
    residuals.resize(points());
    if (slopes != nullptr) slopes->assign(letters_.size(), std::vector<double>(points()));
    const auto letters = byLetter(letters_, parameters);
    forBlocks(plain_, letters, [&](std::size_t start, std::size_t count) {
      const auto values = plain_.value(expression_.root);
      for (std::size_t k = 0; k < count; ++k) residuals[start + k] = y_[start + k] - values[k];
      if (slopes == nullptr) return;
      plain_.differentiate(expression_.root);
      for (std::size_t j = 0; j < letters_.size(); ++j) {
        const auto gradient = plain_.gradient(letters_[j]);
        std::copy(gradient.begin(), gradient.end(),
                  (*slopes)[j].begin() + static_cast<std::ptrdiff_t>(start));
      }
    });
  }

  void evaluateExactly(const std::vector<DoubleDouble>& parameters, Column& residuals,
                       std::vector<Column>& slopes) const override {
    residuals = Column(points());
    slopes.assign(letters_.size(), Column(points()));
    BlockEvaluator<DoubleDouble> exact(expression_, {{expression_.root}});
    forBlocks(exact, byLetter(letters_, parameters), [&](std::size_t start, std::size_t count) {
      const auto values = exact.value(expression_.root);
      exact.differentiate(expression_.root);
      for (std::size_t k = 0; k < count; ++k) {
        residuals.set(start + k, DoubleDouble(y_[start + k]) - values[k]);
        for (std::size_t j = 0; j < letters_.size(); ++j) {
          slopes[j].set(start + k, exact.gradient(letters_[j])[k]);
        }
      }
    });
  }

  [[nodiscard]] std::vector<DoubleDouble> curvature(const std::vector<DoubleDouble>& parameters,
                                                    const Column& residuals) const override {
    const std::size_t p = letters_.size();
    if (work() * static_cast<double>(p) > longestCurvature) return {};
    std::vector<DoubleDouble> result(p * p);
    BlockEvaluator<Dual<DoubleDouble>> exact(expression_, {{expression_.root}});
    for (std::size_t i = 0; i < p; ++i) {
      std::vector<Dual<DoubleDouble>> moved(parameters.begin(), parameters.end());
      moved[i].slope = DoubleDouble(1);
      forBlocks(exact, byLetter(letters_, moved), [&](std::size_t start, std::size_t count) {
        exact.differentiate(expression_.root);
        for (std::size_t j = 0; j < p; ++j) {
          const auto gradient = exact.gradient(letters_[j]);
          for (std::size_t k = 0; k < count; ++k) {
            result[i * p + j] += residuals.at(start + k) * gradient[k].slope;
          }
        }
      });
    }
    return result;
  }

 private:
  template <class T, class Work>
  void forBlocks(BlockEvaluator<T>& evaluator, const std::array<T, 26>& letters,
                 const Work& work) const {
    for (std::size_t start = 0; start < points(); start += BlockEvaluator<T>::block) {
      const std::size_t count = std::min(BlockEvaluator<T>::block, points() - start);
      evaluator.load(x_.subspan(start, count), letters);
      work(start, count);
    }
  }

  const Expression& expression_;
  std::span<const double> x_, y_;
  std::vector<int> letters_;
  double responseLength_;
  mutable BlockEvaluator<double> plain_;  // working space of `evaluate`
};

}  // namespace

std::unique_ptr<RegressionModel> makeExpressionModel(const Expression& expression,
                                                     std::span<const double> x,
                                                     std::span<const double> y) {
  return std::make_unique<ExpressionModel>(expression, x, y);
}

}  // namespace pelmora::solver
