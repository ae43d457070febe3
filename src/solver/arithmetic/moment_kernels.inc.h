// The sums of a polynomial fit over all points and its curve, for one instruction set; see
// lanes.inc.h. SPDX-License-Identifier: MIT
//
// The Chebyshev polynomials of a point are kept as h + l, h a multiple of 2^-48 and at most 1 in
// size. That makes the steps of the recurrence and the sums over h within a block exact in plain
// operations, where numbers without a common grid would need the rest of each sum worked out. l
// carries 2^-101.

// The points of one turn: enough independent recurrences to hide the time that each step of one of
// them takes, few enough to stay in the nearest cache and to keep the sums over h below 2^53 grid
// steps.
struct MomentBlock {
  static constexpr std::size_t most = 16;
  std::size_t packs = 0;
  PairLanes twice[most];    // 2 t, on the grid as well
  PairLanes factors[most];  // y / w
  PairLanes values[2][most];
};

// Adding and taking it away rounds to a multiple of 2^-48. Source: Dekker 1971.
constexpr double momentGrid = 0x1.8p4;

PELMORA_INLINE Lanes onGrid(const Lanes& a) {
  const Lanes grid = all(momentGrid);
  return (a + grid) - grid;
}
PELMORA_INLINE PairLanes settledOnGrid(const PairLanes& a) {
  const Lanes h = onGrid(a.hi);
  return {h, (a.hi - h) + a.lo};
}

// u^exponent, exponent > 0.
PELMORA_INLINE PairLanes power(PairLanes u, unsigned exponent) {
  PairLanes result = all(DoubleDouble(1));
  for (; exponent != 0; exponent >>= 1U) {
    if ((exponent & 1U) != 0) result = result * u;
    if (exponent > 1) u = u * u;
  }
  return result;
}

PELMORA_INLINE void loadBlock(const MomentTask& task, std::size_t from, MomentBlock& block) {
  const PairLanes shift = all(DoubleDouble(-task.middle)), one = all(DoubleDouble(1));
  const Lanes stretch = all(task.stretch), scale = all(task.scale);
  const auto size = static_cast<unsigned>(task.lowest < 0 ? -task.lowest : task.lowest);
  block.packs = 0;
  for (std::size_t at = from; at < task.n && block.packs < MomentBlock::most; at += laneCount) {
    const std::size_t left = task.n - at, k = block.packs++;
    const bool whole = left >= laneCount;
    const PairLanes u = loadPair(task.u, at, left, task.u.hi[0]);
    const PairLanes t = (u + shift) * stretch;
    block.twice[k] = settledOnGrid(t + t);
    PairLanes squares = {scale, all(0.0)},
              factors = {whole ? load(task.y + at) : loadUpTo(task.y + at, left, 0), all(0.0)};
    if (task.lowest != 0) {
      const PairLanes p = power(u, size);
      const PairLanes inverse = one / p;
      squares = task.lowest < 0 ? inverse * inverse : p * p;
      squares = {squares.hi * scale, squares.lo * scale};
      factors = (task.lowest < 0 ? p : inverse) * factors.hi;
    }
    if (!whole) {  // lanes without a point count nothing
      const Lanes counted = loadUpTo(task.ones, left, 0);
      squares = {squares.hi * counted, squares.lo * counted};
      factors = {factors.hi * counted, factors.lo * counted};
    }
    block.factors[k] = factors;
    block.values[0][k] = settledOnGrid(squares);
    block.values[1][k] = settledOnGrid(t * squares);
  }
}

// T(m+1) = 2 t T(m) - T(m-1).
PELMORA_INLINE PairLanes advanced(const PairLanes& twice, const PairLanes& now,
                                  const PairLanes& before) {
  const Lanes step = onGrid(twice.hi * now.hi);
  const Lanes rest = restOfProduct(twice.hi, now.hi, step);  // exact: at most 48 bits
  return {step - before.hi, (rest - before.lo) + (twice.hi * now.lo + twice.lo * now.hi)};
}

