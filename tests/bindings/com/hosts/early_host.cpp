// Does the main job through the vtable of _RawData: early_host CURVES.db
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/hosts/host_support.h"

#include <cstdio>

namespace {

using namespace pelmora::test;

MainJobResult doMainJob(const std::string& database) {
  MainJobResult result;
  _RawData* data = nullptr;
  check(CoCreateInstance(CLSID_RawData, nullptr, CLSCTX_INPROC_SERVER, IID__RawData,
                         reinterpret_cast<void**>(&data)),
        "CoCreateInstance");
  Sink sink;
  countEvents(sink, result);
  {
    const Connected connected(data, sink);
    Text path(database), meter(mainJobMeter), series(mainJobSeries), x("Roshko"), y("Strouhal");
    ::DatabaseLocation location{};
    check(data->dbDirSetByString(path, &location), "dbDirSetByString");
    check(data->put_Unattended(VARIANT_TRUE), "Unattended");
    float band = 1.0F;
    check(data->put_BandPercent(&band), "BandPercent");
    LONG id = 0;
    check(data->setMeterSN(meter, nullptr, &id), "setMeterSN");
    result.id = id;
    SAFEARRAY* table = arrayOf(mainJobPoints());
    short dataSet = 0, latest = -1;
    VARIANT_BOOL yes = VARIANT_TRUE, no = VARIANT_FALSE, isEmpty = VARIANT_TRUE,
                 answer = VARIANT_FALSE;
    check(data->SetRaw(series, meter, &table, &dataSet, &no, &latest, &answer), "SetRaw");
    SafeArrayDestroy(table);
    result.isStored = answer != VARIANT_FALSE;
    result.low = 12;
    result.high = 1000;
    SAFEARRAY* fitted = nullptr;
    check(data->determineFittedCurve(series, meter, &isEmpty, &result.low, &result.high, x, y, &no,
                                     &latest, &fitted),
          "determineFittedCurve");
    result.isEmpty = isEmpty != VARIANT_FALSE;
    result.fitted = pointsOf(fitted);
    SafeArrayDestroy(fitted);
    SAFEARRAY* merged = nullptr;
    check(data->get_LastMergedArray(&merged), "LastMergedArray");
    result.merged = pointsOf(merged);
    SafeArrayDestroy(merged);
    Text report;
    check(data->get_DataFitResultDetails(report), "DataFitResultDetails");
    result.report = report.narrow();
    check(data->SetLastFitted(&no, &answer), "SetLastFitted");
    result.isFitStored = answer != VARIANT_FALSE;
    // The records stay: the system's description of records under Wine cannot free arrays inside
    // them.
    ::MeterInfo all{}, compact{};
    check(data->GetAllInfo(series, meter, nullptr, &latest, &no, &all), "GetAllInfo");
    const auto& entry = *static_cast<::SeriesInfo*>(all.Series->pvData);
    result.readBack = pointsOf(entry.Fitted);
    result.storedReport = Text::narrowOf(entry.Summary);
    check(data->getFittedCurve(series, meter, nullptr, &latest, &yes, &compact), "getFittedCurve");
    const auto& curve = static_cast<::SeriesInfo*>(compact.Series->pvData)->RoshkoFirst;
    for (std::size_t i = 0; i < 40; ++i) {
      result.roshko[i] = curve.First[i];
      result.strouhal[i] = curve.Second[i];
    }
    SAFEARRAY* meters = nullptr;
    check(data->Meters(&isEmpty, &meters), "Meters");
    result.meters = textsOf(meters);
    SafeArrayDestroy(meters);
  }
  data->Release();
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
