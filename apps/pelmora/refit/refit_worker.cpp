// SPDX-License-Identifier: MIT
#include "apps/pelmora/refit/refit_worker.h"

#include "apps/pelmora/checked_fit.h"
#include "apps/pelmora/interruption.h"

#include <optional>

namespace pelmora::cli {

void fitTasks(RefitWork& work) {
  CurveSession session(work.curves, Access::read);
  session.progress().mute();
  session.data().StatusUpdate = [](const std::string&) { requireNotInterrupted(); };
  for (std::size_t index = work.next++; index < work.request.tasks.size(); index = work.next++) {
    requireNotInterrupted();
    std::shared_lock reading(work.file);
    std::optional<OneMoment> moment(session);
    RefitCurve curve = fitTask(session, work.request, index);
    moment.reset();
    reading.unlock();
    if (!work.queue.send(std::move(curve))) return;
  }
}

}  // namespace pelmora::cli
