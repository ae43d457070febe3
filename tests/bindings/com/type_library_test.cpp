// The published interface, member by member: what hosts are compiled against.
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

#include <map>

namespace pelmora::test {
namespace {

struct Member {
  const char* name;
  const char* kind;
  DISPID id;
  const char* arguments;  // name: type, "?" where optional, "=" its default; "&" by reference
  const char* result;
};

// The interface as it is published. A change of it takes a new identity of _RawData.
const Member members[] = {
    {"DataFitResultDetails", "property", 0x40030000, "value: text", "text"},
    {"NumberOfFittedPoints", "property", 0x40030001, "value: int16", "int16"},
    {"ExternalID", "property", 0x40030002, "value: text", "text"},
    {"Unattended", "property", 0x40030003, "value: boolean", "boolean"},
    {"RatioCurve", "property", 0x40030004, "value: boolean", "boolean"},
    {"IgnoreResiduals", "property", 0x40030005, "value: boolean", "boolean"},
    {"dbDir", "property", 0x68030003, "value: DatabaseLocation&", "DatabaseLocation"},
    {"dbDirSetByString", "method", 0x60030004, "sPath: text&", "DatabaseLocation"},
    {"findMeterInfo", "method", 0x60030005,
     "MeterSN: text&, conn: object&?, ReCalID: int16&?=-1, SeriesName: text&?", "MeterInfo"},
    {"FindLastCalID", "method", 0x60030006, "MeterSN: text&, conn: object&?", "MeterInfo"},
    {"LastMergedArray", "read property", 0x68030002, "", "double()"},
    {"LastFittedArray", "read property", 0x68030001, "", "double()"},
    {"LastFittedRatioSort", "method", 0x60030007, "", "boolean"},
    {"Path", "method", 0x60030008, "", "text"},
    {"Series", "method", 0x60030009, "MeterSN: text&, ReCalID: int16&?=-1", "variant()"},
    {"MetersAdjusted", "method", 0x6003000A,
     "MeterSN: text&, ArrayIsEmpty: boolean&, ReCalID: int16()&", "text()"},
    {"Meters", "method", 0x6003000B, "ArrayIsEmpty: boolean&", "text()"},
    {"DeleteSeries", "method", 0x6003000C, "MeterSN: text&, Series: text&, ReCalID: int16&?=-1",
     "boolean"},
    {"BandPercent", "property", 0x68030000, "value: single&", "single"},
    {"determineFittedCurve", "method", 0x6003000D,
     "SeriesName: text&, MeterSN: text&, ArrayIsEmpty: boolean&, Predicted_Xmin: double&, "
     "Predicted_Xmax: double&, "
     "Label_Xaxis: text&, Label_Yaxis: text&, bInverted: boolean&, ReCalID: int16&?=-1",
     "double()"},
    {"getFittedCurve", "method", 0x6003000E,
     "SeriesName: text&, MeterSN: text&, conn: object&?, ReCalID: int16&?=-1, bDarvellFormat: "
     "boolean&?=0",
     "MeterInfo"},
    {"ImportCurvedData", "method", 0x60030010,
     "sFilepath: text&, SeriesName: text&, MeterSN: text&, ArrayIsEmpty: boolean&, ReCalID: "
     "int16&?=-1",
     "double()"},
    {"readTCresults", "method", 0x60030011, "sResultPath: text&, ArrayIsEmpty: boolean&",
     "double()"},
    {"SetRaw", "method", 0x60030013,
     "SeriesName: text&, MeterSerialNumber: text&, Table: double()&, dataSet: int16&, cleardb: "
     "boolean&, ReCalID: int16&?=-1",
     "boolean"},
    {"setMeterSN", "method", 0x60030014, "MeterSerialNumber: text&, MeterSNAdjusted: text&?",
     "int32"},
    {"SetFitted", "method", 0x60030016,
     "SeriesName: text&, MeterSerialNumber: text&, arMerged: double()&, arFitted: double()&, "
     "Details: text&, "
     "cleardb: boolean&, ReCalID: int16&?=-1",
     "boolean"},
    {"SetLastFitted", "method", 0x60030017, "cleardb: boolean&", "boolean"},
    {"GetRaw", "method", 0x60030018,
     "SeriesName: text&, MeterSN: text&, dataSet: int16&, conn: object&?, ReCalID: int16&?=-1",
     "MeterInfo"},
    {"GetAllInfo", "method", 0x60030019,
     "SeriesName: text&, MeterSN: text&, conn: object&?, ReCalID: int16&?=-1, bDarvellFormat: "
     "boolean&?=0",
     "MeterInfo"},
    {"copyCaldb", "method", 0x6003001E,
     "CalSetupID: int32&, JobID_RawA: text&, JobID_RawB: text&, conn_calDB: object&, Conn_curveDB: "
     "object&",
     "boolean"},
    {"importCaldb", "method", 0x60030023,
     "MeterSN: text&, conn_calDB: object&, JobID_RawA: text()&, JobID_RawB: text()&, FluidName: "
     "text()&, "
     "OperatorName: text()&, Create_RotorA_SumSeries: boolean&?=0, Create_RotorB_SumSeries: "
     "boolean&?=0, "
     "Create_RotorAB_SumSeries: boolean&?=0, Create_Ratio_Series: boolean&?=0, StandID: "
     "int16&?=-1, PositionID: int16&?=-1, "
     "Conn_curveDB: object&?, ReCalID: int16&?=-1",
     "MeterInfo"},
    {"getJobID", "method", 0x60030024, "MeterSN: text&, ReCalID: int16&?=-1", "text()"},
};

std::string nameOf(ITypeInfo* type, MEMBERID member) {
  Text name;
  type->GetDocumentation(member, name, nullptr, nullptr, nullptr);
  return name.narrow();
}

std::string typeName(ITypeInfo* owner, const TYPEDESC& type) {
  static const std::map<VARTYPE, std::string> names{
      {VT_I2, "int16"},        {VT_I4, "int32"},        {VT_R4, "single"},
      {VT_R8, "double"},       {VT_BSTR, "text"},       {VT_BOOL, "boolean"},
      {VT_VARIANT, "variant"}, {VT_DISPATCH, "object"}, {VT_VOID, "nothing"}};
  if (type.vt == VT_PTR) return typeName(owner, *type.lptdesc) + "&";
  if (type.vt == VT_SAFEARRAY) return typeName(owner, *type.lptdesc) + "()";
  if (type.vt == VT_CARRAY) {
    return typeName(owner, type.lpadesc->tdescElem) + "[" +
           std::to_string(type.lpadesc->rgbounds[0].cElements) + "]";
  }
  if (type.vt == VT_USERDEFINED) {
    ITypeInfo* referred = nullptr;
    owner->GetRefTypeInfo(type.hreftype, &referred);
    const std::string name = nameOf(referred, MEMBERID_NIL);
    referred->Release();
    return name;
  }
  const auto found = names.find(type.vt);
  return found == names.end() ? std::to_string(type.vt) : found->second;
}

class type_library : public testing::Test {
 protected:
  type_library() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    check(LoadTypeLibEx(L"Pelmora.dll", REGKIND_NONE, &types), "LoadTypeLibEx");
  }
  ~type_library() override {
    types->Release();
    CoUninitialize();
  }
  ITypeInfo* typeOf(REFGUID identity) {
    ITypeInfo* type = nullptr;
    check(types->GetTypeInfoOfGuid(identity, &type), "GetTypeInfoOfGuid");
    return type;
  }
  // _RawData by its slots.
  ITypeInfo* slots() {
    ITypeInfo* dispatch = typeOf(IID__RawData);
    HREFTYPE partner = 0;
    check(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &partner), "dual partner");
    ITypeInfo* vtable = nullptr;
    check(dispatch->GetRefTypeInfo(partner, &vtable), "vtable");
    dispatch->Release();
    return vtable;
  }
  ITypeLib* types = nullptr;
};

