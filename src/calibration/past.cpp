// Deleting, and bringing back what was replaced.
// SPDX-License-Identifier: MIT
#include "calibration/names.h"
#include "calibration/session.h"
#include "history/deleting.h"
#include "history/entries.h"
#include "history/fingerprint.h"
#include "history/restoring.h"

namespace pelmora::calibration {
namespace {

HistoryEntry entryOf(const history::Entry& entry) {
  return {entry.ID,           entry.Note.Command, entry.Note.ChangedAt, entry.Note.UserName,
          entry.Note.Version, entry.SerialNumber, entry.SeriesName,     entry.ReCalID,
          entry.Rows};
}

std::vector<HistoryEntry> entriesOf(const std::vector<history::Entry>& entries) {
  std::vector<HistoryEntry> list;
  for (const history::Entry& entry : entries) list.push_back(entryOf(entry));
  return list;
}

HistoryEntry removeScope(Session& session, const history::Scope& scope, const Meter& meter,
                         const std::string& series) {
  const std::string place = series.empty() ? placeOf(meter) : placeOf(meter, series);
  return session.changing("delete", "deleting " + place, [&] {
    const auto outcome = history::removeKept(session.curves(), session.change(), scope);
    session.note(outcome.KeptAs);
    HistoryEntry entry;
    entry.id = outcome.KeptAs;
    entry.command = "delete";
    entry.serial = meter.serial;
    entry.series = series;
    entry.calibration = meter.calibration;
    for (const auto& [table, rows] : outcome.Rows) entry.rows[table] = rows;
    return entry;
  });
}

history::Scope scopeOf(const Removal& removal) {
  return removal.series.empty() ? history::wholeCalibration(removal.meter.id)
                                : history::wholeSeries(removal.meter.id, removal.seriesID);
}

std::string placeOf(const Removal& removal) {
  return removal.series.empty() ? placeOf(removal.meter) : placeOf(removal.meter, removal.series);
}

Removal measured(Session& session, Removal removal) {
  return session.asking("reading " + placeOf(removal), [&] {
    const auto moment = session.moment();
    const history::Scope scope = scopeOf(removal);
    removal.basis = history::fingerprint(session.curves(), scope);
    for (const auto& [table, rows] : history::rowsOf(session.curves(), scope))
      removal.rows[table] = rows;
    return removal;
  });
}

}  // namespace

Removal Database::removal(const Meter& meter, const std::string& series) const {
  const std::string name = cleanName("series", series);
  return measured(*session_, {meter, name, seriesID(meter, name), {}, 0});
}

Removal Database::removal(const Meter& meter) const {
  return measured(*session_, {meter, "", 0, {}, 0});
}

HistoryEntry Database::remove(const Removal& shown) {
  const std::string place = placeOf(shown);
  return session_->changing("delete", "deleting " + place, [&] {
    if (history::fingerprint(session_->curves(), scopeOf(shown)) != shown.basis) {
      throw Changed({"another program has changed " + place + " since it was shown", location(),
                     "look at it again"});
    }
    return removeScope(*session_, scopeOf(shown), shown.meter, shown.series);
  });
}

HistoryEntry Database::remove(const Meter& meter, const std::string& series) {
  const std::string name = cleanName("series", series);
  return removeScope(*session_, history::wholeSeries(meter.id, seriesID(meter, name)), meter, name);
}

HistoryEntry Database::remove(const Meter& meter) {
  return removeScope(*session_, history::wholeCalibration(meter.id), meter, "");
}

void Database::visitHistory(const HistoryFilter& filter,
                            const std::function<void(const HistoryEntry&)>& visit) const {
  history::EntryFilter wanted{filter.serial, filter.series, {}, filter.newest};
  if (filter.calibration) wanted.ReCalID = *filter.calibration;
  const auto moment = session_->moment();
  session_->asking("the history of '" + location() + "' cannot be read", [&] {
    history::visitEntries(session_->curves(), wanted,
                          [&](const history::Entry& entry) { visit(entryOf(entry)); });
  });
}

std::vector<HistoryEntry> Database::history(const HistoryFilter& filter) const {
  std::vector<HistoryEntry> list;
  visitHistory(filter, [&](const HistoryEntry& entry) { list.push_back(entry); });
  return list;
}

Restored Database::restore(HistoryEntryId entry) {
  const std::string name = "history entry " + std::to_string(entry);
  return session_->changing("restore", "restoring " + name, [&] {
    try {
      const auto outcome = history::restore(session_->curves(), session_->change(), entry);
      session_->note(outcome.KeptAs);
      Restored restored{entryOf(outcome.Restored), outcome.KeptAs, {}};
      for (const auto& table : outcome.Tables)
        restored.tables.push_back({table.Name, table.RowsBefore, table.RowsNow});
      return restored;
    } catch (const Error& error) {
      if (error.number() == history::noSuchEntry)
        throw NotFound({error.what(), location(), "list the history"}, error.number());
      if (error.number() == history::standsInTheWay)
        throw NotRestorable({"restoring " + name + ": " + error.what(), location(), ""},
                            error.number());
      throw;
    }
  });
}

std::vector<HistoryEntry> Database::prunable(const HistoryPruning& pruning) const {
  return session_->asking("the history of '" + location() + "' cannot be read", [&] {
    return entriesOf(history::prunable(session_->curves(), {pruning.before, pruning.keep}));
  });
}

void Database::prune(const std::vector<HistoryEntry>& entries) {
  session_->changing("prune", "removing entries of the history", [&] {
    for (const HistoryEntry& entry : entries) history::removeEntry(session_->curves(), entry.id);
  });
}

std::vector<HistoryEntry> Database::prune(const HistoryPruning& pruning) {
  return session_->changing("prune", "removing entries of the history", [&] {
    const auto old = prunable(pruning);
    prune(old);
    return old;
  });
}

}  // namespace pelmora::calibration
