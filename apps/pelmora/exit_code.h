// How the command ends: the one list of exit codes.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora::cli {

// Scripts rely on the numbers: never renumber. docs/command_line.md and --help list the same ones.
enum class ExitCode {
  ok = 0,
  unexpected = 1,      // an error that none of the others covers; no memory or standard output
  usage = 2,           // the command line itself is wrong
  database = 3,        // a database is missing, foreign, locked or cannot be written;
                       // a program or library that a report needs is missing
  unknownName = 4,     // no such meter, calibration, series, job or history entry
  badInput = 5,        // a file's or a database's data cannot be used
  notFitted = 6,       // no equation passed the tests, or --strict refuses the curve
  rangeRefused = 7,    // the range asked for lies outside the raw points
  declined = 8,        // a question was not answered with yes
  outOfTolerance = 9,  // curves differ by more than was allowed
};

inline constexpr const char* exitCodeHelp =
    "Exit codes: 0 done; 1 unexpected error, no memory left, or standard output\n"
    "closed or full; 2 wrong command line; 3 database missing, foreign, locked or\n"
    "not writable, or weasyprint or xmlsec1 not installed; 4 unknown meter,\n"
    "calibration, series, job or history entry; 5 bad data in a file or a database;\n"
    "6 no curve passed; 7 range outside the raw points; 8 not confirmed; 9 curve out\n"
    "of tolerance; 129 ended by SIGHUP; 130 ended by SIGINT; 143 ended by SIGTERM.";

}  // namespace pelmora::cli
