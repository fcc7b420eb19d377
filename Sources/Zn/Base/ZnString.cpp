//===- ZnString.cpp - Immutable and growable UTF-16 text -------------------===//
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnObjectHeap.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnWriter.h"
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>

namespace Zn {

static inline ZnUnichar FoldCase(ZnUnichar theCharacter) {
  return (theCharacter >= 'A' && theCharacter <= 'Z') ? ZnUnichar(theCharacter + 32) : theCharacter;
}

namespace {
/// Whether every unit fits in one byte.
bool AllNarrow(const ZnUnichar* theCharacters, ZnIndex theLength) {
  ZnUnichar any = 0;
  for (ZnIndex i = 0; i < theLength; ++i)
    any |= theCharacters[i];
  return any <= 0xFF;
}
bool AllNarrow(const uint8_t*, ZnIndex) { return true; }

/// Copies theLength units from one form to another (one that can hold them).
template <class To, class From> void CopyUnits(const From* theFrom, To* theTo, ZnIndex theLength) {
  if constexpr (sizeof(To) == sizeof(From)) {
    if (theLength > 0)
      CopyMemory(theFrom, theTo, Sys::size_t(theLength) * sizeof(To));
  } else {
    for (ZnIndex i = 0; i < theLength; ++i)
      theTo[i] = To(theFrom[i]);
  }
}

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
  if (other == nullptr || other->length_ != length_)
    return false;
  return CompareStrings(this, other, length()) == 0;
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
  characters_ = Reallocate(characters_, Sys::size_t(capacity) * (isWide_ ? 2 : 1));
  capacity_ = capacity;
}

void MutableString::widen() {
  if (isWide_)
    return;
  if (length_ > 0) {
    widenInto(capacity_);
    return;
  }
  // Nothing to convert: the block only needs twice the bytes.
  characters_ = Reallocate(characters_, Sys::size_t(capacity_ > 0 ? capacity_ : 1) * 2);
  isWide_ = true;
}

ZnUnichar* MutableString::getMutableCharactersPtr() {
  ZnAssert(isWide_, 0);
  return wide();
}

const ZnUnichar* MutableString::getWideCharactersPtr() const {
  ZnAssert(isWide_, 0);
  return wide();
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
  if (!isWide_ && !AllNarrow(theCharacters, theLength))
    widen();
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
  // Most runs are a few units: not worth a call.
  if (theLength <= 16 && length() + theLength <= capacity_) {
    for (ZnIndex i = 0; i < theLength; ++i)
      appendCharacter(theCharacters[i]);
    return;
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

//===--- Format routine ------------------------------------------------------===//

namespace {
// Formats one value with the C library and appends the bytes as units.
template <class T>
void AppendPrintf(MutableString* theString, const char* theSubFormat, int theStars, const int* theStarValues,
                  T theValue) {
  char buffer[256];
  char* out = buffer;
  auto run = [&](char* theBuffer, Sys::size_t theSize) {
    switch (theStars) {
    case 0: return std::snprintf(theBuffer, theSize, theSubFormat, theValue);
    case 1: return std::snprintf(theBuffer, theSize, theSubFormat, theStarValues[0], theValue);
    default: return std::snprintf(theBuffer, theSize, theSubFormat, theStarValues[0], theStarValues[1], theValue);
    }
  };
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  int n = run(buffer, sizeof buffer);
  if (n >= int(sizeof buffer)) {
    out = static_cast<char*>(Allocate(Sys::size_t(n) + 1));
    run(out, Sys::size_t(n) + 1);
  }
#pragma GCC diagnostic pop
  if (n > 0)
    theString->appendCString(out, n);
  if (out != buffer)
    Free(out);
}

bool IsOctal(unsigned theCharacter) { return theCharacter >= '0' && theCharacter <= '7'; }

template <class CharT>
void AppendFormatImpl(MutableString* theStringOut, const CharT* theFormat, Sys::size_t theLength, va_list theArgs) {
  theStringOut->ensureCapacity(theStringOut->length() + ZnIndex(2 * theLength));
  Sys::size_t len = theLength;
  for (Sys::size_t i = 0; i < len; ++i) {
    unsigned c = theFormat[i];
    if (c == '\\') {
      if (i + 1 >= len) {
        ZnAssert(!"unknown backslash escape sequence", 0);
        break;
      }
      unsigned e = theFormat[++i];
      switch (e) {
      case '\'':
      case '\\': theStringOut->appendCharacter(ZnUnichar(e)); break;
      case 'a': theStringOut->appendCharacter(7); break;
      case 'b': theStringOut->appendCharacter(8); break;
      case 'f': theStringOut->appendCharacter(12); break;
      case 'n': theStringOut->appendCharacter(10); break;
      case 'r': theStringOut->appendCharacter(13); break;
      case 't': theStringOut->appendCharacter(9); break;
      case 'v': theStringOut->appendCharacter(11); break;
      default:
        if (IsOctal(e)) {
          unsigned value = e - '0';
          for (int k = 0; k < 2 && i + 1 < len && IsOctal(theFormat[i + 1]); ++k)
            value = value * 8 + (theFormat[++i] - '0');
          theStringOut->appendCharacter(ZnUnichar(value % 256));
        } else {
          ZnAssert(!"unknown backslash escape sequence", 0);
        }
      }
      continue;
    }
    if (c != '%') {
      theStringOut->appendCharacter(ZnUnichar(c));
      continue;
    }
    // Collect the conversion into a sub-format for the C library.
    char subFormat[256];
    Sys::size_t subLen = 0;
    subFormat[subLen++] = '%';
    unsigned conversion = 0;
    for (;;) {
      ++i;
      ZnAssert((i < len) && (subLen < (sizeof(subFormat) - 1)), 0);
      if (!((i < len) && (subLen < (sizeof(subFormat) - 1))))
        return;
      unsigned f = theFormat[i];
      subFormat[subLen++] = char(f);
      if (f < 128 && std::strchr("%@PXacdefgiopsux", int(f))) {
        conversion = f;
        break;
      }
    }
    subFormat[subLen] = 0;
    int stars = 0, starValues[2] = {0, 0};
    for (Sys::size_t k = 1; k + 1 < subLen; ++k)
      if (subFormat[k] == '*' && stars < 2)
        starValues[stars++] = va_arg(theArgs, int);
    // The length modifiers decide how wide the integer argument is.
    bool isLongLong = std::strstr(subFormat, "ll") || std::strchr(subFormat, 'q') || std::strchr(subFormat, 'j');
    bool isLong = !isLongLong && std::strchr(subFormat, 'l');
    bool isSize = std::strchr(subFormat, 'z') || std::strchr(subFormat, 't');
    switch (conversion) {
    case '%': theStringOut->appendCharacter('%'); break;
    case '@': {
      const Object* object = va_arg(theArgs, const Object*);
      if (object == nullptr) {
        theStringOut->appendCString("(NULL)");
        break;
      }
      auto text = adopt(object->description());
      if (!text)
        theStringOut->appendCString("(NULL DESCRIPTION)");
      else
        theStringOut->appendString(text.get());
      break;
    }
    case 'c': theStringOut->appendCharacter(ZnUnichar(va_arg(theArgs, int))); break;
    case 's': {
      const char* theString = va_arg(theArgs, const char*);
      ZnAssert(theString != NULL, 0);
      if (theString)
        theStringOut->appendCString(theString);
      break;
    }
    case 'p':
    case 'P': AppendPrintf(theStringOut, subFormat, stars, starValues, va_arg(theArgs, void*)); break;
    case 'a':
    case 'e':
    case 'f':
    case 'g':
      if (std::strchr(subFormat, 'L'))
        AppendPrintf(theStringOut, subFormat, stars, starValues, va_arg(theArgs, long double));
      else
        AppendPrintf(theStringOut, subFormat, stars, starValues, va_arg(theArgs, double));
      break;
    default:
      if (isLongLong)
        AppendPrintf(theStringOut, subFormat, stars, starValues, va_arg(theArgs, long long));
      else if (isSize)
        AppendPrintf(theStringOut, subFormat, stars, starValues, va_arg(theArgs, Sys::size_t));
      else if (isLong)
        AppendPrintf(theStringOut, subFormat, stars, starValues, va_arg(theArgs, long));
      else
        AppendPrintf(theStringOut, subFormat, stars, starValues, va_arg(theArgs, int));
    }
  }
}
} // namespace

void MutableString::appendFormat(const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  appendFormatV(theFormat, args);
  va_end(args);
}

void MutableString::appendFormatV(const char* theFormat, va_list theArgs) {
  ZnAssert(theFormat != NULL, 0);
  va_list args;
  va_copy(args, theArgs);
  AppendFormatImpl(this, reinterpret_cast<const uint8_t*>(theFormat), StringLength(theFormat), args);
  va_end(args);
}

void MutableString::appendFormatV(const ZnUnichar* theFormat, ZnIndex theFormatLength, va_list theArgs) {
  va_list args;
  va_copy(args, theArgs);
  AppendFormatImpl(this, theFormat, Sys::size_t(theFormatLength), args);
  va_end(args);
}

String* StringWithFormat(const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  String* result = StringWithFormatV(theFormat, args);
  va_end(args);
  return result;
}

String* StringWithFormatV(const char* theFormat, va_list theArgs) {
  MutableString* string = new MutableString();
  string->appendFormatV(theFormat, theArgs);
  return string;
}

void PrintToStandardError(const String* theString) {
  for (ZnIndex i = 0; i < theString->length(); ++i) {
    ZnUnichar c = theString->unitAt(i);
    if (c == 7)
      std::fputs("\\a", stderr);
    else if (c == 8)
      std::fputs("\\b", stderr);
    else if (c == 13)
      std::fputs("\\r", stderr);
    else if (c == 9 || c == 10 || (c >= 32 && c <= 127))
      std::fputc(c, stderr);
    else
      std::fprintf(stderr, "\\u%04x", unsigned(c));
  }
  std::fputc('\n', stderr);
  std::fflush(stderr);
}
} // namespace Zn
