//===- ZnString.h - Immutable and growable UTF-16 text ---------------------===//
#pragma once
#include <cstdarg>
#include "Zn/Base/ZnObject.h"
#include "Zn/Collection/ZnRange.h"

namespace Zn {
class Data;
class MutableData;
class StringEncoding;

/// The value of a character as a digit in bases up to 36 (0-9, then A-Z
/// or a-z for 10-35), or 99 when it is none: one comparison with the base
/// then rules out both.
inline int32_t DigitValue(ZnUnichar theCharacter) {
  if (theCharacter >= '0' && theCharacter <= '9')
    return theCharacter - '0';
  if (theCharacter >= 'A' && theCharacter <= 'Z')
    return theCharacter - 'A' + 10;
  if (theCharacter >= 'a' && theCharacter <= 'z')
    return theCharacter - 'a' + 10;
  return 99;
}

/// Immutable sequence of UTF-16 code units. Every message, description and
/// rendered page is built in strings.
///
/// A string whose units are all below 256 keeps them one byte each (nearly
/// every character of a notebook file is ASCII, so the strings of a parsed
/// tree would otherwise be half zeros); any other keeps 16 bits a unit. The
/// form changes nothing of what the operations mean: lengths, indices,
/// ranges, comparison and hashing are those of the 16-bit units, and two
/// strings of the same units are equal and hash alike in either form.
class String : public Object {
public:
  String() = default;
  /// Each byte becomes one code unit; a negative length reads to the terminator.
  explicit String(const char* theString, ZnIndex theLength = -1);
  String(const ZnUnichar* theCharacters, ZnIndex theLength);

  /// +1. theLength bytes (a negative length reads to the terminator) decoded
  /// with theEncoding, of any length.
  static String* createWithBytes(const char* theString, ZnIndex theLength, StringEncoding* theEncoding);
  /// +1. The same with the encoding numbered theEncodingID.
  static String* createWithBytes(const char* theString, ZnIndex theLength, int theEncodingID);
  static String* createWithData(const Data* theData, int theEncodingID);
  /// +1. A copy of theLength units whose characters live in the object's own
  /// allocation: one block of exactly the size needed, for the many strings
  /// of a parsed document. One byte a unit when every unit is below 256.
  static String* createWithCharacters(const ZnUnichar* theCharacters, ZnIndex theLength);
  /// +1. An immutable copy of theString's units, made as createWithCharacters does.
  static String* createWithString(const String* theString);

  ZnIndex length() const { return ZnIndex(length_); }
  /// Whether the units are kept 16 bits each; otherwise they are all below
  /// 256 and kept one byte each.
  bool isWide() const { return isWide_; }
  ZnUnichar characterAtIndex(ZnIndex theIndex) const;
  /// The unit at theIndex, unchecked: for loops that already keep within the length.
  ZnUnichar unitAt(ZnIndex theIndex) const { return isWide_ ? wide()[theIndex] : narrow()[theIndex]; }
  /// Calls theAction(units, length) with the units as they are kept, a
  /// `const uint8_t*` or a `const ZnUnichar*` (never null), and returns what
  /// it returns: a generic lambda reads either form without a copy.
  template <class Action> decltype(auto) withCharacters(Action&& theAction) const {
    static const uint8_t kNone = 0;
    if (isWide_)
      return theAction(const_cast<const ZnUnichar*>(wide()), length());
    return theAction(characters_ ? const_cast<const uint8_t*>(narrow()) : &kNone, length());
  }
  /// Copies the units of theRange, widened to 16 bits, to theBuffer.
  void getCharacters(ZnUnichar* theBuffer, Range theRange) const;
  /// +1 each.
  String* substringWithRange(Range theRange) const;
  String* substringFromIndex(ZnIndex theIndex) const;
  /// +1. The first theIndex + 1 units: the unit at theIndex is included.
  String* substringToIndex(ZnIndex theIndex) const;

  /// +1. The units encoded with theEncoding, or with the encoding numbered
  /// theEncodingID.
  MutableData* createData(StringEncoding* theEncoding) const;
  MutableData* createData(int theEncodingID) const;
  /// +1. The same followed by four zero bytes, a terminator in any encoding.
  MutableData* createTerminatedData(int theEncodingID) const;

  /// 0 when equal; without case sensitivity A-Z fold to a-z on both sides.
  int32_t compareToCString(const char* theCString, bool theCaseSensitive) const;
  /// +1. Itself retained when no ASCII capital is present.
  String* lowercaseString() const;
  /// Reads the text as a number in theBase (2-36); see the .cpp for the rules.
  bool doubleValue(double* theResult, int theBase) const;
  /// First index at or after theFromIndex where the text occurs, else -1.
  ZnIndex indexOfString(const String* theSearchString, bool theCaseSensitive, ZnIndex theFromIndex) const;
  ZnIndex indexOfCString(const char* theASCII, bool theCaseSensitive, ZnIndex theFromIndex) const;

  bool isEqual(const Object* theOther) const override;
  /// Whether theOther holds the same units, in either form: isEqual for a
  /// caller that knows it has a string.
  bool hasSameUnits(const String* theOther) const;
  /// Whether the string holds exactly theLength units equal to theCharacters.
  bool isEqualToCharacters(const ZnUnichar* theCharacters, ZnIndex theLength) const;
  int32_t compare(const Object* theOther) const override;
  uint32_t hash() const override;
  Object* copy() const override;
  Object* mutableCopy() const override;
  String* description() const override;
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~String() override;
  /// Makes the string wide with room for theCapacity units, the units it
  /// holds widened; frees the old block unless it is the inline one.
  void widenInto(ZnIndex theCapacity);
  /// +1. A string that owns theBlock (from Allocate) of theLength units in
  /// the form theIsWide says.
  static String* createOwning(void* theBlock, ZnIndex theLength, bool theIsWide);

