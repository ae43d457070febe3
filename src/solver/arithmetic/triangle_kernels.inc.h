// The algebra of small triangles, for one instruction set; see lanes.inc.h. Row by row, all rows
// below at once: no step waits for the one before it. SPDX-License-Identifier: MIT

constexpr std::size_t mostRows = MomentTask::highestDegree + 1, rowLength = 32;
static_assert(rowLength > mostRows &&
              rowLength % laneCount == 0);  // a column more: the right-hand side

struct Rows {
  alignas(64) double hi[mostRows][rowLength], lo[mostRows][rowLength];
};
PELMORA_INLINE PairLanes loadRow(const Rows& rows, std::size_t row, std::size_t at) {
  return {load(rows.hi[row] + at), load(rows.lo[row] + at)};
}
PELMORA_INLINE void storeRow(Rows& rows, std::size_t row, std::size_t at, const PairLanes& a) {
  store(rows.hi[row] + at, a.hi);
  store(rows.lo[row] + at, a.lo);
}
PELMORA_INLINE DoubleDouble cell(const Rows& rows, std::size_t row, std::size_t column) {
  return {rows.hi[row][column], rows.lo[row][column]};
}
PELMORA_INLINE void setCell(Rows& rows, std::size_t row, std::size_t column,
                            const DoubleDouble& value) {
  rows.hi[row][column] = value.hi;
  rows.lo[row][column] = value.lo;
}
// Columns from .. to - 1 of a row, rounded out to whole packs.
PELMORA_INLINE void scaleRow(Rows& rows, std::size_t row, const DoubleDouble& factor,
                             std::size_t from, std::size_t to) {
  const PairLanes by = all(factor);
  for (std::size_t at = from / laneCount * laneCount; at < to; at += laneCount) {
    storeRow(rows, row, at, loadRow(rows, row, at) * by);
  }
}
PELMORA_INLINE void subtractRow(Rows& rows, std::size_t row, const DoubleDouble& factor,
                                const Rows& others, std::size_t other, std::size_t from,
                                std::size_t to) {
  const PairLanes by = all(-factor);
  for (std::size_t at = from / laneCount * laneCount; at < to; at += laneCount) {
    storeRow(rows, row, at,
             loadRow(rows, row, at) + timesUnsettled(by, loadRow(others, other, at)));
  }
}

// Cholesky's factorisation of (squares[k + j] + squares[|k - j|]) / 2; see EliminationTask.
static std::size_t eliminate(const EliminationTask& task) {
  const std::size_t p = task.p;
  alignas(64) double hi[4 * rowLength] = {},
                            lo[4 * rowLength] = {};  // index m of squares at rowLength + m
  for (std::size_t m = 0; m < 2 * p - 1; ++m) {
    hi[rowLength + m] = task.squares[m].hi;
    lo[rowLength + m] = task.squares[m].lo;
  }
  Rows rows;
  double wholes[mostRows];
  const Lanes half = all(0.5);
  for (std::size_t k = 0; k < p; ++k) {
    for (std::size_t at = k / laneCount * laneCount; at <= p; at += laneCount) {
      const std::size_t above = rowLength + at + k, below = rowLength + at - k;
      const PairLanes sum = PairLanes{load(hi + above), load(lo + above)} +
                            PairLanes{load(hi + below), load(lo + below)};
      storeRow(rows, k, at, {sum.hi * half, sum.lo * half});
    }
    wholes[k] = rows.hi[k][k];
    setCell(rows, k, p, task.products[k]);
  }
  std::size_t rank = 0;
  for (; rank < p && rows.hi[rank][rank] > task.leastPivot * wholes[rank]; ++rank) {
    const DoubleDouble inverse = inverseRoot(cell(rows, rank, rank));
    task.inverse[rank] = inverse;
    scaleRow(rows, rank, inverse, rank, p + 1);
    for (std::size_t i = rank + 1; i < p; ++i)
      subtractRow(rows, i, cell(rows, rank, i), rows, rank, i, p + 1);
  }
  for (std::size_t k = 0; k < rank; ++k) {
    for (std::size_t j = k; j < p; ++j) task.r[k * p + j] = cell(rows, k, j);
    task.z[k] = cell(rows, k, p);
  }
  return rank;
}

