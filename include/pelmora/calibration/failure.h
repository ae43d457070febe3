// The exceptions of the service: one hierarchy, each with what, where and remedy.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/error.h>

#include <optional>
#include <string>

namespace pelmora::calibration {

// The parts of a message, each a clause that can become part of a sentence.
struct FailureText {
  std::string what;    // "there is no meter 'M1'"
  std::string where;   // "curves.db"; empty if the failure has no place
  std::string remedy;  // "register it first"; empty if there is none
};

// what() returns FailureText::what. number() is the code that hosts of the component would get, or
// 5 (invalid argument) if there is none. If an operation throws, nothing is stored, unless its
// contract says otherwise.
class PELMORA_API Failure : public pelmora::Error {
 public:
  explicit Failure(FailureText text, std::int32_t number = 5);
  ~Failure() override;

  [[nodiscard]] const std::string& where() const noexcept { return where_; }
  [[nodiscard]] const std::string& remedy() const noexcept { return remedy_; }

 private:
  std::string where_, remedy_;
};

// A database, meter, calibration, series, job, curve or history entry that does not exist.
class PELMORA_API NotFound : public Failure {
 public:
  using Failure::Failure;
  ~NotFound() override;
};

// A series that has no stored curve.
class PELMORA_API NoCurve : public NotFound {
 public:
  using NotFound::NotFound;
  ~NoCurve() override;
};

// Something that was to be created already exists.
class PELMORA_API Exists : public Failure {
 public:
  using Failure::Failure;
  ~Exists() override;
};

// A history entry that cannot be restored: what its rows belong to was deleted, or something else
// has taken their place.
class PELMORA_API NotRestorable : public Exists {
 public:
  using Exists::Exists;
  ~NotRestorable() override;
};

// Others kept the database locked for longer than the caller was willing to wait.
class PELMORA_API Locked : public Failure {
 public:
  using Failure::Failure;
  ~Locked() override;
};

// The database cannot be opened, read or written: it is not a curve database, it is not writable,
// or the disk is full. The remedy fits the cause.
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

// Unusable data in a stand's database, a file, an argument or the rows of the database.
class PELMORA_API BadData : public Failure {
 public:
  using Failure::Failure;
  ~BadData() override;
};

struct RoshkoRange {
  double min = 0, max = 0;
};

// A range or number beyond the points or the curve.
class PELMORA_API OutOfRange : public Failure {
 public:
  using Failure::Failure;
  // For a fit.
  OutOfRange(FailureText text, const RoshkoRange& requested, const RoshkoRange& merged);
  ~OutOfRange() override;

  // The range requested of a fit and that of the merged points: what to show a person who decides
  // on a RangePolicy. Absent for a curve that is evaluated.
  [[nodiscard]] const std::optional<RoshkoRange>& requested() const noexcept { return requested_; }
  [[nodiscard]] const std::optional<RoshkoRange>& merged() const noexcept { return merged_; }

 private:
  std::optional<RoshkoRange> requested_, merged_;
};

// No equation passed the tests.
class PELMORA_API NoFit : public Failure {
 public:
  using Failure::Failure;
  ~NoFit() override;
};

// Somebody else has changed the data on which a result is based.
class PELMORA_API Changed : public Failure {
 public:
  using Failure::Failure;
  ~Changed() override;
};

// The caller cancelled the operation.
class PELMORA_API Cancelled : public Failure {
 public:
  using Failure::Failure;
  ~Cancelled() override;
};

}  // namespace pelmora::calibration
