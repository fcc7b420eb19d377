//===- ZnStringEncoding.cpp - Conversions between code units and bytes ----===//
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnString.h"

namespace Zn {

//===--- StringEncoding ------------------------------------------------------===//

namespace {
template <class CharT>
MutableData* DataFromUnits(StringEncoding* theEncoding, const CharT* theCharacters, ZnIndex theCount) {
  auto data = adopt(new MutableData());
  bool isFirst = true;
  while (theCount > 0) {
    ZnIndex chunkSize = theCount < 1024 ? theCount : 1024;
    ZnIndex charCount;
    if constexpr (sizeof(CharT) == 1)
      charCount = theEncoding->encodeBytes(theCharacters, chunkSize, data.get(), isFirst);
    else
      charCount = theEncoding->encodeCharacters(theCharacters, chunkSize, data.get(), isFirst);
    ZnAssert(charCount <= chunkSize, charCount);
    isFirst = false;
    theCharacters += charCount;
    theCount -= charCount;
  }
  return data.leak();
}
} // namespace

MutableData* StringEncoding::dataFromCharacters(StringEncoding* theEncoding, const ZnUnichar* theCharacters,
                                                ZnIndex theCount) {
  return DataFromUnits(theEncoding, theCharacters, theCount);
}

MutableData* StringEncoding::dataFromCharacters(StringEncoding* theEncoding, const uint8_t* theCharacters,
                                                ZnIndex theCount) {
  return DataFromUnits(theEncoding, theCharacters, theCount);
}

MutableString* StringEncoding::stringFromBytes(StringEncoding* theEncoding, const uint8_t* theBytes,
                                               ZnIndex theCount) {
  auto string = adopt(new MutableString());
  bool isFirst = true;
  while (theCount > 0) {
    ZnIndex chunkSize = theCount < 1024 ? theCount : 1024;
    ZnIndex byteCount = theEncoding->decodeBytes(theBytes, theCount, string.get(), isFirst);
    ZnAssert(byteCount <= chunkSize, byteCount);
    if (byteCount <= 0)
      break;
    isFirst = false;
    theBytes += byteCount;
    theCount -= byteCount;
  }
  if (theCount > 0)
    theEncoding->decodeLastBytes(theBytes, theCount, string.get());
  return string.leak();
}

void StringEncoding::decodeLastBytes(const uint8_t*, ZnIndex, MutableString*) {}

const char* StringEncoding::className() const { return "StringEncoding"; }
const char* StringEncoding::superclassName() const { return "Object"; }

StringEncoding* StringEncodingWithID(int theID) {
  switch (theID) {
  case kStringEncodingUTF16SwappedWithBOM: return new UTF16Encoding(true, true);
  case kStringEncodingUTF16Swapped: return new UTF16Encoding(true, false);
  case kStringEncodingUTF16WithBOM: return new UTF16Encoding(false, true);
  case kStringEncodingUTF16: return new UTF16Encoding(false, false);
  case kStringEncodingUTF8WithBOM: return new UTF8Encoding(true);
  case kStringEncodingUTF8: return new UTF8Encoding(false);
  case kStringEncodingASCII: return new ASCIIEncoding(false);
  case kStringEncodingASCIIEscaped: return new ASCIIEncoding(true);
  default: return nullptr;
  }
}

// Widens 8-bit characters to units of the same value.
static ZnIndex DecodeLatin1(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString) {
  if (theCount <= 0)
    return 0;
  theString->appendCString(reinterpret_cast<const char*>(theBytes), theCount);
  return theCount;
}

//===--- UTF16Encoding -------------------------------------------------------===//

namespace {
// Writes the mark (opposite in order to the data behind it), then each
// character as two bytes.
template <class CharT>
ZnIndex EncodeUTF16(const CharT* theCharacters, ZnIndex theCount, MutableData* theData, bool theWriteMark,
                    bool theSwapBytes) {
  if (theCount <= 0)
    return 0;
  uint8_t* out = theData->beginAppend(2 * theCount + 2);
  if (theWriteMark) {
    *out++ = theSwapBytes ? 0xFF : 0xFE;
    *out++ = theSwapBytes ? 0xFE : 0xFF;
  }
  for (ZnIndex i = 0; i < theCount; ++i) {
    ZnUnichar c = theCharacters[i];
    *out++ = uint8_t(theSwapBytes ? c >> 8 : c);
    *out++ = uint8_t(theSwapBytes ? c : c >> 8);
  }
  theData->endAppend(out);
  return theCount;
}
} // namespace

ZnIndex UTF16Encoding::encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                                        bool theIsFirst) {
  return EncodeUTF16(theCharacters, theCount, theData, theIsFirst && writeBOM_, swapBytes_);
}

