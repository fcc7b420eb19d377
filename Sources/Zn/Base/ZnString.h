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
  /// of a parsed document.
  static String* createWithCharacters(const ZnUnichar* theCharacters, ZnIndex theLength);

  ZnIndex length() const { return length_; }
  ZnUnichar characterAtIndex(ZnIndex theIndex) const;
  /// Borrowed; valid until the string changes. Not terminated.
  const ZnUnichar* getCharactersPtr() const { return characters_; }
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
  // The length first: it fills the four bytes that Object leaves after its
  // count on 64-bit targets, so a string is 8 bytes smaller there.
  ZnIndex length_ = 0;
  ZnUnichar* characters_ = nullptr;

private:
  ZnUnichar* inlineCharacters() const {
    return reinterpret_cast<ZnUnichar*>(const_cast<char*>(reinterpret_cast<const char*>(this)) + sizeof(String));
  }
};

/// A string that grows: capacities double from 1 and never shrink.
class MutableString : public String {
public:
  /// An empty string with room for theCapacity units (0: no buffer).
  explicit MutableString(ZnIndex theCapacity = 0);
  explicit MutableString(const String* theString);

  ZnIndex capacity() const { return capacity_; }
  /// Makes room for at least theLength units under the doubling rule.
  void ensureCapacity(ZnIndex theLength);
  /// Borrowed, writable; valid until the next growth.
  ZnUnichar* getMutableCharactersPtr() { return characters_; }
  /// Shortens (or, within the capacity, lengthens) the string.
  void setLength(ZnIndex theLength);

  /// Removes the last unit and returns it; the string must not be empty.
  ZnUnichar takeLastCharacter() { return characters_[--length_]; }
  void appendCharacter(ZnUnichar theCharacter) {
    if (length_ >= capacity_)
      ensureCapacity(length_ + 1);
    characters_[length_++] = theCharacter;
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
  ZnIndex capacity_ = 0;
};

/// +1. A new string from the format routine ("%@" inserts a description).
String* StringWithFormat(const char* theFormat, ...);
String* StringWithFormatV(const char* theFormat, va_list theArgs);
/// Writes the units to standard error with control and non-ASCII units escaped.
void PrintToStandardError(const String* theString);
} // namespace Zn