// n = m R^-1 and the sums of n(k, j) z(j) over j = k .. i; see NestTask. Rows are columns here.
static void nest(const NestTask& task) {
  const std::size_t p = task.p;
  Rows n;
  for (std::size_t i = 0; i < p; ++i) {
    for (std::size_t at = 0; at < p; at += laneCount) storeRow(n, i, at, {all(0.0), all(0.0)});
    for (std::size_t k = 0; k <= i; ++k) setCell(n, i, k, task.m[k * task.mSize + i]);
  }
  PairLanes sums[rowLength / laneCount];
  for (PairLanes& sum : sums) sum = {all(0.0), all(0.0)};
  Rows totals;
  for (std::size_t j = 0; j < p; ++j) {
    scaleRow(n, j, task.inverse[j], 0, j + 1);
    for (std::size_t i = j + 1; i < p; ++i)
      subtractRow(n, i, task.r[j * task.rSize + i], n, j, 0, j + 1);
    const PairLanes z = all(task.z[j]);
    for (std::size_t at = 0; at <= j; at += laneCount) {
      PairLanes& sum = sums[at / laneCount];
      sum = sum + timesUnsettled(loadRow(n, j, at), z);
      storeRow(totals, j, at, sum);
    }
  }
  for (std::size_t k = 0; k < p; ++k) {
    for (std::size_t i = k; i < p; ++i) {
      task.n[k * p + i] = cell(n, i, k);
      task.sums[k * p + i] = cell(totals, i, k);
    }
  }
}

static void covariance(const CovarianceTask& task) {
  const std::size_t p = task.p;
  Rows n;  // rows are columns here
  for (std::size_t i = 0; i < p; ++i) {
    for (std::size_t at = 0; at < p; at += laneCount) storeRow(n, i, at, {all(0.0), all(0.0)});
    for (std::size_t k = 0; k <= i; ++k) setCell(n, i, k, task.n[k * task.nSize + i]);
  }
  const PairLanes variance = all(task.variance);
  Rows sums;
  for (std::size_t k = 0; k < p; ++k) {
    for (std::size_t at = k / laneCount * laneCount; at < p; at += laneCount) {
      PairLanes sum = {all(0.0), all(0.0)};
      for (std::size_t i = k > at ? k : at; i < p; ++i)
        sum = sum + timesUnsettled(all(cell(n, i, k)), loadRow(n, i, at));
      storeRow(sums, k, at, variance * sum);
    }
    for (std::size_t l = k; l < p; ++l) task.cells[k * p + l] = cell(sums, k, l);
  }
}

// Column j holds T(j) of shift + slope u in powers of u, lowest first.
static void chebyshevPowers(DoubleDouble shift, double slope, std::size_t count, std::size_t size,
                            DoubleDouble* m) {
  // A column of zeros before the powers, so that u times a polynomial is a load one place before
  // it.
  alignas(64) double hi[mostRows][laneCount + rowLength] = {},
                                              lo[mostRows][laneCount + rowLength] = {};
  const PairLanes by = all(shift);
  const Lanes steep = all(slope), two = all(2.0);
  for (std::size_t j = 0; j < count; ++j) {
    if (j == 0) {
      hi[0][laneCount] = 1;
    } else {
      for (std::size_t at = laneCount; at <= laneCount + j; at += laneCount) {
        const PairLanes same{load(hi[j - 1] + at), load(lo[j - 1] + at)};
        const PairLanes higher{load(hi[j - 1] + at - 1), load(lo[j - 1] + at - 1)};
        PairLanes next = same * by + higher * steep;
        if (j > 1) {
          next = PairLanes{next.hi * two, next.lo * two} -
                 PairLanes{load(hi[j - 2] + at), load(lo[j - 2] + at)};
        }
        store(hi[j] + at, next.hi);
        store(lo[j] + at, next.lo);
      }
    }
    for (std::size_t k = 0; k <= j; ++k)
      m[k * size + j] = {hi[j][laneCount + k], lo[j][laneCount + k]};
  }
}
