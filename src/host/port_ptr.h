// Owner of one reference to a counted port object, as _com_ptr_t is.
#pragma once

#include <utility>

namespace tavlet::host {

template <class T>
class PortPtr {
 public:
  PortPtr() = default;
  // Takes over a reference the caller already owns (an out parameter's).
  static PortPtr Adopt(T* object) {
    PortPtr p;
    p.object_ = object;
    return p;
  }
  // Adds a reference of its own.
  static PortPtr Share(T* object) {
    if (object) object->AddRef();
    return Adopt(object);
  }
  PortPtr(const PortPtr& other) : object_(other.object_) {
    if (object_) object_->AddRef();
  }
  PortPtr(PortPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  PortPtr& operator=(PortPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~PortPtr() {
    if (object_) object_->Release();
  }

  T* Get() const { return object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  // For an out parameter: drops what is held and hands out the slot.
  T** Receive() {
    *this = PortPtr();
    return &object_;
  }

 private:
  T* object_ = nullptr;
};

}  // namespace tavlet::host
