//===- ZnArray.h - Ordered lists of retained objects -----------------------===//
#pragma once
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnObject.h"
#include "Zn/Collection/ZnEnumerator.h"
#include "Zn/Collection/ZnRange.h"

namespace Zn {
class IndexSet;

/// Immutable, ordered list of objects, each retained while the array holds
/// it and never null; accessors return borrowed pointers.
class Array : public Object {
public:
  Array() = default;
  /// The elements up to the first null argument, e.g. Array(a, b, nullptr).
  template <class... Rest>
  explicit Array(Object* theFirst, Rest... theRest) {
    Object* list[] = {theFirst, static_cast<Object*>(theRest)...};
    initWithList(list, ZnIndex(sizeof...(Rest) + 1));
  }
  /// theCount non-null objects, each retained.
  Array(Object* const* theArray, ZnIndex theCount);
  Array(const Array& theArray);
  /// Everything the enumerator still delivers.
  explicit Array(Enumerator* theEnumerator);

  ZnIndex getCount() const { return count_; }
  /// Borrowed; valid while this array holds it.
  Object* objectAtIndex(ZnIndex theIndex) const;
  /// Borrowed; null when empty.
  Object* getLastObject() const { return count_ > 0 ? objects_[count_ - 1] : nullptr; }
  /// The first index whose element isEqual the object, or -1.
  ZnIndex indexOfObject(const Object* theObject) const;
  bool containsObject(const Object* theObject) const { return indexOfObject(theObject) >= 0; }
  /// Borrowed; the storage itself, valid until the array changes.
  Object* const* getObjects() const { return objects_; }
  /// +1. A new enumerator at the first element.
  Enumerator* getObjectEnumerator() const;

  /// Equal counts and pairwise equal elements, in order.
  bool isEqual(const Object* theOther) const override;
  /// XOR of the elements' hashes, so equal arrays hash alike.
  uint32_t hash() const override;
  Object* copy() const override;
  Object* mutableCopy() const override;
  /// "{", one element per indented line, "," between them, "}".
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Array() override;
  /// Makes room for theNeeded pointers: from 0 to 1, then doubling.
  void ensureCapacity(ZnIndex theNeeded);
  /// Appends without checks; the object is retained.
  void appendObject(Object* theObject) {
    if (count_ >= capacity_)
      ensureCapacity(count_ + 1);
    objects_[count_++] = theObject->retain();
  }
  /// Makes room for exactly theCapacity pointers (never shrinks).
  void reserveExactly(ZnIndex theCapacity);
  void appendObjectsFromEnumerator(Enumerator* theEnumerator);
  void releaseObjectsInRange(Range theRange);

  Object** objects_ = nullptr;
  ZnIndex count_ = 0;
  ZnIndex capacity_ = 0;

private:
  void initWithList(Object* const* theList, ZnIndex theLength);
};

/// An array that changes in place.
class MutableArray : public Array {
public:
  /// Room for theExtraCapacity more than the source holds; the source's
  /// elements (if any) are appended.
  explicit MutableArray(const Array* theArray = nullptr, ZnIndex theExtraCapacity = 0);

  ZnIndex getCapacity() const { return capacity_; }
  void addObject(Object* theObject);
  /// Replaces the element at theIndex, or appends when theIndex == count.
  void setObjectAtIndex(ZnIndex theIndex, Object* theObject);
  void insertObjectAtIndex(ZnIndex theIndex, Object* theObject);
  void insertObjects(ZnIndex theIndex, Object* const* theObjects, ZnIndex theCount);
  void addObjectsFromArray(const Array* theArray);
  void addObjectsFromEnumerator(Enumerator* theEnumerator);
  void removeObjectAtIndex(ZnIndex theIndex);
  void removeLastObject() { removeObjectAtIndex(count_ - 1); }
  void moveObject(ZnIndex oldIndex, ZnIndex newIndex);
  /// Removes the first element equal to theObject (nothing when none is).
  void removeObject(const Object* theObject);
  /// Itself: empties the array. Another array: removes, for each of its
  /// elements in order, the first equal element here.
  void removeObjectsInArray(const Array* theArray);
  void removeObjectsInRange(Range theRange);
  /// Removes the elements at the members of the set, in one pass.
  void removeObjectsAtIndexes(const IndexSet* theIndexes);
  void removeAllObjects() { removeObjectsInRange(Range(0, count_)); }
  /// Orders the elements by compare.
  void sort();

  Object* copy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~MutableArray() override = default;
};

//===--- Inline element access ------------------------------------------===//

// Inline: every walk over expression arguments reads through it.
inline Object* Array::objectAtIndex(ZnIndex theIndex) const {
  ZnAssert(theIndex >= 0, theIndex);
  ZnAssert(theIndex < count_, theIndex);
  return objects_[theIndex];
}

/// Delivers the elements of an array from index 0 on.
class ArrayEnumerator : public Enumerator {
public:
  /// Retains the array.
  explicit ArrayEnumerator(const Array* theArray, ZnIndex theIndex = 0);
  Object* nextObject() override;
  Object* copy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~ArrayEnumerator() override;

private:
  const Array* array_;
  ZnIndex index_;
};
} // namespace Zn
