// The services around the component that a host may replace; one set per thread.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/band_tester.h>
#include <pelmora/database.h>
#include <pelmora/export.h>
#include <pelmora/fit_engine.h>

#include <functional>
#include <memory>
#include <string>

namespace pelmora {

class FormPresenter;

struct Platform {
  // The modal message box, with the standard style and result codes (OK 1, Cancel 2, Abort 3,
  // Retry 4, Ignore 5, Yes 6, No 7). By default the text goes to standard error and the answer is
  // the one that changes nothing: OK if that is the only button, Abort, No, or else Cancel.
  std::function<int(const std::string& text, int style, const std::string& title)> messageBox;
  std::function<std::unique_ptr<BandTester>()> createBandTester;
  std::function<std::unique_ptr<FitEngine>()> createFitEngine;
  // Lets pending host messages be processed; does nothing by default.
  std::function<void()> pumpMessages;
  // The folder of equation files and log.txt; by default, the folder of the library itself.
  std::string componentFolder;
  // Creates a connection to a location that the component then opens itself.
  std::function<ConnectionPtr(const std::string& location)> createConnection;
  // Creates the presenter that shows the component's own message form as a window. If empty (the
  // default), messageBox is shown instead.
  std::function<std::unique_ptr<FormPresenter>()> createFormPresenter;
};

// The calling thread's own platform. A thread is an apartment: two threads never share it.
[[nodiscard]] PELMORA_API Platform& platform();

}  // namespace pelmora
