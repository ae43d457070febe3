// Whatever the program that reads Access files sends is taken apart into messages, or refused. A
// damaged file may have made that program send anything.
// SPDX-License-Identifier: MIT
#include "adapters/access/message.h"
#include "fuzz/scratch_file.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora;
  std::string_view bytes = fuzz::textOf(data, size);
  try {
    for (;;) {
      const std::string_view before = bytes;
      const auto message = access::takeMessage(bytes);
      if (!message) {
        if (bytes != before) __builtin_trap();
        break;
      }
      const std::string_view taken = before.substr(0, before.size() - bytes.size());
      if (access::encoded(*message) != taken) __builtin_trap();
    }
  } catch (const access::InvalidMessage& invalid) {
    if (std::string(invalid.what()).empty()) __builtin_trap();
  }
  return 0;
}
