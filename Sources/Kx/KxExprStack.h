//===- KxExprStack.h - Heap stack for walking deep expression trees --------===//
#pragma once
#include <type_traits>
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnTypes.h"

namespace Zn::Kx {

/// A stack of plain records on the heap. Walks over expression trees keep
/// their pending work here instead of recursing: a chain of operators can
/// be far deeper than the C++ stack allows.
template <class T> class ExprStack {
  static_assert(std::is_trivially_copyable_v<T>, "records are moved as bytes");

public:
  ExprStack() = default;
  ExprStack(const ExprStack&) = delete;
  ExprStack& operator=(const ExprStack&) = delete;
  ~ExprStack() { Free(items_); }

  bool isEmpty() const { return count_ == 0; }
  ZnIndex getCount() const { return count_; }
  /// The record at theIndex from the bottom; valid until the next push.
  T& at(ZnIndex theIndex) { return items_[theIndex]; }
  /// Drops the records from theCount up (the storage is kept).
  void truncate(ZnIndex theCount) { count_ = theCount; }
  /// Valid until the next push.
  T& top() { return items_[count_ - 1]; }
  T pop() { return items_[--count_]; }
  void push(const T& theItem) {
    if (count_ == capacity_) {
      // Doubling from a few records: most walks stay shallow.
      capacity_ = capacity_ == 0 ? 8 : capacity_ * 2;
      items_ = static_cast<T*>(Reallocate(items_, Sys::size_t(capacity_) * sizeof(T)));
    }
    items_[count_++] = theItem;
  }

private:
  T* items_ = nullptr;
  ZnIndex count_ = 0;
  ZnIndex capacity_ = 0;
};
} // namespace Zn::Kx
