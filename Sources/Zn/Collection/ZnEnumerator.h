//===- ZnEnumerator.h - Walks the elements of a collection once ------------===//
#pragma once
#include "Zn/Base/ZnObject.h"

namespace Zn {
class Array;

/// Hands out the elements of a collection one at a time. The object protocol
/// (equality, hash, description) works on a copy, so asking never moves the
/// enumerator itself.
class Enumerator : public Object {
public:
  /// Borrowed; null at the end.
  virtual Object* nextObject() = 0;
  /// +1. A new enumerator at the same position; subclasses must override.
  Object* copy() const override = 0;

  /// Equal when the other is an enumerator delivering equal elements from here on.
  bool isEqual(const Object* theOther) const override;
  uint32_t hash() const override;
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  /// +1. The elements still to come, drained from a copy.
  Array* createRemainingArray() const;
};
} // namespace Zn
