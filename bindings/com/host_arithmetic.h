// The floating-point mode of the host and that of the component.
// SPDX-License-Identifier: MIT
#pragma once

namespace pelmora::com {

// Hosts leave the processor rounding to 53 bits, flushing small numbers to zero or raising faults.
// The component computes in the mode that it was tested in: 64-bit x87 mantissa, rounding to
// nearest, no faults.

struct ArithmeticMode {
  unsigned short x87 = 0;
  unsigned int sse = 0;
};

// From here to the end of the scope the thread is in the component's mode.
class OwnArithmetic {
 public:
  OwnArithmetic();
  ~OwnArithmetic();
  OwnArithmetic(const OwnArithmetic&) = delete;
  OwnArithmetic& operator=(const OwnArithmetic&) = delete;

 private:
  ArithmeticMode before_;
  const ArithmeticMode* outerHost_;
};

// From here to the end of the scope the thread is in its host's mode again: around events, windows
// and the pump. Nothing happens where no call of the host is running.
class HostTurn {
 public:
  HostTurn();
  ~HostTurn();
  HostTurn(const HostTurn&) = delete;
  HostTurn& operator=(const HostTurn&) = delete;

 private:
  bool isInCall_;
};

}  // namespace pelmora::com
