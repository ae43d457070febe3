// ADO as a test wants it: Connection, Recordset, Fields, Field and Errors, reached by names alone,
// over the embedded engine. Every call is written down, and any of them can be made to fail.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/bindings/com/hosts/late_object.h"

#include "store/connection.h"
#include "store/transactions.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelmora::test {

// What a failed call itself tells; the connection's Errors tell the rest.
enum class AdoTells { everything, number, nothing };

struct AdoFailure {
  std::string call;  // as it is written down
  int after = 0;     // so many of them go well first
  SCODE code = 0;
  std::string source, description;
  int times = 1;
  AdoTells tells = AdoTells::everything;
};

struct AdoListedError {
  SCODE number = 0;
  std::string source, description;
};

// What all objects of one test write to.
struct AdoJournal {
  std::vector<std::string> lines;
  std::vector<AdoFailure> failures;
  // The connection's Errors: what an earlier call left, then the last failure that kept something
  // back.
  std::vector<AdoListedError> errors;
  // A statement that begins so is written down and not run.
  std::string swallowed = "nothing";
  // Where connections that the component makes itself are led to, whatever their connection string.
  std::string database;
};

// An object whose members are told by name. Starts with one reference.
class AdoObject : public IDispatch {
 public:
  explicit AdoObject(AdoJournal& written) : journal(written) {}
  virtual ~AdoObject() = default;

  STDMETHODIMP QueryInterface(REFIID identity, void** found) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override;
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* arguments,
                      VARIANT* result, EXCEPINFO* exception, UINT*) override;

 protected:
  struct Call {
    std::string member;
    bool isPut = false;
    std::vector<VARIANT*> arguments;  // in the member's order
  };
  // The result, owned by the caller. Errors: pelmora::Error, told to the caller as ADO would.
  virtual VARIANT run(const Call& call) = 0;
  void write(const std::string& line);  // and fail where that is wanted

  AdoJournal& journal;

 private:
  std::vector<std::string> names_;
  ULONG references_ = 1;
};

class AdoDoubleConnection : public AdoObject {
 public:
  using AdoObject::AdoObject;
  // As a host passes it: open already.
  void openAt(const std::string& database);
  [[nodiscard]] const ConnectionPtr& connection() const { return connection_; }

 private:
  VARIANT run(const Call& call) override;
  [[nodiscard]] Transactions& transactions() const;
  ConnectionPtr connection_;
};

// Lets the component create the doubles under ADO's own names, as long as it lives.
class AdoClasses {
 public:
  explicit AdoClasses(AdoJournal& journal);
  ~AdoClasses();
  AdoClasses(const AdoClasses&) = delete;
  AdoClasses& operator=(const AdoClasses&) = delete;

 private:
  std::vector<DWORD> cookies_;
};

}  // namespace pelmora::test
