//===- ZnPair.h - Two objects compared as one ------------------------------===//
#pragma once
#include "Zn/Base/ZnObject.h"
#include "Zn/Collection/ZnEnumerator.h"

namespace Zn {

/// A plain value holding two object pointers (either may be null), without
/// references. Unless its flag bit says "as is", an element that is a
/// ValueType<Object*> is compared through to the object it points at, so a
/// boxed pointer and the object itself make equal pairs.
struct Pair {
  enum : uint32_t { kFirstAsIs = 1, kSecondAsIs = 2 };
  Object* first = nullptr;
  Object* second = nullptr;
  uint32_t flags = 0;

  Pair() = default;
  Pair(Object* theFirst, Object* theSecond, uint32_t theFlags = 0)
      : first(theFirst), second(theSecond), flags(theFlags) {}

  /// The elements as comparisons see them.
  const Object* getComparedFirst() const;
  const Object* getComparedSecond() const;
  /// Null-safe equality of first, then second.
  bool isEqualToPair(const Pair& theOther) const;
  /// Orders by first, then second; a null sorts first.
  int32_t compareToPair(const Pair& theOther) const;
};

/// A pair that is an object: it retains both elements.
class PairObject : public Object, public Pair {
public:
  PairObject(Object* theFirst, Object* theSecond, uint32_t theFlags = 0);
  /// +1. Delivers first, then second, skipping a null one.
  Enumerator* getObjectEnumerator() const;

  bool isEqual(const Object* theOther) const override;
  int32_t compare(const Object* theOther) const override;
  uint32_t hash() const override;
  /// "Pair { first , second }", "(NULL)" for a null element.
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~PairObject() override;
};

class PairEnumerator : public Enumerator {
public:
  /// Retains the pair.
  explicit PairEnumerator(const PairObject* thePair, ZnIndex theIndex = 0);
  Object* nextObject() override;
  Object* copy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~PairEnumerator() override;

private:
  const PairObject* pair_;
  ZnIndex index_;
};
} // namespace Zn
