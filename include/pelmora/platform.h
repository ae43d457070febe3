// The world around the component: what a host may replace, one set per thread.
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
  // The standard modal message box: style and result codes are the standard ones (OK 1, Cancel 2,
  // Abort 3, Retry 4, Ignore 5, Yes 6, No 7). By default the text goes to standard error and the
  // answer is the one that changes nothing: OK for a lone OK button, Abort, No, or else Cancel.
  std::function<int(const std::string& text, int style, const std::string& title)> messageBox;
  std::function<std::unique_ptr<BandTester>()> createBandTester;
  std::function<std::unique_ptr<FitEngine>()> createFitEngine;
  // Lets pending host messages be processed; does nothing by default.
  std::function<void()> pumpMessages;
  // Where equation files and log.txt live; the folder of the library itself by default.
  std::string componentFolder;
  // Makes the connection to a location that the component opens itself; returned unopened.
  std::function<ConnectionPtr(const std::string& location)> createConnection;
  // Makes what shows the component's own message form as a window. Empty, as by default: messageBox
  // is shown in its place.
  std::function<std::unique_ptr<FormPresenter>()> createFormPresenter;
};

// The calling thread's own platform. A thread is an apartment: two threads never share it.
[[nodiscard]] PELMORA_API Platform& platform();

}  // namespace pelmora
