// SPDX-License-Identifier: MIT
#include "apps/pelmora/workbench/browser.h"

#include "programs/spawn_plan.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <system_error>
#include <thread>

namespace pelmora::cli::workbench {
namespace {

// xdg-open ends at once or when the browser does: a thread of its own waits for it.
void startBrowser(const std::string& file) {
  SpawnPlan plan;
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    plan.open(stream, "/dev/null", O_RDWR);
  pid_t child = 0;
  if (plan.start("xdg-open", {file}, child) != 0) return;
  std::thread([child] {
    int status = 0;
    (void)::waitpid(child, &status, 0);
  }).detach();
}

}  // namespace

BrowserFile::BrowserFile(const std::string& address) {
  std::error_code failed;
  std::string pattern =
      (std::filesystem::temp_directory_path(failed) / "pelmora-open-XXXXXX").string();
  if (failed || ::mkdtemp(pattern.data()) == nullptr) return;
  folder_ = pattern;
  const std::filesystem::path file = folder_ / "workbench.html";
  // The address holds letters, digits and punctuation that need no escaping.
  std::ofstream(file)
      << "<!doctype html>\n<meta charset=\"utf-8\">\n<title>Pelmora workbench</title>\n"
      << "<meta http-equiv=\"refresh\" content=\"0;url=" << address << "\">\n"
      << "<p><a href=\"" << address << "\">Open the workbench</a></p>\n";
  startBrowser("file://" + file.string());
}

BrowserFile::~BrowserFile() {
  if (folder_.empty()) return;
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

}  // namespace pelmora::cli::workbench
