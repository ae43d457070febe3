// SPDX-License-Identifier: MIT
#include "bindings/com/argument_slot.h"

#include "bindings/com/arrays.h"
#include "bindings/com/variant_arrays.h"

#include <cstring>
#include <utility>

namespace pelmora::com {
namespace {

bool isArray(VARTYPE type) { return (type & VT_ARRAY) != 0; }
VARTYPE elementOf(VARTYPE type) { return static_cast<VARTYPE>(type & ~VT_ARRAY); }

// Nothing, or a reference to nothing, passed where an object or an array is wanted.
bool isNothing(const VARIANT& value) { return value.vt == VT_EMPTY || value.vt == VT_NULL; }

bool equalTexts(BSTR a, BSTR b) {
  const UINT size = SysStringByteLen(a);
  return size == SysStringByteLen(b) && (size == 0 || std::memcmp(a, b, size) == 0);
}

// Replaces what the reference shows; takes over `value`, which has the reference's type.
void storeAt(VARIANT& reference, VARTYPE type, const VARIANT& value) {
  if (isArray(type)) {
    SafeArrayDestroy(*reference.pparray);
    *reference.pparray = value.parray;
    return;
  }
  switch (type) {
    case VT_BSTR:
      SysFreeString(*reference.pbstrVal);
      *reference.pbstrVal = value.bstrVal;
      break;
    case VT_I1:
    case VT_UI1: *reference.pbVal = value.bVal; break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL: *reference.piVal = value.iVal; break;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE: *reference.pllVal = value.llVal; break;
    case VT_DECIMAL: *reference.pdecVal = value.decVal; break;
    default: *reference.plVal = value.lVal; break;
  }
}

HRESULT describeRecord(ITypeInfo& owner, HREFTYPE reference, ArgumentType& described) {
  os::Reference<ITypeInfo> type;
  HRESULT result = owner.GetRefTypeInfo(reference, type.receive());
  if (FAILED(result)) return result;
  described.type = VT_RECORD;
  return GetRecordInfoFromTypeInfo(type.get(), described.record.receive());
}

}  // namespace

HRESULT describe(ITypeInfo& owner, const TYPEDESC& type, ArgumentType& described) {
  if (type.vt == VT_PTR && !described.isReference) {
    described.isReference = true;
    return describe(owner, *type.lptdesc, described);
  }
  switch (type.vt) {
    case VT_USERDEFINED: return describeRecord(owner, type.hreftype, described);
    case VT_SAFEARRAY:
      described.type = static_cast<VARTYPE>(VT_ARRAY | type.lptdesc->vt);
      return S_OK;
    case VT_PTR:
    case VT_CARRAY: return DISP_E_BADVARTYPE;
    default: described.type = type.vt; return S_OK;
  }
}

ArgumentSlot::~ArgumentSlot() {
  if (isLocked_) SafeArrayUnlock(value_.parray);
  VariantClear(&value_);
  VariantClear(&original_);
  if (record_ != nullptr) type_.record->RecordDestroy(record_);
}

void ArgumentSlot::pointCall(void* place) {
  call_.vt =
      static_cast<VARTYPE>(VT_BYREF | (type_.type == VT_RECORD ? VARTYPE{VT_I4} : type_.type));
  call_.byref = place;
}

HRESULT ArgumentSlot::take(const ArgumentType& type, VARIANT& given, LCID locale) {
  type_ = type;
  VARIANT* source = &given;
  if (source->vt == (VT_BYREF | VT_VARIANT)) {
    source = source->pvarVal;
    holder_ = source;
  }
  if (type_.type == VT_RECORD) return takeRecord(*source);
  if (type_.isReference && source->vt == (VT_BYREF | type_.type)) {
    holder_ = nullptr;
    pointCall(source->byref);
    return S_OK;
  }
  if ((source->vt & VT_BYREF) != 0) {
    holder_ = nullptr;
    typedReference_ = source;
  }
  VARIANT plain;
  VariantInit(&plain);
  HRESULT result = VariantCopyInd(&plain, source);
  if (FAILED(result)) return result;
  result = isArray(type_.type) ? convertArray(plain, locale) : convert(plain, locale);
  VariantClear(&plain);
  if (FAILED(result)) return result;
  if (!type_.isReference) {
    call_ = value_;
    return S_OK;
  }
  if (isArray(type_.type)) {
    original_.byref = value_.byref;  // only to see whether there is another one afterwards
    if (holder_ != nullptr || typedReference_ != nullptr) lockAs(*source);
  } else {
    result = VariantCopy(&original_, &value_);
  }
  pointCall(&value_.byref);
  return result;
}

// The member meets a copy; it must not replace it where the host's array cannot be replaced.
void ArgumentSlot::lockAs(const VARIANT& theirs) {
  if (!isArray(theirs.vt) || value_.parray == nullptr) return;
  const SAFEARRAY* array = (theirs.vt & VT_BYREF) != 0 ? *theirs.pparray : theirs.parray;
  isLocked_ = isFixed(array) && SUCCEEDED(SafeArrayLock(value_.parray));
}

HRESULT ArgumentSlot::takeRecord(VARIANT& from) {
  if ((from.vt & ~VT_BYREF) != VT_RECORD || from.pRecInfo == nullptr) return DISP_E_TYPEMISMATCH;
  GUID given{};
  GUID wanted{};
  from.pRecInfo->GetGuid(&given);
  type_.record->GetGuid(&wanted);
  if (!IsEqualGUID(given, wanted)) return DISP_E_TYPEMISMATCH;
  holder_ = nullptr;
  pointCall(from.pvRecord);
  return S_OK;
}

HRESULT ArgumentSlot::convert(VARIANT& from, LCID locale) {
  if (type_.type == VT_DISPATCH && isNothing(from)) {
    value_.vt = VT_DISPATCH;
    value_.pdispVal = nullptr;
    return S_OK;
  }
  return VariantChangeTypeEx(&value_, &from, locale, 0, type_.type);
}

HRESULT ArgumentSlot::convertArray(VARIANT& from, LCID locale) {
  SAFEARRAY* array = nullptr;
  if (from.vt == type_.type) {
    array = std::exchange(from.parray, nullptr);
    from.vt = VT_EMPTY;
  } else if (from.vt == (VT_ARRAY | VT_VARIANT) && from.parray != nullptr) {
    const HRESULT result = convertElements(*from.parray, elementOf(type_.type), locale, &array);
    if (FAILED(result)) return result;
  } else if (!isNothing(from) && !(isArray(from.vt) && from.parray == nullptr)) {
    return DISP_E_TYPEMISMATCH;
  }
  value_.vt = type_.type;
  value_.parray = array;
  return S_OK;
}

HRESULT ArgumentSlot::leaveOut(const ArgumentType& type, const PARAMDESC& parameter) {
  type_ = type;
  if (type_.type == VT_RECORD) return DISP_E_PARAMNOTOPTIONAL;
  if ((parameter.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0) {
    VARIANT& absent = parameter.pparamdescex->varDefaultValue;
    const HRESULT result = VariantChangeType(&value_, &absent, 0, type_.type);
    if (FAILED(result)) return result;
  } else {
    value_.vt = type_.type;
  }
  if (type_.isReference) {
    pointCall(&value_.byref);
  } else {
    call_ = value_;
  }
  return S_OK;
}

HRESULT ArgumentSlot::makeRoom(const ArgumentType& type) {
  type_ = type;
  if (type_.type != VT_RECORD) {
    value_.vt = type_.type;
    pointCall(&value_.byref);
    return S_OK;
  }
  record_ = type_.record->RecordCreate();
  if (record_ == nullptr) return E_OUTOFMEMORY;
  pointCall(record_);
  return S_OK;
}

bool ArgumentSlot::isChanged() const {
  switch (type_.type) {
    case VT_BSTR: return !equalTexts(value_.bstrVal, original_.bstrVal);
    case VT_BOOL:
    case VT_I2: return value_.iVal != original_.iVal;
    case VT_I4:
    case VT_R4: return value_.lVal != original_.lVal;
    case VT_R8: return value_.llVal != original_.llVal;
    default: return value_.byref != original_.byref;  // arrays and objects: another one
  }
}

void ArgumentSlot::writeBack(LCID locale) {
  const bool isReferred = holder_ != nullptr || typedReference_ != nullptr;
  if (!isReferred || !isChanged()) return;
  // A script's variable gets variants: it cannot index anything else.
  const VARTYPE variants = VT_ARRAY | VT_VARIANT;
  const auto theirs = typedReference_ != nullptr
                          ? static_cast<VARTYPE>(typedReference_->vt & ~VT_BYREF)
                      : isArray(type_.type) ? variants
                                            : type_.type;
  VARIANT out;
  VariantInit(&out);
  HRESULT result = S_OK;
  if (!isArray(type_.type)) {
    result = VariantChangeTypeEx(&out, &value_, locale, 0, theirs);
  } else if (!isArray(theirs)) {
    result = DISP_E_TYPEMISMATCH;
  } else if (value_.parray != nullptr) {
    result = convertElements(*value_.parray, elementOf(theirs), locale, &out.parray);
    if (SUCCEEDED(result)) out.vt = theirs;
  }
  if (FAILED(result)) return;  // what they hold stays: the change does not fit in it
  if (typedReference_ != nullptr) {
    storeAt(*typedReference_, theirs, out);
  } else {
    VariantClear(holder_);
    *holder_ = out;
  }
}

void ArgumentSlot::moveTo(VARIANT& result) {
  VariantInit(&result);
  if (type_.type != VT_RECORD) {
    result = value_;
    value_.vt = VT_EMPTY;
    return;
  }
  result.vt = VT_RECORD;
  result.pvRecord = std::exchange(record_, nullptr);
  result.pRecInfo = os::Reference<IRecordInfo>(type_.record).release();
}

}  // namespace pelmora::com
