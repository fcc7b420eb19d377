//===- FuzzEscapes.cpp - Fuzzing the escape encoding -----------------------===//
//
// Input: a flags byte, a byte that places the cuts of the piecewise decode
// (its low bits also choose the escape forms), then the payload. The payload
// is decoded as bytes, as code units and in pieces (all three must agree),
// read as UTF-16 units that are written and read back, escaped for a quoted
// string, and looked up as a name; its escapes are decoded one at a time,
// whole and cut short.
//
//===----------------------------------------------------------------------===//
#include <vector>
#include "FuzzEntryPoints.h"
#include "FuzzSupport.h"
#include "Kx/KxEncoding.h"
#include "Kx/KxEscape.h"
#include "Kx/KxNamedCharacterTable.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnString.h"

using namespace Zn;
using Zn::Kx::Encoding;

namespace NbtextFuzz {

namespace {
using Units = std::vector<ZnUnichar>;

Units UnitsOf(const String* theString) {
  WideCharacters units(theString);
  return Units(units.data(), units.data() + units.length());
}

uint32_t FlagsFrom(uint8_t theByte) {
  uint32_t flags = theByte & 0x1F; // the five name bits
  if (theByte & 0x20)
    flags |= Encoding::kEscapeQuotes;
  if (theByte & 0x40)
    flags |= Encoding::kDecodeNames;
  return flags;
}

// Decoding all at once, then appending what is left as it stands, which is
// what a caller does once the text is complete.
Units DecodeWhole(const Encoding* theEncoding, const uint8_t* theBytes, ZnIndex theCount) {
  auto text = adopt(new MutableString());
  ZnIndex consumed = const_cast<Encoding*>(theEncoding)->decodeBytes(theBytes, theCount, text.get(), true);
  FuzzCheck(consumed >= 0 && consumed <= theCount);
  if (consumed < theCount)
    text->appendCString(reinterpret_cast<const char*>(theBytes) + consumed, theCount - consumed);
  return UnitsOf(text.get());
}

// A cut that falls inside "\.xx" or "\:xxxx" is allowed to change the
// result (the short escape reads as text); every other cut is not.
bool CutMayChangeResult(const uint8_t* theBytes, ZnIndex theCut) {
  for (ZnIndex back = 2; back <= 5 && back <= theCut; ++back)
    if (theBytes[theCut - back] == '\\')
      return true;
  return false;
}

// Decoding in pieces, handing in again what a piece left unconsumed.
Units DecodeInPieces(const Encoding* theEncoding, const uint8_t* theBytes, ZnIndex theCount, uint8_t theSeed) {
  auto text = adopt(new MutableString());
  ZnIndex start = 0, cut = 0;
  uint32_t state = theSeed | 1u;
  while (cut < theCount) {
    state = state * 1103515245u + 12345u;
    cut += ZnIndex(1 + (state >> 16) % 97);
    if (cut >= theCount)
      cut = theCount;
    else if (CutMayChangeResult(theBytes, cut))
      continue;
    ZnIndex consumed =
        const_cast<Encoding*>(theEncoding)->decodeBytes(theBytes + start, cut - start, text.get(), start == 0);
    FuzzCheck(consumed >= 0 && consumed <= cut - start);
    start += consumed;
  }
  if (start < theCount)
    text->appendCString(reinterpret_cast<const char*>(theBytes) + start, theCount - start);
  return UnitsOf(text.get());
}

// Whether c comes back from writing and reading: a replacement stands for
// it in plain text, and a backslash or a quote written as itself or escaped
// with a backslash reads back as part of an escape.
bool SurvivesRoundTrip(const Encoding* theEncoding, ZnUnichar c) {
  auto scratch = adopt(new MutableData());
  if (theEncoding->encodeCharacter(c, scratch.get(), 0))
    return false;
  bool named = (theEncoding->getFlags() & Encoding::kNameASCII) != 0;
  if (c == '\\')
    return named;
  if (c == '"')
    return named || (theEncoding->getFlags() & Encoding::kEscapeQuotes) == 0;
  return true;
}

void CheckRoundTrip(Encoding* theEncoding, const Encoding* theReader, const uint8_t* theBytes, size_t theSize) {
  Units units;
  for (size_t i = 0; i + 1 < theSize; i += 2) {
    ZnUnichar c = ZnUnichar(theBytes[i] | (theBytes[i + 1] << 8));
    if (SurvivesRoundTrip(theEncoding, c))
      units.push_back(c);
  }
  auto written = adopt(new MutableData());
  ZnIndex count = ZnIndex(units.size());
  FuzzCheck(theEncoding->encodeCharacters(units.data(), count, written.get(), true) == count);
  for (ZnIndex i = 0; i < written->getLength(); ++i)
    FuzzCheck(written->getBytesPtr()[i] < 128); // notebook text is 7-bit
  FuzzCheck(DecodeWhole(theReader, written->getBytesPtr(), written->getLength()) == units);

  // The same for 8-bit characters, which are written as themselves from 128 up.
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i < theSize; ++i)
    if (SurvivesRoundTrip(theEncoding, theBytes[i]))
      bytes.push_back(theBytes[i]);
  written = adopt(new MutableData());
  count = ZnIndex(bytes.size());
  FuzzCheck(theEncoding->encodeBytes(bytes.data(), count, written.get(), true) == count);
  Units expected(bytes.begin(), bytes.end());
  FuzzCheck(DecodeWhole(theReader, written->getBytesPtr(), written->getLength()) == expected);
}

void CheckEscapeString(const Encoding* theEncoding, const uint8_t* theBytes, size_t theSize) {
  Units units;
  for (size_t i = 0; i + 1 < theSize; i += 2)
    units.push_back(ZnUnichar(theBytes[i] << 8 | theBytes[i + 1]));
  auto escaped = adopt(new MutableString());
  theEncoding->escapeString(units.data(), ZnIndex(units.size()), escaped.get());
  // Only tab and line feed stay as control characters (line separators are
  // replaced by line feeds).
  for (ZnUnichar c : UnitsOf(escaped.get()))
    FuzzCheck(c >= 32 || c == '\t' || c == '\n');
}

bool SameEscape(const Kx::Escape& theOne, const Kx::Escape& theOther) {
  return theOne.kind == theOther.kind && theOne.character == theOther.character && theOne.length == theOther.length;
}

// The one escape decoder: bytes and units read alike, and a text cut short
// either leaves the escape incomplete or decides it as the whole text does,
// which is what lets the lexer decode what its reader holds ready.
void CheckEscapeDecoder(const uint8_t* theBytes, size_t theSize, uint32_t theForms) {
  using Kx::Escape;
  size_t checked = 0;
  for (size_t i = 0; i < theSize && checked < 16; ++i) {
    if (theBytes[i] != '\\')
      continue;
    ++checked;
    const uint8_t* text = theBytes + i + 1;
    const ZnIndex length = ZnIndex(theSize - i - 1);
    const Units units(text, text + length);
    const Escape whole = Escape::decode(text, length, theForms);
    FuzzCheck(SameEscape(whole, Escape::decode(units.data(), length, theForms)));
    FuzzCheck(whole.length >= 0 && whole.length <= length);
    // A carriage return is read from whole texts only: cut, it has no line feed.
    if (length > 0 && text[0] == '\r' && (theForms & Escape::kStringForms))
      continue;
    for (ZnIndex cut = 0; cut < length && cut <= 70; ++cut) {
      const Escape part = Escape::decode(text, cut, theForms);
      FuzzCheck(part.kind == Escape::kIncomplete || SameEscape(part, whole));
    }
  }
}

// The lookups answer what a walk over the rows answers.
void CheckNames(const uint8_t* theBytes, size_t theSize) {
  size_t length = 0;
  while (length < theSize && length < 80 && theBytes[length] != ']')
    ++length;
  ZnIndex rowCount = 0;
  const Kx::NamedCharacter* rows = Kx::GetNamedCharacterRows(&rowCount);
  int expected = -1;
  for (ZnIndex row = 0; row < rowCount && expected < 0; ++row) {
    const char* name = rows[row].name;
    size_t i = 0;
    while (i < length && name[i] != 0 && uint8_t(name[i]) == theBytes[i])
      ++i;
    if (i == length && name[i] == 0)
      expected = rows[row].code;
  }
  Units units(theBytes, theBytes + length);
  ZnUnichar code = 0;
  bool found = Encoding::lookupNamedCharacter(units.data(), ZnIndex(length), &code);
  FuzzCheck(found == (expected >= 0));
  FuzzCheck(!found || code == expected);
  auto name = adopt(new String(reinterpret_cast<const char*>(theBytes), ZnIndex(length)));
  found = Encoding::lookupNamedCharacter(name.get(), &code);
  FuzzCheck(found == (expected >= 0));
  FuzzCheck(!found || code == expected);
}
} // namespace

