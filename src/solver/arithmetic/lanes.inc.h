// Eight doubles side by side, and double-double arithmetic on them. Included once for each
// instruction set, inside a namespace of its own, after PELMORA_LANE_WIDTH (doubles in one
// register) is defined. SPDX-License-Identifier: MIT
//
// Eight lanes whatever the width of a register, and a fused multiply-add only where it yields the
// exact rest of a product: so every instruction set does the same roundings in the same order and
// finds the same digits.

using Register = double __attribute__((vector_size(8 * PELMORA_LANE_WIDTH)));
using Bits = unsigned long long __attribute__((vector_size(8 * PELMORA_LANE_WIDTH)));
#define PELMORA_INLINE [[gnu::always_inline]] static inline

constexpr std::size_t laneCount = 8;
constexpr std::size_t registers = laneCount / PELMORA_LANE_WIDTH;

struct Lanes {
  Register part[registers];
};
struct PairLanes {  // hi + lo in every lane
  Lanes hi, lo;
};

PELMORA_INLINE Lanes load(const double* from) {
  Lanes result;
  __builtin_memcpy(&result, from, sizeof result);
  return result;
}
PELMORA_INLINE void store(double* to, const Lanes& a) { __builtin_memcpy(to, &a, sizeof a); }
PELMORA_INLINE Lanes all(double value) {
  Lanes result;
  for (std::size_t k = 0; k < registers; ++k) result.part[k] = value - Register{};
  return result;
}
PELMORA_INLINE PairLanes all(DoubleDouble value) { return {all(value.hi), all(value.lo)}; }

// The same, by the type of the first argument.
PELMORA_INLINE Lanes all(const Lanes& /*like*/, DoubleDouble value) { return all(value.hi); }
PELMORA_INLINE PairLanes all(const PairLanes& /*like*/, DoubleDouble value) { return all(value); }

PELMORA_INLINE Lanes operator+(const Lanes& a, const Lanes& b) {
  Lanes result;
  for (std::size_t k = 0; k < registers; ++k) result.part[k] = a.part[k] + b.part[k];
  return result;
}
PELMORA_INLINE Lanes operator-(const Lanes& a, const Lanes& b) {
  Lanes result;
  for (std::size_t k = 0; k < registers; ++k) result.part[k] = a.part[k] - b.part[k];
  return result;
}
PELMORA_INLINE Lanes operator*(const Lanes& a, const Lanes& b) {
  Lanes result;
  for (std::size_t k = 0; k < registers; ++k) result.part[k] = a.part[k] * b.part[k];
  return result;
}
PELMORA_INLINE Lanes operator/(const Lanes& a, const Lanes& b) {
  Lanes result;
  for (std::size_t k = 0; k < registers; ++k) result.part[k] = a.part[k] / b.part[k];
  return result;
}
PELMORA_INLINE Lanes smaller(const Lanes& a, const Lanes& b) {
  Lanes result;
  for (std::size_t k = 0; k < registers; ++k)
    result.part[k] = a.part[k] < b.part[k] ? a.part[k] : b.part[k];
  return result;
}
PELMORA_INLINE Lanes larger(const Lanes& a, const Lanes& b) {
  Lanes result;
  for (std::size_t k = 0; k < registers; ++k)
    result.part[k] = a.part[k] > b.part[k] ? a.part[k] : b.part[k];
  return result;
}

PELMORA_INLINE Register gather(const double* from, const Bits& places) {
#if PELMORA_LANE_WIDTH == 8
  return _mm512_mask_i64gather_pd(Register{}, 255, reinterpret_cast<__m512i>(places), from, 8);
#elif PELMORA_LANE_WIDTH == 4
  return _mm256_i64gather_pd(from, reinterpret_cast<__m256i>(places), 8);
#else
  return Register{from[places[0]], from[places[1]]};
#endif
}

// What a * b loses in `product`.
PELMORA_INLINE Lanes restOfProduct(const Lanes& a, const Lanes& b, const Lanes& product) {
#if PELMORA_LANE_WIDTH == 8
  return {{_mm512_fmsub_pd(a.part[0], b.part[0], product.part[0])}};
#elif PELMORA_LANE_WIDTH == 4
  return {{_mm256_fmsub_pd(a.part[0], b.part[0], product.part[0]),
           _mm256_fmsub_pd(a.part[1], b.part[1], product.part[1])}};
#else
  const Lanes splitter = all(134217729);  // 2^27 + 1, Dekker's
  const Lanes aBig = splitter * a, bBig = splitter * b;
  const Lanes aHigh = aBig - (aBig - a), bHigh = bBig - (bBig - b);
  const Lanes aLow = a - aHigh, bLow = b - bHigh;
  return ((aHigh * bHigh - product) + aHigh * bLow + aLow * bHigh) + aLow * bLow;
#endif
}

PELMORA_INLINE PairLanes quickTwoSum(const Lanes& a, const Lanes& b) {
  const Lanes sum = a + b;
  return {sum, b - (sum - a)};
}
PELMORA_INLINE PairLanes twoSum(const Lanes& a, const Lanes& b) {
  const Lanes sum = a + b;
  const Lanes part = sum - a;
  return {sum, (a - (sum - part)) + (b - part)};
}
PELMORA_INLINE PairLanes operator-(const PairLanes& a) {
  return {all(0.0) - a.hi, all(0.0) - a.lo};
}
PELMORA_INLINE PairLanes operator+(const PairLanes& a, const PairLanes& b) {
  const PairLanes high = twoSum(a.hi, b.hi);
  return quickTwoSum(high.hi, high.lo + (a.lo + b.lo));
}
PELMORA_INLINE PairLanes operator-(const PairLanes& a, const PairLanes& b) { return a + (-b); }
PELMORA_INLINE PairLanes operator*(const PairLanes& a, const PairLanes& b) {
  const Lanes product = a.hi * b.hi;
  return quickTwoSum(product, restOfProduct(a.hi, b.hi, product) + (a.hi * b.lo + a.lo * b.hi));
}
// a * b whose halves may overlap: for what is added to something at once.
PELMORA_INLINE PairLanes timesUnsettled(const PairLanes& a, const PairLanes& b) {
  const Lanes product = a.hi * b.hi;
  return {product, restOfProduct(a.hi, b.hi, product) + (a.hi * b.lo + a.lo * b.hi)};
}
PELMORA_INLINE PairLanes operator*(const PairLanes& a, const Lanes& b) {
  const Lanes product = a.hi * b;
  return quickTwoSum(product, restOfProduct(a.hi, b, product) + a.lo * b);
}
PELMORA_INLINE PairLanes operator/(const PairLanes& a, const PairLanes& b) {
  const Lanes first = a.hi / b.hi;
  const PairLanes rest = a - b * first;
  return quickTwoSum(first, rest.hi / b.hi);
}
// sum += a without bringing the sum back to its normal form: for running sums.
PELMORA_INLINE void accumulate(PairLanes& sum, const PairLanes& a) {
  const PairLanes high = twoSum(sum.hi, a.hi);
  sum.hi = high.hi;
  sum.lo = sum.lo + (high.lo + a.lo);
}

// The lanes of a running sum added up, always in the same order.
PELMORA_INLINE DoubleDouble total(const PairLanes& sum) {
  double hi[laneCount], lo[laneCount];
  store(hi, sum.hi);
  store(lo, sum.lo);
  DoubleDouble result;
  for (std::size_t k = 0; k < laneCount; ++k) result += ::pelmora::solver::twoSum(hi[k], lo[k]);
  return result;
}
