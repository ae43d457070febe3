// Suggestions for mistyped names, under the command line's own name.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/suggestion.h"
