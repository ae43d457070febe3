// SPDX-License-Identifier: MIT
#include "report/report_file.h"

#include "report/report_model.h"

#include <pelmora/calibration/failure.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace pelmora::report {
namespace {

namespace fs = std::filesystem;

// Written between two looks at the request to stop: some milliseconds of a slow disk.
constexpr std::size_t portion = std::size_t{1} << 20;

std::error_code lastFailure() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

// Removed again unless it got the name of the report.
class UnfinishedReport {
 public:
  explicit UnfinishedReport(const std::string& file) : file_(file), path_(file + ".unfinished") {}
  UnfinishedReport(const UnfinishedReport&) = delete;
  UnfinishedReport& operator=(const UnfinishedReport&) = delete;
  ~UnfinishedReport() {
    std::error_code ignored;
    if (!isNamed_) fs::remove(path_, ignored);
  }

  std::error_code write(std::string_view content, const std::stop_token& stop) {
    errno = 0;
    std::ofstream stream(path_, std::ios::binary | std::ios::trunc);
    while (stream && !content.empty()) {
      requireGoOn(stop);
      const std::string_view next = content.substr(0, portion);
      stream.write(next.data(), static_cast<std::streamsize>(next.size()));
      content.remove_prefix(next.size());
    }
    stream.close();
    if (!stream) return lastFailure();
    requireGoOn(stop);
    std::error_code failed;
    fs::rename(path_, file_, failed);
    isNamed_ = !failed;
    return failed;
  }

 private:
  fs::path file_, path_;
  bool isNamed_ = false;
};

}  // namespace

void writeFile(const std::string& file, const std::string& content, const std::stop_token& stop) {
  const std::error_code failed = UnfinishedReport(file).write(content, stop);
  if (!failed) return;
  throw calibration::Unusable({"'" + file + "' cannot be written: " + failed.message(), file,
                               "check the folder and the room on the disk"});
}

}  // namespace pelmora::report
