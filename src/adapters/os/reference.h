// A counted reference to a COM object.
// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

namespace pelmora::os {

template <class Interface>
class Reference {
 public:
  Reference() = default;
  // Takes over a reference that is counted already.
  explicit Reference(Interface* counted) : object_(counted) {}
  Reference(const Reference& other) : object_(other.object_) {
    if (object_ != nullptr) object_->AddRef();
  }
  Reference(Reference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Reference& operator=(Reference other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Reference() {
    if (object_ != nullptr) object_->Release();
  }

  // A further reference to an object that somebody else holds; null stays null.
  [[nodiscard]] static Reference to(Interface* object) {
    if (object != nullptr) object->AddRef();
    return Reference(object);
  }

  [[nodiscard]] Interface* get() const { return object_; }
  Interface* operator->() const { return object_; }
  Interface& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }
  // For functions that hand out a counted reference. Drops what is held.
  [[nodiscard]] Interface** receive() {
    *this = Reference();
    return &object_;
  }
  [[nodiscard]] Interface* release() { return std::exchange(object_, nullptr); }

 private:
  Interface* object_ = nullptr;
};

}  // namespace pelmora::os
