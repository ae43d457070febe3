// SPDX-License-Identifier: MIT
#include "tests/sheets/sheet_reading.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace pelmora::sheets {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string utf16(std::string_view ascii, bool isBigEndian) {
  std::string bytes;
  for (const char c : ascii) {
    if (isBigEndian) bytes += '\0';
    bytes += c;
    if (!isBigEndian) bytes += '\0';
  }
  return bytes;
}

// How often the reading of `text` asks whether to stop, which it is told to at the question `last`.
int questionsUntil(const std::string& text, int last, bool& isStopped) {
  int asked = 0;
  try {
    Sheet sheet(text, {.stopRequested = [&] { return ++asked == last; }});
    for (Row row; sheet.next(row);) {
    }
    isStopped = false;
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), static_cast<std::int32_t>(0x80004004U)) << error.what();
    isStopped = true;
  }
  return asked;
}

TEST(sheet, reading_ends_wherever_it_is_stopped) {
  std::string text = "Roshko,Strouhal\n";
  for (int i = 1; i <= 2000; ++i) text += std::to_string(i) + ",2.25\n";
  bool isStopped = true;
  const int all = questionsUntil(text, 0, isStopped);
  EXPECT_FALSE(isStopped);
  EXPECT_GE(all, 2 * 2000 / 100);  // the whole text is looked at, and then read row by row
  for (int last = 1; last <= all; ++last) {
    EXPECT_EQ(questionsUntil(text, last, isStopped), last);
    EXPECT_TRUE(isStopped) << last;
  }
}

TEST(sheet, a_plain_file_has_no_remarks) {
  for (const char* text :
       {"Roshko,Strouhal\n100.5,2.25\n200,2.5\n", "100.5,2.25\n200,2.5",
        "a,b\r\n100.5,2.25\r\n200,2.5\r\n", "\"a\",\"b\"\r100.5,2.25\r200,2.5"}) {
    const Reading reading = read(text);
    EXPECT_EQ(reading.rows, twoPoints) << text;
    EXPECT_EQ(reading.recognised.words(), "") << text;
    EXPECT_TRUE(reading.recognised.isPlain());
  }
}

TEST(sheet, semicolons_and_tabs_separate_fields) {
  EXPECT_EQ(read("a;b\n100.5;2.25\n200;2.5\n").rows, twoPoints);
  const Reading tabs = read("a\tb\n100,5\t2,25\n200\t2,5\n");
  EXPECT_EQ(tabs.rows, twoPoints);
  EXPECT_EQ(tabs.recognised.words(), "tabs between fields, decimal comma");
}

TEST(sheet, byte_order_marks_and_utf16_are_recognised) {
  const std::string text = "a;b\r\n100,5;2,25\r\n200;2,5\r\n";
  EXPECT_THAT(read("\xEF\xBB\xBF" + text).recognised.words(), HasSubstr("byte order mark"));
  for (const std::string& bytes : {"\xFF\xFE" + utf16(text, false), "\xFE\xFF" + utf16(text, true),
                                   utf16(text, false), utf16(text, true)}) {
    const Reading reading = read(bytes);
    EXPECT_EQ(reading.rows, twoPoints);
    EXPECT_EQ(reading.recognised.encoding, Encoding::utf16);
    EXPECT_THAT(reading.recognised.words(), HasSubstr("UTF-16"));
  }
}

// Source: RFC 2781, section 5: U+12345 is D808 DF45.
TEST(sheet, utf16_keeps_characters_beyond_ascii) {
  const std::string bytes = "\xFF\xFE\xE4\0;\0\x08\xD8\x45\xDF\n\0"s + utf16("1;2\n", false);
  EXPECT_THAT(read(bytes).names, ElementsAre("\xC3\xA4", "\xF0\x92\x8D\x85"));
}

TEST(sheet, broken_utf16_and_nul_bytes_are_refused) {
  const std::string start = "\xFF\xFE" + utf16("a;b\n1;2\n", false);
  EXPECT_THAT(refusal(start + "1").problem(), HasSubstr("cut or broken"));
  EXPECT_THAT(refusal(start + "\x00\xDC"s).problem(), HasSubstr("cut or broken"));
  EXPECT_THAT(refusal("a,b\n1,2\n\0\n3,4\n"s).place(), HasSubstr("line 3"));
}

TEST(sheet, windows_1252_names_become_utf8) {
  const Reading reading = read(
      "Temperatur [\xB0"
      "C];Z\xE4hler\n20,5;3\n");
  EXPECT_THAT(reading.names, ElementsAre("Temperatur", "Z\xC3\xA4hler"));
  EXPECT_EQ(reading.units[0], "C");
  EXPECT_EQ(reading.recognised.encoding, Encoding::windows1252);
}

