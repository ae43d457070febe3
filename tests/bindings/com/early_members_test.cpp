// Every member through its slot, with optional arguments given and left out.
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

#include <fstream>

namespace pelmora::test {
namespace {

class early_members : public ComponentTest {
 protected:
  Text meter{mainJobMeter}, series{mainJobSeries};
  VARIANT_BOOL yes = VARIANT_TRUE, no = VARIANT_FALSE, answer = VARIANT_FALSE, isEmpty = VARIANT_TRUE;
  short latest = -1;
};

// One entry, or null. The record stays with the test: Wine cannot free arrays inside records.
const ::SeriesInfo* entryOf(const ::MeterInfo& info) {
  return info.Series == nullptr ? nullptr : static_cast<const ::SeriesInfo*>(info.Series->pvData);
}

TEST_F(early_members, keep_what_properties_are_set_to) {
  const auto keepsFlag = [&](auto get, auto put) {
    VARIANT_BOOL value = VARIANT_TRUE;
    EXPECT_EQ((data->*get)(&value), S_OK);
    EXPECT_EQ(value, VARIANT_FALSE);
    EXPECT_EQ((data->*put)(VARIANT_TRUE), S_OK);
    EXPECT_EQ((data->*get)(&value), S_OK);
    EXPECT_EQ(value, VARIANT_TRUE);
  };
  keepsFlag(&_RawData::get_Unattended, &_RawData::put_Unattended);
  keepsFlag(&_RawData::get_RatioCurve, &_RawData::put_RatioCurve);
  keepsFlag(&_RawData::get_IgnoreResiduals, &_RawData::put_IgnoreResiduals);
  short points = 0;
  EXPECT_EQ(data->get_NumberOfFittedPoints(&points), S_OK);
  EXPECT_EQ(points, 40);
  EXPECT_EQ(data->put_NumberOfFittedPoints(17), S_OK);
  EXPECT_EQ(data->get_NumberOfFittedPoints(&points), S_OK);
  EXPECT_EQ(points, 17);
  float band = -1;
  EXPECT_EQ(data->get_BandPercent(&band), S_OK);
  EXPECT_EQ(band, 0.0F);
  EXPECT_EQ(data->put_BandPercent(0.25F), S_OK);
  EXPECT_EQ(data->get_BandPercent(&band), S_OK);
  EXPECT_EQ(band, 0.25F);
}

TEST_F(early_members, keep_texts_beyond_ascii) {
  const wchar_t* text = L"Z\u00e4hler \u2116 7 \U0001F4C8";
  BSTR given = SysAllocString(text);
  EXPECT_EQ(data->put_ExternalID(given), S_OK);
  EXPECT_EQ(data->put_DataFitResultDetails(given), S_OK);
  SysFreeString(given);
  Text id, details;
  EXPECT_EQ(data->get_ExternalID(id), S_OK);
  EXPECT_EQ(data->get_DataFitResultDetails(details), S_OK);
  EXPECT_EQ(std::wstring(id.get()), text);
  EXPECT_EQ(std::wstring(details.get()), text);
  EXPECT_EQ(data->put_ExternalID(nullptr), S_OK);
  Text cleared;
  EXPECT_EQ(data->get_ExternalID(cleared), S_OK);
  EXPECT_EQ(cleared.narrow(), "");
}

TEST_F(early_members, split_and_replace_the_location) {
  ::DatabaseLocation location{};
  EXPECT_EQ(data->dbDirSetByString(Text("d:\\data\\curves.mdb"), &location), S_OK);
  EXPECT_EQ(Text::narrowOf(location.FullPath), "d:\\data\\curves.mdb");
  EXPECT_EQ(Text::narrowOf(location.Folder), "d:\\data\\");
  EXPECT_EQ(Text::narrowOf(location.FileName), "curves.mdb");
  EXPECT_EQ(Text::narrowOf(location.Drive), "d:");
  EXPECT_EQ(Text::narrowOf(location.Extension), ".mdb");
  SysFreeString(location.Drive);
  location.Drive = SysAllocString(L"unchecked");
  EXPECT_EQ(data->put_dbDir(&location), S_OK);
  ::DatabaseLocation read{};
  EXPECT_EQ(data->get_dbDir(&read), S_OK);
  EXPECT_EQ(Text::narrowOf(read.Drive), "unchecked");
  EXPECT_EQ(Text::narrowOf(read.FileName), "curves.mdb");
  EXPECT_EQ(data->put_dbDir(nullptr), E_POINTER);
  EXPECT_EQ(data->get_dbDir(nullptr), E_POINTER);
}

TEST_F(early_members, tell_the_folder_of_the_library) {
  Text path;
  EXPECT_EQ(data->Path(path), S_OK);
  EXPECT_EQ(std::filesystem::path(path.get()), std::filesystem::current_path());
}

TEST_F(early_members, look_meters_up) {
  storeSeries();
  ::MeterInfo found{}, bare{}, last{}, missing{};
  EXPECT_EQ(data->findMeterInfo(meter, nullptr, &latest, series, &found), S_OK);
  EXPECT_EQ(found.Source, 1);
  EXPECT_EQ(Text::narrowOf(found.SerialNumber), mainJobMeter);
  ASSERT_NE(entryOf(found), nullptr);
  EXPECT_EQ(Text::narrowOf(entryOf(found)->SeriesName), mainJobSeries);
  EXPECT_NE(entryOf(found)->SeriesID, 0);
  EXPECT_EQ(data->findMeterInfo(meter, nullptr, nullptr, nullptr, &bare), S_OK);
  EXPECT_EQ(bare.MeterID, found.MeterID);
  EXPECT_EQ(bare.Series, nullptr);
  IDispatch* nothing = nullptr;
  EXPECT_EQ(data->FindLastCalID(meter, &nothing, &last), S_OK);
  EXPECT_EQ(last.MeterID, found.MeterID);
  EXPECT_EQ(data->findMeterInfo(Text("unknown"), nullptr, nullptr, nullptr, &missing), S_OK);
  EXPECT_EQ(missing.Source, -1);
}

TEST_F(early_members, list_meters_series_and_jobs) {
  storeSeries();
  SAFEARRAY* list = nullptr;
  EXPECT_EQ(data->Meters(&isEmpty, &list), S_OK);
  EXPECT_EQ(isEmpty, VARIANT_FALSE);
  EXPECT_EQ(textsOf(list), std::vector<std::string>{mainJobMeter});
  SafeArrayDestroy(list);
  EXPECT_EQ(data->Meters(nullptr, &list), S_OK);
  SafeArrayDestroy(list);

  EXPECT_EQ(data->Series(meter, nullptr, &list), S_OK);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(SafeArrayGetDim(list), 2U);
  LONG columns = -1, rows = -1;
  SafeArrayGetUBound(list, 1, &columns);
  SafeArrayGetUBound(list, 2, &rows);
  EXPECT_EQ(columns, 1);
  EXPECT_EQ(rows, 0);
  LONG at[2] = {1, 0};
  VARIANT name{};
  SafeArrayGetElement(list, at, &name);
  EXPECT_EQ(Text::narrowOf(name.bstrVal), mainJobSeries);
  VariantClear(&name);
  SafeArrayDestroy(list);

  SAFEARRAY* numbers = nullptr;
  EXPECT_EQ(data->MetersAdjusted(meter, &isEmpty, &numbers, &list), S_OK);
  EXPECT_EQ(isEmpty, VARIANT_FALSE);
  EXPECT_EQ(textsOf(list), std::vector<std::string>{mainJobMeter});
  ASSERT_NE(numbers, nullptr);
  LONG first = -1, lastIndex = -1;
  short number = -1;
  SafeArrayGetLBound(numbers, 1, &first);
  SafeArrayGetUBound(numbers, 1, &lastIndex);
  SafeArrayGetElement(numbers, &first, &number);
  EXPECT_EQ(first, 0);
  EXPECT_EQ(lastIndex, 0);
  EXPECT_EQ(number, 0);
  SafeArrayDestroy(numbers);
  SafeArrayDestroy(list);

  BoxAnswerer boxes;
  EXPECT_EQ(data->getJobID(meter, &latest, &list), S_OK);
  EXPECT_EQ(textsOf(list), std::vector<std::string>{""});  // the join has one row, without a job
  SafeArrayDestroy(list);
}

TEST_F(early_members, register_meters_and_write_the_adjusted_number_back) {
  useNewDatabase();
  LONG first = 0, second = 0;
  Text adjusted;
  EXPECT_EQ(data->setMeterSN(meter, adjusted, &first), S_OK);
  EXPECT_EQ(adjusted.narrow(), mainJobMeter);
  EXPECT_EQ(data->setMeterSN(meter, nullptr, &second), S_OK);
  EXPECT_GT(second, first);
  ::MeterInfo last{};
  EXPECT_EQ(data->FindLastCalID(meter, nullptr, &last), S_OK);
  EXPECT_EQ(last.ReCalID, 1);
}

TEST_F(early_members, read_raw_parts_back) {
  storeSeries();
  ::MeterInfo info{};
  short first = 1;
  EXPECT_EQ(data->GetRaw(series, meter, &first, nullptr, nullptr, &info), S_OK);
  ASSERT_NE(entryOf(info), nullptr);
  EXPECT_EQ(pointsOf(entryOf(info)->Raw[0].Points), mainJobPoints());
  EXPECT_EQ(entryOf(info)->Raw[1].Points, nullptr);
}

TEST_F(early_members, store_fitted_points_and_read_them_in_both_forms) {
  storeSeries();
  SAFEARRAY* merged = arrayOf({{1, 10}, {2, 20}, {3, 30}});
  SAFEARRAY* fitted = arrayOf({{1, 11}, {2, 21}});
  EXPECT_EQ(data->SetFitted(series, meter, &merged, &fitted, Text("a report"), &no, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  SafeArrayDestroy(merged);
  SafeArrayDestroy(fitted);
  ::MeterInfo curve{}, compact{}, all{};
  EXPECT_EQ(data->getFittedCurve(series, meter, nullptr, nullptr, nullptr, &curve), S_OK);
  ASSERT_NE(entryOf(curve), nullptr);
  EXPECT_EQ(pointsOf(entryOf(curve)->Fitted), (Points{{1, 11}, {2, 21}}));
  EXPECT_EQ(data->getFittedCurve(series, meter, nullptr, nullptr, &yes, &compact), S_OK);
  ASSERT_NE(entryOf(compact), nullptr);
  EXPECT_EQ(entryOf(compact)->RoshkoFirst.First[1], 2.0F);
  EXPECT_EQ(entryOf(compact)->RoshkoFirst.Second[1], 21.0F);
  EXPECT_EQ(entryOf(compact)->RoshkoFirst.First[2], 0.0F);
  EXPECT_EQ(data->GetAllInfo(series, meter, nullptr, &latest, &no, &all), S_OK);
  ASSERT_NE(entryOf(all), nullptr);
  EXPECT_EQ(pointsOf(entryOf(all)->Merged), (Points{{1, 10}, {2, 20}, {3, 30}}));
  EXPECT_EQ(Text::narrowOf(entryOf(all)->Summary), "a report");
}

TEST_F(early_members, delete_a_series) {
  storeSeries();
  EXPECT_EQ(data->DeleteSeries(meter, series, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  ::MeterInfo info{};
  EXPECT_EQ(data->findMeterInfo(meter, nullptr, nullptr, series, &info), S_OK);
  EXPECT_EQ(info.Series, nullptr);
}

TEST_F(early_members, have_no_arrays_before_a_fit) {
  SAFEARRAY* array = nullptr;
  EXPECT_EQ(data->get_LastMergedArray(&array), S_OK);
  EXPECT_EQ(array, nullptr);
  EXPECT_EQ(data->get_LastFittedArray(&array), S_OK);
  EXPECT_EQ(array, nullptr);
}

TEST_F(early_members, report_the_error_of_sorting_nothing) {
  ISupportErrorInfo* support = nullptr;
  ASSERT_EQ(data->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&support)), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID__RawData), S_OK);
  EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
  support->Release();
  EXPECT_EQ(data->LastFittedRatioSort(&answer), static_cast<HRESULT>(0x800A0009));
  IErrorInfo* error = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &error), S_OK);
  Text source, description;
  GUID about{};
  error->GetSource(source);
  error->GetDescription(description);
  error->GetGUID(&about);
  error->Release();
  EXPECT_EQ(source.narrow(), "Pelmora");
  EXPECT_EQ(description.narrow(), "Subscript out of range");
  EXPECT_TRUE(IsEqualGUID(about, IID__RawData));
}

TEST_F(early_members, read_result_files_of_names_beyond_ascii) {
  const std::filesystem::path file = folder() / L"Z\u00e4hler.prn";
  std::ofstream(file, std::ios::binary) << "head\r\nhead\r\nhead\r\n2 20\r\n1 10\r\n";
  BSTR path = SysAllocString(file.c_str());
  SAFEARRAY* points = nullptr;
  EXPECT_EQ(data->readTCresults(&path, &isEmpty, &points), S_OK);
  EXPECT_EQ(isEmpty, VARIANT_FALSE);
  EXPECT_EQ(pointsOf(points), (Points{{1, 10}, {2, 20}}));
  EXPECT_TRUE(std::filesystem::exists(folder() / L"Z\u00e4hler.prn.sav"));
  SafeArrayDestroy(points);
  BoxAnswerer boxes;
  EXPECT_EQ(data->readTCresults(&path, &isEmpty, &points), S_OK);
  EXPECT_EQ(isEmpty, VARIANT_TRUE);
  EXPECT_EQ(points, nullptr);
  EXPECT_EQ(boxes.lastText(), "File not found");
  SysFreeString(path);
}

TEST_F(early_members, import_result_files_into_the_database) {
  storeSeries();
  const std::filesystem::path file = folder() / "curve.prn";
  std::ofstream(file, std::ios::binary) << "head\r\nhead\r\nhead\r\n2 20\r\n1 10\r\n";
  SAFEARRAY* points = nullptr;
  EXPECT_EQ(data->ImportCurvedData(Text(file.string()), series, meter, &isEmpty, nullptr, &points), S_OK);
  EXPECT_EQ(isEmpty, VARIANT_FALSE);
  EXPECT_EQ(pointsOf(points), (Points{{1, 10}, {2, 20}}));
  SafeArrayDestroy(points);
}

TEST_F(early_members, fit_store_and_sort) {
  storeSeries();
  EXPECT_EQ(data->put_Unattended(VARIANT_TRUE), S_OK);
  EXPECT_EQ(data->put_BandPercent(1.0F), S_OK);
  EXPECT_EQ(data->put_NumberOfFittedPoints(11), S_OK);
  double low = 12, high = 1000;
  SAFEARRAY* fitted = nullptr;
  EXPECT_EQ(data->determineFittedCurve(series, meter, &isEmpty, &low, &high, Text("Roshko"), Text("Strouhal"),
                                       nullptr, nullptr, &fitted), S_OK);
  EXPECT_EQ(isEmpty, VARIANT_FALSE);
  LONG first = -1, last = -1;
  SafeArrayGetLBound(fitted, 1, &first);
  SafeArrayGetUBound(fitted, 1, &last);
  EXPECT_EQ(first, 0);
  EXPECT_EQ(last, 10);
  SafeArrayGetLBound(fitted, 2, &first);
  SafeArrayGetUBound(fitted, 2, &last);
  EXPECT_EQ(first, 0);
  EXPECT_EQ(last, 1);
  SafeArrayDestroy(fitted);
  EXPECT_EQ(data->SetLastFitted(&no, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  EXPECT_EQ(data->LastFittedRatioSort(&answer), S_OK);
  EXPECT_EQ(answer, VARIANT_FALSE);
  SAFEARRAY* sorted = nullptr;
  EXPECT_EQ(data->get_LastFittedArray(&sorted), S_OK);
  const Points points = pointsOf(sorted);
  ASSERT_EQ(points.size(), 11U);
  EXPECT_TRUE(std::is_sorted(points.begin(), points.end(), [](const auto& a, const auto& b) { return a.second > b.second; }));
  SafeArrayDestroy(sorted);
}

TEST_F(early_members, trap_errors_of_stand_operations) {
  useNewDatabase();
  BoxAnswerer boxes;
  LONG setup = 1;
  EXPECT_EQ(data->copyCaldb(&setup, Text("1"), Text("2"), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_FALSE);
  EXPECT_FALSE(boxes.boxes().empty());
  ::MeterInfo info{};
  EXPECT_EQ(data->importCaldb(meter, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                              nullptr, nullptr, nullptr, &info), S_OK);
}

TEST_F(early_members, refuse_arrays_of_another_shape) {
  useNewDatabase();
  SAFEARRAYBOUND bound{3, 0};
  SAFEARRAY* line = SafeArrayCreate(VT_R8, 1, &bound);
  short dataSet = 0;
  EXPECT_EQ(data->SetRaw(series, meter, &line, &dataSet, &no, nullptr, &answer), static_cast<HRESULT>(0x800A000D));
  IErrorInfo* error = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &error), S_OK);
  Text description;
  error->GetDescription(description);
  error->Release();
  EXPECT_NE(description.narrow().find("two-dimensional array of doubles"), std::string::npos);
  SafeArrayDestroy(line);
}

TEST_F(early_members, take_arrays_that_start_elsewhere) {
  useNewDatabase();
  LONG id = 0;
  ASSERT_EQ(data->setMeterSN(meter, nullptr, &id), S_OK);
  SAFEARRAYBOUND bounds[2] = {{2, 1}, {2, 1}};
  SAFEARRAY* table = SafeArrayCreate(VT_R8, 2, bounds);
  for (LONG point = 1; point <= 2; ++point) {
    for (LONG column = 1; column <= 2; ++column) {
      LONG at[2] = {point, column};
      double value = 10.0 * point + column;
      SafeArrayPutElement(table, at, &value);
    }
  }
  short dataSet = 0, first = 1;
  EXPECT_EQ(data->SetRaw(series, meter, &table, &dataSet, &no, nullptr, &answer), S_OK);
  SafeArrayDestroy(table);
  ::MeterInfo info{};
  EXPECT_EQ(data->GetRaw(series, meter, &first, nullptr, nullptr, &info), S_OK);
  ASSERT_NE(entryOf(info), nullptr);
  EXPECT_EQ(pointsOf(entryOf(info)->Raw[0].Points), (Points{{11, 12}, {21, 22}}));
}

}  // namespace
}  // namespace pelmora::test
