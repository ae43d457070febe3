// SPDX-License-Identifier: MIT
#include "calibration/copying/added_copy.h"

#include "base/text_case.h"
#include "calibration/copying/copied_tables.h"
#include "calibration/copying/copy_groups.h"
#include "calibration/copying/named_rows.h"
#include "calibration/copying/row_copier.h"
#include "store/name_text.h"
#include "store/reading.h"

#include <pelmora/own_tables.h>

#include <algorithm>
#include <map>
#include <set>
#include <span>
#include <utility>

namespace pelmora::calibration {
namespace {

using Ids = std::vector<std::int64_t>;

constexpr std::size_t idsOfAStatement = 200;

Ids idsIn(Connection& curves, const std::string& statement) {
  Ids ids;
  for (const auto rows = readRows(curves, statement); !rows->atEnd(); rows->moveNext()) {
    if (const auto* id = std::get_if<std::int64_t>(&rows->value(0))) ids.push_back(*id);
  }
  return ids;
}

// Calls `action` with as many ids as a statement may name.
template <class Action>
void inPortions(const Ids& ids, Action&& action) {
  for (std::size_t at = 0; at < ids.size(); at += idsOfAStatement) {
    const auto part = std::span(ids).subspan(at, std::min(idsOfAStatement, ids.size() - at));
    action(RowPortion::of({part.begin(), part.end()}));
  }
}

class AddedCopy {
 public:
  AddedCopy(const Database& from, const Database& to, const CopyOptions& options,
            const Observer& observer)
      : lab_(from),
        target_(to),
        from_(from.connection()),
        to_(to.connection()),
        options_(options),
        observer_(observer),
        copier_(*from_, *to_, ids_, sheet_.missing) {}

  ProofSheet run() {
    const ReadView view(from_);
    Transaction transaction(to_);
    listOwners();
    requireRoom();
    copyLists();
    for (const char* owner : {"meter", "CalSetup", "series"}) copyOwned(owner);
    transaction.commit();
    return std::move(sheet_);
  }

 private:
  void listOwners() {
    Ids& meters = owners_["meter"];
    if (options_.meters.empty()) meters = idsIn(*from_, "Select ID from meter ORDER BY ID");
    std::set<std::int64_t> chosen;
    for (const std::string& serial : options_.meters) {
      (void)lab_.meter(serial);  // or the error that suggests similar names
      for (const std::int64_t id :
           idsIn(*from_, "Select ID from meter where SerialNumber=" +
                             NameText::quoted(serial).literal() + " ORDER BY ID"))
        chosen.insert(id);
    }
    meters.insert(meters.end(), chosen.begin(), chosen.end());
    addOwned("CalSetup", "MeterID");
    addOwned("series", "meterid");
    for (const auto& [owner, ids] : owners_) {
      if (options_.newIds) ids_.renew(owner);
      const CopyGroup& group = copyGroup(owner);
      for (const GroupTable& table : group.tables) {
        // Keys that nothing refers to need not be kept.
        const bool hasKey = table.schema->Columns.front().Type == OwnColumnType::key;
        if (hasKey && table.schema->Name != owner) ids_.renew(table.schema->Name);
      }
    }
  }

  void addOwned(const std::string& table, const std::string& column) {
    Ids& ids = owners_[table];
    inPortions(owners_["meter"], [&](const RowPortion& meters) {
      const Ids found =
          idsIn(*from_, "Select ID from " + table + meters.where(column) + " ORDER BY ID");
      ids.insert(ids.end(), found.begin(), found.end());
    });
    std::ranges::sort(ids);
  }

  [[noreturn]] void refuse(const std::string& what, const std::string& remedy) const {
    throw Exists({what, target_.location(), remedy});
  }

