// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/long_output.h"

#include "apps/pelmora/output/standard_output.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {

void LongText::add(std::string_view text) {
  constexpr std::size_t enough = 1U << 16U;
  text_ += text;
  if (text_.size() >= enough) end();
}

void LongText::end() {
  printData(text_);
  text_.clear();
}

LongList::LongList(const nlohmann::json& members, std::string_view list)
    : stream_([this](std::string_view piece) { text_.add(piece); }) {
  stream_.beginObject();
  for (const auto& [key, value] : members.items()) {
    stream_.key(key);
    stream_.value(value);
  }
  stream_.key(list);
  stream_.beginList();
}

void LongList::end() {
  stream_.end();
  stream_.end();
  text_.end();
}

}  // namespace pelmora::cli
