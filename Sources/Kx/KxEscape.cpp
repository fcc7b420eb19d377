//===- KxEscape.cpp - One escape of the notation, decoded ------------------===//
#include "Kx/KxEscape.h"
#include "Kx/KxEncoding.h"
#include "Kx/KxNamedCharacterTable.h"
#include "Zn/Base/ZnString.h"

namespace Zn::Kx {

namespace {
// The value of theCount hexadecimal digits, or -1 when one is no such digit.
template <class CharT> int32_t HexNumber(const CharT* theDigits, ZnIndex theCount) {
  int32_t value = 0;
  for (ZnIndex i = 0; i < theCount; ++i) {
    const int32_t digit = DigitValue(theDigits[i]);
    if (digit > 15)
      return -1;
    value = value * 16 + digit;
  }
  return value;
}

template <class CharT> Escape Decode(const CharT* theText, ZnIndex theLength, uint32_t theForms) {
  if (theLength <= 0)
    return {Escape::kIncomplete};
  const uint32_t form = theText[0];
  if (form == '[' && (theForms & Escape::kNamedForm)) {
    // No name is longer than kMaximumNameLength, so the search for "]"
    // stops there: a longer run is no name whatever follows.
    const ZnIndex limit = 1 + NamedCharacterTable::kMaximumNameLength + 1;
    ZnIndex close = 1;
    while (close < limit && close < theLength && theText[close] != ']')
      ++close;
    if (close == theLength)
      return {Escape::kIncomplete};
    ZnUnichar code = 0;
    if (close < limit && Encoding::lookupNamedCharacter(theText + 1, close - 1, &code))
      return {Escape::kCharacter, code, close + 1};
    return {};
  }
  if ((form == '.' || form == ':') && (theForms & Escape::kHexForms)) {
    const ZnIndex digits = form == '.' ? 2 : 4;
    const ZnIndex present = theLength - 1 < digits ? theLength - 1 : digits;
    const int32_t value = HexNumber(theText + 1, present);
    if (value < 0)
      return {};
    if (present < digits)
      return {Escape::kIncomplete};
    return {Escape::kCharacter, ZnUnichar(value), 1 + digits};
  }
  if (!(theForms & Escape::kStringForms))
    return {};
  switch (form) {
  case '"':
  case '\\': return {Escape::kCharacter, ZnUnichar(form), 1};
  case 'n':
  case 'r': return {Escape::kCharacter, 10, 1};
  case 't': return {Escape::kCharacter, 9, 1};
  case '<':
  case '>':
  case 10: return {Escape::kNothing, 0, 1};
  case 13: return {Escape::kNothing, 0, theLength > 1 && theText[1] == 10 ? 2 : 1};
  default: return {};
  }
}
} // namespace

Escape Escape::decode(const ZnUnichar* theText, ZnIndex theLength, uint32_t theForms) {
  return Decode(theText, theLength, theForms);
}

Escape Escape::decode(const uint8_t* theText, ZnIndex theLength, uint32_t theForms) {
  return Decode(theText, theLength, theForms);
}
} // namespace Zn::Kx
