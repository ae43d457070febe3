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

enum class Kind { nothing, change, file, series };

std::atomic<Kind> kind = Kind::nothing;
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

void noteNothingStored() noexcept { kind = Kind::nothing; }
void noteStored() noexcept { kind = Kind::change; }
void noteFileWritten() noexcept { kind = Kind::file; }

void noteSeriesStored(std::size_t stored, std::size_t all) noexcept {
  storedSeries = stored;
  allSeries = all;
  kind = stored == 0 ? Kind::nothing : Kind::series;
}

bool isAnythingStored() noexcept { return kind != Kind::nothing; }

ShortText storedWords() noexcept {
  ShortText text{};
  const auto set = [&](const char* words) { std::snprintf(text.data(), text.size(), "%s", words); };
  switch (kind.load()) {
    case Kind::nothing: set("nothing was stored"); break;
    case Kind::change: set("the change is stored"); break;
    case Kind::file: set("the file is written"); break;
    case Kind::series:
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
