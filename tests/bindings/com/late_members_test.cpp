// Every member by name, as scripts call: arguments left out, by reference, of other types, and
// wrong ones. SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

#include <fstream>

namespace pelmora::test {
namespace {

using late_members = ComponentTest;

std::string textFrom(Outcome outcome) {
  const std::string text =
      outcome.result.vt == VT_BSTR ? Text::narrowOf(outcome.result.bstrVal) : "no text";
  VariantClear(&outcome.result);
  return text;
}
SAFEARRAY* seriesOf(const Outcome& outcome) {
  auto* field = fieldOf<SAFEARRAY*>(outcome.result, L"Series");
  return field == nullptr ? nullptr : *field;
}
VARIANT variantTable(const Points& points) {
  SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(points.size()), 0}, {2, 0}};
  SAFEARRAY* array = SafeArrayCreate(VT_VARIANT, 2, bounds);
  for (std::size_t i = 0; i < points.size(); ++i) {
    LONG at[2] = {static_cast<LONG>(i), 0};
    VARIANT x = variantOf(points[i].first), y = variantOf(points[i].second);
    SafeArrayPutElement(array, at, &x);
    at[1] = 1;
    SafeArrayPutElement(array, at, &y);
  }
  return variantOf(array, VT_VARIANT);
}

TEST_F(late_members, convert_what_properties_are_set_to) {
  EXPECT_EQ(late().put(L"NumberOfFittedPoints", variantOf("25")).code, S_OK);
  EXPECT_EQ(late().get(L"NumberOfFittedPoints").result.iVal, 25);
  EXPECT_EQ(late().put(L"BandPercent", variantOf(0.5)).code, S_OK);
  EXPECT_EQ(late().get(L"BandPercent").result.fltVal, 0.5F);
  float band = 0.25F;
  EXPECT_EQ(late().put(L"BandPercent", referenceTo(VT_R4, &band)).code, S_OK);
  EXPECT_EQ(late().get(L"BandPercent").result.fltVal, 0.25F);
  for (const wchar_t* flag : {L"Unattended", L"RatioCurve", L"IgnoreResiduals"}) {
    EXPECT_EQ(late().put(flag, variantOf(1)).code, S_OK);
    EXPECT_EQ(late().get(flag).result.boolVal, VARIANT_TRUE);
  }
  for (const wchar_t* text : {L"ExternalID", L"DataFitResultDetails"}) {
    EXPECT_EQ(late().put(text, variantOf(12)).code, S_OK);
    EXPECT_EQ(textFrom(late().get(text)), "12");
  }
}

