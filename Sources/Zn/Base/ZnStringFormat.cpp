//===- ZnStringFormat.cpp - The printf-like format routine of strings -----===//
//
// appendFormat and StringWithFormat: the C library's conversions, plus "%@"
// for an object's description; and the escaped print of a string.
//
//===----------------------------------------------------------------------===//
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnRef.h"
#include <cstdio>
#include <cstring>

namespace Zn {

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
