// SPDX-License-Identifier: MIT
#include "report/pdf_report.h"

#include "report/outside_program.h"
#include "report/scratch_folder.h"

#include <pelmora/calibration/failure.h>

namespace pelmora::report {

std::string pdfReport(const Report& report, const PageOptions& options, const std::string& dccXml,
                      const std::stop_token& stop) {
  PageOptions paper = options;
  paper.isPaper = true;
  const ScratchFolder folder;
  const std::string page = folder.write("page.html", htmlReport(report, paper));
  std::vector<std::string> words{"weasyprint", "--pdf-variant", "pdf/a-3b"};
  if (!dccXml.empty())
    words.insert(words.end(), {"--attachment", folder.write("certificate.xml", dccXml)});
  words.insert(words.end(), {page, folder.file("report.pdf")});
  const ProgramEnd end = runProgram(words, "weasyprint", stop);
  std::string pdf = folder.read("report.pdf");
  if (end.exitCode == 0 && pdf.starts_with("%PDF-")) return pdf;
  throw calibration::Unusable({"weasyprint could not make the PDF: " + end.errors.substr(0, 300),
                               "", "write the page as .html and print it"});
}

}  // namespace pelmora::report
