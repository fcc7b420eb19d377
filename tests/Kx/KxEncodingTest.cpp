//===- KxEncodingTest.cpp - Reading and writing character escapes ----------===//
#include "Kx/KxEncoding.h"
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include <string>

using namespace Zn;
using namespace Zn::Kx;

namespace {
class EncodingTest : public ZnTest::LeakCheckedTest {};

std::u16string Units(const String* theString) {
  WideCharacters units(theString);
  return std::u16string(reinterpret_cast<const char16_t*>(units.data()), size_t(units.length()));
}

const ZnUnichar* Ptr(const std::u16string& theUnits) { return reinterpret_cast<const ZnUnichar*>(theUnits.data()); }

struct DecodeCase {
  const char* input;
  uint32_t flags;
  std::u16string expected;
  ZnIndex consumed; // -1: the whole input
};

const DecodeCase kDecodeCases[] = {
    // Names.
    {"a\\[Alpha]b", 0x100, u"a\u03B1b", -1},
    {"a\\[Alpha]b", 0x000, u"a\\[Alpha]b", -1},
    {"\\[RawTab]\\[Pictogram1]", 0x100, u"\t\uF720", -1},
    {"\\[NoSuchName]x", 0x100, u"\\[NoSuchName]x", -1},
    // Names that are only read: accented letters and operators.
    {"mno\\[ZHacek]ica \\[CapitalRHacek]\\[LeftAssociation]\\[TensorProduct]", 0x100,
     u"mno\u017Eica \u0158\uF113\u2297", -1},
    {"\\[]", 0x100, u"\\[]", -1},
    {"\\[\\[Alpha]]", 0x100, u"\\[\u03B1]", -1},
    // A run too long to be a name is text, even without its "]".
    {"\\[xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx", 0x100,
     u"\\[xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx", -1},
    // Hexadecimal escapes; surrogates come through as two units.
    {"\\.41\\.e9", 0x100, u"A\u00E9", -1},
    {"\\:03b1\\:03B1", 0x000, u"\u03B1\u03B1", -1},
    {"\\:d83d\\:de00", 0x100, u"\U0001F600", -1},
    {"\\.zz\\:03g1\\q", 0x100, u"\\.zz\\:03g1\\q", -1},
    // Truncations: what more bytes could complete stays unconsumed.
    {"ab\\", 0x100, u"ab", 2},
    {"\\\\", 0x100, u"\\", 1},
    {"x\\[Alp", 0x100, u"x", 1},
    {"x\\[", 0x100, u"x", 1},
    {"\\[Alp", 0x000, u"\\[Alp", -1},
    // A hexadecimal escape too short for the buffer is text.
    {"\\.4", 0x100, u"\\.4", -1},
    {"\\:03b", 0x100, u"\\:03b", -1},
    {"\\:", 0x100, u"\\:", -1},
    // Bytes above 127 are Latin-1.
    {"\xE9\xFF", 0x100, u"\u00E9\u00FF", -1},
};
} // namespace

TEST_F(EncodingTest, DecodesEscapesFromBytesAndUnits) {
  for (const DecodeCase& c : kDecodeCases) {
    auto encoding = adopt(new Encoding(c.flags));
    std::string input = c.input;
    ZnIndex expectedCount = c.consumed < 0 ? ZnIndex(input.size()) : c.consumed;

    auto fromBytes = adopt(new MutableString());
    ZnIndex used = encoding->decodeBytes(reinterpret_cast<const uint8_t*>(input.data()), ZnIndex(input.size()),
                                         fromBytes.get(), true);
    EXPECT_EQ(used, expectedCount) << c.input;
    EXPECT_EQ(Units(fromBytes.get()), c.expected) << c.input;

    std::u16string units;
    for (char b : input)
      units += char16_t(uint8_t(b));
    auto fromUnits = adopt(new MutableString());
    used = encoding->decodeCharacters(Ptr(units), ZnIndex(units.size()), fromUnits.get());
    EXPECT_EQ(used, expectedCount) << c.input;
    EXPECT_EQ(Units(fromUnits.get()), c.expected) << c.input;
  }
  // Units above 255 pass through.
  auto encoding = adopt(new Encoding(Encoding::kTextFlags));
  std::u16string wide = u"\u4E2D\\[Beta]";
  auto out = adopt(new MutableString());
  EXPECT_EQ(encoding->decodeCharacters(Ptr(wide), ZnIndex(wide.size()), out.get()), ZnIndex(wide.size()));
  EXPECT_EQ(Units(out.get()), u"\u4E2D\u03B2");
}