// One function: "kind name id (arguments) -> result".
std::string describe(ITypeInfo* type, const FUNCDESC& function) {
  BSTR names[20]{};
  UINT count = 0;
  type->GetNames(function.memid, names, 20, &count);
  std::string arguments, result = "nothing";
  for (short i = 0; i < function.cParams; ++i) {
    const ELEMDESC& parameter = function.lprgelemdescParam[i];
    const USHORT flags = parameter.paramdesc.wParamFlags;
    std::string shown = typeName(type, parameter.tdesc);
    if ((flags & PARAMFLAG_FRETVAL) != 0) {
      result = shown.substr(0, shown.size() - 1);
      continue;
    }
    if ((flags & PARAMFLAG_FOPT) != 0) shown += "?";
    if ((flags & PARAMFLAG_FHASDEFAULT) != 0) {
      VARIANT value{};
      VariantChangeType(&value, &parameter.paramdesc.pparamdescex->varDefaultValue, 0, VT_I4);
      shown += "=" + std::to_string(value.lVal);
    }
    const bool isNamed = function.invkind == INVOKE_FUNC && i + 1 < static_cast<short>(count);
    const std::string name = isNamed ? Text::narrowOf(names[i + 1]) : "value";
    arguments += (arguments.empty() ? "" : ", ") + name + ": " + shown;
  }
  const std::string head = Text::narrowOf(names[0]);
  for (UINT i = 0; i < count; ++i) SysFreeString(names[i]);
  const char* kind = function.invkind == INVOKE_PROPERTYGET   ? "get "
                     : function.invkind == INVOKE_PROPERTYPUT ? "put "
                                                              : "call ";
  return kind + head + " " + std::to_string(function.memid) + " (" + arguments + ") -> " + result;
}

