//===- ZnStringEncodingTest.cpp - Encoders, decoders and byte-order marks --===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnStringEncoding.h"
#include <cstdio>
#include <cstring>
#include <string>

using namespace Zn;

namespace {
class StringEncodingTest : public ZnTest::LeakCheckedTest {};
using StringEncodingDeathTest = StringEncodingTest;

std::string Hex(const Data* theData) {
  std::string out;
  char byte[4];
  for (ZnIndex i = 0; i < theData->getLength(); ++i) {
    std::snprintf(byte, sizeof byte, i ? " %02X" : "%02X", theData->getBytesPtr()[i]);
    out += byte;
  }
  return out;
}

std::string Bytes(const std::string& theHex) {
  std::string out;
  for (size_t i = 0; i + 1 < theHex.size(); i += 3)
    out += char(std::stoi(theHex.substr(i, 2), nullptr, 16));
  return out;
}

Ref<MutableData> EncodeData(StringEncoding* theEncoding, const std::u16string& theText) {
  return adopt(StringEncoding::dataFromCharacters(theEncoding, reinterpret_cast<const ZnUnichar*>(theText.data()),
                                                  ZnIndex(theText.size())));
}

std::string Encode(StringEncoding* theEncoding, const std::u16string& theText) {
  return Hex(EncodeData(theEncoding, theText).get());
}
} // namespace

TEST_F(StringEncodingTest, EncodesEachIdAsSpecified) {
  struct Case { int id; std::u16string text; const char* hex; } cases[] = {
      // UTF-8: one to three bytes a unit, surrogates one by one, mark first
      {5, u"A\u00e9", "41 C3 A9"},
      {5, u"\u07ff\u20ac", "DF BF E2 82 AC"},
      {5, u"\U0001F600", "F0 9F 98 80"},
      // A surrogate without its other half stays a sequence of its own.
      {5, u"a\xD83D" u"b", "61 ED A0 BD 62"},
      {4, u"A", "EF BB BF 41"},
      {4, u"", ""},
      // UTF-16: the mark is in the opposite order to the data behind it
      {0, u"A", "FF FE 00 41"},
      {1, u"A", "00 41"},
      {2, u"A", "FE FF 41 00"},
      {3, u"\u263a", "3A 26"},
      // 8-bit: Latin-1, and "\u" escapes above 255 for id 7
      {6, u"a\u00e9", "61 E9"},
      {7, u"\u263a\u00e9", "5C 75 32 36 33 61 E9"},
  };
  for (const Case& c : cases) {
    auto encoding = adopt(StringEncodingWithID(c.id));
    EXPECT_EQ(Encode(encoding.get(), c.text), c.hex) << "id " << c.id;
  }
  EXPECT_EQ(StringEncodingWithID(8), nullptr);
}

std::u16string Units(const MutableString* theString) {
  WideCharacters units(theString);
  return std::u16string(reinterpret_cast<const char16_t*>(units.data()), size_t(units.length()));
}

// UTF-8 input as a whole (decodeBytes, then decodeLastBytes for what it left).
const struct UTF8Case {
  const char* hex;
  std::u16string text;
  bool mark = false;
} kUTF8Cases[] = {
    // well-formed: one to four bytes, the ends of each range
    {"41 7F", u"A\x7f"},
    {"C2 80 DF BF", u"\u0080\u07ff"},
    {"E0 A0 80 E2 82 AC ED 9F BF EE 80 80 EF BF BF", u"\u0800\u20ac\ud7ff\ue000\uffff"},
    {"F0 90 80 80 F0 9F 98 80 F4 8F BF BF", u"\U00010000\U0001F600\U0010FFFF"},
    // a byte that leads nothing: continuation bytes, C0, C1, F5-FF
    {"80 92 9F A0 BF", u"\u20ac\u2019\u0178\u00a0\u00bf"},
    {"81 8D 8F 90 9D", u"\x81\x8d\x8f\x90\x9d"},
    {"C0 80 C1 BF", u"\u00c0\u20ac\u00c1\u00bf"},
    {"F5 80 FF", u"\u00f5\u20ac\u00ff"},
    // overlong forms, surrogates, past U+10FFFF: the second byte is out of range
    {"E0 9F BF", u"\u00e0\u0178\u00bf"},
    {"F0 8F BF BF", u"\u00f0\u008f\u00bf\u00bf"},
    {"ED A0 80", u"\u00ed\u00a0\u20ac"},
    {"F4 90 80 80", u"\u00f4\u0090\u20ac\u20ac"},
    // a lead byte that the next byte does not continue; Latin-1 text
    {"C3 41 E2 82 42 F0 9F 98 43", u"\u00c3A\u00e2\u201aB\u00f0\u0178\u02dcC"},
    {"6E 61 EF 76 65 20 63 61 66 E9 73", u"na\u00efve caf\u00e9s"},
    {"C3 C3 A9", u"\u00c3\u00e9"},
    // cut short by the end of the input
    {"41 C3", u"A\u00c3"},
    {"E2 82", u"\u00e2\u201a"},
    {"F0 9F 98", u"\u00f0\u0178\u02dc"},
    // a mark only at the very start, and only from three bytes
    {"EF BB BF 41", u"A", true},
    {"EF BF BE", u"", true},
    {"41 EF BB BF", u"A\ufeff"},
};

