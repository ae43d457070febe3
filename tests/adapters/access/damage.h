// Damaged copies of an Access file, and how reading each of them ends.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/adapters/access/collected_tables.h"

#include <pelmora/error.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <random>
#include <string>

namespace pelmora::test {

enum class DamageKind { cutOff, flippedBits, zeroedPages };
inline const char* nameOf(DamageKind kind) {
  switch (kind) {
    case DamageKind::cutOff: return "cut off";
    case DamageKind::flippedBits: return "bits flipped";
    case DamageKind::zeroedPages: return "pages zeroed";
  }
  return "";
}

// The same seed makes the same damage.
inline std::string damaged(std::string bytes, DamageKind kind, std::uint32_t seed) {
  constexpr std::size_t page = 4096;
  std::mt19937 random(seed);
  const auto below = [&](std::size_t most) { return static_cast<std::size_t>(random()) % most; };
  if (kind == DamageKind::cutOff) {
    const std::size_t size = below(bytes.size());
    bytes.resize(seed % 2 == 0 ? size : size / page * page);
  } else if (kind == DamageKind::flippedBits) {
    for (std::size_t flips = std::size_t{1} << below(11); flips > 0; --flips) {
      char& byte = bytes[below(bytes.size())];
      byte = static_cast<char>(byte ^ (1 << below(8)));
    }
  } else {
    for (std::size_t pages = 1 + below(4); pages > 0; --pages) {
      const std::size_t begin = below(bytes.size() / page) * page;
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(begin), page, '\0');
    }
  }
  return bytes;
}

enum class Ending {
  refused,  // an error
  listed,   // rows or values are missing, and a note lists them
  whole,    // nothing is missing and nothing is different: the damage is elsewhere
  changed,  // every row is there, but bits inside a value are different: there are no checksums
  silent    // a row or a table is missing, and no note lists it
};
inline const char* nameOf(Ending ending) {
  switch (ending) {
    case Ending::refused: return "refused";
    case Ending::listed: return "loss listed";
    case Ending::whole: return "all there";
    case Ending::changed: return "value changed";
    case Ending::silent: return "silent loss";
  }
  return "";
}

struct Outcome {
  Ending ending = Ending::whole;
  std::string message;  // of an error, or the first note
};

inline std::size_t rowCount(const CollectedTables& read) {
  std::size_t rows = 0;
  for (const auto& [name, table] : read.tables) rows += table.rows.size();
  return rows;
}
inline bool areSame(const CollectedTables& read, const CollectedTables& original) {
  return std::ranges::equal(read.tables, original.tables, [](const auto& a, const auto& b) {
    return a.first == b.first && a.second.rows == b.second.rows;
  });
}

inline Outcome readDamaged(const std::string& path, const CollectedTables& original) {
  CollectedTables read;
  try {
    readAccessTables(path, read, builtProgram());
  } catch (const Error& error) {
    return {Ending::refused, error.what()};
  }
  const auto listed = [](const std::string& place, const LeftOut& part) {
    return Outcome{Ending::listed, place + ", " + part.Place + ": " + part.Reason};
  };
  if (!read.ofTheFile.empty()) return listed("the file", read.ofTheFile.front());
  for (const auto& [name, table] : read.tables) {
    if (!table.leftOut.empty()) return listed(name, table.leftOut.front());
  }
  if (areSame(read, original)) return {Ending::whole, ""};
  const bool isLess =
      read.tables.size() < original.tables.size() || rowCount(read) < rowCount(original);
  return {isLess ? Ending::silent : Ending::changed, ""};
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace pelmora::test
