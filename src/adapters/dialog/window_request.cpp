// SPDX-License-Identifier: MIT
#include "adapters/dialog/window_request.h"

#include <charconv>
#include <system_error>

namespace pelmora::dialog {

namespace {

constexpr std::string_view headerStart = "pelmora-dialog 1 ";
constexpr std::size_t bodySizeDigits = wireHeaderSize - headerStart.size() - 1;
constexpr int maxButtons = 8;

std::optional<int> number(std::string_view digits) {
  int value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, failure] = std::from_chars(digits.data(), end, value);
  if (failure != std::errc() || stop != end) return std::nullopt;
  return value;
}

class Writer {
 public:
  Writer& operator<<(const std::string& text) {
    body_ += std::to_string(text.size()) + ":" + text;
    return *this;
  }
  Writer& operator<<(int value) { return *this << std::to_string(value); }
  Writer& operator<<(const WindowArea& a) {
    return *this << a.left << a.top << a.width << a.height;
  }
  [[nodiscard]] const std::string& body() const { return body_; }

 private:
  std::string body_;
};

// Reads fields in the order in which they were written; once one is wrong, all that follow fail.
class Reader {
 public:
  explicit Reader(std::string_view body) : rest_(body) {}

  Reader& operator>>(std::string& text) {
    const std::size_t colon = rest_.find(':');
    const auto size =
        colon == std::string_view::npos ? std::nullopt : number(rest_.substr(0, colon));
    if (!size || *size < 0 || rest_.size() - colon - 1 < static_cast<std::size_t>(*size)) {
      isGood_ = false;
      rest_ = {};
      return *this;
    }
    text = rest_.substr(colon + 1, static_cast<std::size_t>(*size));
    rest_.remove_prefix(colon + 1 + text.size());
    return *this;
  }
  Reader& operator>>(int& value) {
    std::string digits;
    *this >> digits;
    const auto read = number(digits);
    isGood_ = isGood_ && read;
    value = read.value_or(0);
    return *this;
  }
  Reader& operator>>(WindowArea& a) { return *this >> a.left >> a.top >> a.width >> a.height; }

  [[nodiscard]] bool isGood() const { return isGood_; }
  [[nodiscard]] bool isAtEnd() const { return rest_.empty(); }

 private:
  std::string_view rest_;
  bool isGood_ = true;
};

}  // namespace

std::string toWire(const WindowRequest& request) {
  Writer writer;
  writer << request.title << request.text << request.width << request.height << request.textArea
         << static_cast<int>(request.icon) << static_cast<int>(request.growsWithText)
         << request.focusedButton << static_cast<int>(request.buttons.size());
  for (const WindowButton& button : request.buttons) {
    writer << button.caption << button.code << button.area;
  }
  std::string size = std::to_string(writer.body().size());
  size.insert(0, size.size() < bodySizeDigits ? bodySizeDigits - size.size() : 0, '0');
  return std::string(headerStart) + size + "\n" + writer.body();
}

std::optional<std::size_t> bodySizeFromWire(std::string_view header) {
  if (header.size() != wireHeaderSize || !header.starts_with(headerStart) ||
      header.back() != '\n') {
    return std::nullopt;
  }
  const auto size = number(header.substr(headerStart.size(), bodySizeDigits));
  if (!size || *size < 0 || static_cast<std::size_t>(*size) > wireBodyLimit) return std::nullopt;
  return static_cast<std::size_t>(*size);
}

std::optional<WindowRequest> bodyFromWire(std::string_view body) {
  WindowRequest request;
  int icon = 0;
  int grows = 0;
  int buttonCount = 0;
  Reader reader(body);
  reader >> request.title >> request.text >> request.width >> request.height >> request.textArea >>
      icon >> grows >> request.focusedButton >> buttonCount;
  if (icon < 0 || icon > static_cast<int>(WindowIcon::information)) return std::nullopt;
  if (buttonCount < 0 || buttonCount > maxButtons) return std::nullopt;
  request.icon = static_cast<WindowIcon>(icon);
  request.growsWithText = grows != 0;
  request.buttons.resize(static_cast<std::size_t>(buttonCount));
  for (WindowButton& button : request.buttons) {
    reader >> button.caption >> button.code >> button.area;
  }
  if (!reader.isGood() || !reader.isAtEnd()) return std::nullopt;
  return request;
}

}  // namespace pelmora::dialog
