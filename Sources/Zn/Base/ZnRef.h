//===- ZnRef.h - Owning pointer that holds exactly one reference ----------===//
#pragma once
#include <utility>

namespace Zn {

/// Owns exactly one reference, or nothing. There is deliberately no Ref(T*):
/// say adopt() for a +1 you were handed, retained() for a borrowed pointer.
template <class T> class Ref {
public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  Ref(const Ref& theOther) : object_(theOther.object_) {
    if (object_)
      object_->retain();
  }
  Ref(Ref&& theOther) noexcept : object_(std::exchange(theOther.object_, nullptr)) {}
  template <class U>
  Ref(Ref<U>&& theOther) noexcept : object_(theOther.leak()) {}
  Ref& operator=(Ref theOther) noexcept {
    std::swap(object_, theOther.object_);
    return *this;
  }
  ~Ref() {
    if (object_)
      object_->release();
  }
  T* get() const { return object_; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }
  /// Hands the +1 to the caller and leaves this empty.
  [[nodiscard]] T* leak() { return std::exchange(object_, nullptr); }

private:
  template <class U> friend Ref<U> adopt(U* theObject);
  T* object_ = nullptr;
};

/// Takes over a +1 reference.
template <class T> Ref<T> adopt(T* theObject) {
  Ref<T> r;
  r.object_ = theObject;
  return r;
}

/// Takes a new reference to a borrowed pointer.
template <class T> Ref<T> retained(T* theObject) {
  if (theObject)
    theObject->retain();
  return adopt(theObject);
}
} // namespace Zn
