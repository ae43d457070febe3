// Hands values from several threads to one, and makes the senders wait where it is slower.
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace pelmora::calibration {

template <class Value>
class BoundedQueue {
 public:
  // senders: how many threads will call leave() in the end.
  BoundedQueue(std::size_t capacity, std::size_t senders)
      : capacity_(capacity), senders_(senders) {}

  // Waits for room. False where the receiver has stopped: nobody will read the value.
  bool send(Value value) {
    std::unique_lock lock(mutex_);
    hasRoom_.wait(lock, [&] { return isStopped_ || values_.size() < capacity_; });
    if (isStopped_) return false;
    values_.push_back(std::move(value));
    hasValue_.notify_one();
    return true;
  }
  // A sender's last word.
  void leave() {
    const std::lock_guard lock(mutex_);
    --senders_;
    hasValue_.notify_one();
  }
  // Waits for a value; nothing once all senders have left and all values are read.
  std::optional<Value> receive() {
    std::unique_lock lock(mutex_);
    hasValue_.wait(lock, [&] { return senders_ == 0 || !values_.empty(); });
    if (values_.empty()) return std::nullopt;
    std::optional<Value> value(std::move(values_.front()));
    values_.pop_front();
    hasRoom_.notify_one();
    return value;
  }
  // Whether receive() would not wait; waits for that until `end`.
  bool isReadyBefore(std::chrono::steady_clock::time_point end) {
    std::unique_lock lock(mutex_);
    return hasValue_.wait_until(lock, end, [&] { return senders_ == 0 || !values_.empty(); });
  }
  // The receiver will read no more.
  void stop() {
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    hasRoom_.notify_all();
  }

 private:
  const std::size_t capacity_;
  std::size_t senders_;
  bool isStopped_ = false;
  std::deque<Value> values_;
  std::mutex mutex_;
  std::condition_variable hasRoom_, hasValue_;
};

}  // namespace pelmora::calibration
