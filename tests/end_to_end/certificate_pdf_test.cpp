// The certificate on paper, with the digital one attached.
// SPDX-License-Identifier: MIT
#include "tests/end_to_end/certificate_fixture.h"

#include <filesystem>

namespace pelmora::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// One run of weasyprint, which takes seconds, for all that only it can show. With every detail that
// a laboratory records, the first page still has room for the picture.
TEST_F(certificate, pdf_has_picture_pages_and_the_digits_of_the_attached_one) {
  if (!isInstalled("weasyprint") || !isInstalled("pdftotext")) {
    EXPECT_THAT(trouble(3, {"report", curves, "--meter", "M1", "-o", scratch.file("m1.pdf")}),
                HasSubstr("weasyprint"));
    GTEST_SKIP() << "weasyprint or pdftotext is not installed";
  }
  recordEverything();
  recordStand();
  done(meter({"--order-number",
              "PO 88",
              "--place",
              "Bay 2",
              "--inventory-number",
              "42",
              "--diameter",
              "25.4 mm",
              "--expansion",
              "1.728e-5 1/K",
              "--customer-street",
              "Harbour road 3",
              "--customer-post-code",
              "21079",
              "--customer-country",
              "DE",
              "--method",
              "Comparison with a master meter, standing start and stop",
              "--procedure",
              "QP-17",
              "--traceability",
              "Master meter MM-3, certificate 2024-118 of the national institute",
              "--ambient-humidity",
              "44 %",
              "--ambient-pressure",
              "1008 hPa",
              "--line-pressure",
              "3 bar",
              "--issue-date",
              "2026-11-22"}));
  EXPECT_THAT(written("m1.pdf"), StartsWith("%PDF-"));
  ASSERT_TRUE(succeeds("pdftotext -layout '" + scratch.file("m1.pdf") + "' '" +
                       scratch.file("m1.txt") + "'"));
  const std::string text = bytesOf(scratch.file("m1.txt"));
  const std::regex foot("Meter M1, calibration 0 +Page (\\d+) of (\\d+)");
  int pages = 0, last = 0;
  for (std::sregex_iterator at(text.begin(), text.end(), foot), end; at != end; ++at) {
    EXPECT_EQ(std::stoi((*at)[1]), ++pages);
    last = std::stoi((*at)[2]);
  }
  EXPECT_EQ(pages, last);
  EXPECT_GE(pages, 4);
  const std::string front = text.substr(0, text.find("Page 1 of"));
  for (const char* words : {"Results", "date, signature", "below, the residuals"})
    EXPECT_THAT(front, HasSubstr(words));
  ASSERT_TRUE(succeeds("pdfdetach -save 1 -o '" + scratch.file("attached.xml") + "' '" +
                       scratch.file("m1.pdf") + "'"));
  EXPECT_THAT(done({"check-dcc", scratch.file("attached.xml")}).output, HasSubstr("No flaw"));
  const std::set<std::string> onPaper = wordsOf(text);
  for (const std::string& word : certifiedNumbers(bytesOf(scratch.file("attached.xml"))))
    ASSERT_TRUE(onPaper.contains(word)) << word;
}

TEST_F(certificate, pdf_says_why_nothing_is_attached) {
  // In place of the real program: the last word names the file.
  const std::string program =
      write("weasyprint", "#!/bin/sh\nfor file; do :; done\nprintf '%%PDF-1.7' > \"$file\"\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  const std::string path = std::getenv("PATH");
  ::setenv("PATH", (program.substr(0, program.rfind('/')) + ":" + path).c_str(), 1);
  const auto result = run({"report", curves, "--meter", "M1", "-o", scratch.file("m1.pdf")});
  ::setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, HasSubstr("no digital certificate is attached"));
}

}  // namespace
}  // namespace pelmora::test
