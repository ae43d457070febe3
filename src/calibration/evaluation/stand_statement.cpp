// Keeping the uncertainty of a stand with the calibration that it measured.
// SPDX-License-Identifier: MIT
#include "base/time_text.h"
#include "calibration/session.h"
#include "history/scope.h"
#include "store/statement_rows.h"

namespace pelmora::calibration {

std::optional<StandStatement> Database::standUncertainty(const Meter& meter) const {
  return session_->asking(
      "reading the stand uncertainty of " + placeOf(meter), [&]() -> std::optional<StandStatement> {
        const auto row = readStandUncertainty(session_->connection(), meter.id);
        if (!row) return std::nullopt;
        return StandStatement{row->Content, row->SourceFile, row->StoredAt, row->UserName};
      });
}

HistoryEntryId Database::setStandUncertainty(const Meter& meter, const StandStatement& statement) {
  (void)checkStandStatement(statement);
  return session_->changing(
      "stand uncertainty", "storing the uncertainty of " + placeOf(meter), [&] {
        const HistoryEntryId kept = session_->keep(history::statedUncertainty(meter.id));
        replaceStandUncertainty(
            session_->connection(), meter.id,
            StatementRow{statement.file, statement.text, utcText(), session_->userName()});
        return kept;
      });
}

HistoryEntryId Database::removeStandUncertainty(const Meter& meter) {
  return session_->changing(
      "stand uncertainty", "removing the uncertainty of " + placeOf(meter), [&] {
        const HistoryEntryId kept = session_->keep(history::statedUncertainty(meter.id));
        replaceStandUncertainty(session_->connection(), meter.id, std::nullopt);
        return kept;
      });
}

}  // namespace pelmora::calibration
