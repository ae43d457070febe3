// Four numbers side by side, so that four nodes of the lattice pass over the points at once.
// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>

namespace pelmora::solver::reference {

inline constexpr std::size_t laneCount = 4;

// Every operation is that of a double in each lane: a lane's result does not depend on the others.
class Lanes {
 public:
  Lanes() = default;
  Lanes(double value)  // NOLINT: numbers convert freely
      : low_{value, value}, high_{value, value} {}

  [[nodiscard]] double operator[](std::size_t lane) const {
    return lane < 2 ? low_[lane] : high_[lane - 2];
  }
  void set(std::size_t lane, double value) {
    if (lane < 2) {
      low_[lane] = value;
    } else {
      high_[lane - 2] = value;
    }
  }

  friend Lanes operator+(const Lanes& a, const Lanes& b) {
    return {a.low_ + b.low_, a.high_ + b.high_};
  }
  friend Lanes operator-(const Lanes& a, const Lanes& b) {
    return {a.low_ - b.low_, a.high_ - b.high_};
  }
  friend Lanes operator*(const Lanes& a, const Lanes& b) {
    return {a.low_ * b.low_, a.high_ * b.high_};
  }
  friend Lanes operator/(const Lanes& a, const Lanes& b) {
    return {a.low_ / b.low_, a.high_ / b.high_};
  }
  Lanes operator-() const { return {-low_, -high_}; }
  Lanes& operator+=(const Lanes& b) { return *this = *this + b; }
  Lanes& operator-=(const Lanes& b) { return *this = *this - b; }
  Lanes& operator*=(const Lanes& b) { return *this = *this * b; }

  friend Lanes sqrt(const Lanes& a) {
    return {Register{std::sqrt(a.low_[0]), std::sqrt(a.low_[1])},
            Register{std::sqrt(a.high_[0]), std::sqrt(a.high_[1])}};
  }
  friend Lanes log(const Lanes& a) {
    return {Register{std::log(a.low_[0]), std::log(a.low_[1])},
            Register{std::log(a.high_[0]), std::log(a.high_[1])}};
  }
  // 1 / a where a > 0, 0 elsewhere.
  friend Lanes inverseOfPositive(const Lanes& a) { return {inverse(a.low_), inverse(a.high_)}; }
  // |size| with the sign that `of` does not have.
  friend Lanes withOppositeSign(const Lanes& size, const Lanes& of) {
    Lanes result;
    for (std::size_t lane = 0; lane < laneCount; ++lane)
      result.set(lane, of[lane] > 0 ? -size[lane] : size[lane]);
    return result;
  }

 private:
  // What every processor of the architecture has.
  using Register = double __attribute__((vector_size(16)));
  using Bits = long long __attribute__((vector_size(16)));
  Lanes(Register low, Register high) : low_(low), high_(high) {}
  static Register inverse(Register a) {
    return reinterpret_cast<Register>(reinterpret_cast<Bits>(1 / a) & (a > 0));
  }

  Register low_{}, high_{};
};

// value(0), value(1), ...; the last of `count` values fills the lanes that are left over.
template <class Value>
[[nodiscard]] Lanes lanesOf(std::size_t count, Value value) {
  Lanes lanes;
  for (std::size_t lane = 0; lane < laneCount; ++lane)
    lanes.set(lane, value(lane < count ? lane : count - 1));
  return lanes;
}

}  // namespace pelmora::solver::reference