ZnIndex UTF16Encoding::encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData,
                                   bool theIsFirst) {
  return EncodeUTF16(theBytes, theCount, theData, theIsFirst && writeBOM_, swapBytes_);
}

ZnIndex UTF16Encoding::decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString,
                                   bool theIsFirst) {
  ZnIndex consumed = theCount & ~1;
  ZnIndex i = 0;
  if (theIsFirst && consumed >= 2) {
    if (theBytes[0] == 0xFF && theBytes[1] == 0xFE) {
      swapBytes_ = writeBOM_ = true;
      i = 2;
    } else if (theBytes[0] == 0xFE && theBytes[1] == 0xFF) {
      swapBytes_ = false;
      writeBOM_ = true;
      i = 2;
    }
  }
  ZnIndex length = theString->length();
  theString->widen();
  theString->ensureCapacity(length + (consumed - i) / 2);
  ZnUnichar* out = theString->getMutableCharactersPtr() + length;
  for (; i < consumed; i += 2) {
    uint8_t first = theBytes[i], second = theBytes[i + 1];
    *out++ = swapBytes_ ? ZnUnichar(first << 8 | second) : ZnUnichar(second << 8 | first);
  }
  theString->setLength(ZnIndex(out - theString->getMutableCharactersPtr()));
  return consumed;
}

const char* UTF16Encoding::className() const { return "UTF16Encoding"; }
const char* UTF16Encoding::superclassName() const { return "StringEncoding"; }

//===--- UTF8Encoding --------------------------------------------------------===//

static uint8_t* PutUTF8Mark(uint8_t* theOut) {
  *theOut++ = 0xEF;
  *theOut++ = 0xBB;
  *theOut++ = 0xBF;
  return theOut;
}

ZnIndex UTF8Encoding::encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                                       bool theIsFirst) {
  if (theCount <= 0)
    return 0;
  uint8_t* out = theData->beginAppend(3 * theCount + 3);
  if (theIsFirst && writeBOM_)
    out = PutUTF8Mark(out);
  for (ZnIndex i = 0; i < theCount; ++i) {
    ZnUnichar u = theCharacters[i];
    if (u < 0x80) {
      *out++ = uint8_t(u);
    } else if (u < 0x800) {
      *out++ = uint8_t(0xC0 | (u >> 6));
      *out++ = uint8_t(0x80 | (u & 0x3F));
    } else if (u >= 0xD800 && u < 0xDC00 && i + 1 < theCount && theCharacters[i + 1] >= 0xDC00 &&
               theCharacters[i + 1] < 0xE000) {
      // A surrogate pair is one character of four bytes.
      const uint32_t c = 0x10000 + ((uint32_t(u) - 0xD800) << 10) + (uint32_t(theCharacters[++i]) - 0xDC00);
      *out++ = uint8_t(0xF0 | (c >> 18));
      *out++ = uint8_t(0x80 | ((c >> 12) & 0x3F));
      *out++ = uint8_t(0x80 | ((c >> 6) & 0x3F));
      *out++ = uint8_t(0x80 | (c & 0x3F));
    } else {
      // A surrogate without its other half is its own three-byte sequence.
      *out++ = uint8_t(0xE0 | (u >> 12));
      *out++ = uint8_t(0x80 | ((u >> 6) & 0x3F));
      *out++ = uint8_t(0x80 | (u & 0x3F));
    }
  }
  theData->endAppend(out);
  return theCount;
}

