// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"

int main(int argc, char** argv) { return pelmora::cli::run(argc, argv); }
