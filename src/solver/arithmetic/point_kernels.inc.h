// The loops over all points, for one instruction set; see lanes.inc.h. Calls nothing that other
// translation units share, so that no instruction of a newer set leaks out of here.
// SPDX-License-Identifier: MIT

// n values behind pointers, the last lanes filled up with `filler`.
PELMORA_INLINE Lanes loadUpTo(const double* from, std::size_t count, double filler) {
  double buffer[laneCount];
  for (std::size_t k = 0; k < laneCount; ++k) buffer[k] = k < count ? from[k] : filler;
  return load(buffer);
}
PELMORA_INLINE void storeUpTo(double* to, const Lanes& a, std::size_t count) {
  double buffer[laneCount];
  store(buffer, a);
  for (std::size_t k = 0; k < count; ++k) to[k] = buffer[k];
}
PELMORA_INLINE PairLanes loadPair(ConstPair from, std::size_t at, std::size_t count,
                                  double filler = 0) {
  if (count >= laneCount) return {load(from.hi + at), load(from.lo + at)};
  return {loadUpTo(from.hi + at, count, filler), loadUpTo(from.lo + at, count, 0)};
}
PELMORA_INLINE void storePair(Pair to, std::size_t at, std::size_t count, const PairLanes& a) {
  if (count >= laneCount) {
    store(to.hi + at, a.hi);
    store(to.lo + at, a.lo);
  } else {
    storeUpTo(to.hi + at, a.hi, count);
    storeUpTo(to.lo + at, a.lo, count);
  }
}

static DoubleDouble dot(ConstPair a, ConstPair b, std::size_t n) {
  PairLanes sum{};
  for (std::size_t at = 0; at < n; at += laneCount) {
    accumulate(sum, loadPair(a, at, n - at) * loadPair(b, at, n - at));
  }
  return total(sum);
}

static void scale(Pair a, DoubleDouble factor, std::size_t n) {
  const PairLanes by = all(factor);
  for (std::size_t at = 0; at < n; at += laneCount) {
    storePair(a, at, n - at, loadPair({a.hi, a.lo}, at, n - at) * by);
  }
}

static void subtractMultiple(Pair a, DoubleDouble factor, ConstPair b, std::size_t n) {
  const PairLanes by = all(-factor);
  for (std::size_t at = 0; at < n; at += laneCount) {
    storePair(a, at, n - at, loadPair({a.hi, a.lo}, at, n - at) + loadPair(b, at, n - at) * by);
  }
}

static DoubleDouble sum(const double* y, std::size_t n) {
  PairLanes result{};
  for (std::size_t at = 0; at < n; at += laneCount) {
    const Lanes value = n - at >= laneCount ? load(y + at) : loadUpTo(y + at, n - at, 0);
    accumulate(result, {value, all(0.0)});
  }
  return total(result);
}

static DoubleDouble squaresAbout(const double* y, DoubleDouble middle, std::size_t n) {
  PairLanes sums{};
  const PairLanes shift = all(-middle);
  std::size_t at = 0;
  for (; at + laneCount <= n; at += laneCount) {
    const PairLanes distance = PairLanes{load(y + at), all(0.0)} + shift;
    accumulate(sums, distance * distance);
  }
  DoubleDouble result = total(sums);
  for (; at < n; ++at) {
    const DoubleDouble distance = DoubleDouble(y[at]) - middle;
    result += distance * distance;
  }
  return result;
}

static Range range(ConstPair a, std::size_t n) {
  Lanes low = all(a.hi[0]), high = low, wrong = all(0.0);
  for (std::size_t at = 0; at < n; at += laneCount) {
    const PairLanes value = loadPair(a, at, n - at, a.hi[0]);
    low = smaller(value.hi, low);
    high = larger(value.hi, high);
    wrong = wrong + (value.hi - value.hi) + (value.lo - value.lo);  // NaN for what is not finite
  }
  double lows[laneCount], highs[laneCount], wrongs[laneCount];
  store(lows, low);
  store(highs, high);
  store(wrongs, wrong);
  Range result{lows[0], highs[0], true};
  for (std::size_t k = 0; k < laneCount; ++k) {
    if (lows[k] < result.low) result.low = lows[k];
    if (highs[k] > result.high) result.high = highs[k];
    if (wrongs[k] != 0) result.isFinite = false;
  }
  return result;
}