ZnIndex UTF8Encoding::encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData,
                                  bool theIsFirst) {
  if (theCount <= 0)
    return 0;
  if (theIsFirst && writeBOM_)
    theData->endAppend(PutUTF8Mark(theData->beginAppend(3)));
  uint8_t high = 0;
  for (ZnIndex i = 0; i < theCount; ++i)
    high |= theBytes[i];
  if (high < 0x80) {
    theData->appendBytes(theBytes, theCount);
    return theCount;
  }
  // Characters from 0x80 to 0xFF take two bytes each.
  uint8_t* out = theData->beginAppend(theCount * 2);
  for (ZnIndex i = 0; i < theCount; ++i) {
    const uint8_t c = theBytes[i];
    if (c < 0x80) {
      *out++ = c;
      continue;
    }
    *out++ = uint8_t(0xC0 | (c >> 6));
    *out++ = uint8_t(0x80 | (c & 0x3F));
  }
  theData->endAppend(out);
  return theCount;
}

namespace {
/// Stores the eight bytes of theWord, as they lay in memory, as eight units.
void WidenASCII(uint64_t theWord, ZnUnichar* theOut) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  // Spreads four bytes into the 16-bit lanes of a word: the first byte in
  // the lowest lane, which a little-endian store puts first.
  auto spread = [](uint64_t theBytes) {
    theBytes = (theBytes | (theBytes << 16)) & 0x0000FFFF0000FFFFu;
    return (theBytes | (theBytes << 8)) & 0x00FF00FF00FF00FFu;
  };
  uint64_t low = spread(theWord & 0xFFFFFFFFu), high = spread(theWord >> 32);
  __builtin_memcpy(theOut, &low, sizeof low);
  __builtin_memcpy(theOut + 4, &high, sizeof high);
#else
  uint8_t bytes[8];
  __builtin_memcpy(bytes, &theWord, sizeof bytes);
  for (int k = 0; k < 8; ++k)
    theOut[k] = bytes[k];
#endif
}

// The characters of Windows-1252 at 0x80-0x9F; its five holes keep the C1
// control of the same value. Above them it agrees with Latin-1.
const ZnUnichar kWindows1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

ZnUnichar Windows1252(uint32_t theByte) {
  return theByte >= 0x80 && theByte < 0xA0 ? kWindows1252[theByte - 0x80] : ZnUnichar(theByte);
}

// The length of the sequence that theByte leads (0 when it leads none) and
// the range of its second byte, which rules out overlong forms, surrogates
// and code points past U+10FFFF; later bytes are any of 80-BF.
struct Lead {
  uint8_t size, low, high;
};

Lead LeadOf(uint32_t theByte) {
  if (theByte < 0xC2 || theByte > 0xF4)
    return {0, 0, 0};
  if (theByte < 0xE0)
    return {2, 0x80, 0xBF};
  if (theByte < 0xF0)
    return {3, uint8_t(theByte == 0xE0 ? 0xA0 : 0x80), uint8_t(theByte == 0xED ? 0x9F : 0xBF)};
  return {4, uint8_t(theByte == 0xF0 ? 0x90 : 0x80), uint8_t(theByte == 0xF4 ? 0x8F : 0xBF)};
}
} // namespace

ZnIndex UTF8Encoding::decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString,
                                  bool theIsFirst) {
  if (theCount <= 0)
    return 0;
  ZnIndex length = theString->length();
  // Every byte yields at most one unit: a surrogate pair takes four.
  theString->widen();
  theString->ensureCapacity(length + theCount);
  ZnUnichar* const start = theString->getMutableCharactersPtr() + length;
  ZnUnichar* out = start;
  ZnIndex i = 0;
  while (i < theCount) {
    // Notebook text is nearly all ASCII: widen eight bytes at a time while
    // none has its high bit set.
    while (theCount - i >= 8) {
      uint64_t word;
      __builtin_memcpy(&word, theBytes + i, sizeof word); // an unaligned load
      if (word & 0x8080808080808080u)
        break;
      WidenASCII(word, out);
      out += 8;
      i += 8;
    }
    if (i >= theCount)
      break;
    uint32_t b = theBytes[i];
    if (b < 0x80) {
      *out++ = ZnUnichar(b);
      ++i;
      continue;
    }
    const bool atStart = theIsFirst && i == 0;
    // How many bytes from i on belong to a well-formed sequence.
    Lead lead = LeadOf(b);
    ZnIndex valid = 1;
    if (lead.size > 0 && i + 1 < theCount && theBytes[i + 1] >= lead.low && theBytes[i + 1] <= lead.high) {
      valid = 2;
      while (valid < lead.size && i + valid < theCount && (theBytes[i + valid] & 0xC0) == 0x80)
        ++valid;
    }
    if (valid < lead.size && i + valid == theCount)
      break; // cut by the end of the buffer: more bytes may complete it
    if (valid < lead.size || lead.size == 0) {
      *out++ = Windows1252(b);
      ++i;
      continue;
    }
    uint32_t value = b & (0x7F >> lead.size);
    for (ZnIndex k = 1; k < lead.size; ++k)
      value = (value << 6) | (theBytes[i + k] & 0x3F);
    i += lead.size;
    if (value > 0xFFFF) {
      value -= 0x10000;
      *out++ = ZnUnichar(0xD800 | (value >> 10));
      *out++ = ZnUnichar(0xDC00 | (value & 0x3FF));
    } else if (atStart && (value == 0xFEFF || value == 0xFFFE)) {
      writeBOM_ = true;
    } else {
      *out++ = ZnUnichar(value);
    }
  }
  theString->setLength(length + ZnIndex(out - start));
  return i;
}