namespace {
// The three ways out: units as seven-bit text, bytes (only those up to 127
// are escaped), and strings escaped for display.
enum class Way { kUnits, kBytes, kEscape };
struct WriteCase { Way way; std::u16string input; uint32_t flags; const char* expected; };

const WriteCase kWriteCases[] = {
    // Names follow the range bits; without them, hexadecimal escapes.
    {Way::kUnits, u"\u03B1", 0x10C, "\\[Alpha]"},
    {Way::kUnits, u"\u03B1", 0x108, "\\:03b1"},
    {Way::kUnits, u"\u00E9", 0x10D, "\\.e9"},
    {Way::kUnits, u"\u00E9", 0x002, "\\[EAcute]"},
    {Way::kUnits, u"\uF720\uF3A0\uF764", 0x008, "\\[Pictogram1]:"}, // Null is dropped, AliasDelimiter ":"
    {Way::kUnits, u"\u221E", 0x00F, "\\:221e"},
    {Way::kUnits, u"\u221E", 0x010, "\\[Infinity]"},
    {Way::kUnits, u"!\t", 0x001, "\\[RawExclamation]\\[RawTab]"},
    {Way::kUnits, u"\U0001F600", 0x01F, "\\:d83d\\:de00"},
    // Names that are only read are never written.
    {Way::kUnits, u"\u017E\u29E6", 0x01F, "\\:017e\\:29e6"},
    {Way::kUnits, u"\uF113a\uF114\uF4A1", 0x01F, "<|a|>|->"},
    // Replacements win over names and apply whatever the flags.
    {Way::kUnits, u"a\u2192b\uF522", 0x01F, "a->b->"},
    {Way::kUnits, u"x\uF360y\u2028\u03C0", 0x10C, "xy\nPi"},
    // Quotes and backslashes only with their flag.
    {Way::kUnits, u"\"\\", 0x040, "\\\"\\\\"},
    {Way::kUnits, u"\"\\", 0x000, "\"\\"},
    // Controls: tab, line feed, carriage return and DEL go out raw.
    {Way::kUnits, u"\a\t\n\r\x7F\x80", 0x000, "\\.07\t\n\r\x7F\\.80"},
    // Bytes above 127 go out raw unless a name is asked for.
    {Way::kBytes, u"a\xE9\xFF", 0x10C, "a\xE9\xFF"},
    {Way::kBytes, u"a\xE9", 0x002, "a\\[EAcute]"},
    {Way::kBytes, u"\a\x1B\t\r\n\x7F", 0x000, "\\.07\\.1b\t\r\n\x7F"},
    {Way::kBytes, u"\"", 0x040, "\\\""},
    // For display: names follow the range bits; other characters stay.
    {Way::kEscape, u"\u03B1", 0x10C, "\\[Alpha]"},
    {Way::kEscape, u"\u03B1", 0x108, "\u03B1"},
    {Way::kEscape, u"\u221E\u00E9", 0x00D, "\u221E\u00E9"},
    // Quotes and backslashes with their flag, also inside a run of plain text.
    {Way::kEscape, u"\"\\", 0x040, "\\\"\\\\"},
    {Way::kEscape, u"say \"hi\" now", 0x040, "say \\\"hi\\\" now"},
    // ASCII names break a run of plain text where a name exists.
    {Way::kEscape, u"a!b c", 0x001, "a\\[RawExclamation]b\\[RawSpace]c"},
    // Control characters get a doubled backslash; tab, line feed, DEL and
    // non-ASCII, surrogates included, stay.
    {Way::kEscape, u"\a\r\t\n\x7F", 0x10C, "\\\\.07\\\\.0d\t\n\x7F"},
    {Way::kEscape, u"\U0001F600", 0x01F, "\U0001F600"},
};
} // namespace

TEST_F(EncodingTest, WritesUnitsBytesAndStringsForDisplay) {
  for (const WriteCase& c : kWriteCases) {
    SCOPED_TRACE(testing::Message() << "way " << int(c.way) << " flags " << c.flags << " expected " << c.expected);
    auto encoding = adopt(new Encoding(c.flags));
    const ZnIndex count = ZnIndex(c.input.size());
    if (c.way == Way::kEscape) {
      auto out = adopt(new MutableString());
      encoding->escapeString(Ptr(c.input), count, out.get());
      EXPECT_EQ(ZnTest::Utf8(out.get()), c.expected);
      continue;
    }
    auto data = adopt(new MutableData());
    std::string bytes(c.input.begin(), c.input.end()); // the cases' bytes are all below 256
    EXPECT_EQ(c.way == Way::kUnits
                  ? encoding->encodeCharacters(Ptr(c.input), count, data.get(), true)
                  : encoding->encodeBytes(reinterpret_cast<const uint8_t*>(bytes.data()), count, data.get(), true),
              count);
    EXPECT_EQ(ZnTest::Bytes(data.get()), c.expected);
  }
}

// The flags argument decides, not the encoding's own flags; a dropped
// character counts as written.
TEST_F(EncodingTest, EncodeCharacterReportsWhetherItWrote) {
  auto encoding = adopt(new Encoding(0x108));
  auto data = adopt(new MutableData());
  auto out = adopt(new MutableString());
  EXPECT_FALSE(encoding->encodeCharacter(0x03B1, data.get(), 0x108));
  EXPECT_FALSE(encoding->encodeCharacter('a', out.get(), 0x1F));
  EXPECT_TRUE(encoding->encodeCharacter(0x03B1, data.get(), 0x004));
  EXPECT_TRUE(encoding->encodeCharacter(0xF360, out.get(), 0));
  EXPECT_EQ(ZnTest::Bytes(data.get()), "\\[Alpha]");
  EXPECT_EQ(out->length(), 0);
}

// A replacement set on one encoding is its own: other encodings, made
// before or after, keep the standard ones. Plain ASCII text is copied in
// runs; a replaced ASCII character is still replaced inside such a run.
TEST_F(EncodingTest, ReplacementsApplyInsideTextAndAreCopiedOnWrite) {
  auto changed = adopt(new Encoding(Encoding::kTextFlags));
  auto before = adopt(new Encoding(Encoding::kTextFlags));
  changed->setReplacement(0x03B1, "alpha");
  changed->setReplacement(0x2192, "to");
  changed->setReplacement(0x2192, "=>");
  changed->setReplacement('x', "[x]");
  auto after = adopt(new Encoding(Encoding::kTextFlags));
  const std::u16string text = u"\u03B1\u2192\u2190 xy";
  for (auto [encoding, expected] : {std::pair{changed.get(), "alpha=><- [x]y"},
                                    std::pair{before.get(), "\\[Alpha]-><- xy"},
                                    std::pair{after.get(), "\\[Alpha]-><- xy"}}) {
    auto out = adopt(new MutableString());
    encoding->escapeString(Ptr(text), ZnIndex(text.size()), out.get());
    EXPECT_EQ(ZnTest::Utf8(out.get()), expected);
  }
}
