// What an operation of the service throws: one hierarchy, each with what, where and remedy.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <string>

namespace pelmora::calibration {

// The parts of a message, each a clause that a sentence can be made of.
struct FailureText {
  std::string what;    // "there is no meter 'M1'"
  std::string where;   // "curves.db"; empty where the failure has no place
  std::string remedy;  // "register it first"; empty where there is none to give
};

// what() is the text of FailureText::what. number() is the code that hosts of the component would
// meet, or 5 (invalid argument) where there is none. Nothing is stored where an operation throws,
// unless its contract says so.
class PELMORA_API Failure : public pelmora::Error {
 public:
  explicit Failure(FailureText text, std::int32_t number = 5);
  ~Failure() override;

  [[nodiscard]] const std::string& where() const noexcept { return where_; }
  [[nodiscard]] const std::string& remedy() const noexcept { return remedy_; }

 private:
  std::string where_, remedy_;
};

// A database, meter, calibration, series, job, curve or history entry that is not there.
class PELMORA_API NotFound : public Failure {
 public:
  using Failure::Failure;
  ~NotFound() override;
};

// What was to be made is there already.
class PELMORA_API Exists : public Failure {
 public:
  using Failure::Failure;
  ~Exists() override;
};

// Others held the database for longer than one's patience.
class PELMORA_API Locked : public Failure {
 public:
  using Failure::Failure;
  ~Locked() override;
};

// The database cannot be opened, read or written: it is no curve database, may not be written, or
// the disk is full. The remedy tells which.
class PELMORA_API Unusable : public Failure {
 public:
  using Failure::Failure;
  ~Unusable() override;
};

// The database or a part of it cannot be read because the file is damaged.
class PELMORA_API Damaged : public Unusable {
 public:
  using Unusable::Unusable;
  ~Damaged() override;
};

// Data that no operation can use: of a stand, a file, an argument or the database's own rows.
class PELMORA_API BadData : public Failure {
 public:
  using Failure::Failure;
  ~BadData() override;
};

// A range or number beyond what the points or the curve cover.
class PELMORA_API OutOfRange : public Failure {
 public:
  using Failure::Failure;
  ~OutOfRange() override;
};

// No equation passed the tests.
class PELMORA_API NoFit : public Failure {
 public:
  using Failure::Failure;
  ~NoFit() override;
};

// Somebody else has changed what a result was made from.
class PELMORA_API Changed : public Failure {
 public:
  using Failure::Failure;
  ~Changed() override;
};

// The caller asked for the operation to end.
class PELMORA_API Cancelled : public Failure {
 public:
  using Failure::Failure;
  ~Cancelled() override;
};

}  // namespace pelmora::calibration