TEST(sheet, a_separator_line_decides) {
  const Reading reading = read("sep=;\r\nx;y\r\n100,5;2,25\r\n200;2,5\r\n");
  EXPECT_EQ(reading.rows, twoPoints);
  EXPECT_THAT(reading.recognised.words(), HasSubstr("as line 1 says"));
  EXPECT_THAT(reading.lines, ElementsAre(3, 4));
}

TEST(sheet, titles_units_and_comments_are_not_values) {
  const Reading reading = read(
      "Calibration of meter M1;;;\n"
      "Date;12.03.2024;;\n"
      "\n"
      "# taken by Ada\n"
      "No.;Flow;Frequency;\n"
      "-;l/min;Hz;\n"
      "1;100,5;2,25;\n"
      "# a pause\n"
      "2;200;2,5;\n"
      ";;;\n");
  EXPECT_EQ(reading.rows, (Numbers{{1, 100.5, 2.25}, {2, 200, 2.5}}));
  EXPECT_THAT(reading.names, ElementsAre("No.", "Flow", "Frequency"));
  EXPECT_THAT(reading.units, ElementsAre("", "l/min", "Hz"));
  EXPECT_THAT(reading.lines, ElementsAre(7, 9));
  EXPECT_EQ(reading.recognised.words(),
            "semicolons between fields, decimal comma, 2 title lines, 2 comment lines, the header "
            "in line 5, units in line 6, 1 empty column, 1 empty row");
}

TEST(sheet, units_are_taken_from_brackets_or_after_a_slash_or_comma) {
  const Reading reading = read(
      "Flow [gpm];f (Hz);nu / cSt;T in \xC2\xB0"
      "F;Length, m;Note, own;Q {x}\n1;2;3;4;5;6;7\n");
  EXPECT_THAT(reading.names, ElementsAre("Flow", "f", "nu", "T", "Length", "Note, own", "Q {x}"));
  EXPECT_THAT(reading.units, ElementsAre("gpm", "Hz", "cSt", "F", "m", "", ""));
}

TEST(sheet, units_may_end_a_name_without_brackets) {
  const Reading reading = read("flow_gpm;f Hz;rotor_2;visc_cSt;run 1\n1;2;3;4;5\n");
  EXPECT_THAT(reading.names, ElementsAre("flow", "f", "rotor_2", "visc", "run 1"));
  EXPECT_THAT(reading.units, ElementsAre("gpm", "Hz", "", "cSt", ""));
}

TEST(sheet, units_are_known_in_many_spellings) {
  const Reading reading = read("a [LPM];b [M3/H];c (deg C);d [mm\xC2\xB2/s]\n1;2;3;4\n");
  EXPECT_THAT(reading.units, ElementsAre("l/min", "m3/h", "C", "mm2/s"));
}

TEST(sheet, names_are_found_without_their_units_and_in_any_case) {
  const Sheet sheet("\" Flow [l/min] \",f\n1,2\n");
  EXPECT_EQ(sheet.find("flow"), 0U);
  EXPECT_EQ(sheet.find("Flow [l/min]"), 0U);
  EXPECT_EQ(sheet.find(" F "), 1U);
  EXPECT_EQ(sheet.find("2"), 1U);
  EXPECT_EQ(sheet.find("3"), std::nullopt);
  EXPECT_EQ(sheet.find(""), std::nullopt);
}

TEST(sheet, a_repeated_header_is_skipped) {
  const Reading reading = read("x,y\n100.5,2.25\nx,y\n200,2.5\n");
  EXPECT_EQ(reading.rows, twoPoints);
  EXPECT_EQ(reading.recognised.words(), "the header again in line 3");
}

TEST(sheet, remarks_are_about_the_whole_of_a_long_text) {
  const std::string part = ",,\n# a pause\nx,y,\n100.5,2.25,\n";
  std::string text = "x,y,\n200,2.5,\n" + part;
  for (int i = 0; i < 2500; ++i) text += "200,2.5,\n";
  const Reading reading = read(text + part);
  EXPECT_EQ(reading.rows.size(), 2503U);
  EXPECT_EQ(reading.recognised.words(),
            "2 comment lines, the header again in lines 5 and 2509, 1 empty column, 2 empty rows");
}

