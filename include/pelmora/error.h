// The only exception type of Pelmora.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace pelmora {

// A failure with its 32-bit code, the routine that raised it and a description.
//
// Codes: the classic run-time numbers (5 invalid argument, 6 overflow, 9 out of range, 11 division
// by zero, 13 type mismatch, ...), those on the error base 0x80040000, and 0x80004005, which
// always means a database that another user has locked.
class PELMORA_API Error : public std::runtime_error {
 public:
  Error(std::int32_t number, std::string source, const std::string& description);
  ~Error() override;

  [[nodiscard]] std::int32_t number() const noexcept { return number_; }
  [[nodiscard]] const std::string& source() const noexcept { return source_; }

 private:
  std::int32_t number_;
  std::string source_;
};

}  // namespace pelmora
