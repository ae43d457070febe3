// Makes an empty curve database: new_curve_database CURVES.db
// SPDX-License-Identifier: MIT
#include <pelmora/pelmora.h>

#include <filesystem>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::filesystem::remove(argv[1]);
  pelmora::createCurveDatabase(argv[1]);
  return 0;
}
