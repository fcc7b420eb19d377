//===- ZnIndexSet.h - Sets of non-negative indices -------------------------===//
#pragma once
#include "Zn/Base/ZnObject.h"
#include "Zn/Collection/ZnRange.h"
#include "Zn/Collection/ZnValueArray.h"

namespace Zn {

/// An immutable set of indices, held either as one contiguous range (a
/// RangeObject, whatever its size) or as a sorted array of distinct values.
/// The two forms of the same members are equal.
class IndexSet : public Object {
public:
  /// The empty set.
  IndexSet() = default;
  explicit IndexSet(Range theRange);
  /// theCount indices given as further int arguments, in any order:
  /// IndexSet(2, 12, 10) is {10, 12}.
  IndexSet(ZnIndex theCount, ...);
  /// The values of the array, in any order.
  explicit IndexSet(const IndexValueArray* theValues);
  /// Same members and form; never shares the underlying range or array.
  IndexSet(const IndexSet& theIndexSet);

  ZnIndex getCount() const;
  /// The n-th member in ascending order.
  ZnIndex getValueAtIndex(ZnIndex n) const;
  ZnIndex getFirstValue() const { return getValueAtIndex(0); }
  ZnIndex getLastValue() const { return getValueAtIndex(getCount() - 1); }
  bool containsIndex(ZnIndex theIndex) const;
  /// Every index of the range is a member (an empty range always is).
  bool containsIndices(Range theRange) const;
  /// Every member of the other set is a member (null is the empty set).
  bool containsIndices(const IndexSet* theIndexSet) const;

  using IndexCallback = void (*)(ZnIndex theIndex, void* theContext);
  /// Calls theCallback for each member in ascending order.
  void enumerateIndices(IndexCallback theCallback, void* theContext) const;

  /// Same members, whatever the forms.
  bool isEqual(const Object* theOther) const override;
  uint32_t hash() const override;
  Object* copy() const override;
  Object* mutableCopy() const override;
  /// The members as "{ 10, 12 }".
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~IndexSet() override;
  /// Borrowed; the form, or null when set_ is not of it.
  const RangeObject* getRangeForm() const;
  const IndexValueArray* getArrayForm() const;
  /// Takes over a +1: a RangeObject, an array, or null.
  void replaceSet(Object* theSet);

  Object* set_ = nullptr;
};

/// An index set that changes in place. A change that leaves the members
/// contiguous returns the set to the range form.
class MutableIndexSet : public IndexSet {
public:
  MutableIndexSet() = default;
  explicit MutableIndexSet(Range theRange) : IndexSet(theRange) {}
  explicit MutableIndexSet(const IndexSet& theIndexSet) : IndexSet(theIndexSet) {}

  void addIndex(ZnIndex theIndex) { addIndicesInRange(Range(theIndex, 1)); }
  void addIndicesInRange(Range theRange);
  void removeIndex(ZnIndex theIndex) { removeIndicesInRange(Range(theIndex, 1)); }
  void removeIndicesInRange(Range theRange);
  void removeAllIndices() { replaceSet(nullptr); }

  Object* copy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~MutableIndexSet() override = default;

private:
  /// Borrowed; the members as an array that this set owns alone.
  MutableIndexValueArray* makeArrayForm();
  /// Back to the range form when the members are contiguous.
  void compact();
};
} // namespace Zn
