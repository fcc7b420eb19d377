//===- KxReplacementTable.h - Plain-text stand-ins for characters ----------===//
#pragma once
#include "Zn/Base/ZnTypes.h"

namespace Zn::Kx {

/// Maps code points to the ASCII text written in their place ("->" for an
/// arrow, "" to drop an invisible character). Open-addressed and grown by
/// doubling; it is asked once for every character written, so a lookup
/// touches one or two slots and never allocates.
class ReplacementTable {
public:
  constexpr ReplacementTable() = default;
  ReplacementTable(const ReplacementTable&) = delete;
  ReplacementTable& operator=(const ReplacementTable&) = delete;
  ~ReplacementTable();

  ZnIndex getCount() const { return count_; }
  /// No code below this one has a replacement.
  ZnUnichar getLowestCode() const { return lowestCode_; }
  /// The text written for theCode (terminated, borrowed until the table
  /// changes), or null when theCode has no replacement.
  const char* replacementForCode(ZnUnichar theCode, ZnIndex* theLength) const;
  /// Adds or changes the replacement of theCode; the text is copied. A
  /// negative length reads to the terminator.
  void setReplacement(ZnUnichar theCode, const char* theText, ZnIndex theLength = -1);
  /// Makes this table a copy of theOther.
  void assign(const ReplacementTable& theOther);
  void removeAll();

private:
  /// A slot is free while its text is null.
  struct Slot {
    char* text;
    ZnIndex length;
    ZnUnichar code;
  };
  Slot* findSlot(ZnUnichar theCode) const;
  void grow();

  Slot* slots_ = nullptr;
  ZnIndex slotCount_ = 0;
  ZnIndex count_ = 0;
  ZnUnichar lowestCode_ = 0xFFFF;
};
} // namespace Zn::Kx
