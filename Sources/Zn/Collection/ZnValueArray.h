//===- ZnValueArray.h - Growable arrays of plain values --------------------===//
#pragma once
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnObject.h"
#include "Zn/IO/ZnWriter.h"

namespace Zn {

/// How a ValueArray stores and prints T. The storage is the target's
/// width: long is 32-bit there, whatever the build machine says.
template <class T> struct PODTraits {
  using Type = T;
};
template <> struct PODTraits<long> {
  using Type = int32_t;
};

/// An object holding a plain, growable array of values: no boxing, one
/// heap block. A new non-empty array starts with room for 16 values and
/// doubles as needed.
template <class Traits> class ValueArray : public Object {
public:
  using Type = typename Traits::Type;

  ValueArray() = default;
  ValueArray(const Type* theValues, ZnIndex theCount) { appendValues(theValues, theCount); }
  ValueArray(const ValueArray& theOther) : Object() { appendValues(theOther.values_, theOther.count_); }

  ZnIndex getCount() const { return count_; }
  /// Borrowed; the storage itself, valid until the array changes.
  const Type* getValues() const { return values_; }
  /// The first index holding theValue, or -1.
  ZnIndex indexOfValue(Type theValue) const {
    for (ZnIndex i = 0; i < count_; ++i)
      if (values_[i] == theValue)
        return i;
    return -1;
  }

  bool isEqual(const Object* theOther) const override;
  uint32_t hash() const override { return HashMemory(values_, Sys::size_t(count_) * sizeof(Type)); }
  Object* copy() const override { return retain(); }
  Object* mutableCopy() const override;
  /// "{ 1, 2, 3 }".
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override { return "ValueArray"; }
  const char* superclassName() const override { return "Object"; }
  const char* getTypeName() const { return "ValueArrayT"; }

  /// Inline, since index sets read every value; both bounds are checked.
  Type getValueAtIndex(ZnIndex theIndex) const {
    ZnAssert(theIndex >= 0, theIndex);
    ZnAssert(theIndex < count_, theIndex);
    return values_[theIndex];
  }

protected:
  ~ValueArray() override { Free(values_); }
  void ensureCapacity(ZnIndex theNeeded);
  void appendValues(const Type* theValues, ZnIndex theCount);

  Type* values_ = nullptr;
  ZnIndex count_ = 0;
  ZnIndex capacity_ = 0;
};

/// A value array that changes in place; its capacity never shrinks.
template <class Traits> class MutableValueArray : public ValueArray<Traits> {
public:
  using Type = typename Traits::Type;

  MutableValueArray() = default;
  MutableValueArray(const Type* theValues, ZnIndex theCount) : ValueArray<Traits>(theValues, theCount) {}
  explicit MutableValueArray(const ValueArray<Traits>* theArray)
      : ValueArray<Traits>(theArray->getValues(), theArray->getCount()) {}

  ZnIndex getCapacity() const { return this->capacity_; }
  void addValue(Type theValue) { this->appendValues(&theValue, 1); }
  void setValueAtIndex(ZnIndex theIndex, Type theValue) {
    ZnAssert(theIndex < this->count_, theIndex);
    this->values_[theIndex] = theValue;
  }
  void insertValueAtIndex(ZnIndex theIndex, Type theValue) {
    ZnAssert(theIndex <= this->count_, theIndex);
    this->ensureCapacity(this->count_ + 1);
    MoveMemory(this->values_ + theIndex, this->values_ + theIndex + 1,
               Sys::size_t(this->count_ - theIndex) * sizeof(Type));
    this->values_[theIndex] = theValue;
    ++this->count_;
  }
  void removeValueAtIndex(ZnIndex theIndex) {
    ZnAssert(theIndex < this->count_, theIndex);
    MoveMemory(this->values_ + theIndex + 1, this->values_ + theIndex,
               Sys::size_t(this->count_ - theIndex - 1) * sizeof(Type));
    --this->count_;
  }
  void removeAllValues() { this->count_ = 0; }
  /// Borrowed, writable; valid until the next growth.
  Type* getMutableValues() { return this->values_; }
  /// Drops the values from theCount on.
  void truncate(ZnIndex theCount) {
    ZnAssert(theCount <= this->count_, theCount);
    this->count_ = theCount;
  }

  Object* copy() const override { return new ValueArray<Traits>(*this); }
  const char* className() const override { return "MutableValueArray"; }
  const char* superclassName() const override { return "ValueArray"; }

protected:
  ~MutableValueArray() override = default;
};

//===--- ValueArray members ---------------------------------------------===//

template <class Traits> void ValueArray<Traits>::ensureCapacity(ZnIndex theNeeded) {
  if (theNeeded <= capacity_)
    return;
  ZnIndex capacity = capacity_ == 0 ? 16 : capacity_;
  while (capacity < theNeeded)
    capacity *= 2;
  values_ = static_cast<Type*>(Reallocate(values_, Sys::size_t(capacity) * sizeof(Type)));
  capacity_ = capacity;
}

template <class Traits> void ValueArray<Traits>::appendValues(const Type* theValues, ZnIndex theCount) {
  if (theCount <= 0)
    return;
  ensureCapacity(count_ + theCount);
  CopyMemory(theValues, values_ + count_, Sys::size_t(theCount) * sizeof(Type));
  count_ += theCount;
}

template <class Traits> bool ValueArray<Traits>::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const ValueArray* other = dynamic_cast<const ValueArray*>(theOther);
  if (other == nullptr || other->count_ != count_)
    return false;
  for (ZnIndex i = 0; i < count_; ++i)
    if (values_[i] != other->values_[i])
      return false;
  return true;
}

template <class Traits> Object* ValueArray<Traits>::mutableCopy() const {
  return new MutableValueArray<Traits>(this);
}

template <class Traits> void ValueArray<Traits>::writeDescription(Writer* theWriter) const {
  theWriter->putBytes("{");
  for (ZnIndex i = 0; i < count_; ++i)
    theWriter->putFormat(i == 0 ? " %lld" : ", %lld", static_cast<long long>(values_[i]));
  theWriter->putBytes(" }");
}

/// The value array that index sets are made of.
using IndexValueArray = ValueArray<PODTraits<long>>;
using MutableIndexValueArray = MutableValueArray<PODTraits<long>>;
} // namespace Zn
