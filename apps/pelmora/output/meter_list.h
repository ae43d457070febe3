// Every calibration of every meter. Of a database with very many, no more than a few lines are in
// memory at a time.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/database.h>

namespace pelmora::cli {

void printMeters(const calibration::Database& lab);
void printMetersJson(const calibration::Database& lab);

}  // namespace pelmora::cli
