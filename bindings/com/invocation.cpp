// SPDX-License-Identifier: MIT
#include "bindings/com/invocation.h"

#include "bindings/com/argument_slot.h"

#include <oleauto.h>

#include <optional>
#include <vector>

namespace pelmora::com {
namespace {

class Member {
 public:
  explicit Member(ITypeInfo& owner) : owner_(owner) {}
  ~Member() {
    if (function_ != nullptr) owner_.ReleaseFuncDesc(function_);
  }
  Member(const Member&) = delete;
  Member& operator=(const Member&) = delete;

  // Errors: DISP_E_MEMBERNOTFOUND.
  HRESULT find(DISPID id, WORD flags) {
    for (UINT i = 0; SUCCEEDED(owner_.GetFuncDesc(i, &function_)); ++i) {
      if (function_->memid == id && (function_->invkind & flags) != 0) return S_OK;
      owner_.ReleaseFuncDesc(function_);
      function_ = nullptr;
    }
    function_ = nullptr;
    return DISP_E_MEMBERNOTFOUND;
  }

  const FUNCDESC* operator->() const { return function_; }
  [[nodiscard]] const ELEMDESC& parameter(std::size_t i) const {
    return function_->lprgelemdescParam[i];
  }
  [[nodiscard]] std::size_t parameters() const {
    return static_cast<std::size_t>(function_->cParams);
  }
  [[nodiscard]] bool returnsValue() const {
    return parameters() > 0 &&
           (parameter(parameters() - 1).paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
  }
  [[nodiscard]] std::size_t arguments() const { return parameters() - (returnsValue() ? 1 : 0); }

 private:
  ITypeInfo& owner_;
  FUNCDESC* function_ = nullptr;
};

bool isLeftOut(const VARIANT& argument) {
  return argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND;
}

// The host's arguments by parameter: an index into rgvarg, or nothing.
HRESULT assign(const Member& member, const DISPPARAMS& given,
               std::vector<std::optional<UINT>>& assigned) {
  assigned.assign(member.arguments(), std::nullopt);
  if (given.cArgs > assigned.size() || given.cNamedArgs > given.cArgs) return DISP_E_BADPARAMCOUNT;
  const bool isPut = (member->invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0;
  for (UINT i = 0; i < given.cNamedArgs; ++i) {
    const DISPID name = given.rgdispidNamedArgs[i];
    const std::size_t position =
        isPut && name == DISPID_PROPERTYPUT ? assigned.size() - 1 : static_cast<std::size_t>(name);
    if (position >= assigned.size() || assigned[position]) return DISP_E_PARAMNOTFOUND;
    assigned[position] = i;
  }
  // Positional arguments follow the named ones, the last argument first.
  for (UINT i = given.cNamedArgs; i < given.cArgs; ++i) {
    const std::size_t position = given.cArgs - 1 - i;
    if (assigned[position]) return DISP_E_PARAMNOTFOUND;
    assigned[position] = i;
  }
  return S_OK;
}

void tellError(HRESULT code, EXCEPINFO* exception) {
  if (exception == nullptr) return;
  *exception = {};
  exception->scode = code;
  os::Reference<IErrorInfo> info;
  if (GetErrorInfo(0, info.receive()) != S_OK) return;
  info->GetSource(&exception->bstrSource);
  info->GetDescription(&exception->bstrDescription);
  info->GetHelpFile(&exception->bstrHelpFile);
  info->GetHelpContext(&exception->dwHelpContext);
}

HRESULT failAt(UINT index, HRESULT result, UINT* wrongArgument) {
  const bool isAboutArgument =
      result == DISP_E_TYPEMISMATCH || result == DISP_E_PARAMNOTFOUND || result == DISP_E_OVERFLOW;
  if (isAboutArgument && wrongArgument != nullptr) *wrongArgument = index;
  return result;
}

HRESULT fill(ITypeInfo& owner, const Member& member, const LateCall& call,
             std::vector<ArgumentSlot>& slots) {
  std::vector<std::optional<UINT>> assigned;
  HRESULT result = assign(member, *call.arguments, assigned);
  for (std::size_t i = 0; SUCCEEDED(result) && i < assigned.size(); ++i) {
    const ELEMDESC& parameter = member.parameter(i);
    ArgumentType type;
    result = describe(owner, parameter.tdesc, type);
    if (FAILED(result)) return result;
    if (assigned[i] && !isLeftOut(call.arguments->rgvarg[*assigned[i]])) {
      result = slots[i].take(type, call.arguments->rgvarg[*assigned[i]], call.locale);
      if (FAILED(result)) return failAt(*assigned[i], result, call.wrongArgument);
    } else if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0) {
      result = slots[i].leaveOut(type, parameter.paramdesc);
    } else {
      return assigned[i] ? failAt(*assigned[i], DISP_E_PARAMNOTOPTIONAL, call.wrongArgument)
                         : DISP_E_BADPARAMCOUNT;
    }
  }
  if (FAILED(result) || !member.returnsValue()) return result;
  ArgumentType type;
  result = describe(owner, member.parameter(assigned.size()).tdesc, type);
  return FAILED(result) ? result : slots[assigned.size()].makeRoom(type);
}

}  // namespace

HRESULT invoke(ITypeInfo& vtable, void* object, const LateCall& call) {
  Member member(vtable);
  HRESULT result = member.find(call.member, call.flags);
  if (FAILED(result)) return result;
  std::vector<ArgumentSlot> slots(member.parameters());
  result = fill(vtable, member, call, slots);
  if (FAILED(result)) return result;

  std::vector<VARTYPE> types;
  std::vector<VARIANTARG*> values;
  for (ArgumentSlot& slot : slots) {
    types.push_back(slot.forCall().vt);
    values.push_back(&slot.forCall());
  }
  VARIANT returned;
  VariantInit(&returned);
  SetErrorInfo(0, nullptr);
  result = DispCallFunc(object, static_cast<ULONG_PTR>(member->oVft), CC_STDCALL, VT_ERROR,
                        static_cast<UINT>(slots.size()), types.data(), values.data(), &returned);
  if (FAILED(result)) return result;
  if (FAILED(returned.scode)) {
    tellError(returned.scode, call.exception);
    return DISP_E_EXCEPTION;
  }
  for (std::size_t i = 0; i < member.arguments(); ++i) slots[i].writeBack(call.locale);
  if (call.result != nullptr) {
    VariantInit(call.result);
    if (member.returnsValue()) slots.back().moveTo(*call.result);
  }
  return S_OK;
}

}  // namespace pelmora::com