  // No row may take another one's place, nor a calibration come twice.
  void requireRoom() {
    inPortions(owners_["meter"], [&](const RowPortion& meters) {
      const auto rows =
          readRows(*from_, "Select SerialNumber, ReCalID from meter" + meters.where("ID"));
      for (; !rows->atEnd(); rows->moveNext()) {
        const auto* serial = std::get_if<std::string>(&rows->value(0));
        const auto* number = std::get_if<std::int64_t>(&rows->value(1));
        if (serial == nullptr || number == nullptr) continue;
        const std::string same = " where SerialNumber=" + NameText::quoted(*serial).literal() +
                                 " and ReCalID=" + std::to_string(*number);
        if (idsIn(*to_, "Select TOP 1 ID from meter" + same).empty()) continue;
        refuse("'" + target_.location() + "' already has meter '" + *serial + "', calibration " +
                   std::to_string(*number),
               "delete it there, or leave the meter out");
      }
    });
    if (options_.newIds) return;
    for (const auto& owners : owners_) {
      const std::string& table = owners.first;
      inPortions(owners.second, [&](const RowPortion& rows) {
        const Ids taken = idsIn(*to_, "Select TOP 1 ID from " + table + rows.where("ID"));
        if (taken.empty()) return;
        refuse("in table " + table + " of '" + target_.location() + "' the ID " +
                   std::to_string(taken.front()) + " is taken",
               "give the rows new ids");
      });
    }
  }

  void copyList(const std::string& name, const std::string& column, const ChoosesRow& isChosen) {
    const SchemaTable& table = schemaTable(name);
    if (!hasSchemaTable(from_, table)) return;
    showStep(observer_, name);
    makeOwnTable(to_, table);
    sheet_.tables.push_back(
        copyNamedRows(*from_, *to_, table, column, isChosen, ids_, sheet_.missing));
  }

  // A list that set-ups refer to.
  void copyUsed(const std::string& table, const std::string& column) {
    std::set<std::int64_t> used;
    inPortions(owners_["CalSetup"], [&](const RowPortion& setups) {
      for (const std::int64_t id :
           idsIn(*from_, "Select " + column + " from CalSetup" + setups.where("ID")))
        used.insert(id);
    });
    copyList(table, "Name", [&](std::int64_t id, const std::string& name) {
      const bool isUsed = options_.meters.empty() || used.contains(id);
      if (isUsed && table == "Fluids") fluids_.push_back(name);
      return isUsed;
    });
  }

  // Of whole databases all rows, otherwise those that the meters need.
  void copyLists() {
    const bool isWhole = options_.meters.empty();
    copyUsed("Fluids", "FluidID");
    copyUsed("Operator", "OperatorID");
    const auto isIn = [](const std::vector<std::string>& names, const std::string& name) {
      return std::ranges::any_of(names,
                                 [&](const std::string& each) { return equalNames(each, name); });
    };
    copyList("masterMeterList", "SerialNumber", [&](std::int64_t, const std::string& name) {
      return isWhole || isIn(options_.meters, name);
    });
    copyList(fluidLawTable, "Name",
             [&](std::int64_t, const std::string& name) { return isWhole || isIn(fluids_, name); });
    if (isWhole)
      copyList(laboratoryTable, "Name", [](std::int64_t, const std::string&) { return true; });
  }

  void copyOwned(const std::string& owner) {
    const CopyGroup& group = copyGroup(owner);
    for (const GroupTable& table : group.tables) {
      if (!hasSchemaTable(from_, *table.schema)) continue;
      showStep(observer_, table.schema->Name);
      makeOwnTable(to_, *table.schema);
      ProofTable proof;
      proof.name = table.schema->Name;
      proof.expected = 0;
      inPortions(owners_[owner], [&](const RowPortion& portion) {
        *proof.expected += countOf(*from_, table.schema->Name, portion.where(table.owner));
        copier_.copy(*table.schema, table.owner, owner, portion, proof);
      });
      if (options_.meters.empty()) listUnowned(proof);
      sheet_.tables.push_back(std::move(proof));
    }
  }

  // Rows that cannot be given the id of their owner, in the copy of a whole database.
  void listUnowned(ProofTable& proof) {
    proof.expected = countOf(*from_, proof.name);
    if (proof.read >= *proof.expected) return;
    const std::uint64_t count = *proof.expected - proof.read;
    sheet_.missing.push_back({proof.name, "",
                              std::to_string(count) +
                                  (count == 1 ? " row belongs" : " rows belong") +
                                  " to no row that is copied"});
  }

  const Database& lab_;
  const Database& target_;
  ConnectionPtr from_, to_;
  const CopyOptions& options_;
  const Observer& observer_;
  ProofSheet sheet_;
  NewIds ids_;
  RowCopier copier_;
  std::map<std::string, Ids> owners_;  // the ids of the chosen rows, in their order
  std::vector<std::string> fluids_;
};

}  // namespace

ProofSheet copyAdded(const Database& from, const Database& to, const CopyOptions& options,
                     const Observer& observer) {
  return AddedCopy(from, to, options, observer).run();
}

}  // namespace pelmora::calibration
