// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/damage_list.h"

#include <utility>

namespace pelmora::sqlite::salvage {

void DamageList::add(const std::string& text) {
  if (known_.contains(text) || ++count_ > most_) return;
  known_.insert(text);
  texts_.push_back(text);
}

std::vector<std::string> DamageList::take() {
  if (count_ > most_)
    texts_.push_back("... and " + std::to_string(count_ - most_) + " more damaged places");
  return std::move(texts_);
}

}  // namespace pelmora::sqlite::salvage
