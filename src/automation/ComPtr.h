// Counted references to COM objects.
#pragma once

#include <cstddef>
#include <utility>

#include <unknwn.h>

namespace rowlark::automation {

template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(std::nullptr_t) {}
  // Adds a reference.
  ComPtr(T* object) : object_(object) {
    if (object_ != nullptr) object_->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.object_) {}
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPtr() {
    if (object_ != nullptr) object_->Release();
  }

  // Takes over a reference.
  static ComPtr Attach(T* object) {
    ComPtr pointer;
    pointer.object_ = object;
    return pointer;
  }
  T* Detach() { return std::exchange(object_, nullptr); }
  // For an out-parameter; what is held goes.
  T** Put() {
    *this = nullptr;
    return &object_;
  }

  // Another interface of an object; null when it has none.
  template <class U>
  static ComPtr From(U* object) {
    ComPtr pointer;
    if (object != nullptr) object->QueryInterface(__uuidof(T), reinterpret_cast<void**>(pointer.Put()));
    return pointer;
  }

  T* get() const { return object_; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  T* object_ = nullptr;
};

}  // namespace rowlark::automation
