// SPDX-License-Identifier: MIT
#include "adapters/postgresql/cell_text.h"

#include "adapters/postgresql/statement_names.h"
#include "adapters/sql_engine/engine_error.h"
#include "base/run_time_error.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <system_error>

namespace pelmora::postgres {

namespace {

template <class Number>
std::optional<Number> wholly(std::string_view text) {
  Number value{};
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (code != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

void appendNumber(std::string_view text, sql::RowStore& rows) {
  if (const auto whole = wholly<std::int64_t>(text)) {
    rows.append(*whole);
  } else if (const auto real = wholly<double>(text)) {
    rows.append(*real);
  } else {
    rows.append(text);
  }
}

void appendCharacter(std::string& text, unsigned code) {
  if (code < 0x80U) {
    text += static_cast<char>(code);
  } else if (code < 0x800U) {
    text += static_cast<char>(0xC0U | (code >> 6U));
    text += static_cast<char>(0x80U | (code & 0x3FU));
  } else {
    text += static_cast<char>(0xE0U | (code >> 12U));
    text += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
    text += static_cast<char>(0x80U | (code & 0x3FU));
  }
}

// The contents of a JSON text as the server writes it: it escapes quotes, backslashes and control
// characters alone.
std::string jsonContents(std::string_view json) {
  std::string text;
  for (std::size_t i = 1; i + 1 < json.size(); ++i) {
    if (json[i] != '\\') {
      text += json[i];
      continue;
    }
    const char mark = json[++i];
    switch (mark) {
      case 'b': text += '\b'; break;
      case 'f': text += '\f'; break;
      case 'n': text += '\n'; break;
      case 'r': text += '\r'; break;
      case 't': text += '\t'; break;
      case 'u': {
        unsigned code = 0;
        std::from_chars(json.data() + i + 1, json.data() + std::min(i + 5, json.size()), code, 16);
        appendCharacter(text, code);
        i += 4;
        break;
      }
      default: text += mark;
    }
  }
  return text;
}

void appendJson(std::string_view json, sql::RowStore& rows) {
  if (json.starts_with('"')) {
    rows.append(std::string_view(jsonContents(json)));
  } else {
    appendNumber(json, rows);
  }
}

std::string jsonText(std::string_view text) {
  std::string json = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      json += '\\';
      json += c;
    } else if (static_cast<unsigned char>(c) < 0x20U) {
      constexpr std::string_view digits = "0123456789abcdef";
      json += "\\u00";
      json += digits[static_cast<unsigned char>(c) >> 4U];
      json += digits[static_cast<unsigned char>(c) & 0x0FU];
    } else {
      json += c;
    }
  }
  return json + '"';
}

template <class Number>
std::string shortest(Number value) {
  std::array<char, 64> buffer{};
  const auto [end, code] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  (void)code;  // the buffer is long enough for every number
  return {buffer.data(), end};
}

// What the embedded engine stores: zero has no sign.
double unsignedZero(double value) { return value == 0 ? 0.0 : value; }

std::string jsonNumber(double value) {
  constexpr double longest = 1e18;
  if (value == std::trunc(value) && std::abs(value) < longest)
    return shortest(static_cast<std::int64_t>(value)) + ".0";
  return shortest(value);
}

Error notStorable(const sql::ColumnShape& column, const char* why) {
  return {static_cast<std::int32_t>(RunTimeError::typeMismatch), "Pelmora",
          std::string("Type mismatch: ") + why + " in field '" + column.name + "'."};
}

std::string numberCell(double value, const sql::ColumnShape& column) {
  if (!column.isWhole) return shortest(unsignedZero(value));
  constexpr double limit = 9223372036854775808.0;  // 2^63
  if (value != std::trunc(value)) throw notStorable(column, "the number is not whole");
  if (value < -limit || value >= limit) throw makeError(RunTimeError::overflow);
  return shortest(static_cast<std::int64_t>(value));
}

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80U                    ? 1
                               : lead >= 0xC2U && lead < 0xE0U ? 2
                               : lead >= 0xE0U && lead < 0xF0U ? 3
                               : lead >= 0xF0U && lead < 0xF5U ? 4
                                                               : 0;
    if (length == 0 || length > text.size()) return false;
    for (std::size_t i = 1; i < length; ++i) {
      if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

void requireText(std::string_view text, const sql::ColumnShape& column) {
  if (text.find('\0') != std::string_view::npos)
    throw notStorable(column, "the text has a zero character");
  if (!isUtf8(text)) throw notStorable(column, "the text is not UTF-8");
}

std::string textCell(std::string_view text, const sql::ColumnShape& column) {
  requireText(text, column);
  if (column.kind == sql::ColumnKind::text) return std::string(text);
  if (column.kind == sql::ColumnKind::asStored) return jsonText(text);
  const auto number = wholly<double>(text);
  if (!number) throw notStorable(column, "the text is not a number");
  return numberCell(*number, column);
}

}  // namespace

void CellReader::append(std::string_view text, sql::RowStore& rows) const {
  switch (type_) {
    case type_id::int8:
    case type_id::int4:
    case type_id::int2:
    case type_id::numeric: return appendNumber(text, rows);
    case type_id::float4:
    case type_id::float8:
      if (const auto real = wholly<double>(text)) return rows.append(*real);
      return rows.append(text);
    case type_id::boolean: return rows.append(std::int64_t{text == "t" ? -1 : 0});
    case type_id::jsonb: return appendJson(text, rows);
    default: return rows.append(text);
  }
}

CellText cellText(const sql::CellView& cell, const sql::ColumnShape& column) {
  if (const auto* text = std::get_if<std::string_view>(&cell)) {
    return {false, textCell(*text, column)};
  }
  if (const auto* whole = std::get_if<std::int64_t>(&cell)) return {false, shortest(*whole)};
  if (const auto* real = std::get_if<double>(&cell)) {
    if (column.kind == sql::ColumnKind::number) return {false, numberCell(*real, column)};
    return {false, column.kind == sql::ColumnKind::text ? shortest(unsignedZero(*real))
                                                        : jsonNumber(*real)};
  }
  return {true, {}};
}

void appendCopyField(const CellText& cell, std::string& line) {
  if (cell.isNull) {
    line += "\\N";
    return;
  }
  for (const char c : cell.text) {
    switch (c) {
      case '\\': line += "\\\\"; break;
      case '\n': line += "\\n"; break;
      case '\r': line += "\\r"; break;
      case '\t': line += "\\t"; break;
      default: line += c;
    }
  }
}

std::string literalOf(const CellText& cell) { return cell.isNull ? "NULL" : quotedText(cell.text); }

}  // namespace pelmora::postgres