// Natural logarithms. x = 2^k m, c near 1 / m from a table: ln x = k ln 2 - ln c + ln(m c), and the
// last one, of an argument near 1, by the series of atanh. Several at a time and step by step,
// because each step waits for the one before. Source: Tang, ACM TOMS 16 (1990), with the series in
// double-double arithmetic. Needs: normal positive numbers; others get what the caller puts in
// their place.
struct LogGroup {
  static constexpr std::size_t packs = 4, points = packs * laneCount;
};

PELMORA_INLINE void logarithms(const double* x, double* hi, double* lo, const LogTable& table) {
  PairLanes known[LogGroup::packs], s[LogGroup::packs], v[LogGroup::packs], series[LogGroup::packs];
  const Lanes one = all(1.0);
  for (std::size_t i = 0; i < LogGroup::packs; ++i) {
    const Lanes value = load(x + i * laneCount);
    Lanes m, c, exponent;
    PairLanes logarithm;
    for (std::size_t k = 0; k < registers; ++k) {
      const Bits bits = reinterpret_cast<Bits>(value.part[k]);
      const Bits place = (bits >> 45) & 127U;
      m.part[k] = reinterpret_cast<Register>((bits & 0xFFFFFFFFFFFFFULL) | 0x3FF0000000000000ULL);
      // 2^52 + the biased exponent, as a number; then without the 2^52 and the bias.
      exponent.part[k] =
          reinterpret_cast<Register>((bits >> 52) | 0x4330000000000000ULL) - (0x1p52 + 1023);
      c.part[k] = gather(table.inverse, place);
      logarithm.hi.part[k] = gather(table.high, place);
      logarithm.lo.part[k] = gather(table.low, place);
    }
    const Lanes product = m * c;
    const PairLanes r = quickTwoSum(product - one, restOfProduct(m, c, product));
    s[i] = r / (r + all(DoubleDouble(2)));
    known[i] = all(table.ln2) * exponent + logarithm;
  }
  for (std::size_t i = 0; i < LogGroup::packs; ++i) {
    v[i] = s[i] * s[i];
    Lanes far = all(1.0 / 15);  // terms below 1e-16 of the sum need no second half
    far = all(1.0 / 13) + v[i].hi * far;
    far = all(1.0 / 11) + v[i].hi * far;
    far = all(1.0 / 9) + v[i].hi * far;
    series[i] = {far, all(0.0)};
  }
  for (const DoubleDouble& coefficient : table.series) {
    for (std::size_t i = 0; i < LogGroup::packs; ++i)
      series[i] = all(coefficient) + v[i] * series[i];
  }
  for (std::size_t i = 0; i < LogGroup::packs; ++i) {
    const PairLanes result = known[i] + (s[i] + s[i]) * series[i];
    store(hi + i * laneCount, result.hi);
    store(lo + i * laneCount, result.lo);
  }
}

static void logarithms(const double* x, Pair to, std::size_t n, const LogTable& table) {
  std::size_t at = 0;
  for (; at + LogGroup::points <= n; at += LogGroup::points) {
    logarithms(x + at, to.hi + at, to.lo + at, table);
  }
  if (at == n) return;
  double rest[LogGroup::points], hi[LogGroup::points], lo[LogGroup::points];
  for (std::size_t k = 0; k < LogGroup::points; ++k) rest[k] = at + k < n ? x[at + k] : 1.0;
  logarithms(rest, hi, lo, table);
  for (std::size_t k = 0; at + k < n; ++k) to.hi[at + k] = hi[k], to.lo[at + k] = lo[k];
}
