//===- KxEncoding.cpp - Character escapes of notebook text -----------------===//
#include "Kx/KxEncoding.h"
#include "Kx/KxEscape.h"
#include "Kx/KxNamedCharacterTable.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Util/ZnUtil.h"
#include <type_traits>

namespace Zn::Kx {

//===--- Shared tables ---------------------------------------------------===//

namespace {
struct ReplacementRow {
  ZnUnichar code;
  const char* text;
};

// What plain text shows in place of characters that have an obvious ASCII
// spelling, or none at all, in loading order.
const ReplacementRow kReplacementRows[] = {
    // Rules and comparisons.
    {0xF522, "->"}, {0x2192, "->"}, {0xF525, "->"}, {0xF51F, ":>"},
    {0x2264, "<="}, {0x21D0, "<="}, {0x2265, ">="}, {0x2260, "!="}, {0xF431, "=="},
    {0xF4A0, "x"},
    // Dashes, placeholders, separators.
    {0x2043, "-"}, {0x2010, "-"}, {0x2013, "-"}, {0x2014, "-"},
    {0xF528, "_"}, {0xF527, "_"}, {0xF432, "|"},
    // Arrows and skeleton brackets.
    {0x2190, "<-"}, {0xF526, "<-"}, {0x27F5, "<--"}, {0x27F8, "<=="}, {0x21E4, "|<-"}, {0xF761, "<<"},
    {0x27F6, "-->"}, {0x21D2, "=>"}, {0x27F9, "==>"}, {0x21E5, "->|"}, {0xF762, ">>"},
    {0x2194, "<->"}, {0x27F7, "<-->"}, {0x21D4, "<=>"}, {0x27FA, "<==>"},
    {0xF768, ":"}, {0xF764, ":"},
    // Line breaks.
    {0x2028, "\n"}, {0x2029, "\n"}, {0xF3A3, "\n"},
    // Visible spaces.
    {0xF76E, " "}, {0xF76F, " "}, {0x200A, " "}, {0x2009, " "}, {0x205F, " "}, {0x2005, " "}, {0x2062, ""},
    {0xF754, " "},
    // Invisible and formatting characters, dropped.
    {0xF380, ""}, {0xF760, ""}, {0xF360, ""}, {0xF382, ""}, {0xF383, ""}, {0xF384, ""}, {0xF3A2, ""},
    {0xF3BA, ""}, {0xF3BB, ""}, {0xF3BC, ""}, {0xF3A0, ""}, {0xF3AD, ""}, {0xF3B1, ""}, {0xF3B3, ""},
    {0xF3B4, ""}, {0xF3B5, ""}, {0xF765, ""}, {0xF76D, ""}, {0x00AD, ""}, {0x200B, ""}, {0x2061, ""},
    {0x2063, ""},
    // Constants.
    {0x03C0, "Pi"}, {0xF74E, "I"}, {0xF74D, "E"}, {0xF74C, "d"}, {0xF74B, "D"},
    // Operators that are only read by name: associations, rules, edges, functions.
    {0xF113, "<|"}, {0xF114, "|>"}, {0xF120, "<->"}, {0xF3D4, "<->"}, {0xF3D5, "->"}, {0xF4A1, "|->"},
    // Limits, which the page writes as words.
    {0xF438, "lim"}, {0xF439, "max"}, {0xF43A, "min"},
};
static_assert(sizeof kReplacementRows / sizeof kReplacementRows[0] == 81);

// Built once under the lock below and read-only afterwards. Both start out
// constant-initialised, so an encoding made during static initialisation
// finds them usable; the replacements' storage is freed at exit.
int32_t sSharedTablesLock = 0;
NamedCharacterTable sNamedCharacters;
NamedCharacterTable sReadOnlyNames;
ReplacementTable sStandardReplacements;

void EnsureSharedTables() {
  if (!sNamedCharacters.isEmpty())
    return;
  Lock(&sSharedTablesLock);
  ZnIndex count = 0;
  const NamedCharacter* rows = GetNamedCharacterRows(&count);
  sNamedCharacters.load(rows, count);
  rows = GetReadOnlyNameRows(&count);
  sReadOnlyNames.load(rows, count);
  for (const ReplacementRow& row : kReplacementRows)
    sStandardReplacements.setReplacement(row.code, row.text);
  Unlock(&sSharedTablesLock);
}

// The code point of a name of either table: the written names first, then
// those that are only read.
template <class CharT> bool CodeForName(const CharT* theName, ZnIndex theLength, ZnUnichar* theCode) {
  return sNamedCharacters.codeForName(theName, theLength, theCode) ||
         sReadOnlyNames.codeForName(theName, theLength, theCode);
}

//===--- Character helpers -----------------------------------------------===//

// The flag bit that lets a character of theCode's range be written by name.
uint32_t NameFlagFor(ZnUnichar theCode) {
  if (theCode < 128)
    return Encoding::kNameASCII;
  if (theCode < 256)
    return Encoding::kNameLatin1;
  if (theCode >= 0x370 && theCode < 0x400)
    return Encoding::kNameGreek;
  if (theCode >= 0xE000 && theCode < 0xF900)
    return Encoding::kNamePrivateUse;
  return Encoding::kNameOther;
}

// Fills "\.xx" (theDigits 2) or "\:xxxx" (theDigits 4) in lower case.
ZnIndex FormatHexEscape(uint32_t theCode, ZnIndex theDigits, char* theOut) {
  static const char kDigits[] = "0123456789abcdef";
  theOut[0] = '\\';
  theOut[1] = theDigits == 2 ? '.' : ':';
  for (ZnIndex i = 0; i < theDigits; ++i)
    theOut[2 + i] = kDigits[(theCode >> (4 * (theDigits - 1 - i))) & 0xF];
  return 2 + theDigits;
}

// Bytes become units of the same value (Latin-1).
void AppendUnits(MutableString* theString, const uint8_t* theBytes, ZnIndex theCount) {
  theString->appendCString(reinterpret_cast<const char*>(theBytes), theCount);
}

void AppendUnits(MutableString* theString, const ZnUnichar* theUnits, ZnIndex theCount) {
  theString->appendCharacters(theUnits, theCount);
}

// Output adapters for writeCharacter.
struct DataSink {
  MutableData* data;
  void put(uint8_t theByte) { data->appendByte(theByte); }
  void put(const char* theText, ZnIndex theLength) { data->appendBytes(theText, theLength); }
};

struct StringSink {
  MutableString* string;
  void put(uint8_t theByte) { string->appendCharacter(theByte); }
  void put(const char* theText, ZnIndex theLength) { string->appendCString(theText, theLength); }
  /// A character of any plane, as one unit or a surrogate pair.
  void putCharacter(uint32_t theCode) {
    if (theCode < 0x10000) {
      string->appendCharacter(ZnUnichar(theCode));
      return;
    }
    theCode -= 0x10000;
    string->appendCharacter(ZnUnichar(0xD800 + (theCode >> 10)));
    string->appendCharacter(ZnUnichar(0xDC00 + (theCode & 0x3FF)));
  }
};

/// The standard letter of a private-use one, or 0.
uint32_t StandardLetterFor(ZnUnichar theCode) {
  static ZnIndex sCount = 0;
  static const StandardLetter* sRows = GetStandardLetterRows(&sCount);
  ZnIndex low = 0;
  ZnIndex high = sCount;
  while (low < high) {
    const ZnIndex middle = (low + high) / 2;
    if (sRows[middle].code < theCode)
      low = middle + 1;
    else
      high = middle;
  }
  return low < sCount && sRows[low].code == theCode ? sRows[low].standard : 0;
}
} // namespace

//===--- Construction ----------------------------------------------------===//

Encoding::Encoding(uint32_t theFlags) : flags_(theFlags) {
  EnsureSharedTables();
  names_ = &sNamedCharacters;
  replacements_ = &sStandardReplacements;
}

Encoding::~Encoding() = default;

const char* Encoding::className() const { return "Encoding"; }
const char* Encoding::superclassName() const { return "StringEncoding"; }

void Encoding::setReplacement(ZnUnichar theCode, const char* theText) {
  ZnAssert(theText != NULL, 0);
  if (replacements_ != &ownReplacements_) {
    ownReplacements_.assign(*replacements_);
    replacements_ = &ownReplacements_;
  }
  ownReplacements_.setReplacement(theCode, theText);
}

//===--- Names -----------------------------------------------------------===//

bool Encoding::lookupNamedCharacter(const String* theName, ZnUnichar* theCode) {
  ZnAssert(theName != NULL, 0);
  return theName->withCharacters(
      [&](auto theUnits, ZnIndex theLength) { return lookupNamedCharacter(theUnits, theLength, theCode); });
}

bool Encoding::lookupNamedCharacter(const ZnUnichar* theName, ZnIndex theLength, ZnUnichar* theCode) {
  EnsureSharedTables();
  return CodeForName(theName, theLength, theCode);
}

bool Encoding::lookupNamedCharacter(const uint8_t* theName, ZnIndex theLength, ZnUnichar* theCode) {
  EnsureSharedTables();
  return CodeForName(theName, theLength, theCode);
}

//===--- Decoding --------------------------------------------------------===//

template <class CharT>
ZnIndex Encoding::decode(const CharT* theUnits, ZnIndex theCount, MutableString* theString) const {
  const uint32_t forms = Escape::kHexForms | (flags_ & kDecodeNames ? uint32_t(Escape::kNamedForm) : 0);
  ZnIndex i = 0;
  while (i < theCount) {
    if (theUnits[i] != '\\') {
      ZnIndex end = i + 1;
      while (end < theCount && theUnits[end] != '\\')
        ++end;
      AppendUnits(theString, theUnits + i, end - i);
      i = end;
      continue;
    }
    const Escape escape = Escape::decode(theUnits + i + 1, theCount - i - 1, forms);
    if (escape.kind == Escape::kCharacter) {
      theString->appendCharacter(escape.character);
      i += 1 + escape.length;
      continue;
    }
    // More bytes may complete a lone backslash or a name. A hexadecimal
    // escape that the buffer cuts short is text, like a backslash that
    // starts no escape.
    if (escape.kind == Escape::kIncomplete && (i + 1 == theCount || theUnits[i + 1] == '['))
      return i;
    theString->appendCharacter('\\');
    ++i;
  }
  return i;
}

ZnIndex Encoding::decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString, bool) {
  ZnAssert(theString != NULL, 0);
  return decode(theBytes, theCount, theString);
}

