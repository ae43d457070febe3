// Marks what the shared library exports to its hosts; everything else stays hidden.
// SPDX-License-Identifier: MIT
#pragma once

#if defined(_WIN32)
#define PELMORA_API
#else
#define PELMORA_API __attribute__((visibility("default")))
#endif