TEST_F(StringEncodingTest, DecodesWellFormedUTF8AndOtherBytesAsWindows1252) {
  for (const UTF8Case& c : kUTF8Cases) {
    auto encoding = adopt(new UTF8Encoding());
    std::string bytes = Bytes(c.hex);
    auto text = adopt(StringEncoding::stringFromBytes(encoding.get(), reinterpret_cast<const uint8_t*>(bytes.data()),
                                                      ZnIndex(bytes.size())));
    EXPECT_EQ(Units(text.get()), c.text) << c.hex;
    EXPECT_EQ(encoding->getWriteBOM(), c.mark) << c.hex;
  }
}

// Cut anywhere, as a reader's blocks cut the input, the bytes decode the same:
// what the first call leaves unconsumed is handed in again with the rest.
TEST_F(StringEncodingTest, UTF8CutAnywhereDecodesAsAWhole) {
  for (const UTF8Case& c : kUTF8Cases) {
    std::string bytes = Bytes(c.hex);
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    const ZnIndex size = ZnIndex(bytes.size());
    for (ZnIndex cut = 0; cut <= size; ++cut) {
      auto encoding = adopt(new UTF8Encoding());
      auto text = adopt(new MutableString());
      ZnIndex consumed = encoding->decodeBytes(data, cut, text.get(), true);
      // Only the start of a sequence that more bytes could complete is left.
      EXPECT_LE(cut - consumed, 3) << c.hex << " cut at " << cut;
      consumed += encoding->decodeBytes(data + consumed, size - consumed, text.get(), consumed == 0);
      encoding->decodeLastBytes(data + consumed, size - consumed, text.get());
      EXPECT_EQ(Units(text.get()), c.text) << c.hex << " cut at " << cut;
    }
  }
}

TEST_F(StringEncodingTest, OtherEncodingsDecodeEveryByteOrPair) {
  struct Case { int id; const char* hex; std::u16string text; ZnIndex consumed; bool markFound; } cases[] = {
      // UTF-16: a mark picks the order; an odd last byte is left
      {3, "FF FE 00 41", u"A", 4, true},
      {1, "FE FF 41 00 42", u"A", 4, true},
      {3, "41 00 42", u"A", 2, false},
      {6, "E9 41 80", u"\u00e9A\x80", 3, false},
  };
  for (const Case& c : cases) {
    auto encoding = adopt(StringEncodingWithID(c.id));
    auto string = adopt(new MutableString());
    std::string bytes = Bytes(c.hex);
    ZnIndex consumed = encoding->decodeBytes(reinterpret_cast<const uint8_t*>(bytes.data()), ZnIndex(bytes.size()),
                                             string.get(), true);
    EXPECT_EQ(Units(string.get()), c.text) << c.hex;
    EXPECT_EQ(consumed, c.consumed) << c.hex;
    bool mark = c.id < 6 && static_cast<UTF16Encoding*>(encoding.get())->getWriteBOM();
    EXPECT_EQ(mark, c.markFound) << c.hex;
  }
}

