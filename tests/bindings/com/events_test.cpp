// Events: they reach every sink, and what sinks do comes back.
// SPDX-License-Identifier: MIT
#include "tests/bindings/com/component.h"

namespace pelmora::test {
namespace {

class events : public ComponentTest {
 protected:
  void sendStatus() {
    BoxAnswerer boxes;
    VARIANT_BOOL isEmpty = VARIANT_TRUE;
    SAFEARRAY* points = nullptr;
    EXPECT_EQ(data->readTCresults(Text("c:\\none.prn"), &isEmpty, &points), S_OK);
  }
};

TEST_F(events, reach_every_sink_in_order) {
  std::string heard;
  Sink first, second;
  first.handler = [&](DISPID event, DISPPARAMS& arguments, EXCEPINFO*) {
    EXPECT_EQ(event, 2);
    EXPECT_EQ(arguments.cArgs, 1U);
    EXPECT_EQ(arguments.rgvarg[0].vt, VT_BYREF | VT_BSTR);
    heard += "1" + Text::narrowOf(*arguments.rgvarg[0].pbstrVal);
    return S_OK;
  };
  second.handler = [&](DISPID, DISPPARAMS&, EXCEPINFO*) { return heard += "2", S_OK; };
  {
    const Connected one(data, first), two(data, second);
    sendStatus();
  }
  EXPECT_EQ(heard, "1Missing file to read fitted data: c:\\none.prn2");
  sendStatus();
  EXPECT_EQ(heard, "1Missing file to read fitted data: c:\\none.prn2");
  EXPECT_EQ(first.references, 1U);
  EXPECT_EQ(second.references, 1U);
}

TEST_F(events, may_get_another_text_by_reference) {
  Sink sink;
  std::string then;
  sink.handler = [&](DISPID, DISPPARAMS& arguments, EXCEPINFO*) {
    SysFreeString(*arguments.rgvarg[0].pbstrVal);
    *arguments.rgvarg[0].pbstrVal = SysAllocString(L"mine");
    return S_OK;
  };
  Sink after;
  after.handler = [&](DISPID, DISPPARAMS& arguments, EXCEPINFO*) {
    then = Text::narrowOf(*arguments.rgvarg[0].pbstrVal);
    return S_OK;
  };
  const Connected one(data, sink), two(data, after);
  sendStatus();
  EXPECT_EQ(then, "mine");
}

TEST_F(events, bring_a_handlers_error_into_the_operations_trap) {
  Sink sink;
  sink.handler = [&](DISPID, DISPPARAMS&, EXCEPINFO* exception) {
    exception->scode = static_cast<SCODE>(0x800A000B);
    exception->bstrSource = SysAllocString(L"Host");
    exception->bstrDescription = SysAllocString(L"the host's own trouble");
    return DISP_E_EXCEPTION;
  };
  const Connected connected(data, sink);
  BoxAnswerer boxes;
  VARIANT_BOOL isEmpty = VARIANT_TRUE;
  SAFEARRAY* points = nullptr;
  EXPECT_EQ(data->readTCresults(Text("c:\\none.prn"), &isEmpty, &points), S_OK);
  EXPECT_EQ(boxes.lastText(), "Error in RawData:readTCresults\r\nthe host's own trouble");
}

TEST_F(events, need_not_be_handled) {
  Sink sink;
  sink.handler = [](DISPID, DISPPARAMS&, EXCEPINFO*) { return DISP_E_MEMBERNOTFOUND; };
  const Connected connected(data, sink);
  BoxAnswerer boxes;
  VARIANT_BOOL isEmpty = VARIANT_TRUE;
  SAFEARRAY* points = nullptr;
  EXPECT_EQ(data->readTCresults(Text("c:\\none.prn"), &isEmpty, &points), S_OK);
  EXPECT_EQ(boxes.lastText(), "File not found");
}

TEST_F(events, let_a_handler_disconnect_and_release_the_object) {
  Sink sink;
  IConnectionPointContainer* container = nullptr;
  IConnectionPoint* point = nullptr;
  ASSERT_EQ(
      data->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container)),
      S_OK);
  ASSERT_EQ(container->FindConnectionPoint(DIID___RawData, &point), S_OK);
  container->Release();
  DWORD cookie = 0;
  ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
  sink.handler = [&](DISPID, DISPPARAMS&, EXCEPINFO*) {
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    point->Release();
    data->Release();
    return S_OK;
  };
  BoxAnswerer boxes;
  VARIANT_BOOL isEmpty = VARIANT_TRUE;
  SAFEARRAY* points = nullptr;
  EXPECT_EQ(data->readTCresults(Text("c:\\none.prn"), &isEmpty, &points), S_OK);
  data = nullptr;
  EXPECT_TRUE(library.canUnload());
  EXPECT_EQ(sink.references, 1U);
}

TEST_F(events, come_from_a_point_that_describes_itself) {
  IConnectionPointContainer* container = nullptr;
  ASSERT_EQ(
      data->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container)),
      S_OK);
  IConnectionPoint* none = nullptr;
  EXPECT_EQ(container->FindConnectionPoint(IID__RawData, &none), static_cast<HRESULT>(0x80040200));
  IEnumConnectionPoints* points = nullptr;
  ASSERT_EQ(container->EnumConnectionPoints(&points), S_OK);
  IConnectionPoint* point = nullptr;
  ULONG fetched = 0;
  ASSERT_EQ(points->Next(1, &point, &fetched), S_OK);
  IConnectionPoint* beyond = nullptr;
  EXPECT_EQ(points->Next(1, &beyond, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 0U);
  points->Release();
  IID identity{};
  EXPECT_EQ(point->GetConnectionInterface(&identity), S_OK);
  EXPECT_TRUE(IsEqualIID(identity, DIID___RawData));
  DWORD cookie = 0;
  Sink sink;
  EXPECT_EQ(point->Unadvise(17), static_cast<HRESULT>(0x80040200));
  ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
  IEnumConnections* connections = nullptr;
  ASSERT_EQ(point->EnumConnections(&connections), S_OK);
  CONNECTDATA connection{};
  ASSERT_EQ(connections->Next(1, &connection, &fetched), S_OK);
  EXPECT_EQ(connection.dwCookie, cookie);
  connection.pUnk->Release();
  connections->Release();
  EXPECT_EQ(point->Unadvise(cookie), S_OK);
  point->Release();
  container->Release();
  IProvideClassInfo2* info = nullptr;
  ASSERT_EQ(data->QueryInterface(IID_IProvideClassInfo2, reinterpret_cast<void**>(&info)), S_OK);
  GUID source{};
  EXPECT_EQ(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source), S_OK);
  EXPECT_TRUE(IsEqualGUID(source, DIID___RawData));
  ITypeInfo* type = nullptr;
  ASSERT_EQ(info->GetClassInfo(&type), S_OK);
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
  EXPECT_TRUE(IsEqualGUID(attributes->guid, CLSID_RawData));
  type->ReleaseTypeAttr(attributes);
  type->Release();
  info->Release();
}

}  // namespace
}  // namespace pelmora::test