TEST_F(late_members, refuse_what_cannot_be_converted) {
  const Outcome wrong = late().put(L"NumberOfFittedPoints", variantOf("many"));
  EXPECT_EQ(wrong.code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(wrong.wrongArgument, 0U);
  EXPECT_EQ(late().put(L"NumberOfFittedPoints", variantOf(40'000)).code, DISP_E_OVERFLOW);
  const Outcome third = late().call(
      L"SetRaw",
      {variantOf("s"), variantOf("m"), variantOf("no array"), variantOf(0), variantOf(false)});
  EXPECT_EQ(third.code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(third.wrongArgument, 2U);  // counted from the last one
  EXPECT_EQ(late().put(L"dbDir", variantOf("c:\\x.mdb")).code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(late().call(L"findMeterInfo", {variantOf("m"), variantOf(3)}).code,
            DISP_E_TYPEMISMATCH);
}

TEST_F(late_members, refuse_too_many_and_too_few_arguments) {
  EXPECT_EQ(late().call(L"Path", {variantOf(1)}).code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(late().call(L"SetLastFitted").code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(late().call(L"SetLastFitted", {leftOut()}).code, DISP_E_PARAMNOTOPTIONAL);
  EXPECT_EQ(late().call(L"startFit").code, DISP_E_UNKNOWNNAME);
  EXPECT_EQ(late().put(L"LastFittedArray", variantOf(1)).code, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(late().get(L"SetRaw").code, DISP_E_MEMBERNOTFOUND);
}

TEST_F(late_members, take_the_location_as_a_record) {
  const Outcome split = late().call(L"dbDirSetByString", {variantOf("d:\\curves.mdb")});
  ASSERT_EQ(split.code, S_OK);
  ASSERT_NE(fieldOf<BSTR>(split.result, L"Extension"), nullptr);
  EXPECT_EQ(Text::narrowOf(*fieldOf<BSTR>(split.result, L"Extension")), ".mdb");
  BSTR* drive = fieldOf<BSTR>(split.result, L"Drive");
  SysFreeString(*drive);
  *drive = SysAllocString(L"x:");
  EXPECT_EQ(late().put(L"dbDir", split.result).code, S_OK);
  const Outcome read = late().get(L"dbDir");
  ASSERT_EQ(read.code, S_OK);
  EXPECT_EQ(Text::narrowOf(*fieldOf<BSTR>(read.result, L"Drive")), "x:");
  EXPECT_EQ(Text::narrowOf(*fieldOf<BSTR>(read.result, L"FullPath")), "d:\\curves.mdb");
}

TEST_F(late_members, take_arguments_by_name) {
  storeSeries();
  auto* names = const_cast<LPOLESTR>(L"findMeterInfo");
  LPOLESTR wanted[] = {names, const_cast<LPOLESTR>(L"SeriesName"),
                       const_cast<LPOLESTR>(L"MeterSN")};
  DISPID ids[3]{};
  ASSERT_EQ(data->GetIDsOfNames(IID_NULL, wanted, 3, LOCALE_USER_DEFAULT, ids), S_OK);
  VARIANT given[2] = {variantOf(mainJobSeries), variantOf(mainJobMeter)};
  DISPPARAMS parameters{given, ids + 1, 2, 2};
  VARIANT result{};
  ASSERT_EQ(data->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                         &result, nullptr, nullptr),
            S_OK);
  EXPECT_NE(*fieldOf<SAFEARRAY*>(result, L"Series"), nullptr);
  for (VARIANT& argument : given) VariantClear(&argument);
}

TEST_F(late_members, look_meters_up_with_arguments_left_out) {
  storeSeries();
  const Outcome bare = late().call(L"findMeterInfo", {variantOf(mainJobMeter)});
  ASSERT_EQ(bare.code, S_OK);
  EXPECT_EQ(*fieldOf<LONG>(bare.result, L"Source"), 1);
  EXPECT_EQ(seriesOf(bare), nullptr);
  const Outcome named = late().call(
      L"findMeterInfo", {variantOf(mainJobMeter), leftOut(), leftOut(), variantOf(mainJobSeries)});
  ASSERT_EQ(named.code, S_OK);
  EXPECT_NE(seriesOf(named), nullptr);
  VARIANT nothing{};
  nothing.vt = VT_DISPATCH;
  const Outcome last = late().call(L"FindLastCalID", {variantOf(mainJobMeter), nothing});
  ASSERT_EQ(last.code, S_OK);
  EXPECT_EQ(*fieldOf<LONG>(last.result, L"MeterID"), *fieldOf<LONG>(bare.result, L"MeterID"));
  VARIANT empty{};
  EXPECT_EQ(late().call(L"FindLastCalID", {variantOf(mainJobMeter), empty}).code, S_OK);
}

TEST_F(late_members, write_references_of_every_kind_back) {
  storeSeries();
  VARIANT_BOOL flag = VARIANT_TRUE;
  Outcome meters = late().call(L"Meters", {referenceTo(VT_BOOL, &flag)});
  EXPECT_EQ(flag, VARIANT_FALSE);
  EXPECT_EQ(textsOf(meters.result.parray), std::vector<std::string>{mainJobMeter});
  VariantClear(&meters.result);
  VARIANT script = variantOf(true);
  meters = late().call(L"Meters", {referenceTo(VT_VARIANT, &script)});
  EXPECT_EQ(script.vt, VT_BOOL);
  EXPECT_EQ(script.boolVal, VARIANT_FALSE);
  VariantClear(&meters.result);
  LONG wide = 1;
  meters = late().call(L"Meters", {referenceTo(VT_I4, &wide)});
  EXPECT_EQ(wide, 0);
  VariantClear(&meters.result);
  short small = 7;
  Outcome unchanged = late().call(L"Series", {variantOf(mainJobMeter), referenceTo(VT_I2, &small)});
  EXPECT_EQ(small, 7);
  VariantClear(&unchanged.result);
  VARIANT text = variantOf("");
  EXPECT_EQ(late().call(L"setMeterSN", {variantOf("B"), referenceTo(VT_VARIANT, &text)}).code,
            S_OK);
  EXPECT_EQ(Text::narrowOf(text.bstrVal), "B");
  VariantClear(&text);
}

TEST_F(late_members, fill_an_array_by_reference) {
  storeSeries();
  SAFEARRAY* numbers = nullptr;
  VARIANT_BOOL isEmpty = VARIANT_TRUE;
  Outcome typed =
      late().call(L"MetersAdjusted", {variantOf(mainJobMeter), referenceTo(VT_BOOL, &isEmpty),
                                      referenceTo(VT_ARRAY | VT_I2, &numbers)});
  ASSERT_EQ(typed.code, S_OK);
  ASSERT_NE(numbers, nullptr);
  VARTYPE kind = VT_EMPTY;
  SafeArrayGetVartype(numbers, &kind);
  EXPECT_EQ(kind, VT_I2);
  SafeArrayDestroy(numbers);
  VariantClear(&typed.result);
  VARIANT script{};
  Outcome loose = late().call(
      L"MetersAdjusted",
      {variantOf(mainJobMeter), referenceTo(VT_BOOL, &isEmpty), referenceTo(VT_VARIANT, &script)});
  ASSERT_EQ(loose.code, S_OK);
  ASSERT_EQ(script.vt, VT_ARRAY | VT_VARIANT);
  LONG first = 0;
  VARIANT number{};
  SafeArrayGetElement(script.parray, &first, &number);
  EXPECT_EQ(number.vt, VT_I2);
  EXPECT_EQ(number.iVal, 0);
  VariantClear(&script);
  VariantClear(&loose.result);
}

TEST_F(late_members, take_arrays_of_variants) {
  storeSeries();
  const Points points{{1, 10}, {2, 20}, {3, 30}};
  EXPECT_EQ(
      late()
          .call(L"SetRaw", {variantOf(mainJobSeries), variantOf(mainJobMeter), variantTable(points),
                            variantOf(1), variantOf(false), variantOf(-1)})
          .result.boolVal,
      VARIANT_TRUE);
  VARIANT table = variantTable({{4, 40}, {5, 50}});
  EXPECT_EQ(late()
                .call(L"SetFitted", {variantOf(mainJobSeries), variantOf(mainJobMeter),
                                     referenceTo(VT_VARIANT, &table),
                                     referenceTo(VT_ARRAY | VT_VARIANT, &table.parray),
                                     variantOf("r"), variantOf(false)})
                .result.boolVal,
            VARIANT_TRUE);
  VariantClear(&table);
  const Outcome raw =
      late().call(L"GetRaw", {variantOf(mainJobSeries), variantOf(mainJobMeter), variantOf(2)});
  ASSERT_NE(seriesOf(raw), nullptr);
  EXPECT_EQ(pointsOf(static_cast<::SeriesInfo*>(seriesOf(raw)->pvData)->Raw[1].Points), points);
  const Outcome all = late().call(L"GetAllInfo", {variantOf(mainJobSeries), variantOf(mainJobMeter),
                                                  leftOut(), leftOut(), leftOut()});
  ASSERT_NE(seriesOf(all), nullptr);
  EXPECT_EQ(pointsOf(static_cast<::SeriesInfo*>(seriesOf(all)->pvData)->Fitted),
            (Points{{4, 40}, {5, 50}}));
}

TEST_F(late_members, refuse_variants_that_are_no_numbers) {
  VARIANT table = variantTable({{1, 10}});
  LONG at[2] = {0, 1};
  VARIANT word = variantOf("ten");
  SafeArrayPutElement(table.parray, at, &word);
  VariantClear(&word);
  EXPECT_EQ(
      late()
          .call(L"SetRaw", {variantOf("s"), variantOf("m"), table, variantOf(0), variantOf(false)})
          .code,
      DISP_E_TYPEMISMATCH);
}

TEST_F(late_members, return_errors_with_their_texts) {
  const Outcome sort = late().call(L"LastFittedRatioSort");
  EXPECT_EQ(sort.code, DISP_E_EXCEPTION);
  EXPECT_EQ(sort.error, static_cast<SCODE>(0x800A0009));
  EXPECT_EQ(sort.source, "Pelmora");
  EXPECT_EQ(sort.description, "Subscript out of range");
}

TEST_F(late_members, return_arrays_without_bounds_as_such) {
  for (const wchar_t* name : {L"LastMergedArray", L"LastFittedArray"}) {
    const Outcome outcome = late().get(name);
    EXPECT_EQ(outcome.code, S_OK);
    EXPECT_EQ(outcome.result.vt, VT_ARRAY | VT_R8);
    EXPECT_EQ(outcome.result.parray, nullptr);
  }
}

TEST_F(late_members, do_the_rest_of_the_work) {
  storeSeries();
  EXPECT_EQ(textFrom(late().call(L"Path")), std::filesystem::current_path().string());
  Outcome series = late().call(L"Series", {variantOf(mainJobMeter)});
  EXPECT_EQ(series.result.vt, VT_ARRAY | VT_VARIANT);
  VariantClear(&series.result);
  const std::filesystem::path file = folder() / "curve.prn";
  std::ofstream(file, std::ios::binary) << "head\r\nhead\r\nhead\r\n2 20\r\n1 10\r\n";
  VARIANT_BOOL isEmpty = VARIANT_TRUE;
  Outcome imported =
      late().call(L"ImportCurvedData", {variantOf(file.string().c_str()), variantOf(mainJobSeries),
                                        variantOf(mainJobMeter), referenceTo(VT_BOOL, &isEmpty)});
  EXPECT_EQ(isEmpty, VARIANT_FALSE);
  EXPECT_EQ(pointsOf(imported.result.parray).size(), 2U);
  VariantClear(&imported.result);
  EXPECT_EQ(late()
                .call(L"DeleteSeries", {variantOf(mainJobMeter), variantOf(mainJobSeries)})
                .result.boolVal,
            VARIANT_TRUE);
}

TEST_F(late_members, trap_errors_as_the_members_do) {
  useNewDatabase();
  BoxAnswerer boxes;
  VARIANT_BOOL isEmpty = VARIANT_FALSE;
  EXPECT_EQ(late()
                .call(L"readTCresults", {variantOf("c:\\none.prn"), referenceTo(VT_BOOL, &isEmpty)})
                .code,
            S_OK);
  EXPECT_EQ(isEmpty, VARIANT_TRUE);
  EXPECT_EQ(boxes.lastText(), "File not found");
  VARIANT none{};
  EXPECT_EQ(late()
                .call(L"copyCaldb", {variantOf(1), variantOf("a"), variantOf("b"), none, none})
                .result.boolVal,
            VARIANT_FALSE);
  EXPECT_EQ(late().call(L"importCaldb", {variantOf("m"), none, none, none, none, none}).code, S_OK);
  EXPECT_EQ(late().call(L"getJobID", {variantOf("m")}).code, S_OK);
}

}  // namespace
}  // namespace pelmora::test
