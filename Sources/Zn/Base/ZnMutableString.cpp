//===- ZnMutableString.cpp - Growable text, one byte a unit while it can --===//
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringUnits.h"

namespace Zn {
using namespace StringUnits;

namespace {
/// Growing to this many bytes, a buffer has its new pages brought in at once.
constexpr Sys::size_t kPrefaultedSize = Sys::size_t(256) << 10;
} // namespace

//===--- MutableString -------------------------------------------------------===//

MutableString::MutableString(ZnIndex theCapacity) {
  if (theCapacity > 0)
    ensureCapacity(theCapacity);
}

MutableString::MutableString(const String* theString) { appendString(theString); }

void MutableString::ensureCapacity(ZnIndex theLength) {
  if (theLength <= capacity_)
    return;
  ZnIndex capacity = capacity_ ? capacity_ : 1;
  while (capacity < theLength)
    capacity *= 2;
  const Sys::size_t unitSize = isWide_ ? 2 : 1;
  characters_ = Reallocate(characters_, Sys::size_t(capacity) * unitSize);
  // A buffer this large is being filled with a long text (a picture, a
  // packed array): its new pages come in at once, not a fault each.
  if (Sys::size_t(capacity) * unitSize >= kPrefaultedSize)
    Prefault(static_cast<char*>(characters_) + Sys::size_t(capacity_) * unitSize,
             Sys::size_t(capacity - capacity_) * unitSize);
  capacity_ = capacity;
  hasWideRoom_ = isWide_;
}

void MutableString::widen() {
  if (isWide_)
    return;
  if (hasWideRoom_) {
    // Widened in the block it has, last unit first, so that none is
    // overwritten before it is read.
    const uint8_t* units = narrow();
    for (ZnIndex i = length(); i-- > 0;)
      wide()[i] = units[i];
    isWide_ = true;
  } else if (length_ > 0) {
    widenInto(capacity_);
  } else {
    // Nothing to convert: the block only needs twice the bytes.
    characters_ = Reallocate(characters_, Sys::size_t(capacity_ > 0 ? capacity_ : 1) * 2);
    isWide_ = true;
  }
  hasWideRoom_ = true;
}

ZnUnichar* MutableString::getMutableCharactersPtr() {
  ZnAssert(isWide_, 0);
  return wide();
}

const ZnUnichar* MutableString::getWideCharactersPtr() const {
  ZnAssert(isWide_, 0);
  return wide();
}

String* MutableString::createStringTakingCharacters() {
  if (length_ == 0)
    return new String();
  String* string =
      createOwning(Reallocate(characters_, Sys::size_t(length()) * (isWide_ ? 2 : 1)), length(), isWide_);
  characters_ = nullptr;
  capacity_ = 0;
  length_ = 0;
  isWide_ = false;
  hasWideRoom_ = false;
  return string;
}

void MutableString::removeAll() {
  length_ = 0;
  if (isWide_) {
    isWide_ = false;
    hasWideRoom_ = true;
  }
}

void MutableString::setLength(ZnIndex theLength) {
  ZnAssert((theLength >= 0) && (theLength <= capacity_), theLength);
  length_ = uint32_t(theLength);
}

void MutableString::appendCharacterSlowly(ZnUnichar theCharacter) {
  ensureCapacity(length() + 1);
  if (theCharacter > 0xFF)
    widen();
  appendCharacter(theCharacter);
}

template <class CharT> void MutableString::replaceUnits(Range theRange, const CharT* theCharacters, ZnIndex theLength) {
  ZnAssert((theRange.location + theRange.length) <= length_, theRange.location);
  ZnAssert(theLength >= 0, theLength);
  if (theRange.length == 0 && theLength == 0)
    return;
  const ZnIndex newLength = length() - theRange.length + theLength;
  ensureCapacity(newLength);
  if (!isWide_) {
    // Appended to one-byte text, the most common case, the units are
    // narrowed as they are checked, in place; elsewhere they are checked
    // first. Either way a unit that does not fit widens the string.
    const bool isAppend = theRange.location == length();
    if (isAppend && CopyNarrowing(theCharacters, narrow() + theRange.location, theLength)) {
      length_ = uint32_t(newLength);
      return;
    }
    if (isAppend || !AllNarrow(theCharacters, theLength))
      widen();
  }
  const ZnIndex tail = length() - theRange.getMaximum();
  if (isWide_) {
    MoveMemory(wide() + theRange.getMaximum(), wide() + theRange.location + theLength, Sys::size_t(tail) * 2);
    CopyUnits(theCharacters, wide() + theRange.location, theLength);
  } else {
    MoveMemory(narrow() + theRange.getMaximum(), narrow() + theRange.location + theLength, Sys::size_t(tail));
    CopyUnits(theCharacters, narrow() + theRange.location, theLength);
  }
  length_ = uint32_t(newLength);
}

void MutableString::appendCharacters(const ZnUnichar* theCharacters, ZnIndex theLength) {
  if (theLength <= 0)
    return;
  // Most runs are a few units with room for them: copied straight in,
  // narrowed on the way into one-byte text.
  if (length() + theLength <= capacity_) {
    if (isWide_) {
      CopyUnits(theCharacters, wide() + length(), theLength);
      length_ = uint32_t(length() + theLength);
      return;
    }
    if (CopyNarrowing(theCharacters, narrow() + length(), theLength)) {
      length_ = uint32_t(length() + theLength);
      return;
    }
    widen();
  }
  replaceUnits(Range(length(), 0), theCharacters, theLength);
}

void MutableString::appendCString(const char* theString, ZnIndex theLength) {
  ZnAssert(theString != NULL, 0);
  if (theLength < 0)
    theLength = ZnIndex(StringLength(theString));
  replaceUnits(Range(length(), 0), reinterpret_cast<const uint8_t*>(theString), theLength);
}

void MutableString::appendString(const String* theString) {
  ZnAssert(theString != NULL, 0);
  theString->withCharacters(
      [&](auto theUnits, ZnIndex theLength) { replaceUnits(Range(length(), 0), theUnits, theLength); });
}

void MutableString::insertCharacters(ZnIndex theIndex, const ZnUnichar* theCharacters, ZnIndex theLength) {
  if (theIndex < 0)
    theIndex = length();
  ZnAssert(theIndex <= length_, theIndex);
  ZnAssert(theLength >= 0, theLength);
  replaceUnits(Range(theIndex, 0), theCharacters, theLength);
}

void MutableString::deleteCharactersInRange(Range theRange) {
  replaceUnits(theRange, static_cast<const uint8_t*>(nullptr), 0);
}

void MutableString::replaceCharactersInRange(Range theRange, const ZnUnichar* theCharacters, ZnIndex theLength) {
  replaceUnits(theRange, theCharacters, theLength);
}

Object* MutableString::copy() const { return substringWithRange(Range(0, length())); }

// A mutable string may change after it was described, so its description is
// a snapshot.
String* MutableString::description() const { return substringWithRange(Range(0, length())); }

const char* MutableString::className() const { return "MutableString"; }
const char* MutableString::superclassName() const { return "Zn::String"; }

} // namespace Zn
