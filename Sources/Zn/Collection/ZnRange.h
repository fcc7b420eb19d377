//===- ZnRange.h - A run of indices: location and length ------------------===//
#pragma once
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
} // namespace Zn
