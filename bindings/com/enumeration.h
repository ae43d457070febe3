// A fixed list of interfaces or of connections as a COM enumerator.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/os/reference.h"
#include "bindings/com/module.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>
#include <vector>

namespace pelmora::com {

// `Enum` is the interface (IEnumConnections ...), `Item` what it hands out, `Kept` what copies to
// an Item with a counted reference by its member function `handOut`.
template <class Enum, class Item, class Kept>
class Enumeration final : public Enum {
 public:
  // Starts with one reference.
  Enumeration(REFIID identity, std::vector<Kept> items)
      : identity_(identity), items_(std::move(items)) {}
  Enumeration(const Enumeration&) = delete;
  Enumeration& operator=(const Enumeration&) = delete;

  STDMETHODIMP QueryInterface(REFIID identity, void** found) override {
    if (found == nullptr) return E_POINTER;
    *found = nullptr;
    if (!IsEqualIID(identity, IID_IUnknown) && !IsEqualIID(identity, identity_))
      return E_NOINTERFACE;
    AddRef();
    *found = static_cast<Enum*>(this);
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP Next(ULONG wanted, Item* items, ULONG* fetched) override {
    if (items == nullptr || (fetched == nullptr && wanted != 1)) return E_POINTER;
    ULONG count = 0;
    while (count < wanted && next_ < items_.size()) items[count++] = items_[next_++].handOut();
    if (fetched != nullptr) *fetched = count;
    return count == wanted ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const auto left = static_cast<ULONG>(items_.size() - next_);
    next_ += std::min(count, left);
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    next_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(Enum** clone) override {
    if (clone == nullptr) return E_POINTER;
    auto* made = new (std::nothrow) Enumeration(identity_, items_);
    if (made != nullptr) made->next_ = next_;
    *clone = made;
    return made == nullptr ? E_OUTOFMEMORY : S_OK;
  }

 private:
  ~Enumeration() = default;

  const InUse inUse_;
  std::atomic<ULONG> references_ = 1;
  IID identity_;
  std::vector<Kept> items_;
  std::size_t next_ = 0;
};

}  // namespace pelmora::com
