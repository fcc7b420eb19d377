//===- ZnRange.h - A run of indices: location and length ------------------===//
#pragma once
#include "Zn/Base/ZnObject.h"
#include "Zn/Base/ZnTypes.h"

namespace Zn {

/// A plain value: the indices location .. location + length - 1.
struct Range {
  ZnIndex location = 0;
  ZnIndex length = 0;
  constexpr Range() = default;
  constexpr Range(ZnIndex theLocation, ZnIndex theLength) : location(theLocation), length(theLength) {}
  constexpr ZnIndex getMaximum() const { return location + length; }
  constexpr bool operator==(const Range& theOther) const = default;
};

/// A range that can live in collections and index sets.
class RangeObject : public Object, public Range {
public:
  RangeObject(ZnIndex theLocation, ZnIndex theLength) : Range(theLocation, theLength) {}
  explicit RangeObject(Range theRange) : Range(theRange) {}

  /// Equal when both location and length agree.
  bool isEqual(const Object* theOther) const override;
  uint32_t hash() const override;
  /// "{location, length}".
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;
};
} // namespace Zn
