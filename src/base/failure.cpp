// SPDX-License-Identifier: MIT
#include <pelmora/calibration/failure.h>

#include <utility>

namespace pelmora::calibration {

Failure::Failure(FailureText text, std::int32_t number)
    : Error(number, "Pelmora", text.what),
      where_(std::move(text.where)),
      remedy_(std::move(text.remedy)) {}

OutOfRange::OutOfRange(FailureText text, const RoshkoRange& requested, const RoshkoRange& merged)
    : Failure(std::move(text)), requested_(requested), merged_(merged) {}

// Here, so that every library of a process has the same type information of them.
Failure::~Failure() = default;
NotFound::~NotFound() = default;
NoCurve::~NoCurve() = default;
Exists::~Exists() = default;
NotRestorable::~NotRestorable() = default;
Locked::~Locked() = default;
Unusable::~Unusable() = default;
Damaged::~Damaged() = default;
BadData::~BadData() = default;
OutOfRange::~OutOfRange() = default;
NoFit::~NoFit() = default;
Changed::~Changed() = default;
Cancelled::~Cancelled() = default;

}  // namespace pelmora::calibration
