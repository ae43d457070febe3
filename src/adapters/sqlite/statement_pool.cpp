// SPDX-License-Identifier: MIT
#include "adapters/sqlite/statement_pool.h"

namespace pelmora::sqlite {

StatementPool::Use::~Use() {
  if (!kept_.empty()) pool_.giveBack(kept_);
}

StatementPool::Use StatementPool::take(std::string_view sql) {
  Use use(*this);
  if (const auto found = bySql_.find(sql); found != bySql_.end()) {
    use.kept_.splice(use.kept_.end(), idle_, found->second);
    bySql_.erase(found);
  } else {
    use.kept_.push_back({std::string(sql), PreparedStatement(database_, sql)});
  }
  return use;
}

void StatementPool::giveBack(List& kept) {
  kept.front().statement.reset();
  kept.front().statement.forgetValues();
  try {
    const bool isNew = bySql_.try_emplace(kept.front().sql, kept.begin()).second;
    if (!isNew) return;  // another use of the same text has come back before
  } catch (...) {
    return;  // no memory to keep it
  }
  idle_.splice(idle_.begin(), kept);
  if (idle_.size() <= most) return;
  bySql_.erase(idle_.back().sql);
  idle_.pop_back();
}

}  // namespace pelmora::sqlite