void UTF8Encoding::decodeLastBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString) {
  // The first byte of the cut sequence stands alone; the bytes after it are
  // decoded afresh.
  ZnIndex i = 0;
  while (i < theCount) {
    i += decodeBytes(theBytes + i, theCount - i, theString, false);
    if (i < theCount)
      theString->appendCharacter(Windows1252(theBytes[i++]));
  }
}

const char* UTF8Encoding::className() const { return "UTF8Encoding"; }
const char* UTF8Encoding::superclassName() const { return "StringEncoding"; }

//===--- ASCIIEncoding -------------------------------------------------------===//

ZnIndex ASCIIEncoding::encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                                        bool) {
  if (theCount <= 0)
    return 0;
  static const char kHex[] = "0123456789abcdef";
  uint8_t* out = theData->beginAppend(theCount);
  for (ZnIndex i = 0; i < theCount; ++i) {
    ZnUnichar u = theCharacters[i];
    if (u <= 0xFF) {
      *out++ = uint8_t(u);
      continue;
    }
    if (!escapeUnicode_) {
      theData->endAppend(out);
      return i;
    }
    // The escape takes five bytes more than the one reserved for the unit.
    theData->endAppend(out);
    out = theData->beginAppend(theCount - i + 5);
    *out++ = '\\';
    *out++ = 'u';
    for (int shift = 12; shift >= 0; shift -= 4)
      *out++ = uint8_t(kHex[(u >> shift) & 0xF]);
  }
  theData->endAppend(out);
  return theCount;
}

ZnIndex ASCIIEncoding::encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData, bool) {
  if (theCount <= 0)
    return 0;
  theData->appendBytes(theBytes, theCount);
  return theCount;
}

ZnIndex ASCIIEncoding::decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString, bool) {
  return DecodeLatin1(theBytes, theCount, theString);
}

const char* ASCIIEncoding::className() const { return "ASCIIEncoding"; }
const char* ASCIIEncoding::superclassName() const { return "StringEncoding"; }

//===--- HTMLEncoding --------------------------------------------------------===//

HTMLEncoding::HTMLEncoding(StringEncoding* theInner)
    : inner_(theInner ? retained(theInner) : adopt<StringEncoding>(new UTF8Encoding(false))),
      innerIsASCII_(dynamic_cast<ASCIIEncoding*>(inner_.get()) != nullptr) {}

