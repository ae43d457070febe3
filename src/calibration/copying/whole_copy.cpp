// SPDX-License-Identifier: MIT
#include "calibration/copying/whole_copy.h"

#include "calibration/copying/copied_tables.h"
#include "calibration/copying/copy_groups.h"
#include "calibration/copying/row_copier.h"
#include "calibration/copying/unfinished_copy.h"
#include "store/reading.h"

#include <pelmora/own_tables.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace pelmora::calibration {
namespace {

// Owners whose rows are in memory at the same time.
constexpr std::size_t ownersOfAPortion = 1000;

void requireNoRows(Connection& curves, const std::string& location) {
  for (const SchemaTable& table : curveTables()) {
    if (readRows(curves, "Select TOP 1 * from " + table.Name)->recordCount() == 0) continue;
    throw Exists({"'" + location + "' already holds rows, in table " + table.Name, location,
                  "name a new file or an empty curve database, or give the rows new ids"});
  }
}

class WholeCopy {
 public:
  WholeCopy(const Database& from, const Database& to, const CopyOptions& options,
            const Observer& observer)
      : from_(from.connection()),
        to_(to.connection()),
        source_(from.location()),
        target_(to.location()),
        options_(options),
        observer_(observer),
        copier_(*from_, *to_, ids_, state_.gaps) {}

  ProofSheet run() {
    begin();
    takeState();
    for (const CopyGroup& group : copyGroups()) {
      if (isResumed_ && group.owner != state_.owner) continue;
      if (!std::exchange(isResumed_, false)) state_.after.reset();
      state_.owner = group.owner;
      copyTables(group);
    }
    forgetUnfinished(to_);
    ProofSheet sheet = proof();
    end();
    return sheet;
  }

 private:
  // In the transaction, because another copy may have ended just before it.
  void takeState() {
    state_ = unfinishedCopy(to_);
    if (state_.source.empty()) {
      requireNoRows(*to_, target_);
      state_.source = source_;
    } else if (options_.portion == 0 || state_.source != source_) {
      throw Exists(
          {"'" + target_ + "' holds a part of '" + state_.source + "', whose copy has not ended",
           target_, "continue that copy in portions, or name another database"});
    }
    isResumed_ = !state_.owner.empty();
  }
  void begin() {
    view_ = std::make_unique<ReadView>(from_);
    transaction_ = std::make_unique<Transaction>(to_);
  }
  void end() {
    transaction_->commit();
    transaction_.reset();
    view_.reset();
  }
  void endPortion() {
    if (options_.portion == 0) return;
    keepUnfinished(to_, state_);
    end();
    begin();
    requireOwnState();
  }
  // Between two portions another program may have had its turn, with the same command.
  void requireOwnState() const {
    const UnfinishedCopy kept = unfinishedCopy(to_);
    if (kept.source == state_.source && kept.owner == state_.owner && kept.after == state_.after)
      return;
    throw Exists(
        {"another program has continued the copy of '" + source_ + "' to '" + target_ + "'",
         target_, "let it finish"});
  }

  void copyTables(const CopyGroup& group) {
    if (group.owner.empty() || !hasSchemaTable(from_, *group.tables.front().schema))
      return copyRows(group, {});
    for (;;) {
      const auto last = nextOwners();
      copyRows(group, RowPortion::range(state_.after, last));
      if (!last) break;
      state_.after = last;
      endPortion();
    }
  }

  // The last of the next owners; nothing if there are no more behind it.
  [[nodiscard]] std::optional<std::int64_t> nextOwners() const {
    const std::size_t count = options_.portion > 0 ? options_.portion : ownersOfAPortion;
    const std::string behind = state_.after ? " where ID>" + std::to_string(*state_.after) : "";
    const auto rows = readRows(*from_, "Select TOP " + std::to_string(count) + " ID from " +
                                           state_.owner + behind + " ORDER BY ID");
    std::optional<std::int64_t> last;
    std::size_t number = 0;
    for (; !rows->atEnd(); rows->moveNext(), ++number) {
      const auto* id = std::get_if<std::int64_t>(&rows->value(0));
      if (id != nullptr) last = *id;
    }
    return number == count ? last : std::nullopt;
  }

  void copyRows(const CopyGroup& group, const RowPortion& portion) {
    for (const GroupTable& table : group.tables) {
      if (!hasSchemaTable(from_, *table.schema)) continue;
      showStep(observer_, table.schema->Name);
      makeOwnTable(to_, *table.schema);
      ProofTable& proof = state_.tables[table.schema->Name];
      copier_.copy(*table.schema, table.owner, group.owner, portion, proof);
    }
  }

  [[nodiscard]] ProofSheet proof() {
    ProofSheet sheet;
    for (const auto* tables : {&curveTables(), &ownTables()}) {
      for (const SchemaTable& table : *tables) {
        const auto copied = state_.tables.find(table.Name);
        if (copied == state_.tables.end()) continue;
        copied->second.name = table.Name;
        copied->second.expected = countOf(*from_, table.Name);
        sheet.tables.push_back(copied->second);
      }
    }
    sheet.missing = state_.gaps;
    return sheet;
  }

  ConnectionPtr from_, to_;
  std::string source_, target_;
  const CopyOptions& options_;
  const Observer& observer_;
  UnfinishedCopy state_;
  NewIds ids_;
  RowCopier copier_;
  bool isResumed_ = false;
  std::unique_ptr<ReadView> view_;
  std::unique_ptr<Transaction> transaction_;
};

}  // namespace

ProofSheet copyWhole(const Database& from, const Database& to, const CopyOptions& options,
                     const Observer& observer) {
  return WholeCopy(from, to, options, observer).run();
}

}  // namespace pelmora::calibration
