// SPDX-License-Identifier: MIT
#include <pelmora/sheet.h>

namespace pelmora::sheets {
namespace {

std::string counted(std::size_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string separatorWords(char separator) {
  switch (separator) {
    case ',': return "commas between fields";
    case ';': return "semicolons between fields";
    case '\t': return "tabs between fields";
    default: return std::string("'") + separator + "' between fields";
  }
}

std::string thousandsWords(const std::string& sign) {
  if (sign == ",") return "thousands grouped by commas";
  if (sign == ".") return "thousands grouped by points";
  return sign == "'" ? "thousands grouped by apostrophes" : "thousands grouped by blanks";
}

class Phrases {
 public:
  void add(bool isThere, const std::string& phrase) {
    if (isThere) text_ += (text_.empty() ? "" : ", ") + phrase;
  }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  std::string text_;
};

std::string repeatedWords(const std::vector<std::size_t>& lines) {
  constexpr std::size_t mostLines = 5;
  std::string text = lines.size() == 1 ? "the header again in line " : "the header again in lines ";
  for (std::size_t i = 0; i < lines.size() && i < mostLines; ++i)
    text += (i == 0 ? "" : " and ") + std::to_string(lines[i]);
  return text + (lines.size() > mostLines ? " ..." : "");
}

}  // namespace

bool Recognised::isPlain() const { return words().empty(); }

std::string Recognised::words() const {
  Phrases phrases;
  phrases.add(encoding == Encoding::utf16, "UTF-16");
  phrases.add(encoding == Encoding::windows1252, "Windows-1252");
  phrases.add(encoding == Encoding::utf8 && hasByteOrderMark, "a byte order mark");
  const bool isSeparatorUsual = separator == ',' && !isSeparatorStated;
  phrases.add(!isSeparatorUsual,
              separatorWords(separator) + (isSeparatorStated ? " (as line 1 says)" : ""));
  phrases.add(decimal == ',', "decimal comma");
  phrases.add(!isSeparatorUsual && decimal == '.', "decimal point");
  phrases.add(!thousands.empty(), thousandsWords(thousands));
  phrases.add(titleLines > 0, counted(titleLines, "title line"));
  phrases.add(commentLines > 0, counted(commentLines, "comment line"));
  phrases.add(headerLine > 1, "the header in line " + std::to_string(headerLine));
  phrases.add(unitsLine > 0, "units in line " + std::to_string(unitsLine));
  phrases.add(!repeatedHeaders.empty(), repeatedWords(repeatedHeaders));
  phrases.add(emptyColumns > 0, counted(emptyColumns, "empty column"));
  phrases.add(emptyRows > 0, counted(emptyRows, "empty row"));
  return phrases.text();
}

}  // namespace pelmora::sheets