int FuzzEscapes(const uint8_t* theData, size_t theSize) {
  InstallFuzzAssertionHandler();
  InputSplitter input(theData, theSize);
  uint8_t flagsByte = input.takeByte();
  uint8_t cutSeed = input.takeByte();
  size_t size = 0;
  const uint8_t* bytes = input.rest(&size);
  ZnIndex count = ZnIndex(size);

  auto encoding = adopt(new Encoding(FlagsFrom(flagsByte)));
  if (flagsByte & 0x80 && size >= 2) // a private stand-in (copy on write)
    encoding->setReplacement(ZnUnichar(bytes[0] | bytes[1] << 8), size > 2 && bytes[2] & 1 ? "" : "?");

  Units whole = DecodeWhole(encoding.get(), bytes, count);
  auto fromUnits = adopt(new MutableString());
  Units widened(bytes, bytes + size);
  ZnIndex consumed = encoding->decodeCharacters(widened.data(), count, fromUnits.get());
  FuzzCheck(consumed >= 0 && consumed <= count);
  fromUnits->appendCharacters(widened.data() + consumed, count - consumed);
  FuzzCheck(UnitsOf(fromUnits.get()) == whole);
  FuzzCheck(DecodeInPieces(encoding.get(), bytes, count, cutSeed) == whole);

  auto reader = adopt(new Encoding(Encoding::kDecodeNames));
  CheckRoundTrip(encoding.get(), reader.get(), bytes, size);
  CheckEscapeString(encoding.get(), bytes, size);
  CheckNames(bytes, size);
  CheckEscapeDecoder(bytes, size, cutSeed & Kx::Escape::kAllForms);
  return 0;
}
} // namespace NbtextFuzz
