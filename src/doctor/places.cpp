// SPDX-License-Identifier: MIT
#include "doctor/places.h"

#include "history/row_access.h"

namespace pelmora::doctor {

using history::read;
using history::textOf;
using history::wholeOf;

std::string seriesPlace(const ConnectionPtr& curves, std::int64_t seriesID) {
  const auto series =
      read(curves, "Select name, meterid from series where ID=" + std::to_string(seriesID));
  if (series->atEnd()) return "series " + std::to_string(seriesID) + ", which is missing";
  const std::string name = "series '" + textOf(series->value(0)) + "' of meter ";
  const std::string meterID = std::to_string(wholeOf(series->value(1)));
  const auto meter = read(curves, "Select SerialNumber, ReCalID from meter where ID=" + meterID);
  if (meter->atEnd()) return name + meterID + ", which is missing";
  return name + "'" + textOf(meter->value(0)) + "', calibration " +
         std::to_string(wholeOf(meter->value(1)));
}

}  // namespace pelmora::doctor
