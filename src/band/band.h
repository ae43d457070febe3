// The product's own band tester.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/band_tester.h>

#include <memory>

namespace pelmora {

// Reads a predicted curve as a flow computer reads its table: linear between neighbouring points,
// whatever their order. A raw point passes where |y - curve| <= percent / 100 * |curve|; its limits
// belong to the band.
//
// - Raw points outside the table's range are not tested; where none is inside, there is nothing
// that
//   fails. A point with a coordinate that is not finite fails.
// - Where the table has several points at the raw point's x, any value between them will do.
// - A table without points, of different lengths or with a value that is not finite fails, and so
//   does a band that is negative or NaN.
// - TestRatioCurve: finite, and y never rises as x rises; points of equal x may stand in any order.
// - TestPoint without SetSegment, or beside the segment's range of x, answers no.
//
// No StatusUpdate is raised: a test takes less time than telling of it.
[[nodiscard]] std::unique_ptr<BandTester> createBandTester();

}  // namespace pelmora
