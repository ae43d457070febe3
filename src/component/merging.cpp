// SPDX-License-Identifier: MIT
#include "component/merging.h"

#include <utility>

namespace pelmora {

steps::MergedPoints consolidateParts(const OperationContext& context, steps::MergedPoints A,
                                     steps::MergedPoints B, bool& ArrayIsEmpty, bool bInverted,
                                     bool ratioCurve) {
  steps::MergedPoints merged;
  context.trap("Error in rawData:consolidateRaw", [&] {
    ArrayIsEmpty = true;
    const steps::MergeSettings settings{
        bInverted, ratioCurve, context.shared().fitRecord().SeriesName,
        [&context]() -> std::unique_ptr<BandTester> {
          const Platform& platform = context.platform();
          return platform.createBandTester ? platform.createBandTester() : nullptr;
        }};
    merged = mergeParts(std::move(A), std::move(B), settings, context.observer());
    ArrayIsEmpty = false;
  });
  return merged;
}

PointArray consolidateRaw(const OperationContext& context, PointArray A, PointArray B,
                          bool& ArrayIsEmpty, bool bInverted, bool ratioCurve) {
  return consolidateParts(context, steps::asPart(1, std::move(A)), steps::asPart(2, std::move(B)),
                          ArrayIsEmpty, bInverted, ratioCurve)
      .Points;
}

}  // namespace pelmora
