// SPDX-License-Identifier: MIT
#include "bindings/com/variant_arrays.h"

#include <vector>

namespace pelmora::com {
namespace {

HRESULT storeElement(SAFEARRAY* array, LONG* index, VARTYPE type, VARIANT& value) {
  if (type == VT_VARIANT) return SafeArrayPutElement(array, index, &value);
  // Texts and objects are passed themselves, everything else by its address.
  const bool isItself = type == VT_BSTR || type == VT_DISPATCH || type == VT_UNKNOWN;
  return SafeArrayPutElement(array, index,
                             isItself ? value.byref : static_cast<void*>(&value.byref));
}

// Reads an element of any type as a variant.
HRESULT readElement(SAFEARRAY* array, LONG* index, VARTYPE type, VARIANT& value) {
  VariantInit(&value);
  if (type == VT_VARIANT) return SafeArrayGetElement(array, index, &value);
  value.vt = type;
  return SafeArrayGetElement(array, index, &value.byref);
}

HRESULT convertElement(SAFEARRAY* from, VARTYPE fromType, SAFEARRAY* to, VARTYPE type, LONG* index,
                       LCID locale) {
  VARIANT value;
  VARIANT converted;
  VariantInit(&converted);
  HRESULT result = readElement(from, index, fromType, value);
  if (FAILED(result)) return result;
  result = type == VT_VARIANT ? VariantCopyInd(&converted, &value)
                              : VariantChangeTypeEx(&converted, &value, locale, 0, type);
  if (SUCCEEDED(result)) result = storeElement(to, index, type, converted);
  VariantClear(&converted);
  VariantClear(&value);
  return result;
}

// The next index, first dimension fastest; false after the last one.
bool advance(std::vector<LONG>& index, const std::vector<SAFEARRAYBOUND>& bounds) {
  for (std::size_t d = 0; d < index.size(); ++d) {
    if (++index[d] < bounds[d].lLbound + static_cast<LONG>(bounds[d].cElements)) return true;
    index[d] = bounds[d].lLbound;
  }
  return false;
}

}  // namespace

HRESULT convertElements(SAFEARRAY& array, VARTYPE type, LCID locale, SAFEARRAY** converted) {
  *converted = nullptr;
  VARTYPE fromType = VT_EMPTY;
  HRESULT result = SafeArrayGetVartype(&array, &fromType);
  if (FAILED(result)) return result;
  std::vector<SAFEARRAYBOUND> bounds;
  std::vector<LONG> index;
  bool isEmpty = false;
  for (UINT dimension = 1; dimension <= SafeArrayGetDim(&array); ++dimension) {
    LONG low = 0;
    LONG high = -1;
    SafeArrayGetLBound(&array, dimension, &low);
    SafeArrayGetUBound(&array, dimension, &high);
    bounds.push_back({static_cast<ULONG>(high - low + 1), low});
    index.push_back(low);
    isEmpty = isEmpty || bounds.back().cElements == 0;
  }
  SAFEARRAY* made = SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
  if (made == nullptr) return E_OUTOFMEMORY;
  while (!isEmpty && SUCCEEDED(result)) {
    result = convertElement(&array, fromType, made, type, index.data(), locale);
    if (!advance(index, bounds)) break;
  }
  if (FAILED(result)) {
    SafeArrayDestroy(made);
    return result;
  }
  *converted = made;
  return S_OK;
}

}  // namespace pelmora::com
