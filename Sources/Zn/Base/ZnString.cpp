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

//===--- String --------------------------------------------------------------===//

String::String(const char* theString, ZnIndex theLength) {
  ZnAssert(theString != NULL, 0);
  if (theLength < 0)
    theLength = ZnIndex(StringLength(theString));
  if (theLength == 0)
    return;
  characters_ = static_cast<ZnUnichar*>(Allocate(Sys::size_t(theLength) * 2));
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(theString);
  for (ZnIndex i = 0; i < theLength; ++i)
    characters_[i] = bytes[i];
  length_ = theLength;
}

String::String(const ZnUnichar* theCharacters, ZnIndex theLength) {
  ZnAssert((theCharacters != NULL) || (theLength == 0), 0);
  if (theLength <= 0)
    return;
  characters_ = static_cast<ZnUnichar*>(Allocate(Sys::size_t(theLength) * 2));
  CopyMemory(theCharacters, characters_, Sys::size_t(theLength) * 2);
  length_ = theLength;
}

String* String::createWithCharacters(const ZnUnichar* theCharacters, ZnIndex theLength) {
  ZnAssert((theCharacters != NULL) || (theLength == 0), 0);
  static_assert(sizeof(String) % alignof(ZnUnichar) == 0, "the characters follow the object");
  static_assert(sizeof(String) == 3 * sizeof(void*) || sizeof(void*) == 4, "the length sits in Object's padding");
  if (theLength <= 0)
    return new String();
  void* memory = AllocateObject(sizeof(String) + Sys::size_t(theLength) * 2);
  String* string = ::new (memory) String();
  string->characters_ = string->inlineCharacters();
  string->length_ = theLength;
  CopyMemory(theCharacters, string->characters_, Sys::size_t(theLength) * 2);
  return string;
}

String::~String() {
  if (characters_ != inlineCharacters())
    Free(characters_);
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
  return StringEncoding::dataFromCharacters(theEncoding, characters_, length_);
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
  return characters_[theIndex];
}

void String::getCharacters(ZnUnichar* theBuffer, Range theRange) const {
  ZnAssert((theRange.location + theRange.length) <= length_, theRange.location);
  CopyMemory(characters_ + theRange.location, theBuffer, Sys::size_t(theRange.length) * 2);
}

String* String::substringWithRange(Range theRange) const {
  ZnAssert((theRange.location + theRange.length) <= length_, theRange.location);
  return new String(characters_ + theRange.location, theRange.length);
}

String* String::substringFromIndex(ZnIndex theIndex) const {
  ZnAssert(theIndex <= length_, theIndex);
  return new String(characters_ + theIndex, length_ - theIndex);
}

String* String::substringToIndex(ZnIndex theIndex) const {
  ZnAssert((theIndex + 1) < length_, theIndex);
  return new String(characters_, theIndex + 1);
}

int32_t String::compareToCString(const char* theCString, bool theCaseSensitive) const {
  ZnAssert(theCString != NULL, 0);
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(theCString);
  ZnIndex i = 0;
  for (; i < length_ && bytes[i]; ++i) {
    ZnUnichar a = characters_[i], b = bytes[i];
    if (!theCaseSensitive) {
      a = FoldCase(a);
      b = FoldCase(b);
    }
    if (a != b)
      return a < b ? -1 : 1;
  }
  if (i < length_)
    return 1;
  return bytes[i] ? -1 : 0;
}

String* String::lowercaseString() const {
  ZnIndex i = 0;
  while (i < length_ && !(characters_[i] >= 'A' && characters_[i] <= 'Z'))
    ++i;
  if (i == length_)
    return static_cast<String*>(retain());
  String* lowered = new String(characters_, length_);
  for (; i < length_; ++i)
    lowered->characters_[i] = FoldCase(characters_[i]);
  return lowered;
}

