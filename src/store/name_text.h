// A name on its way into a statement.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora {

// Statements put names between apostrophes; how a name gets there is decided where the name comes
// from.
class NameText {
 public:
  // As it is: a name with an apostrophe ends its text early, and the database answers with an
  // error.
  [[nodiscard]] static NameText spliced(std::string name);
  // With every apostrophe doubled: any name is found as it is written.
  [[nodiscard]] static NameText quoted(std::string name);

  [[nodiscard]] const std::string& name() const { return name_; }
  // What stands in a statement, apostrophes around it included.
  [[nodiscard]] std::string literal() const { return "'" + inside_ + "'"; }
  [[nodiscard]] bool empty() const { return name_.empty(); }

 private:
  NameText(std::string name, std::string inside)
      : name_(std::move(name)), inside_(std::move(inside)) {}

  std::string name_, inside_;
};

}  // namespace pelmora
