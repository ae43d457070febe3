// Everything a host needs.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/curve_database.h>
#include <pelmora/curve_settings.h>
#include <pelmora/database.h>
#include <pelmora/dialog.h>
#include <pelmora/error.h>
#include <pelmora/fit_outcome.h>
#include <pelmora/own_tables.h>
#include <pelmora/patience.h>
#include <pelmora/platform.h>
#include <pelmora/raw_data.h>
#include <pelmora/stand.h>
#include <pelmora/types.h>
