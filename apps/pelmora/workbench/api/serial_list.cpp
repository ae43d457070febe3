// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/api/serial_list.h"

#include <algorithm>

namespace pelmora::cli::workbench {
namespace {

constexpr std::chrono::seconds freshFor{10};

// Letters beyond ASCII are compared as they are.
std::string smallText(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

}  // namespace

void SerialList::refresh(const calibration::Database& lab) {
  const auto now = std::chrono::steady_clock::now();
  if (readAt_ && now - *readAt_ < freshFor) return;
  serials_ = lab.serials();
  small_.resize(serials_.size());
  std::transform(serials_.begin(), serials_.end(), small_.begin(), smallText);
  readAt_ = now;
}

FoundSerials SerialList::find(const calibration::Database& lab, const std::string& text,
                              std::size_t from, std::size_t most) {
  refresh(lab);
  const std::string wanted = smallText(text);
  FoundSerials found{.serials = {}, .matching = 0, .total = serials_.size()};
  const auto take = [&](std::size_t i) {
    if (found.matching++ >= from && found.serials.size() < most)
      found.serials.push_back(serials_[i]);
  };
  for (std::size_t i = 0; i < small_.size(); ++i) {
    if (small_[i].starts_with(wanted)) take(i);
  }
  if (wanted.empty()) return found;
  for (std::size_t i = 0; i < small_.size(); ++i) {
    const auto at = small_[i].find(wanted);
    if (at != std::string::npos && at > 0) take(i);
  }
  return found;
}

}  // namespace pelmora::cli::workbench
