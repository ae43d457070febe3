// SPDX-License-Identifier: MIT
#include "tests/bindings/com/ado_double.h"

#include <pelmora/database.h>
#include <pelmora/error.h>

#include <algorithm>

namespace pelmora::test {
namespace {

VARIANT flag(bool value) { return variantOf(value); }
VARIANT object(IDispatch* counted) {
  VARIANT variant{};
  variant.vt = VT_DISPATCH;
  variant.pdispVal = counted;
  return variant;
}
LONG number(VARIANT* value) {
  VARIANT changed{};
  VariantChangeType(&changed, value, 0, VT_I4);
  return changed.lVal;
}
std::string text(VARIANT* value) {
  VARIANT changed{};
  if (FAILED(VariantChangeType(&changed, value, 0, VT_BSTR)))
    return value->vt == VT_NULL ? "null" : "object";
  const std::string narrow = Text::narrowOf(changed.bstrVal);
  VariantClear(&changed);
  return narrow;
}
Value valueOf(VARIANT* value) {
  switch (value->vt) {
    case VT_NULL: return {};
    case VT_BSTR: return Text::narrowOf(value->bstrVal);
    case VT_R8: return value->dblVal;
    default: return std::int64_t{number(value)};
  }
}
VARIANT variantFrom(const Value& value) {
  VARIANT variant{};
  variant.vt = VT_NULL;
  if (const auto* whole = std::get_if<std::int64_t>(&value))
    variant = variantOf(static_cast<int>(*whole));
  if (const auto* real = std::get_if<double>(&value)) variant = variantOf(*real);
  if (const auto* words = std::get_if<std::string>(&value)) variant = variantOf(words->c_str());
  return variant;
}

// A failure that its call does not tell in full.
struct KeptBack {
  HRESULT result;
};

class ListedError : public AdoObject {
 public:
  ListedError(AdoJournal& written, AdoListedError error)
      : AdoObject(written), error_(std::move(error)) {}

 private:
  VARIANT run(const Call& call) override {
    if (call.member == "Number") return variantOf(static_cast<int>(error_.number));
    return variantOf((call.member == "Source" ? error_.source : error_.description).c_str());
  }
  AdoListedError error_;
};

class Errors : public AdoObject {
 public:
  using AdoObject::AdoObject;

 private:
  VARIANT run(const Call& call) override {
    if (call.member == "Count") return variantOf(static_cast<int>(journal.errors.size()));
    const auto at = static_cast<std::size_t>(number(call.arguments[0]));
    return object(new ListedError(journal, journal.errors.at(at)));
  }
};

struct Rows {
  std::unique_ptr<Recordset> set;
  std::vector<std::string> names;
  bool isAdding = false;
  std::map<std::string, Value> added;
};

std::vector<std::string> columnsOf(Connection& connection, const std::string& statement) {
  // The role tells fields by name only, so the known ones are tried.
  const auto set =
      connection.openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
  std::vector<std::string> names(set->fieldCount());
  std::vector<std::string> known{"ID",           "ReCalID",  "SerialNumberAdjusted",
                                 "SerialNumber", "seriesID", "name",
                                 "meterid",      "Roshko",   "Strouhal",
                                 "summary",      "Name",     "JobRecordID"};
  for (int i = 1; i <= 37; ++i) known.push_back("V" + std::to_string(i));
  for (const std::string& name : known) {
    try {
      const std::size_t at = set->fieldIndex(name);
      if (names[at].empty()) names[at] = name;
    } catch (const Error&) {  // not in this statement
    }
  }
  return names;
}

class Field : public AdoObject {
 public:
  Field(AdoJournal& written, std::shared_ptr<Rows> rows, std::size_t index)
      : AdoObject(written), rows_(std::move(rows)), index_(index) {}

 private:
  VARIANT run(const Call& call) override {
    if (call.member == "Name") return variantOf(rows_->names[index_].c_str());
    if (!call.isPut) return variantFrom(rows_->set->value(index_));
    write("Field." + rows_->names[index_] + "=" + text(call.arguments[0]));
    rows_->added[rows_->names[index_]] = valueOf(call.arguments[0]);
    return {};
  }
  std::shared_ptr<Rows> rows_;
  std::size_t index_;
};

class Fields : public AdoObject {
 public:
  Fields(AdoJournal& written, std::shared_ptr<Rows> rows)
      : AdoObject(written), rows_(std::move(rows)) {}

 private:
  VARIANT run(const Call& call) override {
    if (call.member == "Count") return variantOf(static_cast<int>(rows_->names.size()));
    return object(new Field(journal, rows_, static_cast<std::size_t>(number(call.arguments[0]))));
  }
  std::shared_ptr<Rows> rows_;
};

class DoubleRecordset : public AdoObject {
 public:
  using AdoObject::AdoObject;