std::vector<std::string> expectedFunctions() {
  std::vector<std::string> lines;
  for (const Member& member : members) {
    const std::string id = std::string(member.name) + " " + std::to_string(member.id) + " (";
    const std::string kind = member.kind;
    if (kind == "method") {
      lines.push_back("call " + id + member.arguments + ") -> " + member.result);
      continue;
    }
    lines.push_back("get " + id + ") -> " + member.result);
    if (kind == "property") lines.push_back("put " + id + member.arguments + ") -> nothing");
  }
  return lines;
}

TEST_F(type_library, lists_32_members_in_order_with_their_identities) {
  ITypeInfo* face = slots();
  std::vector<std::string> lines;
  FUNCDESC* function = nullptr;
  for (UINT i = 0; SUCCEEDED(face->GetFuncDesc(i, &function)); ++i) {
    EXPECT_EQ(function->callconv, CC_STDCALL);
    // Seven slots of IDispatch come first.
    EXPECT_EQ(function->oVft, static_cast<SHORT>((i + 7) * sizeof(void*)));
    lines.push_back(describe(face, *function));
    face->ReleaseFuncDesc(function);
  }
  face->Release();
  EXPECT_EQ(lines, expectedFunctions());
  EXPECT_EQ(std::size(members), 32U);
}

TEST_F(type_library, helps_with_every_member) {
  ITypeInfo* face = slots();
  FUNCDESC* function = nullptr;
  for (UINT i = 0; SUCCEEDED(face->GetFuncDesc(i, &function)); ++i) {
    Text help;
    face->GetDocumentation(function->memid, nullptr, help, nullptr, nullptr);
    EXPECT_FALSE(help.narrow().empty()) << nameOf(face, function->memid);
    face->ReleaseFuncDesc(function);
  }
  face->Release();
}

TEST_F(type_library, describes_the_two_events) {
  ITypeInfo* events = typeOf(DIID___RawData);
  std::vector<std::string> lines;
  FUNCDESC* function = nullptr;
  for (UINT i = 0; SUCCEEDED(events->GetFuncDesc(i, &function)); ++i) {
    lines.push_back(describe(events, *function));
    events->ReleaseFuncDesc(function);
  }
  events->Release();
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "call FittingProgress 1 (finishedStep: int16&, maxSteps: int16&) -> nothing",
                       "call StatusUpdate 2 (sMessage: text&) -> nothing"}));
}

TEST_F(type_library, describes_the_records) {
  const auto fields = [&](const wchar_t* name) {
    auto* wanted = const_cast<LPOLESTR>(name);
    ITypeInfo* type = nullptr;
    MEMBERID member = 0;
    USHORT found = 1;
    types->FindName(wanted, 0, &type, &member, &found);
    std::string text;
    VARDESC* field = nullptr;
    for (UINT i = 0; found == 1 && SUCCEEDED(type->GetVarDesc(i, &field)); ++i) {
      text += (text.empty() ? "" : ", ") + nameOf(type, field->memid) + ": " +
              typeName(type, field->elemdescVar.tdesc);
      type->ReleaseVarDesc(field);
    }
    if (type != nullptr) type->Release();
    return text;
  };
  EXPECT_EQ(fields(L"DatabaseLocation"),
            "FullPath: text, Folder: text, FileName: text, Drive: text, Extension: text");
  EXPECT_EQ(fields(L"RawSlot"), "Points: double()");
  EXPECT_EQ(fields(L"FixedCurve40"), "First: single[40], Second: single[40]");
  EXPECT_EQ(
      fields(L"SeriesInfo"),
      "SeriesName: text, SeriesID: int32, Raw: RawSlot[4], Merged: double(), Fitted: double(), "
      "RoshkoFirst: FixedCurve40, StrouhalFirst: FixedCurve40, Summary: text");
  EXPECT_EQ(fields(L"MeterInfo"),
            "Source: int32, MeterID: int32, ReCalID: int16, SerialNumber: text, "
            "SerialNumberAdjusted: text, "
            "Series: SeriesInfo()");
}

TEST_F(type_library, says_which_interfaces_the_class_has) {
  ITypeInfo* coclass = typeOf(CLSID_RawData);
  std::vector<std::pair<std::string, INT>> implemented;
  TYPEATTR* attributes = nullptr;
  coclass->GetTypeAttr(&attributes);
  for (UINT i = 0; i < attributes->cImplTypes; ++i) {
    HREFTYPE reference = 0;
    INT flags = 0;
    ITypeInfo* face = nullptr;
    coclass->GetRefTypeOfImplType(i, &reference);
    coclass->GetImplTypeFlags(i, &flags);
    coclass->GetRefTypeInfo(reference, &face);
    implemented.emplace_back(nameOf(face, MEMBERID_NIL), flags);
    face->Release();
  }
  coclass->ReleaseTypeAttr(attributes);
  coclass->Release();
  EXPECT_EQ(implemented, (std::vector<std::pair<std::string, INT>>{
                             {"_RawData", IMPLTYPEFLAG_FDEFAULT},
                             {"__RawData", IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE}}));
}

}  // namespace
}  // namespace pelmora::test
