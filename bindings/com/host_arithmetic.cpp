// SPDX-License-Identifier: MIT
#include "bindings/com/host_arithmetic.h"

#include <xmmintrin.h>

namespace pelmora::com {
namespace {

// All faults masked, 64-bit mantissa (x87), round to nearest.
constexpr ArithmeticMode ownMode{0x037F, 0x1F80};
constexpr unsigned int sseFlags = 0x3F;

thread_local const ArithmeticMode* host = nullptr;

ArithmeticMode currentMode() {
  ArithmeticMode mode;
  __asm__ volatile("fnstcw %0" : "=m"(mode.x87));
  mode.sse = _mm_getcsr() & ~sseFlags;
  return mode;
}

// Flags raised meanwhile are dropped: with faults unmasked they would fire in the host.
void setMode(const ArithmeticMode& mode) {
  __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(mode.x87));
  _mm_setcsr(mode.sse);
}

}  // namespace

OwnArithmetic::OwnArithmetic() : before_(currentMode()), outerHost_(host) {
  if (host == nullptr) host = &before_;  // a member called late-bound runs inside Invoke
  setMode(ownMode);
}

OwnArithmetic::~OwnArithmetic() {
  host = outerHost_;
  setMode(before_);
}

HostTurn::HostTurn() : isInCall_(host != nullptr) {
  if (isInCall_) setMode(*host);
}

HostTurn::~HostTurn() {
  if (isInCall_) setMode(ownMode);
}

}  // namespace pelmora::com
