// A calibration stand's measured data.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/calibration/failure.h>
#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/patience.h>
#include <pelmora/sheet.h>
#include <pelmora/stand.h>

#include <chrono>
#include <string>
#include <vector>

namespace pelmora::calibration {

// A stand's text file that cannot be read as a table, or a workbook in place of one.
class PELMORA_API UnreadableText : public BadData {
 public:
  UnreadableText(const std::string& location, const sheets::SheetError& error);
  ~UnreadableText() override;

  // The member of sheets::Style that would settle it.
  [[nodiscard]] sheets::SheetError::Doubt doubt() const noexcept { return doubt_; }

 private:
  sheets::SheetError::Doubt doubt_;
};

// Opened for reading by the constructor, closed by the destructor.
class PELMORA_API Stand {
 public:
  // A stand's database, or its export as a text file with the columns JobRecordID and V1 to V37.
  // `style` states what should not be left to recognition in a text file.
  //
  // Errors: NotFound, Unusable; UnreadableText; another BadData for a text file without a column
  //         JobRecordID.
  explicit Stand(const std::string& location,
                 const Patience& patience = {.limit = std::chrono::seconds(30), .goesOn = {}},
                 const sheets::Style& style = {});

  [[nodiscard]] const std::string& location() const { return location_; }
  // In rising order.
  [[nodiscard]] const std::vector<std::string>& jobs() const { return jobs_; }
  // Errors: NotFound, which lists the jobs of the stand.
  void requireJob(const std::string& job) const;
  [[nodiscard]] const ConnectionPtr& connection() const { return opened_.connection; }
  // How a text file was read; nothing for a database.
  [[nodiscard]] const std::optional<sheets::Recognised>& recognised() const {
    return opened_.recognised;
  }
  // The line of a job's point in a text file; 0 for a database. point: counted from 0.
  [[nodiscard]] std::size_t lineOf(const std::string& job, std::size_t point) const;

 private:
  std::string location_;
  OpenedStand opened_;
  std::vector<std::string> jobs_;
};

// One run of a stand: its job, its fluid and who ran it.
struct StandRun {
  std::string job{}, fluid{};
  std::string operatorName{};  // empty: "Unknown"
};

}  // namespace pelmora::calibration
