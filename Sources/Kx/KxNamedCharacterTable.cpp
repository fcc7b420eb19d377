//===- KxNamedCharacterTable.cpp - Names of the escaped characters ---------===//
#include "Kx/KxNamedCharacterTable.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"

namespace Zn::Kx {

// Generated from the table of named characters by tools/gen-named-characters.py.
static const NamedCharacter kNamedCharacterRows[] = {
#include "Kx/KxNamedCharacterTable.inc"
};

static const NamedCharacter kReadOnlyNameRows[] = {
#include "Kx/KxReadOnlyNameTable.inc"
};

static const StandardLetter kStandardLetterRows[] = {
#include "Kx/KxStandardLetterTable.inc"
};

const StandardLetter* GetStandardLetterRows(ZnIndex* theCount) {
  *theCount = ZnIndex(sizeof kStandardLetterRows / sizeof kStandardLetterRows[0]);
  return kStandardLetterRows;
}

const NamedCharacter* GetNamedCharacterRows(ZnIndex* theCount) {
  *theCount = ZnIndex(sizeof kNamedCharacterRows / sizeof kNamedCharacterRows[0]);
  return kNamedCharacterRows;
}

const NamedCharacter* GetReadOnlyNameRows(ZnIndex* theCount) {
  *theCount = ZnIndex(sizeof kReadOnlyNameRows / sizeof kReadOnlyNameRows[0]);
  return kReadOnlyNameRows;
}

//===--- Hashing ---------------------------------------------------------===//

// A character of a name as a number, without sign extension whatever the
// signedness of char.
static uint32_t Unit(char theCharacter) { return uint8_t(theCharacter); }
static uint32_t Unit(uint8_t theCharacter) { return theCharacter; }
static uint32_t Unit(ZnUnichar theCharacter) { return theCharacter; }

// FNV-1a over the name's characters. A name is ASCII, so bytes and code
// units of the same name hash alike.
template <class CharT> static uint32_t HashName(const CharT* theName, ZnIndex theLength) {
  uint32_t h = 2166136261u;
  for (ZnIndex i = 0; i < theLength; ++i)
    h = (h ^ Unit(theName[i])) * 16777619u;
  return h;
}

static uint32_t HashCode(ZnUnichar theCode) { return uint32_t(theCode) * 2654435761u; }

//===--- Loading and lookup ----------------------------------------------===//

void NamedCharacterTable::load(const NamedCharacter* theRows, ZnIndex theCount) {
  ZnAssert(count_ == 0, 0);
  ZnAssert(theCount <= kMaximumRows, theCount);
  constexpr uint32_t mask = kSlotCount - 1;
  rows_ = theRows;
  for (ZnIndex row = 0; row < theCount; ++row) {
    Sys::size_t length = StringLength(theRows[row].name);
    ZnAssert(length <= kMaximumNameLength, row);
    nameLengths_[row] = uint8_t(length);

    uint32_t slot = (HashName(theRows[row].name, ZnIndex(length)) >> (32 - kSlotBits)) & mask;
    while (nameSlots_[slot] != 0)
      slot = (slot + 1) & mask;
    nameSlots_[slot] = uint16_t(row + 1);

    slot = (HashCode(theRows[row].code) >> (32 - kSlotBits)) & mask;
    while (codeSlots_[slot] != 0)
      slot = (slot + 1) & mask;
    codeSlots_[slot] = uint16_t(row + 1);
  }
  count_ = theCount;
}

template <class CharT>
bool NamedCharacterTable::find(const CharT* theName, ZnIndex theLength, ZnUnichar* theCode) const {
  if (count_ == 0 || theLength > kMaximumNameLength)
    return false;
  constexpr uint32_t mask = kSlotCount - 1;
  for (uint32_t slot = (HashName(theName, theLength) >> (32 - kSlotBits)) & mask; nameSlots_[slot] != 0;
       slot = (slot + 1) & mask) {
    ZnIndex row = nameSlots_[slot] - 1;
    if (nameLengths_[row] != theLength)
      continue;
    const char* name = rows_[row].name;
    ZnIndex i = 0;
    while (i < theLength && Unit(theName[i]) == Unit(name[i]))
      ++i;
    if (i == theLength) {
      *theCode = rows_[row].code;
      return true;
    }
  }
  return false;
}

bool NamedCharacterTable::codeForName(const char* theName, ZnIndex theLength, ZnUnichar* theCode) const {
  return find(theName, theLength, theCode);
}

bool NamedCharacterTable::codeForName(const uint8_t* theName, ZnIndex theLength, ZnUnichar* theCode) const {
  return find(theName, theLength, theCode);
}

bool NamedCharacterTable::codeForName(const ZnUnichar* theName, ZnIndex theLength, ZnUnichar* theCode) const {
  return find(theName, theLength, theCode);
}

const char* NamedCharacterTable::nameForCode(ZnUnichar theCode, ZnIndex* theLength) const {
  if (count_ == 0)
    return nullptr;
  constexpr uint32_t mask = kSlotCount - 1;
  for (uint32_t slot = (HashCode(theCode) >> (32 - kSlotBits)) & mask; codeSlots_[slot] != 0;
       slot = (slot + 1) & mask) {
    ZnIndex row = codeSlots_[slot] - 1;
    if (rows_[row].code == theCode) {
      *theLength = nameLengths_[row];
      return rows_[row].name;
    }
  }
  return nullptr;
}
} // namespace Zn::Kx
