// Points through the slots of the interface: stored, read back, fitted, from files.
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

#include <algorithm>
#include <fstream>

namespace pelmora::test {
namespace {

class early_points : public ComponentTest {
 protected:
  Text meter{mainJobMeter}, series{mainJobSeries};
  VARIANT_BOOL yes = VARIANT_TRUE, no = VARIANT_FALSE, answer = VARIANT_FALSE,
               isEmpty = VARIANT_TRUE;
  short latest = -1;
};

TEST_F(early_points, read_raw_parts_back) {
  storeSeries();
  ::MeterInfo info{};
  short first = 1;
  EXPECT_EQ(data->GetRaw(series, meter, &first, nullptr, nullptr, &info), S_OK);
  ASSERT_NE(entryOf(info), nullptr);
  EXPECT_EQ(pointsOf(entryOf(info)->Raw[0].Points), mainJobPoints());
  EXPECT_EQ(entryOf(info)->Raw[1].Points, nullptr);
}

TEST_F(early_points, store_fitted_points_and_read_them_in_both_forms) {
  storeSeries();
  SAFEARRAY* merged = arrayOf({{1, 10}, {2, 20}, {3, 30}});
  SAFEARRAY* fitted = arrayOf({{1, 11}, {2, 21}});
  EXPECT_EQ(
      data->SetFitted(series, meter, &merged, &fitted, Text("a report"), &no, nullptr, &answer),
      S_OK);
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

TEST_F(early_points, read_result_files_of_names_beyond_ascii) {
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

TEST_F(early_points, import_result_files_into_the_database) {
  storeSeries();
  const std::filesystem::path file = folder() / "curve.prn";
  std::ofstream(file, std::ios::binary) << "head\r\nhead\r\nhead\r\n2 20\r\n1 10\r\n";
  SAFEARRAY* points = nullptr;
  EXPECT_EQ(data->ImportCurvedData(Text(file.string()), series, meter, &isEmpty, nullptr, &points),
            S_OK);
  EXPECT_EQ(isEmpty, VARIANT_FALSE);
  EXPECT_EQ(pointsOf(points), (Points{{1, 10}, {2, 20}}));
  SafeArrayDestroy(points);
}

TEST_F(early_points, fit_store_and_sort) {
  storeSeries();
  EXPECT_EQ(data->put_Unattended(VARIANT_TRUE), S_OK);
  float band = 1.0F;
  EXPECT_EQ(data->put_BandPercent(&band), S_OK);
  EXPECT_EQ(data->put_NumberOfFittedPoints(11), S_OK);
  double low = 12, high = 1000;
  SAFEARRAY* fitted = nullptr;
  EXPECT_EQ(data->determineFittedCurve(series, meter, &isEmpty, &low, &high, Text("Roshko"),
                                       Text("Strouhal"), nullptr, nullptr, &fitted),
            S_OK);
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
  EXPECT_TRUE(std::is_sorted(points.begin(), points.end(),
                             [](const auto& a, const auto& b) { return a.second > b.second; }));
  SafeArrayDestroy(sorted);
}

TEST_F(early_points, of_another_shape_are_refused_after_the_old_ones_are_deleted) {
  storeSeries();
  SAFEARRAYBOUND bounds[3] = {{3, 0}, {2, 0}, {2, 0}};
  for (const UINT dimensions : {1U, 3U}) {
    SAFEARRAY* array = SafeArrayCreate(VT_R8, dimensions, bounds);
    short dataSet = 0, first = 1;
    BoxAnswerer boxes;
    answer = VARIANT_TRUE;
    EXPECT_EQ(data->SetRaw(series, meter, &array, &dataSet, &no, nullptr, &answer), S_OK);
    EXPECT_EQ(answer, VARIANT_FALSE);
    EXPECT_EQ(boxes.lastText(), "Error in RawData:SetRaw\r\nSubscript out of range");
    ::MeterInfo info{};
    EXPECT_EQ(data->GetRaw(series, meter, &first, nullptr, nullptr, &info), S_OK);
    ASSERT_NE(entryOf(info), nullptr);
    EXPECT_EQ(entryOf(info)->Raw[0].Points, nullptr);
    SafeArrayDestroy(array);
  }
}

TEST_F(early_points, of_another_shape_are_refused_where_a_curve_is_stored) {
  storeSeries();
  SAFEARRAYBOUND bound{3, 0};
  SAFEARRAY* line = SafeArrayCreate(VT_R8, 1, &bound);
  SAFEARRAY* curve = arrayOf({{1, 11}, {2, 21}});
  BoxAnswerer boxes;
  EXPECT_EQ(data->SetFitted(series, meter, &curve, &curve, Text("old"), &no, nullptr, &answer),
            S_OK);
  answer = VARIANT_TRUE;
  EXPECT_EQ(data->SetFitted(series, meter, &curve, &line, Text("new"), &no, nullptr, &answer),
            S_OK);
  EXPECT_EQ(answer, VARIANT_FALSE);
  EXPECT_EQ(boxes.lastText(), "Error in RawData:SetRaw\r\nSubscript out of range");
  ::MeterInfo info{};
  EXPECT_EQ(data->getFittedCurve(series, meter, nullptr, nullptr, nullptr, &info), S_OK);
  ASSERT_NE(entryOf(info), nullptr);
  EXPECT_EQ(entryOf(info)->Fitted, nullptr);
  SafeArrayDestroy(line);
  SafeArrayDestroy(curve);
}

TEST_F(early_points, lists_of_another_shape_end_an_import_in_its_box) {
  useNewDatabase();
  SAFEARRAYBOUND bounds[2] = {{1, 0}, {1, 0}};
  SAFEARRAY* table = SafeArrayCreate(VT_BSTR, 2, bounds);
  SAFEARRAY* list = SafeArrayCreate(VT_BSTR, 1, bounds);
  BoxAnswerer boxes;
  ::MeterInfo info{};
  EXPECT_EQ(data->importCaldb(meter, nullptr, &table, &list, &list, &list, nullptr, nullptr,
                              nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &info),
            S_OK);
  EXPECT_EQ(info.Source, -1);
  ASSERT_EQ(boxes.boxes().size(), 1U);
  EXPECT_EQ(boxes.lastText(), "Error in modFlow:copyCalData \r\nSubscript out of range");
  EXPECT_EQ(boxes.boxes().front().title, "Error Pelmora");
  SafeArrayDestroy(table);
  SafeArrayDestroy(list);
}

TEST_F(early_points, of_another_type_fail_the_call) {
  useNewDatabase();
  SAFEARRAYBOUND bounds[2] = {{3, 0}, {2, 0}};
  SAFEARRAY* line = SafeArrayCreate(VT_R4, 2, bounds);
  short dataSet = 0;
  EXPECT_EQ(data->SetRaw(series, meter, &line, &dataSet, &no, nullptr, &answer),
            static_cast<HRESULT>(0x800A000D));
  IErrorInfo* error = nullptr;
  ASSERT_EQ(GetErrorInfo(0, &error), S_OK);
  Text description;
  error->GetDescription(description);
  error->Release();
  EXPECT_NE(description.narrow().find("two-dimensional array of doubles"), std::string::npos);
  SafeArrayDestroy(line);
}

TEST_F(early_points, take_arrays_that_start_elsewhere) {
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
