// SPDX-License-Identifier: MIT
#include "bindings/com/arrays.h"

#include "base/run_time_error.h"
#include "bindings/com/text.h"

#include <algorithm>
#include <limits>
#include <new>
#include <span>

namespace pelmora::com {
namespace {

ULONG elements(std::size_t count) {
  if (count > static_cast<std::size_t>(std::numeric_limits<LONG>::max())) throw std::bad_alloc();
  return static_cast<ULONG>(count);
}

Array newArray(VARTYPE type, std::initializer_list<std::size_t> sizes) {
  std::vector<SAFEARRAYBOUND> bounds;
  for (const std::size_t size : sizes) bounds.push_back({elements(size), 0});
  Array array(SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data()));
  if (!array) throw std::bad_alloc();
  return array;
}

std::size_t lengthOf(SAFEARRAY* array, UINT dimension) {
  LONG low = 0;
  LONG high = -1;
  SafeArrayGetLBound(array, dimension, &low);
  SafeArrayGetUBound(array, dimension, &high);
  return static_cast<std::size_t>(static_cast<long long>(high) - low + 1);
}

void require(SAFEARRAY* array, VARTYPE type, const char* what) {
  VARTYPE found = VT_EMPTY;
  SafeArrayGetVartype(array, &found);
  if (found == type) return;
  throw Error(static_cast<std::int32_t>(RunTimeError::typeMismatch), "Pelmora",
              std::string("Type mismatch: ") + what + " is needed");
}

// The elements in memory, first dimension fastest.
template <class T>
class Elements {
 public:
  Elements(SAFEARRAY* array, std::size_t count) : array_(array), count_(count) {
    if (FAILED(SafeArrayAccessData(array, &data_))) throw makeError(RunTimeError::outOfMemory);
  }
  ~Elements() { SafeArrayUnaccessData(array_); }
  Elements(const Elements&) = delete;
  Elements& operator=(const Elements&) = delete;
  [[nodiscard]] std::span<T> values() const { return {static_cast<T*>(data_), count_}; }

 private:
  SAFEARRAY* array_;
  std::size_t count_;
  void* data_ = nullptr;
};

void store(const Value& value, VARIANT& variant) {
  constexpr std::int64_t low = std::numeric_limits<LONG>::min();
  constexpr std::int64_t high = std::numeric_limits<LONG>::max();
  VariantInit(&variant);
  if (const auto* text = std::get_if<std::string>(&value)) {
    variant.bstrVal = textFrom(*text).release();
    variant.vt = VT_BSTR;
  } else if (const auto* real = std::get_if<double>(&value)) {
    variant.dblVal = *real;
    variant.vt = VT_R8;
  } else if (const auto* whole = std::get_if<std::int64_t>(&value)) {
    const bool fits = *whole >= low && *whole <= high;  // hosts of 32 bits know no larger integer
    if (fits) variant.lVal = static_cast<LONG>(*whole);
    if (!fits) variant.dblVal = static_cast<double>(*whole);
    variant.vt = fits ? VT_I4 : VT_R8;
  } else {
    variant.vt = VT_NULL;
  }
}

}  // namespace

bool isFixed(const SAFEARRAY* array) {
  constexpr USHORT kept = FADF_AUTO | FADF_STATIC | FADF_EMBEDDED | FADF_FIXEDSIZE;
  return array != nullptr && (array->cLocks != 0 || (array->fFeatures & kept) != 0);
}

Array arrayFrom(const PointArray& points) {
  if (points.empty()) return {};
  Array array = newArray(VT_R8, {points.size(), points.columns()});
  const Elements<double> to(array.get(), points.size() * points.columns());
  for (std::size_t column = 0; column < points.columns(); ++column) {
    std::ranges::copy(points.column(column), to.values().subspan(column * points.size()).begin());
  }
  return array;
}

PointArray pointsFrom(SAFEARRAY* array) {
  if (array == nullptr) return {};
  require(array, VT_R8, "a two-dimensional array of doubles (point, column)");
  const std::size_t size = lengthOf(array, 1);
  if (SafeArrayGetDim(array) != 2) return PointArray(size, 1);
  if (size == 0) return {};
  PointArray points(size, lengthOf(array, 2));
  const Elements<double> from(array, size * points.columns());
  for (std::size_t column = 0; column < points.columns(); ++column) {
    std::ranges::copy(from.values().subspan(column * size, size), points.column(column).begin());
  }
  return points;
}

Array arrayFrom(const std::vector<std::string>& texts) {
  if (texts.empty()) return {};
  Array array = newArray(VT_BSTR, {texts.size()});
  const Elements<BSTR> to(array.get(), texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) to.values()[i] = textFrom(texts[i]).release();
  return array;
}

std::vector<std::string> textsFrom(SAFEARRAY* array) {
  if (array == nullptr) return {};
  require(array, VT_BSTR, "a one-dimensional array of texts");
  if (SafeArrayGetDim(array) != 1) throw makeError(RunTimeError::outOfRange);
  const Elements<BSTR> from(array, lengthOf(array, 1));
  std::vector<std::string> texts;
  for (const BSTR text : from.values()) texts.push_back(utf8From(text));
  return texts;
}

Array arrayFrom(const std::vector<std::int16_t>& numbers) {
  if (numbers.empty()) return {};
  Array array = newArray(VT_I2, {numbers.size()});
  const Elements<std::int16_t> to(array.get(), numbers.size());
  std::ranges::copy(numbers, to.values().begin());
  return array;
}

Array arrayFrom(const ValueTable& table) {
  if (table.empty()) return {};
  Array array = newArray(VT_VARIANT, {table.columns(), table.rows()});
  const Elements<VARIANT> to(array.get(), table.columns() * table.rows());
  for (std::size_t row = 0; row < table.rows(); ++row) {
    for (std::size_t column = 0; column < table.columns(); ++column) {
      store(table(column, row), to.values()[row * table.columns() + column]);
    }
  }
  return array;
}

}  // namespace pelmora::com