ZnIndex Encoding::decodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount,
                                   MutableString* theString) const {
  ZnAssert(theString != NULL, 0);
  return decode(theCharacters, theCount, theString);
}

//===--- Encoding --------------------------------------------------------===//

template <class Sink>
bool Encoding::writeCharacter(ZnUnichar theCode, Sink& theSink, uint32_t theFlags) const {
  if constexpr (std::is_same_v<Sink, StringSink>) {
    if ((theFlags & kStandardLetters) && theCode >= 0xE000 && theCode < 0xF900) {
      if (const uint32_t letter = StandardLetterFor(theCode)) {
        theSink.putCharacter(letter);
        return true;
      }
    }
  }
  ZnIndex length = 0;
  if (const char* text = replacements_->replacementForCode(theCode, &length)) {
    theSink.put(text, length);
    return true;
  }
  if ((theFlags & NameFlagFor(theCode)) == 0)
    return false;
  const char* name = names_->nameForCode(theCode, &length);
  if (name == nullptr)
    return false;
  theSink.put("\\[", 2);
  theSink.put(name, length);
  theSink.put(']');
  return true;
}

bool Encoding::encodeCharacter(ZnUnichar theCode, MutableData* theData, uint32_t theFlags) const {
  ZnAssert(theData != NULL, 0);
  DataSink sink{theData};
  return writeCharacter(theCode, sink, theFlags);
}

