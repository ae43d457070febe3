// SPDX-License-Identifier: MIT
#include "apps/pelmora/last_words.h"

#include "apps/pelmora/exit_code.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

namespace pelmora::cli {
namespace {

enum class StoredKind { nothing, change, file, series };

std::atomic<StoredKind> storedKind = StoredKind::nothing;
std::atomic<std::size_t> storedSeries = 0, allSeries = 0;

[[noreturn]] void onTerminate() {
  try {
    if (std::current_exception()) throw;
  } catch (const std::bad_alloc&) {
    _exit(sayOutOfMemory());
  } catch (...) {
  }
  std::abort();
}

}  // namespace

void noteNothingStored() noexcept { storedKind = StoredKind::nothing; }
void noteStored() noexcept { storedKind = StoredKind::change; }
void noteFileWritten() noexcept { storedKind = StoredKind::file; }

void noteSeriesStored(std::size_t stored, std::size_t all) noexcept {
  storedSeries = stored;
  allSeries = all;
  storedKind = stored == 0 ? StoredKind::nothing : StoredKind::series;
}

bool isAnythingStored() noexcept { return storedKind != StoredKind::nothing; }

ShortText storedWords() noexcept {
  ShortText text{};
  const auto set = [&](const char* words) { std::snprintf(text.data(), text.size(), "%s", words); };
  switch (storedKind.load()) {
    case StoredKind::nothing: set("nothing was stored"); break;
    case StoredKind::change: set("the change is stored"); break;
    case StoredKind::file: set("the file is written"); break;
    case StoredKind::series:
      std::snprintf(text.data(), text.size(),
                    "%zu of %zu series are stored, the others are unchanged", storedSeries.load(),
                    allSeries.load());
  }
  return text;
}

int sayOutOfMemory() noexcept {
  std::array<char, 256> line{};
  std::snprintf(line.data(), line.size(),
                "pelmora: error: out of memory: %s; end other programs or give this one more\n",
                storedWords().data());
  [[maybe_unused]] const ssize_t ignored =
      write(STDERR_FILENO, line.data(), std::strlen(line.data()));
  return static_cast<int>(ExitCode::unexpected);
}

void endOutOfMemoryInOrder() noexcept { std::set_terminate(onTerminate); }

}  // namespace pelmora::cli
