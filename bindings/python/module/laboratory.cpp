// SPDX-License-Identifier: MIT
#include "bindings/python/module/laboratory.h"

#include <pelmora/calibration/failure.h>

namespace pelmora::python {

namespace cal = pelmora::calibration;

Laboratory::Laboratory(const Settings& settings)
    : location_(settings.location), isWritable_(settings.mode == cal::Mode::write) {
  cal::OpenOptions options;
  options.mode = settings.mode;
  options.userName = settings.userName;
  options.patience.limit = settings.wait;
  options.patience.goesOn = [stop = stop_](std::chrono::milliseconds) {
    return !stop->token.stop_requested();
  };
  options.patience.stopRequested = [stop = stop_] { return stop->token.stop_requested(); };
  watched({}, [&](const cal::Observer& observer) {
    stop_->token = observer.stop;
    database_.emplace(settings.isNew ? cal::create(location_, options)
                                     : cal::open(location_, options));
    location_ = database_->location();  // without the password of an address
  });
  isOpen_ = true;
}

void Laboratory::close() {
  requireOutside();
  if (!isOpen_) return;
  watched({}, [&](const cal::Observer& observer) {
    const Claim claim(*this, {}, observer.stop);
    isOpen_ = false;
    database_.reset();
  });
}

void Laboratory::requireOutside() const {
  if (caller_.load() != std::this_thread::get_id()) return;
  throw cal::Failure({"the database is busy with the operation that called this function",
                      location_, "open it once more for use in callbacks"});
}

void Laboratory::requireWritable() const {
  if (isWritable_) return;
  throw cal::Unusable(
      {"the database is open for reading", location_, "open it with mode=\"w\" to change it"});
}

cal::Database& Laboratory::database() {
  if (database_) return *database_;
  throw cal::Failure({"the database is closed", location_, "open it again with pelmora.open"});
}

Laboratory::Claim::Claim(Laboratory& laboratory, std::thread::id caller,
                         const std::stop_token& stop)
    : laboratory_(laboratory), lock_(laboratory.mutex_, std::defer_lock) {
  while (!lock_.try_lock_for(std::chrono::milliseconds(20))) {
    if (stop.stop_requested())
      throw cal::Cancelled({"the wait for another thread was cancelled", laboratory.location_, ""});
  }
  laboratory_.caller_ = caller;
  laboratory_.stop_->token = stop;
}

Laboratory::Claim::~Claim() { laboratory_.caller_ = std::thread::id(); }

}  // namespace pelmora::python
