// Reads damaged copies of Access files and prints, as a table, how each of them ended:
// access_damage_survey FILES SEED SCRATCH_FILE
// SPDX-License-Identifier: MIT
#include "base/file_text.h"
#include "tests/adapters/access/damage.h"

#include <array>
#include <cstdio>
#include <iostream>
#include <map>

namespace {

using namespace pelmora::test;

constexpr std::array names{"curves.mdb", "stand.mdb", "types.mdb"};
constexpr std::array kinds{DamageKind::cutOff, DamageKind::flippedBits, DamageKind::zeroedPages};
constexpr std::array endings{Ending::refused, Ending::listed, Ending::whole, Ending::changed,
                             Ending::silent};

int survey(std::uint32_t files, std::uint32_t seed, const std::string& scratch) {
  std::map<DamageKind, std::map<Ending, int>> counts;
  std::map<std::string, pelmora::test::CollectedTables> originals;
  for (const char* name : names) originals.emplace(name, readAll(accessData(name)));
  for (std::uint32_t i = 0; i < files; ++i) {
    const std::string name = names[i % names.size()];
    const DamageKind kind = kinds[i / names.size() % kinds.size()];
    writeBytes(scratch, damaged(pelmora::readWholeFile(accessData(name)), kind, seed + i));
    const Outcome outcome = readDamaged(scratch, originals.at(name));
    ++counts[kind][outcome.ending];
    std::cerr << name << ", " << nameOf(kind) << ", seed " << seed + i << ": "
              << nameOf(outcome.ending) << " " << outcome.message << "\n";
  }
  std::cout << "| damage | files |";
  for (const Ending ending : endings) std::cout << ' ' << nameOf(ending) << " |";
  std::cout << "\n|---|---|---|---|---|---|---|\n";
  for (const DamageKind kind : kinds) {
    int all = 0;
    for (const Ending ending : endings) all += counts[kind][ending];
    std::cout << "| " << nameOf(kind) << " | " << all << " |";
    for (const Ending ending : endings) std::cout << ' ' << counts[kind][ending] << " |";
    std::cout << "\n";
  }
  int silent = 0;
  for (auto& [kind, ended] : counts) silent += ended[Ending::silent];
  return silent == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) {
    std::cerr << "usage: access_damage_survey FILES SEED SCRATCH_FILE\n";
    return 2;
  }
  try {
    return survey(static_cast<std::uint32_t>(std::stoul(arguments[1])),
                  static_cast<std::uint32_t>(std::stoul(arguments[2])), arguments[3]);
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 3;
  }
}