TEST_F(StringEncodingTest, DecodedMarkIsWrittenBackBySameObject) {
  auto utf8 = adopt(new UTF8Encoding());
  auto text = adopt(StringEncoding::stringFromBytes(utf8.get(), reinterpret_cast<const uint8_t*>("\xEF\xBB\xBF" "A"), 4));
  EXPECT_EQ(Encode(utf8.get(), u"A"), "EF BB BF 41");
  // Written with id 0 and read with a plain id 3 object, the mark restores the order.
  auto writer = adopt(StringEncodingWithID(0));
  auto reader = adopt(StringEncodingWithID(3));
  auto data = EncodeData(writer.get(), u"\u263aB");
  auto back = adopt(StringEncoding::stringFromBytes(reader.get(), data->getBytesPtr(), data->getLength()));
  EXPECT_EQ(ZnTest::Utf8(back.get()), "\u263a" "B");
  EXPECT_TRUE(static_cast<UTF16Encoding*>(reader.get())->getSwapBytes());
}

TEST_F(StringEncodingTest, HTMLEscapesMarkupAndFoldsCRLF) {
  struct Case {
    int inner; // -1: the default inner encoding
    bool raw;
    std::u16string text;
    const char* expected;
  } cases[] = {
      {-1, false, u"a<b & \"c\"\t", "a&lt;b &amp; &quot;c&quot;&#160;&#160;&#160;&#160;"},
      {-1, false, u"x\r\ny\rz\n'>", "x<br/>\r\ny<br/>\rz<br/>\n&apos;&gt;"},
      {-1, false, u"\u00e9", "\xC3\xA9"},
      // characters HTML bars, even as references, are left out; form feed stays
      {-1, false, u"a\u0001\u001f\u007f\u0085\u009f\ufdd0\ufdef\ufffe\uffff\fz", "a\fz"},
      {6, false, u"\u0008\u0080\u00a0", "&#00a0;"},
      {-1, true, u"a<b & \"c\"\t\r\n", "a<b & \"c\"\t\r\n"},
      // numeric references only over an 8-bit inner encoding
      {6, false, u"\u00e9\u263a<", "&#00e9;&#263a;&lt;"},
  };
  for (const Case& c : cases) {
    Ref<StringEncoding> inner;
    if (c.inner >= 0)
      inner = adopt(StringEncodingWithID(c.inner));
    auto html = adopt(new HTMLEncoding(inner.get()));
    html->setRaw(c.raw);
    EXPECT_EQ(Encode(html.get(), c.text), Hex(adopt(new Data(c.expected, ZnIndex(strlen(c.expected)))).get()))
        << c.expected;
  }
}

TEST_F(StringEncodingTest, StrictASCIIStopsInFrontOfWideUnit) {
  auto ascii = adopt(StringEncodingWithID(6));
  auto data = adopt(new MutableData());
  const ZnUnichar units[] = {'a', 'b', 0x263A, 'c'};
  EXPECT_EQ(ascii->encodeCharacters(units, 4, data.get(), true), 2);
  EXPECT_EQ(Hex(data.get()), "61 62");
}

TEST_F(StringEncodingTest, ChunkedConversionsWriteOneMarkAndJoinCutSequences) {
  std::u16string text(3000, u'\u00e9');
  auto utf8 = adopt(StringEncodingWithID(4));
  auto data = EncodeData(utf8.get(), text);
  EXPECT_EQ(data->getLength(), 3 + 6000);
  // Offset by one byte, a two-byte sequence straddles every 1024-byte piece.
  std::string bytes = "A" + std::string(reinterpret_cast<const char*>(data->getBytesPtr()) + 3, 6000);
  auto string = adopt(String::createWithBytes(bytes.data(), ZnIndex(bytes.size()), kStringEncodingUTF8));
  EXPECT_EQ(string->length(), 3001);
  EXPECT_EQ(string->characterAtIndex(3000), 0xE9);
  auto terminated = adopt(string->createTerminatedData(kStringEncodingUTF16));
  EXPECT_EQ(terminated->getLength(), 2 * 3001 + 4);
}

TEST_F(StringEncodingDeathTest, RefusesLongDecodeAndUnknownEncoding) {
  std::string bytes(1025, 'a');
  auto utf8 = adopt(StringEncodingWithID(5));
  EXPECT_EXIT(StringEncoding::stringFromBytes(utf8.get(), reinterpret_cast<const uint8_t*>(bytes.data()), 1025),
              testing::ExitedWithCode(255), "byteCount <= chunkSize");
  EXPECT_EXIT(String::createWithBytes("a", 1, 99), testing::ExitedWithCode(255), "theEncoding != NULL");
}
