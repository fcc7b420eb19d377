//===- KxNamedCharacterTable.h - Names of the escaped characters -----------===//
#pragma once
#include "Zn/Base/ZnTypes.h"

namespace Zn::Kx {

/// One row of the named-character table: a code point and the name written
/// between "\[" and "]".
struct NamedCharacter {
  ZnUnichar code;
  const char* name;
};

/// The rows in loading order (static data, never freed); theCount gets 882.
const NamedCharacter* GetNamedCharacterRows(ZnIndex* theCount);
/// Names that are read but never written (static data, never freed):
/// accented Latin letters and operators that recent notebooks name and the
/// rows above lack. None of them is a name of those rows.
const NamedCharacter* GetReadOnlyNameRows(ZnIndex* theCount);

/// A letter that the notebook system keeps in the private-use area and the
/// standard character of the same name (above U+FFFF for most).
struct StandardLetter {
  ZnUnichar code;
  uint32_t standard;
};
/// The standard letters, in the order of their private-use codes.
const StandardLetter* GetStandardLetterRows(ZnIndex* theCount);

/// Lookup in both directions over the named rows: a name (as bytes or as
/// code units) to its code point, and a code point to its name. Both
/// indexes are open-addressed tables inside the object, so loading and
/// lookups never allocate; every escape and every character written goes
/// through here.
class NamedCharacterTable {
public:
  constexpr NamedCharacterTable() = default;

  bool isEmpty() const { return count_ == 0; }
  ZnIndex getCount() const { return count_; }

  /// Fills the table from static rows whose names and code points are all
  /// distinct and which outlive the table. The table must be empty.
  void load(const NamedCharacter* theRows, ZnIndex theCount);

  /// False for an unknown name; theCode is then left alone.
  bool codeForName(const char* theName, ZnIndex theLength, ZnUnichar* theCode) const;
  bool codeForName(const uint8_t* theName, ZnIndex theLength, ZnUnichar* theCode) const;
  bool codeForName(const ZnUnichar* theName, ZnIndex theLength, ZnUnichar* theCode) const;
  /// The terminated name of theCode (static), or null when it has none.
  const char* nameForCode(ZnUnichar theCode, ZnIndex* theLength) const;

  /// Names are at most this long.
  static constexpr ZnIndex kMaximumNameLength = 63;

private:
  static constexpr ZnIndex kSlotBits = 11;
  static constexpr ZnIndex kSlotCount = ZnIndex(1) << kSlotBits;
  static constexpr ZnIndex kMaximumRows = kSlotCount / 2;

  template <class CharT> bool find(const CharT* theName, ZnIndex theLength, ZnUnichar* theCode) const;

  const NamedCharacter* rows_ = nullptr;
  ZnIndex count_ = 0;
  uint8_t nameLengths_[kMaximumRows] = {};
  /// Row index + 1; 0 marks a free slot.
  uint16_t nameSlots_[kSlotCount] = {};
  uint16_t codeSlots_[kSlotCount] = {};
};
} // namespace Zn::Kx