namespace {
// Control characters other than the white space ones, and the code points
// that Unicode keeps as noncharacters, may not stand in an HTML document,
// not even as references: the page leaves them out.
bool IsBarredFromHTML(ZnUnichar theCharacter) {
  if (theCharacter < 0x20)
    return theCharacter != 9 && theCharacter != 10 && theCharacter != 12 && theCharacter != 13;
  return (theCharacter >= 0x7F && theCharacter <= 0x9F) || (theCharacter >= 0xFDD0 && theCharacter <= 0xFDEF) ||
         theCharacter >= 0xFFFE;
}

struct Markup {
  const char* text;
  ZnIndex length;
  ZnIndex consumed;
};

// The markup that stands for theCharacter (theNext is the character after
// it, 0xFFFF at the end), or a null text when it needs none.
Markup MarkupFor(ZnUnichar theCharacter, ZnUnichar theNext) {
  switch (theCharacter) {
  case 9: return {"&#160;&#160;&#160;&#160;", 24, 1};
  case 10: return {"<br/>\n", 6, 1};
  case 13: return theNext == 10 ? Markup{"<br/>\r\n", 7, 2} : Markup{"<br/>\r", 6, 1};
  case '"': return {"&quot;", 6, 1};
  case '&': return {"&amp;", 5, 1};
  case '\'': return {"&apos;", 6, 1};
  case '<': return {"&lt;", 4, 1};
  case '>': return {"&gt;", 4, 1};
  default: return IsBarredFromHTML(theCharacter) ? Markup{"", 0, 1} : Markup{nullptr, 0, 0};
  }
}

bool NeedsMarkup(ZnUnichar theCharacter, bool theNumericReferences) {
  switch (theCharacter) {
  case 9:
  case 10:
  case 13:
  case '"':
  case '&':
  case '\'':
  case '<':
  case '>': return true;
  default: return IsBarredFromHTML(theCharacter) || (theNumericReferences && theCharacter >= 128);
  }
}
} // namespace

ZnIndex HTMLEncoding::encodePlain(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                                  bool theIsFirst) {
  return inner_->encodeCharacters(theCharacters, theCount, theData, theIsFirst);
}

ZnIndex HTMLEncoding::encodePlain(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData,
                                  bool theIsFirst) {
  // Bytes reach the inner encoding as units, widened a piece at a time.
  ZnUnichar units[256];
  ZnIndex done = 0;
  while (done < theCount) {
    ZnIndex piece = theCount - done < 256 ? theCount - done : 256;
    for (ZnIndex k = 0; k < piece; ++k)
      units[k] = theBytes[done + k];
    ZnIndex written = inner_->encodeCharacters(units, piece, theData, theIsFirst && done == 0);
    done += written;
    if (written < piece)
      break;
  }
  return done;
}

template <class CharT>
ZnIndex HTMLEncoding::encodeEscaped(const CharT* theCharacters, ZnIndex theCount, MutableData* theData,
                                    bool theIsFirst, bool theNumericReferences) {
  ZnIndex i = 0;
  while (i < theCount) {
    bool isFirst = theIsFirst && i == 0;
    // Characters that need no markup go to the inner encoding as one run.
    ZnIndex runEnd = i;
    while (runEnd < theCount && !NeedsMarkup(theCharacters[runEnd], theNumericReferences))
      ++runEnd;
    if (runEnd > i) {
      ZnIndex written = encodePlain(theCharacters + i, runEnd - i, theData, isFirst);
      if (written < runEnd - i)
        return i + written;
      i = runEnd;
      continue;
    }
    ZnUnichar next = i + 1 < theCount ? theCharacters[i + 1] : 0xFFFF;
    Markup markup = MarkupFor(theCharacters[i], next);
    char reference[16];
    if (markup.text == nullptr) {
      int length = StringFormat(reference, sizeof reference, "&#%04x;", unsigned(theCharacters[i]));
      markup = {reference, length, 1};
    }
    if (inner_->encodeBytes(reinterpret_cast<const uint8_t*>(markup.text), markup.length, theData, isFirst) <
        markup.length)
      return i;
    i += markup.consumed;
  }
  return i;
}

ZnIndex HTMLEncoding::encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                                       bool theIsFirst) {
  if (raw_)
    return inner_->encodeCharacters(theCharacters, theCount, theData, theIsFirst);
  return encodeEscaped(theCharacters, theCount, theData, theIsFirst, innerIsASCII_);
}

ZnIndex HTMLEncoding::encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData,
                                  bool theIsFirst) {
  if (raw_)
    return inner_->encodeBytes(theBytes, theCount, theData, theIsFirst);
  return encodeEscaped(theBytes, theCount, theData, theIsFirst, innerIsASCII_);
}

ZnIndex HTMLEncoding::decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString, bool) {
  return DecodeLatin1(theBytes, theCount, theString);
}

const char* HTMLEncoding::className() const { return "HTMLEncoding"; }
const char* HTMLEncoding::superclassName() const { return "StringEncoding"; }
} // namespace Zn