TEST(sheet, a_comment_above_the_values_may_be_the_header) {
  const Reading reading = read("# stand 3\n# Roshko,Strouhal\n100.5,2.25\n200,2.5\n");
  EXPECT_THAT(reading.names, ElementsAre("Roshko", "Strouhal"));
  EXPECT_EQ(reading.rows, twoPoints);
}

TEST(sheet, a_column_may_be_called_number_sign) {
  const Reading reading = read("#;x;y\n1;100,5;2,25\n");
  EXPECT_THAT(reading.names, ElementsAre("#", "x", "y"));
  EXPECT_EQ(reading.rows, (Numbers{{1, 100.5, 2.25}}));
}

TEST(sheet, two_separators_that_fit_equally_well_are_refused) {
  const std::string text = "1;2\t3\n4;5\t6\n";
  EXPECT_EQ(refusal(text).doubt(), SheetError::Doubt::separator);
  EXPECT_THAT(refusal(text, {.separator = ';'}).place(), HasSubstr("line 1, column 2"));
}

TEST(sheet, a_cut_row_does_not_change_the_separator) {
  const SheetError error = refusal("Roshko;Strouhal\n100,5;1200,1\n200,5\n");
  EXPECT_EQ(error.place(), "line 3");
  EXPECT_THAT(error.problem(), HasSubstr("1 field instead of 2"));
}

TEST(sheet, texts_with_another_separator_do_not_mislead) {
  EXPECT_EQ(read("Flow, hot;Flow, cold\n100,5;2,25\n200;2,5\n").rows, twoPoints);
  Sheet sheet("x,y,note\n100.5,2.25,warm; steady\n200,2.5,cold; steady\n");
  Row row;
  ASSERT_TRUE(sheet.next(row));
  EXPECT_THAT(row.fields, ElementsAre("100.5", "2.25", "warm; steady"));
}

TEST(sheet, a_row_of_spreadsheet_errors_is_not_a_comment) {
  EXPECT_EQ(refusal("x;y\n1;2\n#N/A;#N/A\n").place(), "line 3, column x");
  EXPECT_EQ(refusal("x;y\n1;2\n#WERT!;3\n").place(), "line 3, column x");
}

TEST(sheet, a_row_of_values_above_the_header_is_not_a_title) {
  EXPECT_EQ(refusal("1,2\nx,y\n3,4\n").place(), "line 2, column 1");
}

TEST(sheet, a_first_row_without_numbers_is_not_a_header) {
  for (const char* text : {"x;y\nn/a;n/a\n1,5;2\n", "x;y\n#DIV/0!;#DIV/0!\n1,5;2\n"})
    EXPECT_EQ(refusal(text).place(), "line 2, column x") << text;
}

TEST(sheet, rows_that_are_cut_or_too_long_are_refused) {
  EXPECT_EQ(refusal("x,y,z\n1,2,3\n4,5\n").place(), "line 3");
  EXPECT_THAT(refusal("x,y\n1,2\n3,4,5\n").problem(), HasSubstr("3 fields instead of 2"));
  EXPECT_EQ(read("x,y,\n1,2,\n3,4,,\n").rows, (Numbers{{1, 2}, {3, 4}}));
}

TEST(sheet, workbooks_and_other_kinds_are_named) {
  EXPECT_EQ(foreignKind("PK\3\4........xl/workbook.xml"), "an Excel workbook (.xlsx)");
  EXPECT_EQ(foreignKind("PK\3\4..mimetypeapplication/vnd.oasis.opendocument.spreadsheet"),
            "an OpenDocument spreadsheet (.ods)");
  EXPECT_THAT(foreignKind("\xD0\xCF\x11\xE0\xA1\xB1"), HasSubstr(".xls"));
  EXPECT_EQ(foreignKind("\r\n<HTML><table>"), "an HTML page");
  EXPECT_EQ(foreignKind("x,y\n1,2\n"), "");
  EXPECT_THAT(refusal("PK\3\4........xl/workbook.xml").problem(), HasSubstr("Excel workbook"));
}

TEST(sheet, an_empty_text_has_no_columns) {
  EXPECT_THAT(read("\n\n").names, IsEmpty());
  EXPECT_THAT(read("").rows, IsEmpty());
}

TEST(sheet, the_header_is_the_line_with_the_names) {
  const Reading reading =
      read("Meter,M1\nRoshko,Strouhal,Year\n1,2,3\n", {.names = {"strouhal", "roshko"}});
  EXPECT_EQ(reading.recognised.headerLine, 2U);
  EXPECT_EQ(reading.rows, (Numbers{{1, 2, 3}}));
}

}  // namespace
}  // namespace pelmora::sheets