// Adds up the values of one m, with the products where wanted, and takes the recurrence one step
// on.
template <bool weighted, bool products>
PELMORA_INLINE void addTurn(const MomentBlock& block, const PairLanes* now, PairLanes* before,
                            PairLanes& squareSum, PairLanes& productSum) {
  PairLanes squares{all(0.0), all(0.0)};
  PairLanes sum = productSum;
  for (std::size_t k = 0; k < block.packs; ++k) {
    const PairLanes value = now[k];
    squares.hi = squares.hi + value.hi;
    squares.lo = squares.lo + value.lo;
    if (products) {
      const Lanes factor = block.factors[k].hi, product = factor * value.hi;
      Lanes low = restOfProduct(factor, value.hi, product) + factor * value.lo;
      if (weighted) low = low + block.factors[k].lo * value.hi;
      accumulate(sum, {product, low});
    }
    before[k] = advanced(block.twice[k], value, before[k]);
  }
  accumulate(squareSum, squares);
  productSum = sum;
}

template <bool weighted>
PELMORA_INLINE void addMoments(const MomentTask& task, DoubleDouble* squares,
                               DoubleDouble* products) {
  constexpr std::size_t most = 2 * MomentTask::highestDegree + 1;
  PairLanes squareSums[most], productSums[MomentTask::highestDegree + 1];
  const std::size_t degree = task.degree, count = 2 * degree + 1;
  for (std::size_t m = 0; m < count; ++m) squareSums[m] = {all(0.0), all(0.0)};
  for (std::size_t j = 0; j <= degree; ++j) productSums[j] = {all(0.0), all(0.0)};
  MomentBlock block;
  for (std::size_t from = 0; from < task.n; from += MomentBlock::most * laneCount) {
    loadBlock(task, from, block);
    PairLanes *now = block.values[0], *before = block.values[1];  // T(-1) = T(1)
    for (std::size_t m = 0; m < count; ++m) {
      if (m <= degree) {
        addTurn<weighted, true>(block, now, before, squareSums[m], productSums[m]);
      } else {
        addTurn<weighted, false>(block, now, before, squareSums[m], productSums[0]);
      }
      PairLanes* const swapped = now;
      now = before;
      before = swapped;
    }
  }
  const double unit = 1 / task.scale;
  for (std::size_t m = 0; m < count; ++m) squares[m] = total(squareSums[m]) * DoubleDouble(unit);
  for (std::size_t j = 0; j <= degree; ++j)
    products[j] = total(productSums[j]) * DoubleDouble(unit);
}

// Running sums over w^2 T(m) and w y T(j) = (y / w) w^2 T(j); see MomentTask.
static void moments(const MomentTask& task, DoubleDouble* squares, DoubleDouble* products) {
  if (task.lowest == 0) {
    addMoments<false>(task, squares, products);
  } else {
    addMoments<true>(task, squares, products);
  }
}

// Clenshaw's sum of parameters[j] T(j), highest first, times u^lowest. With a factor that varies
// over the points the sum cancels where the factor is large, so that it takes double-double
// numbers.
template <class T>
PELMORA_INLINE T chebyshevSum(const CurveTask& task, const T& t) {
  const T twice = t + t;
  T next = all(T{}, 0.0), afterNext = next;
  for (std::size_t j = task.p; j-- > 1;) {
    const T now = all(T{}, task.parameters[j]) + (twice * next - afterNext);
    afterNext = next;
    next = now;
  }
  return all(T{}, task.parameters[0]) + (t * next - afterNext);
}

static void curve(const CurveTask& task) {
  const PairLanes shift = all(DoubleDouble(-task.middle)), one = all(DoubleDouble(1));
  const Lanes stretch = all(task.stretch);
  const auto size = static_cast<unsigned>(task.lowest < 0 ? -task.lowest : task.lowest);
  for (std::size_t at = 0; at < task.n; at += laneCount) {
    const std::size_t left = task.n - at;
    const PairLanes u = loadPair(task.u, at, left, task.u.hi[0]);
    const PairLanes t = (u + shift) * stretch;
    Lanes values;
    if (task.lowest == 0) {
      values = chebyshevSum(task, t.hi);
    } else {
      const PairLanes sum = chebyshevSum(task, t), factor = power(u, size);
      values = (sum * (task.lowest < 0 ? one / factor : factor)).hi;
    }
    if (left >= laneCount) {
      store(task.values + at, values);
    } else {
      storeUpTo(task.values + at, values, left);
    }
  }
}
