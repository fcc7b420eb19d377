//===- ZnStringUnits.h - Loops over the units of the two string forms ------===//
// For the string classes' own files only: how units are checked and copied
// between the one-byte and the 16-bit form.
#pragma once
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnTypes.h"

namespace Zn::StringUnits {
// The loops over units go 16 at a time where they can: a loop of a known
// count is one the compiler turns into vector instructions at -O2.
constexpr ZnIndex kUnitsAtOnce = 16;

/// Whether every unit fits in one byte.
inline bool AllNarrow(const ZnUnichar* theCharacters, ZnIndex theLength) {
  ZnUnichar any = 0;
  ZnIndex i = 0;
  for (; theLength - i >= kUnitsAtOnce; i += kUnitsAtOnce)
    for (ZnIndex k = 0; k < kUnitsAtOnce; ++k)
      any |= theCharacters[i + k];
  for (; i < theLength; ++i)
    any |= theCharacters[i];
  return any <= 0xFF;
}
inline bool AllNarrow(const uint8_t*, ZnIndex) { return true; }

/// Copies theLength units from one form to another (one that can hold them).
/// The two never overlap, as for a memcpy.
template <class To, class From>
inline void CopyUnits(const From* __restrict theFrom, To* __restrict theTo, ZnIndex theLength) {
  if constexpr (sizeof(To) == sizeof(From)) {
    if (theLength > 0)
      CopyMemory(theFrom, theTo, Sys::size_t(theLength) * sizeof(To));
  } else {
    ZnIndex i = 0;
    for (; theLength - i >= kUnitsAtOnce; i += kUnitsAtOnce)
      for (ZnIndex k = 0; k < kUnitsAtOnce; ++k)
        theTo[i + k] = To(theFrom[i + k]);
    for (; i < theLength; ++i)
      theTo[i] = To(theFrom[i]);
  }
}

/// Copies theLength 16-bit units to one byte each, as long as they fit, and
/// says whether all did: the check and the copy in one pass. What it copied
/// of a run that does not fit is to be written again.
inline bool CopyNarrowing(const ZnUnichar* __restrict theFrom, uint8_t* __restrict theTo, ZnIndex theLength) {
  ZnUnichar any = 0;
  ZnIndex i = 0;
  for (; theLength - i >= kUnitsAtOnce; i += kUnitsAtOnce)
    for (ZnIndex k = 0; k < kUnitsAtOnce; ++k) {
      any |= theFrom[i + k];
      theTo[i + k] = uint8_t(theFrom[i + k]);
    }
  for (; i < theLength; ++i) {
    any |= theFrom[i];
    theTo[i] = uint8_t(theFrom[i]);
  }
  return any <= 0xFF;
}
/// One-byte units always fit.
inline bool CopyNarrowing(const uint8_t* __restrict theFrom, uint8_t* __restrict theTo, ZnIndex theLength) {
  CopyUnits(theFrom, theTo, theLength);
  return true;
}
} // namespace Zn::StringUnits
