//===- ZnString.cpp - Immutable UTF-16 text in one of two forms ------------===//
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnObjectHeap.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/Base/ZnStringUnits.h"
#include "Zn/IO/ZnWriter.h"
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>

namespace Zn {

static inline ZnUnichar FoldCase(ZnUnichar theCharacter) {
  return (theCharacter >= 'A' && theCharacter <= 'Z') ? ZnUnichar(theCharacter + 32) : theCharacter;
}

using namespace StringUnits;

namespace {
/// The hash of the units as the bytes of 16-bit units in memory would give
/// it: each four bytes XORed in as a little-endian word, a last lone unit
/// byte by byte. A one-byte string hashes as its widened copy does.
template <class CharT> uint32_t HashUnits(const CharT* theCharacters, ZnIndex theLength) {
  uint32_t hash = 0;
  ZnIndex i = 0;
  for (; i + 2 <= theLength; i += 2)
    hash ^= uint32_t(theCharacters[i]) | uint32_t(theCharacters[i + 1]) << 16;
  if (i < theLength)
    hash ^= (uint32_t(theCharacters[i]) & 0xFF) ^ (uint32_t(theCharacters[i]) >> 8);
  return hash;
}

/// Compares two units as a comparison of their bytes in memory would, low
/// byte first on this little-endian layout.
int CompareUnitBytes(ZnUnichar theLeft, ZnUnichar theRight) {
  const int lowLeft = theLeft & 0xFF, lowRight = theRight & 0xFF;
  if (lowLeft != lowRight)
    return lowLeft - lowRight;
  return (theLeft >> 8) - (theRight >> 8);
}
} // namespace

//===--- String --------------------------------------------------------------===//

template <class CharT> void String::initWithCharacters(const CharT* theCharacters, ZnIndex theLength) {
  if (theLength <= 0)
    return;
  const bool isWide = !AllNarrow(theCharacters, theLength);
  characters_ = Allocate(Sys::size_t(theLength) * (isWide ? 2 : 1));
  if (isWide)
    CopyUnits(theCharacters, wide(), theLength);
  else
    CopyUnits(theCharacters, narrow(), theLength);
  isWide_ = isWide;
  length_ = uint32_t(theLength);
}

String::String(const char* theString, ZnIndex theLength) {
  ZnAssert(theString != NULL, 0);
  if (theLength < 0)
    theLength = ZnIndex(StringLength(theString));
  initWithCharacters(reinterpret_cast<const uint8_t*>(theString), theLength);
}

String::String(const ZnUnichar* theCharacters, ZnIndex theLength) {
  ZnAssert((theCharacters != NULL) || (theLength == 0), 0);
  initWithCharacters(theCharacters, theLength);
}

template <class CharT> String* String::createInline(const CharT* theCharacters, ZnIndex theLength) {
  ZnAssert((theCharacters != NULL) || (theLength == 0), 0);
  static_assert(sizeof(String) % alignof(ZnUnichar) == 0, "the characters follow the object");
  static_assert(sizeof(String) == 3 * sizeof(void*) || sizeof(void*) == 4, "the length sits in Object's padding");
  if (theLength <= 0)
    return new String();
  const bool isWide = !AllNarrow(theCharacters, theLength);
  void* memory = AllocateObject(sizeof(String) + Sys::size_t(theLength) * (isWide ? 2 : 1));
  String* string = ::new (memory) String();
  string->characters_ = string->inlineCharacters();
  string->length_ = uint32_t(theLength);
  string->isWide_ = isWide;
  if (isWide)
    CopyUnits(theCharacters, string->wide(), theLength);
  else
    CopyUnits(theCharacters, string->narrow(), theLength);
  return string;
}

String* String::createWithCharacters(const ZnUnichar* theCharacters, ZnIndex theLength) {
  return createInline(theCharacters, theLength);
}

String* String::createWithString(const String* theString) {
  ZnAssert(theString != NULL, 0);
  return theString->withCharacters([](auto theUnits, ZnIndex theLength) { return createInline(theUnits, theLength); });
}

String::~String() {
  if (characters_ != inlineCharacters())
    Free(characters_);
}

void String::widenInto(ZnIndex theCapacity) {
  ZnAssert(theCapacity >= length(), theCapacity);
  auto* units = static_cast<ZnUnichar*>(Allocate(Sys::size_t(theCapacity > 0 ? theCapacity : 1) * 2));
  if (isWide_)
    CopyUnits(wide(), units, length());
  else
    CopyUnits(narrow(), units, length());
  if (characters_ != inlineCharacters())
    Free(characters_);
  characters_ = units;
  isWide_ = true;
}

String* String::createOwning(void* theBlock, ZnIndex theLength, bool theIsWide) {
  auto* string = new String();
  string->characters_ = theBlock;
  string->length_ = uint32_t(theLength);
  string->isWide_ = theIsWide;
  return string;
}

//===--- Conversion with encodings -------------------------------------------===//

String* String::createWithBytes(const char* theString, ZnIndex theLength, StringEncoding* theEncoding) {
  ZnAssert(theString != NULL, 0);
  ZnAssert(theEncoding != NULL, 0);
  if (theLength < 0)
    theLength = ZnIndex(StringLength(theString));
  auto string = adopt(new MutableString());
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(theString);
  // Decoders take at most 1024 bytes a call; a sequence cut at the end of a
  // piece is left unconsumed and starts the next piece.
  ZnIndex done = 0;
  while (done < theLength) {
    ZnIndex piece = theLength - done < 1024 ? theLength - done : 1024;
    ZnIndex consumed = theEncoding->decodeBytes(bytes + done, piece, string.get(), done == 0);
    if (consumed <= 0)
      break;
    done += consumed;
  }
  return string.leak();
}

String* String::createWithBytes(const char* theString, ZnIndex theLength, int theEncodingID) {
  auto encoding = adopt(StringEncodingWithID(theEncodingID));
  return createWithBytes(theString, theLength, encoding.get());
}

String* String::createWithData(const Data* theData, int theEncodingID) {
  ZnAssert(theData != NULL, 0);
  const char* bytes = reinterpret_cast<const char*>(theData->getBytesPtr());
  return createWithBytes(bytes ? bytes : "", theData->getLength(), theEncodingID);
}

MutableData* String::createData(StringEncoding* theEncoding) const {
  ZnAssert(theEncoding != NULL, 0);
  return withCharacters([&](auto theUnits, ZnIndex theLength) {
    return StringEncoding::dataFromCharacters(theEncoding, theUnits, theLength);
  });
}

MutableData* String::createData(int theEncodingID) const {
  auto encoding = adopt(StringEncodingWithID(theEncodingID));
  return createData(encoding.get());
}

MutableData* String::createTerminatedData(int theEncodingID) const {
  MutableData* data = createData(theEncodingID);
  static const uint8_t kTerminator[4] = {0, 0, 0, 0};
  data->appendBytes(kTerminator, 4);
  return data;
}

ZnUnichar String::characterAtIndex(ZnIndex theIndex) const {
  ZnAssert((theIndex >= 0) && (theIndex < length_), theIndex);
  return unitAt(theIndex);
}

void String::getCharacters(ZnUnichar* theBuffer, Range theRange) const {
  ZnAssert((theRange.location + theRange.length) <= length_, theRange.location);
  withCharacters([&](auto theUnits, ZnIndex) { CopyUnits(theUnits + theRange.location, theBuffer, theRange.length); });
}

String* String::substringWithRange(Range theRange) const {
  ZnAssert((theRange.location + theRange.length) <= length_, theRange.location);
  return withCharacters([&](auto theUnits, ZnIndex) {
    auto* string = new String();
    string->initWithCharacters(theUnits + theRange.location, theRange.length);
    return string;
  });
}

String* String::substringFromIndex(ZnIndex theIndex) const {
  ZnAssert(theIndex <= length_, theIndex);
  return substringWithRange(Range(theIndex, length() - theIndex));
}

String* String::substringToIndex(ZnIndex theIndex) const {
  ZnAssert((theIndex + 1) < length_, theIndex);
  return substringWithRange(Range(0, theIndex + 1));
}

int32_t String::compareToCString(const char* theCString, bool theCaseSensitive) const {
  ZnAssert(theCString != NULL, 0);
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(theCString);
  const ZnIndex length = this->length();
  ZnIndex i = 0;
  for (; i < length && bytes[i]; ++i) {
    ZnUnichar a = unitAt(i), b = bytes[i];
    if (!theCaseSensitive) {
      a = FoldCase(a);
      b = FoldCase(b);
    }
    if (a != b)
      return a < b ? -1 : 1;
  }
  if (i < length)
    return 1;
  return bytes[i] ? -1 : 0;
}

String* String::lowercaseString() const {
  const ZnIndex length = this->length();
  ZnIndex i = 0;
  while (i < length && !(unitAt(i) >= 'A' && unitAt(i) <= 'Z'))
    ++i;
  if (i == length)
    return static_cast<String*>(retain());
  String* lowered = substringWithRange(Range(0, length));
  for (; i < length; ++i) {
    if (lowered->isWide_)
      lowered->wide()[i] = FoldCase(lowered->wide()[i]);
    else
      lowered->narrow()[i] = uint8_t(FoldCase(lowered->narrow()[i]));
  }
  return lowered;
}

bool String::doubleValue(double* theResult, int theBase) const {
  ZnAssert(theBase >= 2, theBase);
  ZnAssert(theBase <= 36, theBase);
  const ZnIndex length = this->length();
  if (length == 0)
    return false;
  if (compareToCString("true", false) == 0 || compareToCString("yes", false) == 0) {
    *theResult = 1.0;
    return true;
  }
  if (compareToCString("false", false) == 0 || compareToCString("no", false) == 0) {
    *theResult = 0.0;
    return true;
  }
  ZnIndex i = 0;
  // Anything that cannot start a number is skipped: units, spaces, brackets.
  while (i < length) {
    ZnUnichar c = unitAt(i);
    if (DigitValue(c) < theBase || c == '+' || c == '-' || c == '.')
      break;
    ++i;
  }
  if (i == length)
    return false;
  bool negative = false;
  if (unitAt(i) == '+' || unitAt(i) == '-') {
    negative = unitAt(i) == '-';
    if (++i == length)
      return false;
  }
  double value = 0.0;
  int digit;
  while (i < length && (digit = DigitValue(unitAt(i))) < theBase) {
    value = value * theBase + digit;
    ++i;
  }
  // An exponent is only recognised after a decimal point.
  if (i + 1 < length && unitAt(i) == '.') {
    ++i;
    double scale = 1.0;
    while (i < length && (digit = DigitValue(unitAt(i))) < theBase) {
      scale /= theBase;
      value += digit * scale;
      ++i;
    }
    if (i + 1 < length && (unitAt(i) == 'e' || unitAt(i) == 'E')) {
      ++i;
      bool negativeExponent = false;
      if (unitAt(i) == '-') {
        negativeExponent = true;
        ++i;
      }
      double exponent = 0.0;
      while (i < length && (digit = DigitValue(unitAt(i))) < theBase) {
        exponent = exponent * theBase + digit;
        ++i;
      }
      value *= std::pow(10.0, negativeExponent ? -exponent : exponent);
    }
  }
  *theResult = negative ? -value : value;
  return true;
}

// Finds theLength units (bytes or units) at or after theFromIndex.
template <class TextT, class CharT>
static ZnIndex IndexOf(const TextT* theText, ZnIndex theTextLength, const CharT* theSearch, ZnIndex theSearchLength,
                       bool theCaseSensitive, ZnIndex theFromIndex) {
  if (theFromIndex < 0)
    theFromIndex = 0;
  if (theFromIndex > theTextLength - theSearchLength)
    return -1;
  if (theSearchLength == 0)
    return theFromIndex;
  for (ZnIndex start = theFromIndex; start <= theTextLength - theSearchLength; ++start) {
    ZnIndex k = 0;
    for (; k < theSearchLength; ++k) {
      ZnUnichar a = ZnUnichar(theText[start + k]), b = ZnUnichar(theSearch[k]);
      if (!theCaseSensitive) {
        a = FoldCase(a);
        b = FoldCase(b);
      }
      if (a != b)
        break;
    }
    if (k == theSearchLength)
      return start;
  }
  return -1;
}

ZnIndex String::indexOfString(const String* theSearchString, bool theCaseSensitive, ZnIndex theFromIndex) const {
  ZnAssert(theSearchString != NULL, 0);
  return withCharacters([&](auto theText, ZnIndex theTextLength) {
    return theSearchString->withCharacters([&](auto theSearch, ZnIndex theSearchLength) {
      return IndexOf(theText, theTextLength, theSearch, theSearchLength, theCaseSensitive, theFromIndex);
    });
  });
}

ZnIndex String::indexOfCString(const char* theASCII, bool theCaseSensitive, ZnIndex theFromIndex) const {
  ZnAssert(theASCII, 0);
  return withCharacters([&](auto theText, ZnIndex theTextLength) {
    return IndexOf(theText, theTextLength, reinterpret_cast<const uint8_t*>(theASCII),
                   ZnIndex(StringLength(theASCII)), theCaseSensitive, theFromIndex);
  });
}

namespace {
/// Strings come in two classes; each is recognised without a dynamic_cast.
const String* AsString(const Object* theObject) {
  if (theObject == nullptr)
    return nullptr;
  const std::type_info& type = typeid(*theObject);
  if (type == typeid(String) || type == typeid(MutableString))
    return static_cast<const String*>(theObject);
  return dynamic_cast<const String*>(theObject);
}

/// The sign-bearing result of comparing the first theLength units of two
/// texts, as the bytes of their 16-bit forms compare in memory.
template <class LeftT, class RightT> int CompareUnits(const LeftT* theLeft, const RightT* theRight, ZnIndex theLength) {
  if constexpr (sizeof(LeftT) == sizeof(RightT)) {
    return theLength > 0 ? std::memcmp(theLeft, theRight, Sys::size_t(theLength) * sizeof(LeftT)) : 0;
  } else {
    for (ZnIndex i = 0; i < theLength; ++i)
      if (theLeft[i] != theRight[i])
        return CompareUnitBytes(theLeft[i], theRight[i]);
    return 0;
  }
}

/// Compares two texts of either form.
int CompareStrings(const String* theLeft, const String* theRight, ZnIndex theLength) {
  return theLeft->withCharacters([&](auto theLeftUnits, ZnIndex) {
    return theRight->withCharacters(
        [&](auto theRightUnits, ZnIndex) { return CompareUnits(theLeftUnits, theRightUnits, theLength); });
  });
}
} // namespace

bool String::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const String* other = AsString(theOther);
  return other != nullptr && hasSameUnits(other);
}

