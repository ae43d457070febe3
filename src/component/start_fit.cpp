// SPDX-License-Identifier: MIT
#include "component/start_fit.h"

#include "component/clsDataFit.h"

namespace pelmora {
namespace {

// Keeps a fitting object attached to the host's object while it runs.
class Attachment {
 public:
  Attachment(FitHost& host, clsDataFit& fitting) : host_(host) { host_.attachFitting(&fitting); }
  ~Attachment() { host_.attachFitting(nullptr); }
  Attachment(const Attachment&) = delete;
  Attachment& operator=(const Attachment&) = delete;

 private:
  FitHost& host_;
};

}  // namespace

PointArray startFit(const OperationContext& context, FitHost& host, const PointArray& merged,
                    bool& ArrayIsEmpty, double Predicted_Xmin, double Predicted_Xmax,
                    const std::string& Label_Xaxis, const std::string& Label_Yaxis) {
  PointArray curve;
  const bool ended = context.trap("Error in RawData:startFit", [&] {
    ArrayIsEmpty = true;
    SharedState& shared = context.shared();
    clsDataFit fitting(context.platform());
    const Attachment attachment(host, fitting);
    fitting.RatioCurve = host.settings().RatioCurve;
    fitting.LoadEquations();
    const FitSettings settings = host.settings();
    fitting.BandPercent = settings.BandPercent;
    fitting.NumberOfFittedPoints = settings.NumberOfFittedPoints;
    fitting.IgnoreResiduals = settings.IgnoreResiduals;
    fitting.MeterSerialNumber = shared.foundSeries.SerialNumber;
    fitting.SeriesName = shared.fitRecord().SeriesName;
    shared.fitRecord().Merged = merged;
    shared.fitRecord().Fitted = fitting.fitCurve(merged, ArrayIsEmpty, Predicted_Xmin,
                                                 Predicted_Xmax, Label_Xaxis, Label_Yaxis);
    shared.fitRecord().Merged = merged;  // a handler may have fitted other points meanwhile
    const std::string details = fitting.ResultDetails();
    shared.fitRecord().Summary = details;
    host.takeResult(details, fitting.outcome());
    curve = shared.fitRecord().Fitted;
  });
  if (!ended) {  // nothing of an earlier fit is left beside these points
    ArrayIsEmpty = true;
    SeriesInfo& record = context.shared().fitRecord();
    record.Merged = merged;
    record.Fitted = PointArray();
    record.Summary.clear();
    host.takeResult({}, {});
  }
  return curve;
}

}  // namespace pelmora
