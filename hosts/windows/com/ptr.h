// Ptr: a counted COM reference; an empty one is "Nothing".
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <utility>

namespace quillfile::windows {

template <class T>
class Ptr {
 public:
  Ptr() = default;
  Ptr(T* object) : object_(object) {  // takes a reference of its own
    if (object_ != nullptr) object_->AddRef();
  }
  Ptr(const Ptr& other) : Ptr(other.object_) {}
  Ptr(Ptr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Ptr& operator=(Ptr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Ptr() {
    if (object_ != nullptr) object_->Release();
  }

  // Takes over a reference that the caller owns.
  static Ptr adopt(T* object) {
    Ptr result;
    result.object_ = object;
    return result;
  }

  T* get() const { return object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  T* detach() { return std::exchange(object_, nullptr); }

  // Where a call stores a reference: empties this first.
  T** out() {
    *this = Ptr{};
    return &object_;
  }

  // Where a call reads a reference and may replace it by another.
  T** place() { return &object_; }

  // The object's other interface; empty when it has none.
  template <class Other>
  Ptr<Other> as(const IID& iid = __uuidof(Other)) const {
    void* found = nullptr;
    if (object_ == nullptr || FAILED(object_->QueryInterface(iid, &found))) return {};
    return Ptr<Other>::adopt(static_cast<Other*>(found));
  }

 private:
  T* object_ = nullptr;
};

}  // namespace quillfile::windows