  // The length and the form first: they fill the four bytes that Object
  // leaves after its count on 64-bit targets, so a string is 8 bytes
  // smaller there.
  uint32_t length_ : 31 = 0;
  uint32_t isWide_ : 1 = 0;
  void* characters_ = nullptr;
  uint8_t* narrow() const { return static_cast<uint8_t*>(characters_); }
  ZnUnichar* wide() const { return static_cast<ZnUnichar*>(characters_); }

private:
  void* inlineCharacters() const { return const_cast<char*>(reinterpret_cast<const char*>(this)) + sizeof(String); }
  /// Copies theLength units into a block of their own, one byte each when
  /// every unit fits.
  template <class CharT> void initWithCharacters(const CharT* theCharacters, ZnIndex theLength);
  template <class CharT> static String* createInline(const CharT* theCharacters, ZnIndex theLength);
};

/// The units of a string as 16-bit units, for code that reads text through
/// a pointer: a wide string's own units, or a one-byte string's widened into
/// the view, on the stack up to kInlineUnits units and in one block beyond.
/// Valid while the string lives unchanged.
class WideCharacters {
public:
  explicit WideCharacters(const String* theString);
  WideCharacters(const WideCharacters&) = delete;
  WideCharacters& operator=(const WideCharacters&) = delete;
  ~WideCharacters();
  const ZnUnichar* data() const { return units_; }
  ZnIndex length() const { return length_; }

private:
  static constexpr ZnIndex kInlineUnits = 256;
  const ZnUnichar* units_;
  ZnIndex length_;
  ZnUnichar* block_ = nullptr;
  ZnUnichar buffer_[kInlineUnits];
};

/// A string that grows: capacities double from 1 and never shrink. It keeps
/// one byte a unit until the first unit of 256 or more arrives, and 16 bits
/// a unit from then on (until removeAll).
class MutableString : public String {
public:
  /// An empty string with room for theCapacity units (0: no buffer).
  explicit MutableString(ZnIndex theCapacity = 0);
  explicit MutableString(const String* theString);

  ZnIndex capacity() const { return capacity_; }
  /// Makes room for at least theLength units under the doubling rule.
  void ensureCapacity(ZnIndex theLength);
  /// Keeps 16 bits a unit from now on, for a buffer whose units are written
  /// in place or read through a pointer.
  void widen();
  /// Borrowed, writable; valid until the next growth. The string must be wide.
  ZnUnichar* getMutableCharactersPtr();
  /// Borrowed; valid until the next growth. The string must be wide.
  const ZnUnichar* getWideCharactersPtr() const;
  /// Shortens (or, within the capacity, lengthens) the string.
  void setLength(ZnIndex theLength);
  /// +1. An immutable string of these units that takes over this string's
  /// block (shrunk to fit) instead of copying it; this one is left empty,
  /// without a block.
  String* createStringTakingCharacters();
  /// Empties the string and returns it to one byte a unit, in the block it
  /// has: a buffer refilled token after token stays narrow for the tokens
  /// that are, whatever unit an earlier one held.
  void removeAll();

  /// Removes the last unit and returns it; the string must not be empty.
  ZnUnichar takeLastCharacter() {
    length_ = length_ - 1;
    return unitAt(ZnIndex(length_));
  }
  void appendCharacter(ZnUnichar theCharacter) {
    const ZnIndex length = ZnIndex(length_);
    if (length >= capacity_ || (theCharacter > 0xFF && !isWide_)) {
      appendCharacterSlowly(theCharacter);
      return;
    }
    if (isWide_)
      wide()[length] = theCharacter;
    else
      narrow()[length] = uint8_t(theCharacter);
    length_ = uint32_t(length + 1);
  }
  void appendCharacters(const ZnUnichar* theCharacters, ZnIndex theLength);
  /// Each byte one unit; a negative length reads to the terminator.
  void appendCString(const char* theString, ZnIndex theLength = -1);
  void appendString(const String* theString);
  void appendFormat(const char* theFormat, ...);
  void appendFormatV(const char* theFormat, va_list theArgs);
  void appendFormatV(const ZnUnichar* theFormat, ZnIndex theFormatLength, va_list theArgs);
  /// A negative index inserts at the end.
  void insertCharacters(ZnIndex theIndex, const ZnUnichar* theCharacters, ZnIndex theLength);
  void deleteCharactersInRange(Range theRange);
  void replaceCharactersInRange(Range theRange, const ZnUnichar* theCharacters, ZnIndex theLength);

  Object* copy() const override;
  String* description() const override;
  const char* className() const override;
  const char* superclassName() const override;

private:
  void appendCharacterSlowly(ZnUnichar theCharacter);
  /// Puts theLength units of theCharacters in place of theRange, widening
  /// the string first when one of them needs 16 bits.
  template <class CharT> void replaceUnits(Range theRange, const CharT* theCharacters, ZnIndex theLength);

  ZnIndex capacity_ = 0;
  /// Whether the block holds capacity_ units at two bytes each, as a wide
  /// string's block does after removeAll: widening then needs no new block.
  bool hasWideRoom_ = false;
};

/// The hash that a string of theLength units at theCharacters has.
uint32_t HashCharacters(const ZnUnichar* theCharacters, ZnIndex theLength);

/// +1. A new string from the format routine ("%@" inserts a description).
String* StringWithFormat(const char* theFormat, ...);
String* StringWithFormatV(const char* theFormat, va_list theArgs);
/// Writes the units to standard error with control and non-ASCII units escaped.
void PrintToStandardError(const String* theString);
} // namespace Zn