bool String::hasSameUnits(const String* theOther) const {
  return theOther->length_ == length_ && CompareStrings(this, theOther, length()) == 0;
}

bool String::isEqualToCharacters(const ZnUnichar* theCharacters, ZnIndex theLength) const {
  if (theLength != length())
    return false;
  return withCharacters([&](auto theUnits, ZnIndex) { return CompareUnits(theUnits, theCharacters, theLength) == 0; });
}

int32_t String::compare(const Object* theOther) const {
  if (theOther == this)
    return 0;
  const String* other = AsString(theOther);
  if (other == nullptr)
    return Object::compare(theOther);
  ZnIndex common = length() < other->length() ? length() : other->length();
  int result = CompareStrings(this, other, common);
  if (result != 0)
    return result;
  if (length_ == other->length_)
    return 0;
  return length_ < other->length_ ? -1 : 1;
}

uint32_t String::hash() const {
  return withCharacters([](auto theUnits, ZnIndex theLength) { return HashUnits(theUnits, theLength); });
}

uint32_t HashCharacters(const ZnUnichar* theCharacters, ZnIndex theLength) {
  return HashUnits(theCharacters, theLength);
}

Object* String::copy() const { return retain(); }

Object* String::mutableCopy() const { return new MutableString(this); }

String* String::description() const { return static_cast<String*>(retain()); }

void String::writeDescription(Writer* theWriter) const { theWriter->writeString(this); }

const char* String::className() const { return "String"; }
const char* String::superclassName() const { return "Object"; }

//===--- WideCharacters ------------------------------------------------------===//

WideCharacters::WideCharacters(const String* theString) : length_(theString->length()) {
  if (theString->isWide()) {
    units_ = theString->withCharacters([](auto theUnits, ZnIndex) { return reinterpret_cast<const ZnUnichar*>(theUnits); });
    return;
  }
  ZnUnichar* units = buffer_;
  if (length_ > kInlineUnits)
    units = block_ = static_cast<ZnUnichar*>(Allocate(Sys::size_t(length_) * 2));
  theString->getCharacters(units, Range(0, length_));
  units_ = units;
}

WideCharacters::~WideCharacters() { Free(block_); }

} // namespace Zn
