//===- KxEscapeTest.cpp - One escape decoded, and every cut of it -----------===//
#include "Kx/KxEscape.h"
#include "Support/ZnTestSupport.h"
#include <string>

using Zn::Kx::Escape;

namespace {
constexpr uint32_t kCharacters = Escape::kCharacterForms;
constexpr uint32_t kAll = Escape::kAllForms;

Escape Decode(const std::string& theText, uint32_t theForms) {
  return Escape::decode(reinterpret_cast<const uint8_t*>(theText.data()), ZnIndex(theText.size()), theForms);
}

Escape DecodeUnits(const std::string& theText, uint32_t theForms) {
  std::u16string units;
  for (char b : theText)
    units += char16_t(uint8_t(b));
  return Escape::decode(reinterpret_cast<const ZnUnichar*>(units.data()), ZnIndex(units.size()), theForms);
}

// The text after the backslash.
const struct EscapeCase {
  const char* text;
  uint32_t forms;
  Escape::Kind kind;
  ZnUnichar character;
  ZnIndex length;
} kCases[] = {
    // Names, up to their "]"; unknown ones and brackets in brackets are none.
    {"[Alpha]b", kCharacters, Escape::kCharacter, 0x03B1, 7},
    {"[ZHacek]", kCharacters, Escape::kCharacter, 0x017E, 8},
    {"[NoSuchName]", kCharacters, Escape::kNone, 0, 0},
    {"[]", kCharacters, Escape::kNone, 0, 0},
    {"[Alpha x]", kCharacters, Escape::kNone, 0, 0},
    {"[\\[Alpha]]", kCharacters, Escape::kNone, 0, 0},
    {"[Alpha]", Escape::kHexForms, Escape::kNone, 0, 0},
    // No "]" within the longest name: none, however the text goes on.
    {"[xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx", kCharacters, Escape::kNone,
     0, 0},
    // Hexadecimal codes of either case, two or four digits.
    {".41x", kCharacters, Escape::kCharacter, 'A', 3},
    {":03B1", kCharacters, Escape::kCharacter, 0x03B1, 5},
    {":d83d", kCharacters, Escape::kCharacter, 0xD83D, 5},
    {".zz", kCharacters, Escape::kNone, 0, 0},
    {":03g1", kCharacters, Escape::kNone, 0, 0},
    {".41", Escape::kNamedForm, Escape::kNone, 0, 0},
    // String forms only when asked for.
    {"\"", kAll, Escape::kCharacter, '"', 1},
    {"\\", kAll, Escape::kCharacter, '\\', 1},
    {"n", kAll, Escape::kCharacter, 10, 1},
    {"r", kAll, Escape::kCharacter, 10, 1},
    {"t", kAll, Escape::kCharacter, 9, 1},
    {"<", kAll, Escape::kNothing, 0, 1},
    {">x", kAll, Escape::kNothing, 0, 1},
    {"\n", kAll, Escape::kNothing, 0, 1},
    {"\r\nx", kAll, Escape::kNothing, 0, 2},
    {"\rx", kAll, Escape::kNothing, 0, 1},
    {"n", kCharacters, Escape::kNone, 0, 0},
    {"q", kAll, Escape::kNone, 0, 0},
    {"(", kAll, Escape::kNone, 0, 0},
    // Cut short by the end of the text.
    {"", kAll, Escape::kIncomplete, 0, 0},
    {"[Alp", kCharacters, Escape::kIncomplete, 0, 0},
    {"[Alpha x", kCharacters, Escape::kIncomplete, 0, 0},
    {":03", kCharacters, Escape::kIncomplete, 0, 0},
    {":0g", kCharacters, Escape::kNone, 0, 0},
};

TEST(EscapeTest, DecodesEachFormFromBytesAndUnits) {
  for (const EscapeCase& c : kCases) {
    for (const Escape& escape : {Decode(c.text, c.forms), DecodeUnits(c.text, c.forms)}) {
      EXPECT_EQ(escape.kind, c.kind) << c.text;
      EXPECT_EQ(escape.character, c.character) << c.text;
      EXPECT_EQ(escape.length, c.length) << c.text;
    }
  }
}

// A reader of a stream decodes what it holds and reads on while the escape
// is incomplete, so every cut of a text must either leave the escape
// incomplete or decide it as the whole text does. (A carriage return is
// read from whole texts only: its cut is not checked.)
TEST(EscapeTest, EveryCutIsIncompleteOrDecidesAsTheWhole) {
  for (const EscapeCase& c : kCases) {
    const std::string text = c.text;
    if (text.find('\r') != std::string::npos)
      continue;
    for (size_t cut = 0; cut < text.size(); ++cut) {
      const Escape part = Decode(text.substr(0, cut), c.forms);
      if (part.kind == Escape::kIncomplete)
        continue;
      EXPECT_EQ(part.kind, c.kind) << c.text << " cut at " << cut;
      EXPECT_EQ(part.character, c.character) << c.text << " cut at " << cut;
      EXPECT_EQ(part.length, c.length) << c.text << " cut at " << cut;
    }
  }
}
} // namespace
