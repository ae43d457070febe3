// Loaded in front of a program: its operator new fails from one allocation on, whose number the
// environment tells.
// SPDX-License-Identifier: MIT
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long long> allocations{0};

long long allowed() {
  static const long long number = [] {
    const char* text = std::getenv("PELMORA_TEST_ALLOCATIONS");
    return text == nullptr ? -1 : std::atoll(text);
  }();
  return number;
}

}  // namespace

void* operator new(std::size_t size) {
  const bool isAllowed = allowed() < 0 || ++allocations <= allowed();
  void* const block = isAllowed ? std::malloc(size == 0 ? 1 : size) : nullptr;
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
