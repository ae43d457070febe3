// Values as bytes and back, to the last bit.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/failure.h>
#include <pelmora/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace pelmora::python {

// What numbers, enumerations and truth values consist of.
template <class T>
concept Plain = std::is_arithmetic_v<T> || std::is_enum_v<T>;

// Both archives are called with the values in the same order. A struct has a function
// exchange(archive, value), found by the types of its arguments, that passes its members on.
class ByteWriter {
 public:
  template <class... T>
  void operator()(const T&... values) {
    (put(values), ...);
  }
  [[nodiscard]] const std::string& bytes() const { return bytes_; }

 private:
  template <Plain T>
  void put(const T& value) {
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void put(const std::string& text) {
    putSize(text.size());
    bytes_ += text;
  }
  template <class T>
  void put(const std::optional<T>& value) {
    put(value.has_value());
    if (value) put(*value);
  }
  template <class T>
  void put(const std::vector<T>& values) {
    putSize(values.size());
    for (const T& value : values) put(value);
  }
  template <class T, std::size_t n>
  void put(const std::array<T, n>& values) {
    for (const T& value : values) put(value);
  }
  void put(const PointArray& points) {
    putSize(points.size());
    putSize(points.columns());
    for (std::size_t c = 0; c < points.columns(); ++c)
      for (const double value : points.column(c)) put(value);
  }
  template <class T>
  void put(const T& value) {
    exchange(*this, value);
  }
  void putSize(std::size_t size) { put(static_cast<std::uint64_t>(size)); }

  std::string bytes_;
};

// Errors: BadData for bytes that end too early.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : rest_(bytes) {}
  template <class... T>
  void operator()(T&... values) {
    (get(values), ...);
  }
  [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }

 private:
  template <Plain T>
  void get(T& value) {
    std::memcpy(&value, take(sizeof value).data(), sizeof value);
  }
  void get(std::string& text) { text = take(size(1)); }
  template <class T>
  void get(std::optional<T>& value) {
    bool hasValue = false;
    get(hasValue);
    value.reset();
    if (hasValue) get(value.emplace());
  }
  template <class T>
  void get(std::vector<T>& values) {
    values.clear();
    for (std::uint64_t left = size(1); left > 0; --left) get(values.emplace_back());
  }
  template <class T, std::size_t n>
  void get(std::array<T, n>& values) {
    for (T& value : values) get(value);
  }
  void get(PointArray& points) {
    const std::size_t rows = size(sizeof(double)), columns = size(0);
    if (columns > 2) throw damaged();
    points = columns == 0 ? PointArray() : PointArray(rows, columns);
    for (std::size_t c = 0; c < columns; ++c)
      for (double& value : points.column(c)) get(value);
  }
  template <class T>
  void get(T& value) {
    exchange(*this, value);
  }

  // A number of elements of at least `each` bytes, which cannot be more than there are bytes.
  std::size_t size(std::size_t each) {
    std::uint64_t size = 0;
    get(size);
    if (each > 0 && size > rest_.size() / each) throw damaged();
    return static_cast<std::size_t>(size);
  }
  std::string_view take(std::size_t size) {
    if (size > rest_.size()) throw damaged();
    const std::string_view taken = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return taken;
  }
  static calibration::BadData damaged() {
    return calibration::BadData({"the pickle is damaged", "pickle", "make the fit again"});
  }

  std::string_view rest_;
};

}  // namespace pelmora::python
