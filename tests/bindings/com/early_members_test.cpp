// Every member through its slot, with optional arguments given and left out.
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

namespace pelmora::test {
namespace {

class early_members : public ComponentTest {
 protected:
  Text meter{mainJobMeter}, series{mainJobSeries};
  VARIANT_BOOL yes = VARIANT_TRUE, no = VARIANT_FALSE, answer = VARIANT_FALSE,
               isEmpty = VARIANT_TRUE;
  short latest = -1;
};

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
  band = 0.25F;
  EXPECT_EQ(data->put_BandPercent(&band), S_OK);
  EXPECT_EQ(data->put_BandPercent(nullptr), E_POINTER);
  band = 0;
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

TEST_F(early_members, trap_errors_of_stand_operations) {
  useNewDatabase();
  BoxAnswerer boxes;
  LONG setup = 1;
  EXPECT_EQ(data->copyCaldb(&setup, Text("1"), Text("2"), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_FALSE);
  EXPECT_FALSE(boxes.boxes().empty());
  ::MeterInfo info{};
  EXPECT_EQ(data->importCaldb(meter, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                              nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &info),
            S_OK);
}

}  // namespace
}  // namespace pelmora::test
