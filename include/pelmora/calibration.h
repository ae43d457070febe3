// The whole calibration service: open a curve database, import, fit, store, read, restore.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/advice.h>
#include <pelmora/calibration/budget.h>
#include <pelmora/calibration/choice.h>
#include <pelmora/calibration/conversion.h>
#include <pelmora/calibration/copy.h>
#include <pelmora/calibration/coverage.h>
#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/database.h>
#include <pelmora/calibration/drift.h>
#include <pelmora/calibration/equations.h>
#include <pelmora/calibration/examination.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/fitted_curve.h>
#include <pelmora/calibration/flow.h>
#include <pelmora/calibration/history.h>
#include <pelmora/calibration/import.h>
#include <pelmora/calibration/import_access.h>
#include <pelmora/calibration/observer.h>
#include <pelmora/calibration/points.h>
#include <pelmora/calibration/proof.h>
#include <pelmora/calibration/ranking.h>
#include <pelmora/calibration/refit.h>
#include <pelmora/calibration/repeat.h>
#include <pelmora/calibration/sign_off.h>
#include <pelmora/calibration/stand.h>
#include <pelmora/calibration/tables.h>
#include <pelmora/calibration/trust.h>
#include <pelmora/calibration/values.h>