 private:
  VARIANT run(const Call& call) override {
    if (call.member == "Open") return open(call);
    if (call.member == "Fields") return object(new Fields(journal, rows_));
    if (call.member == "RecordCount") return variantOf(static_cast<int>(rows_->set->recordCount()));
    if (call.member == "EOF") return flag(rows_->set->atEnd());
    if (call.member == "MoveNext") return rows_->set->moveNext(), VARIANT{};
    write("Recordset." + call.member);
    if (call.member == "AddNew") rows_->added.clear();
    if (call.member == "Update") add();
    if (call.member == "UpdateBatch") rows_->set->updateBatch();
    if (call.member == "Requery") rows_->set->requery();
    if (call.member == "Close") rows_->set->close();
    return {};
  }
  VARIANT open(const Call& call) {
    const std::string statement = text(call.arguments[0]);
    write("Recordset.Open " + statement + " | " + text(call.arguments[2]) + " " +
          text(call.arguments[3]));
    const auto& connection =
        static_cast<AdoDoubleConnection*>(call.arguments[1]->pdispVal)->connection();
    rows_->set =
        connection->openRecordset(statement, static_cast<CursorType>(number(call.arguments[2])),
                                  static_cast<LockType>(number(call.arguments[3])));
    rows_->names = columnsOf(*connection, statement);
    return {};
  }
  void add() {
    std::vector<std::string_view> names;
    std::vector<Value> values;
    for (const auto& [name, value] : rows_->added) {
      names.emplace_back(name);
      values.push_back(value);
    }
    rows_->set->addRow(names, values);
  }
  std::shared_ptr<Rows> rows_ = std::make_shared<Rows>();
};

// Makes doubles for CoCreateInstance.
template <class Made>
class Factory : public IClassFactory {
 public:
  explicit Factory(AdoJournal& journal) : journal_(journal) {}
  STDMETHODIMP QueryInterface(REFIID identity, void** found) override {
    *found = nullptr;
    if (!IsEqualIID(identity, IID_IUnknown) && !IsEqualIID(identity, IID_IClassFactory))
      return E_NOINTERFACE;
    *found = this;
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID identity, void** made) override {
    auto* created = new Made(journal_);
    const HRESULT result = created->QueryInterface(identity, made);
    created->Release();
    return result;
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  AdoJournal& journal_;
};

template <class Made>
DWORD enter(const wchar_t* name, AdoJournal& journal) {
  CLSID identity{};
  check(CLSIDFromProgID(name, &identity), "CLSIDFromProgID");
  DWORD cookie = 0;
  // The factory lives as long as the process: the system may hold it.
  check(CoRegisterClassObject(identity, new Factory<Made>(journal), CLSCTX_INPROC_SERVER,
                              REGCLS_MULTIPLEUSE, &cookie),
        "CoRegisterClassObject");
  return cookie;
}

}  // namespace

STDMETHODIMP AdoObject::QueryInterface(REFIID identity, void** found) {
  *found = nullptr;
  if (!IsEqualIID(identity, IID_IUnknown) && !IsEqualIID(identity, IID_IDispatch))
    return E_NOINTERFACE;
  AddRef();
  *found = this;
  return S_OK;
}

STDMETHODIMP_(ULONG) AdoObject::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

STDMETHODIMP AdoObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) {
  const std::wstring wide = names[0];
  const std::string name(wide.begin(), wide.end());
  const auto known = std::ranges::find(names_, name);
  ids[0] = static_cast<DISPID>(known - names_.begin());
  if (known == names_.end()) names_.push_back(name);
  return S_OK;
}

STDMETHODIMP AdoObject::Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* arguments,
                               VARIANT* result, EXCEPINFO* exception, UINT*) {
  Call call{names_.at(static_cast<std::size_t>(member)), (flags & DISPATCH_PROPERTYPUT) != 0, {}};
  for (UINT i = arguments->cArgs; i-- > 0;) call.arguments.push_back(&arguments->rgvarg[i]);
  try {
    VARIANT made = run(call);
    if (result != nullptr) *result = made;
    return S_OK;
  } catch (const KeptBack& failure) {
    return failure.result;
  } catch (const Error& error) {
    const std::string what = error.what();
    exception->scode =
        error.number() > 0 ? static_cast<SCODE>(0x800A0000U) + error.number() : error.number();
    exception->bstrSource =
        SysAllocString(std::wstring(error.source().begin(), error.source().end()).c_str());
    exception->bstrDescription = SysAllocString(std::wstring(what.begin(), what.end()).c_str());
    return DISP_E_EXCEPTION;
  }
}

void AdoObject::write(const std::string& line) {
  journal.lines.push_back(line);
  for (AdoFailure& failure : journal.failures) {
    if (!line.starts_with(failure.call) || failure.after-- > 0 || failure.times-- <= 0) continue;
    if (failure.tells == AdoTells::everything)
      throw Error(failure.code, failure.source, failure.description);
    journal.errors.push_back({failure.code, failure.source, failure.description});
    throw KeptBack{failure.tells == AdoTells::number ? failure.code : DISP_E_EXCEPTION};
  }
}

void AdoDoubleConnection::openAt(const std::string& database) {
  connection_ = openDatabase(database);
}

VARIANT AdoDoubleConnection::run(const Call& call) {
  if (call.member == "State") return variantOf(connection_ && connection_->isOpen() ? 1 : 0);
  if (call.member == "Errors") return object(new Errors(journal));
  std::string line = "Connection." + call.member + (call.isPut ? "=" : "");
  for (VARIANT* argument : call.arguments)
    line += (line.ends_with('=') ? "" : " ") + text(argument);
  write(line);
  if (call.member == "Open") openAt(journal.database);
  if (call.member == "Execute" && !text(call.arguments[0]).starts_with(journal.swallowed))
    connection_->execute(text(call.arguments[0]));
  if (call.member == "Close") connection_->close();
  if (call.member == "BeginTrans") transactions().begin();
  if (call.member == "CommitTrans") transactions().commit();
  if (call.member == "RollbackTrans") transactions().rollback();
  return {};
}

Transactions& AdoDoubleConnection::transactions() const {
  return dynamic_cast<Transactions&>(*connection_);
}

AdoClasses::AdoClasses(AdoJournal& journal)
    : cookies_{enter<AdoDoubleConnection>(L"ADODB.Connection", journal),
               enter<DoubleRecordset>(L"ADODB.Recordset", journal)} {}

AdoClasses::~AdoClasses() {
  for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
}

}  // namespace pelmora::test
