// SPDX-License-Identifier: MIT
#include "apps/pelmora/unreadable_series.h"

#include <algorithm>

namespace pelmora::cli {
namespace {

constexpr std::size_t mostNames = 20;

}  // namespace

void UnreadableSeries::add(const std::string& place, const Trouble& why) {
  if (first_) {
    others_.push_back(place);
  } else {
    first_ = why;
  }
}

std::optional<Trouble> UnreadableSeries::trouble() const {
  if (!first_ || others_.empty()) return first_;
  std::string names;
  for (std::size_t i = 0; i < std::min(others_.size(), mostNames); ++i) {
    names += (i == 0 ? "" : ", ") + others_[i];
  }
  if (others_.size() > mostNames) {
    names += " and " + std::to_string(others_.size() - mostNames) + " more";
  }
  return Trouble(first_->code(), std::string(first_->what()) + "; nor can " + names,
                 first_->remedy());
}

void UnreadableSeries::throwIfAny() const {
  if (const auto found = trouble()) throw Trouble(*found);
}

}  // namespace pelmora::cli
