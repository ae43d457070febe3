// SPDX-License-Identifier: MIT
#include "sheets/decoded_text.h"

#include "base/text_case.h"
#include "base/utf8_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace pelmora::sheets {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view textRemedy = "save it as text, separated by commas or semicolons";
constexpr std::size_t sampled = 4096;  // bytes, to recognise UTF-16 without a mark

struct Magic {
  std::string_view bytes, kind;
};

constexpr std::array<Magic, 9> magics{{
    {"\xD0\xCF\x11\xE0"sv, "an Excel workbook of the old format (.xls)"},
    {"%PDF"sv, "a PDF document"},
    {"\x1F\x8B"sv, "a compressed file (gzip)"},
    {"SQLite format 3\0"sv, "an SQLite database"},
    {"\0\1\0\0Standard "sv, "an Access database"},
    {"\xFF\xFE\0\0"sv, "a text in UTF-32"},
    {"\0\0\xFE\xFF"sv, "a text in UTF-32"},
    {"PAR1"sv, "a Parquet file"},
    {"{\\rtf"sv, "a text document (.rtf)"},
}};

bool startsWithWord(std::string_view text, std::string_view word) {
  return equalNames(text.substr(0, word.size()), word);
}

std::string zipKind(std::string_view start) {
  const auto holds = [&](std::string_view part) {
    return start.find(part) != std::string_view::npos;
  };
  if (holds("opendocument.spreadsheet")) return "an OpenDocument spreadsheet (.ods)";
  if (holds("[Content_Types].xml") || holds("xl/")) return "an Excel workbook (.xlsx)";
  return "a ZIP archive";
}

std::string lineText(std::string_view before) {
  return "line " + std::to_string(1 + std::count(before.begin(), before.end(), '\n'));
}

// bytes: without a mark.
std::string fromUtf16(std::string_view bytes, bool isBigEndian) {
  std::string text;
  text.reserve(bytes.size() / 2 + bytes.size() / 16);
  const auto broken = [&] {
    return SheetError(lineText(text), "the UTF-16 text is cut or broken",
                      "save the file again as UTF-8");
  };
  const auto unitAt = [&](std::size_t i) {
    const auto low = static_cast<unsigned char>(bytes[i + (isBigEndian ? 1 : 0)]);
    const auto high = static_cast<unsigned char>(bytes[i + (isBigEndian ? 0 : 1)]);
    return char32_t{high} << 8U | low;
  };
  const auto isIn = [](char32_t c, char32_t first) { return c >= first && c < first + 0x400; };
  constexpr char32_t leading = 0xD800, trailing = 0xDC00;
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    if (i + 2 > bytes.size()) throw broken();
    char32_t c = unitAt(i);
    if (isIn(c, trailing)) throw broken();
    if (isIn(c, leading)) {
      i += 2;
      if (i + 2 > bytes.size() || !isIn(unitAt(i), trailing)) throw broken();
      c = 0x10000 + ((c - leading) << 10U) + (unitAt(i) - trailing);
    }
    appendUtf8(text, c);
  }
  return text;
}

// Text of Western languages has a zero as the high byte of nearly every character.
bool hasZerosAt(std::string_view bytes, std::size_t offset) {
  if (bytes.size() < 4) return false;
  const std::string_view sample = bytes.substr(0, sampled);
  std::size_t zeros = 0, others = 0;
  for (std::size_t i = 0; i + 1 < sample.size(); i += 2) {
    if (sample[i + offset] == '\0') ++zeros;
    if (sample[i + 1 - offset] == '\0') ++others;
  }
  return others == 0 && zeros * 10 >= sample.size() / 2 * 9;
}

// Such a text holds neither control characters nor the five bytes without a character.
bool mayBeWindows1252(std::string_view bytes) {
  constexpr std::string_view undefined = "\x81\x8D\x8F\x90\x9D", blanks = "\t\n\v\f\r\x1A";
  return std::ranges::none_of(bytes, [&](char c) {
    const bool isControl = static_cast<unsigned char>(c) < ' ' || c == '\x7F';
    return (isControl && blanks.find(c) == std::string_view::npos) ||
           undefined.find(c) != std::string_view::npos;
  });
}

void requireNoNul(std::string_view text) {
  const std::size_t at = text.find('\0');
  if (at == std::string_view::npos) return;
  throw SheetError(lineText(text.substr(0, at)), "the file holds a NUL byte, so it is not text",
                   std::string(textRemedy));
}

}  // namespace

std::string foreignKind(std::string_view start) {
  for (const Magic& magic : magics) {
    if (start.starts_with(magic.bytes)) return std::string(magic.kind);
  }
  if (start.starts_with("PK\3\4") || start.starts_with("PK\5\6")) return zipKind(start);
  if (start.starts_with(utf8Mark)) start.remove_prefix(utf8Mark.size());
  start.remove_prefix(std::min(start.find_first_not_of(" \t\r\n"), start.size()));
  for (const std::string_view tag : {"<html"sv, "<!doctype html"sv, "<table"sv}) {
    if (startsWithWord(start, tag)) return "an HTML page";
  }
  return startsWithWord(start, "<?xml") ? "an XML document" : "";
}

DecodedText decoded(std::string bytes) {
  // A workbook usually names its parts at the start of the file.
  constexpr std::size_t enough = 4096;
  const std::string kind = foreignKind(std::string_view(bytes).substr(0, enough));
  if (!kind.empty()) {
    const bool isWorkbook =
        kind.find("workbook") != std::string::npos || kind.find("spreadsheet") != std::string::npos;
    throw SheetError("", "it is " + kind,
                     isWorkbook ? "save the sheet as CSV (File > Save As) and name that file"
                                : std::string(textRemedy));
  }
  DecodedText result;
  const std::string_view view = bytes;
  const bool isLittleMarked = view.starts_with("\xFF\xFE"),
             isBigMarked = view.starts_with("\xFE\xFF");
  const bool isLittle = isLittleMarked || hasZerosAt(view, 1);
  const bool isBig = !isLittle && (isBigMarked || hasZerosAt(view, 0));
  if (isLittle || isBig) {
    result.encoding = Encoding::utf16;
    result.hasByteOrderMark = isLittleMarked || isBigMarked;
    result.text = fromUtf16(view.substr(result.hasByteOrderMark ? 2 : 0), isBig);
  } else {
    result.hasByteOrderMark = view.starts_with(utf8Mark);
    if (result.hasByteOrderMark) bytes.erase(0, utf8Mark.size());
    if (isUtf8(bytes) || !mayBeWindows1252(bytes)) {
      result.text = std::move(bytes);
    } else {
      result.encoding = Encoding::windows1252;
      result.text = utf8FromAnsi(std::move(bytes));
    }
  }
  while (result.text.ends_with('\x1A')) result.text.pop_back();  // the end of a text file in DOS
  requireNoNul(result.text);
  return result;
}

}  // namespace pelmora::sheets