bool String::doubleValue(double* theResult, int theBase) const {
  ZnAssert(theBase >= 2, theBase);
  ZnAssert(theBase <= 36, theBase);
  if (length_ == 0)
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
  while (i < length_) {
    ZnUnichar c = characters_[i];
    if (DigitValue(c) < theBase || c == '+' || c == '-' || c == '.')
      break;
    ++i;
  }
  if (i == length_)
    return false;
  bool negative = false;
  if (characters_[i] == '+' || characters_[i] == '-') {
    negative = characters_[i] == '-';
    if (++i == length_)
      return false;
  }
  double value = 0.0;
  int digit;
  while (i < length_ && (digit = DigitValue(characters_[i])) < theBase) {
    value = value * theBase + digit;
    ++i;
  }
  // An exponent is only recognised after a decimal point.
  if (i + 1 < length_ && characters_[i] == '.') {
    ++i;
    double scale = 1.0;
    while (i < length_ && (digit = DigitValue(characters_[i])) < theBase) {
      scale /= theBase;
      value += digit * scale;
      ++i;
    }
    if (i + 1 < length_ && (characters_[i] == 'e' || characters_[i] == 'E')) {
      ++i;
      bool negativeExponent = false;
      if (characters_[i] == '-') {
        negativeExponent = true;
        ++i;
      }
      double exponent = 0.0;
      while (i < length_ && (digit = DigitValue(characters_[i])) < theBase) {
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
template <class CharT>
static ZnIndex IndexOf(const ZnUnichar* theText, ZnIndex theTextLength, const CharT* theSearch,
                       ZnIndex theSearchLength, bool theCaseSensitive, ZnIndex theFromIndex) {
  if (theFromIndex < 0)
    theFromIndex = 0;
  if (theFromIndex > theTextLength - theSearchLength)
    return -1;
  if (theSearchLength == 0)
    return theFromIndex;
  for (ZnIndex start = theFromIndex; start <= theTextLength - theSearchLength; ++start) {
    ZnIndex k = 0;
    for (; k < theSearchLength; ++k) {
      ZnUnichar a = theText[start + k], b = ZnUnichar(theSearch[k]);
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
  return IndexOf(characters_, length_, theSearchString->characters_, theSearchString->length_, theCaseSensitive,
                 theFromIndex);
}

ZnIndex String::indexOfCString(const char* theASCII, bool theCaseSensitive, ZnIndex theFromIndex) const {
  ZnAssert(theASCII, 0);
  return IndexOf(characters_, length_, reinterpret_cast<const uint8_t*>(theASCII), ZnIndex(StringLength(theASCII)),
                 theCaseSensitive, theFromIndex);
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
} // namespace

bool String::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const String* other = AsString(theOther);
  if (other == nullptr || other->length_ != length_)
    return false;
  return length_ == 0 || std::memcmp(characters_, other->characters_, Sys::size_t(length_) * 2) == 0;
}

int32_t String::compare(const Object* theOther) const {
  if (theOther == this)
    return 0;
  const String* other = AsString(theOther);
  if (other == nullptr)
    return Object::compare(theOther);
  ZnIndex common = length_ < other->length_ ? length_ : other->length_;
  // Byte order as in memory, low byte of each unit first.
  if (common > 0) {
    int result = std::memcmp(characters_, other->characters_, Sys::size_t(common) * 2);
    if (result != 0)
      return result;
  }
  if (length_ == other->length_)
    return 0;
  return length_ < other->length_ ? -1 : 1;
}

uint32_t String::hash() const { return HashMemory(characters_, Sys::size_t(length_) * 2); }

Object* String::copy() const { return retain(); }

Object* String::mutableCopy() const { return new MutableString(this); }

String* String::description() const { return static_cast<String*>(retain()); }

void String::writeDescription(Writer* theWriter) const { theWriter->writeCharacters(characters_, length_); }

const char* String::className() const { return "String"; }
const char* String::superclassName() const { return "Object"; }

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
  characters_ = static_cast<ZnUnichar*>(Reallocate(characters_, Sys::size_t(capacity) * 2));
  capacity_ = capacity;
}

void MutableString::setLength(ZnIndex theLength) {
  ZnAssert((theLength >= 0) && (theLength <= capacity_), theLength);
  length_ = theLength;
}

void MutableString::appendCharacters(const ZnUnichar* theCharacters, ZnIndex theLength) {
  if (theLength <= 0)
    return;
  ensureCapacity(length_ + theLength);
  ZnUnichar* out = characters_ + length_;
  length_ += theLength;
  // Most runs are a few units: not worth a call.
  if (theLength <= 16) {
    for (ZnIndex i = 0; i < theLength; ++i)
      out[i] = theCharacters[i];
    return;
  }
  CopyMemory(theCharacters, out, Sys::size_t(theLength) * 2);
}

void MutableString::appendCString(const char* theString, ZnIndex theLength) {
  ZnAssert(theString != NULL, 0);
  if (theLength < 0)
    theLength = ZnIndex(StringLength(theString));
  ensureCapacity(length_ + theLength);
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(theString);
  for (ZnIndex i = 0; i < theLength; ++i)
    characters_[length_ + i] = bytes[i];
  length_ += theLength;
}

void MutableString::appendString(const String* theString) {
  ZnAssert(theString != NULL, 0);
  appendCharacters(theString->getCharactersPtr(), theString->length());
}

void MutableString::insertCharacters(ZnIndex theIndex, const ZnUnichar* theCharacters, ZnIndex theLength) {
  if (theIndex < 0)
    theIndex = length_;
  ZnAssert(theIndex <= length_, theIndex);
  ZnAssert(theLength >= 0, theLength);
  ensureCapacity(length_ + theLength);
  MoveMemory(characters_ + theIndex, characters_ + theIndex + theLength, Sys::size_t(length_ - theIndex) * 2);
  CopyMemory(theCharacters, characters_ + theIndex, Sys::size_t(theLength) * 2);
  length_ += theLength;
}

void MutableString::deleteCharactersInRange(Range theRange) { replaceCharactersInRange(theRange, nullptr, 0); }

void MutableString::replaceCharactersInRange(Range theRange, const ZnUnichar* theCharacters, ZnIndex theLength) {
  ZnAssert((theRange.location + theRange.length) <= length_, theRange.location);
  ZnIndex newLength = length_ - theRange.length + theLength;
  ensureCapacity(newLength);
  MoveMemory(characters_ + theRange.getMaximum(), characters_ + theRange.location + theLength,
             Sys::size_t(length_ - theRange.getMaximum()) * 2);
  CopyMemory(theCharacters, characters_ + theRange.location, Sys::size_t(theLength) * 2);
  length_ = newLength;
}

Object* MutableString::copy() const { return new String(characters_, length_); }

// A mutable string may change after it was described, so its description is
// a snapshot.
String* MutableString::description() const { return new String(characters_, length_); }

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
  const ZnUnichar* units = theString->getCharactersPtr();
  for (ZnIndex i = 0; i < theString->length(); ++i) {
    ZnUnichar c = units[i];
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