bool Encoding::encodeCharacter(ZnUnichar theCode, MutableString* theString, uint32_t theFlags) const {
  ZnAssert(theString != NULL, 0);
  StringSink sink{theString};
  return writeCharacter(theCode, sink, theFlags);
}

// Units and bytes differ only above 127: a byte from 128 up is a character
// of its own, a unit there needs an escape.
template <class CharT> void Encoding::encode(const CharT* theUnits, ZnIndex theCount, MutableData* theData) const {
  constexpr uint32_t rawLimit = sizeof(CharT) == 1 ? 256 : 128;
  DataSink sink{theData};
  for (ZnIndex i = 0; i < theCount; ++i) {
    ZnUnichar c = theUnits[i];
    if (writeCharacter(c, sink, flags_))
      continue;
    if ((flags_ & kEscapeQuotes) && (c == '"' || c == '\\')) {
      theData->appendByte('\\');
      theData->appendByte(uint8_t(c));
      continue;
    }
    if ((c >= 32 && c < rawLimit) || c == '\t' || c == '\n' || c == '\r') {
      theData->appendByte(uint8_t(c));
      continue;
    }
    char escape[6];
    theData->appendBytes(escape, FormatHexEscape(c, c < 256 ? 2 : 4, escape));
  }
}

ZnIndex Encoding::encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData, bool) {
  ZnAssert(theData != NULL, 0);
  encode(theCharacters, theCount, theData);
  return theCount;
}

ZnIndex Encoding::encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData, bool) {
  ZnAssert(theData != NULL, 0);
  encode(theBytes, theCount, theData);
  return theCount;
}

ZnIndex Encoding::plainLength(const ZnUnichar* theCharacters, ZnIndex theCount) const {
  const uint32_t lowest = replacements_->getLowestCode();
  const uint32_t plainLimit = (flags_ & kNameASCII) ? 0 : lowest < 128 ? lowest : 128;
  const bool escapeQuotes = (flags_ & kEscapeQuotes) != 0;
  ZnIndex i = 0;
  for (; i < theCount; ++i) {
    const ZnUnichar c = theCharacters[i];
    if (c >= plainLimit || (c < 32 && c != '\t' && c != '\n') || (escapeQuotes && (c == '"' || c == '\\')))
      break;
  }
  return i;
}

void Encoding::escapeString(const ZnUnichar* theCharacters, ZnIndex theCount, MutableString* theString) const {
  ZnAssert(theString != NULL, 0);
  StringSink sink{theString};
  for (ZnIndex i = 0; i < theCount; ++i) {
    // A run of plain characters is copied at once.
    ZnIndex run = plainLength(theCharacters + i, theCount - i);
    if (run > 0) {
      theString->appendCharacters(theCharacters + i, run);
      i += run - 1;
      continue;
    }
    ZnUnichar c = theCharacters[i];
    if (writeCharacter(c, sink, flags_))
      continue;
    if ((flags_ & kEscapeQuotes) && (c == '"' || c == '\\')) {
      theString->appendCharacter('\\');
      theString->appendCharacter(c);
      continue;
    }
    if (c == '\t' || c == '\n' || c > 31) {
      theString->appendCharacter(c);
      continue;
    }
    // Two backslashes: the text is meant to sit inside a quoted string.
    char escape[6];
    theString->appendCharacter('\\');
    sink.put(escape, FormatHexEscape(c, 2, escape));
  }
}
} // namespace Zn::Kx
