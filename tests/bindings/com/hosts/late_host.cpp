// Does the main job through names alone: late_host CURVES.db
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/hosts/late_object.h"

#include <cstdio>

namespace {

using namespace pelmora::test;

VARIANT done(const Outcome& outcome, const char* what) {
  if (FAILED(outcome.code)) std::fprintf(stderr, "%s: %s\n", what, outcome.description.c_str());
  check(outcome.code, what);
  return outcome.result;
}

MainJobResult doMainJob(const char* database) {
  MainJobResult result;
  CLSID identity{};
  check(CLSIDFromProgID(L"Pelmora.RawData", &identity), "CLSIDFromProgID");
  IDispatch* object = nullptr;
  check(CoCreateInstance(identity, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                         reinterpret_cast<void**>(&object)),
        "CoCreateInstance");
  Sink sink;
  countEvents(sink, result);
  {
    const Connected connected(object, sink);
    const LateObject data(object);
    done(data.call(L"dbDirSetByString", {variantOf(database)}), "dbDirSetByString");
    done(data.put(L"Unattended", variantOf(true)), "Unattended");
    done(data.put(L"BandPercent", variantOf(1)), "BandPercent");
    result.id = done(data.call(L"setMeterSN", {variantOf(mainJobMeter)}), "setMeterSN").lVal;
    result.isStored = done(data.call(L"SetRaw", {variantOf(mainJobSeries), variantOf(mainJobMeter),
                                                 variantOf(arrayOf(mainJobPoints()), VT_R8),
                                                 variantOf(0), variantOf(false)}),
                           "SetRaw")
                          .boolVal != VARIANT_FALSE;
    result.low = 12;
    result.high = 1000;
    VARIANT_BOOL isEmpty = VARIANT_TRUE;
    VARIANT fitted =
        done(data.call(
                 L"determineFittedCurve",
                 {variantOf(mainJobSeries), variantOf(mainJobMeter), referenceTo(VT_BOOL, &isEmpty),
                  referenceTo(VT_R8, &result.low), referenceTo(VT_R8, &result.high),
                  variantOf("Roshko"), variantOf("Strouhal"), variantOf(false)}),
             "determineFittedCurve");
    result.isEmpty = isEmpty != VARIANT_FALSE;
    result.fitted = pointsOf(fitted.parray);
    VariantClear(&fitted);
    VARIANT merged = done(data.get(L"LastMergedArray"), "LastMergedArray");
    result.merged = pointsOf(merged.parray);
    VariantClear(&merged);
    VARIANT report = done(data.get(L"DataFitResultDetails"), "DataFitResultDetails");
    result.report = Text::narrowOf(report.bstrVal);
    VariantClear(&report);
    result.isFitStored =
        done(data.call(L"SetLastFitted", {variantOf(false)}), "SetLastFitted").boolVal !=
        VARIANT_FALSE;
    // The records stay: the system's description of records under Wine cannot free arrays inside
    // them.
    const VARIANT all =
        done(data.call(L"GetAllInfo", {variantOf(mainJobSeries), variantOf(mainJobMeter)}),
             "GetAllInfo");
    const auto* entry = static_cast<::SeriesInfo*>((*fieldOf<SAFEARRAY*>(all, L"Series"))->pvData);
    result.readBack = pointsOf(entry->Fitted);
    result.storedReport = Text::narrowOf(entry->Summary);
    const VARIANT compact =
        done(data.call(L"getFittedCurve", {variantOf(mainJobSeries), variantOf(mainJobMeter),
                                           leftOut(), leftOut(), variantOf(true)}),
             "getFittedCurve");
    const auto& curve =
        static_cast<::SeriesInfo*>((*fieldOf<SAFEARRAY*>(compact, L"Series"))->pvData)->RoshkoFirst;
    for (std::size_t i = 0; i < 40; ++i) {
      result.roshko[i] = curve.First[i];
      result.strouhal[i] = curve.Second[i];
    }
    VARIANT meters = done(data.call(L"Meters", {referenceTo(VT_BOOL, &isEmpty)}), "Meters");
    result.meters = textsOf(meters.parray);
    VariantClear(&meters);
  }
  object->Release();
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const std::string text = textOf(doMainJob(argv[1]));
  std::fwrite(text.data(), 1, text.size(), stdout);
  CoUninitialize();
  return 0;
}
