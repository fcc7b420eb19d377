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
      {5, u"\U0001F600", "ED A0 BD ED B8 80"},
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

TEST_F(StringEncodingTest, DecodesWithMaskingAndStopsAtCutSequences) {
  struct Case { int id; const char* hex; std::u16string text; ZnIndex consumed; bool markFound; } cases[] = {
      {5, "41 C3 A9 E2 82 AC", u"A\u00e9\u20ac", 6, false},
      // four to six bytes are cut to 16 bits; continuation bytes only masked
      {5, "F0 9F 98 80", u"\uf600", 4, false},
      {5, "FB BF BF BF BF FD BF BF BF BF BF", u"\uffff\uffff", 11, false},
      {5, "BF C1 81 E1 FF FF", u"?A\u1fff", 6, false},
      // a sequence cut by the end is not consumed
      {5, "41 C3", u"A", 1, false},
      {5, "41 F0 9F 98", u"A", 1, false},
      // a mark only at the very start, from three or more bytes
      {5, "EF BB BF 41", u"A", 4, true},
      {5, "EF BF BE", u"", 3, true},
      {5, "F0 8F BB BF 41", u"A", 5, true},
      {5, "41 EF BB BF", u"A\ufeff", 4, false},
      // UTF-16: a mark picks the order; an odd last byte is left
      {3, "FF FE 00 41", u"A", 4, true},
      {1, "FE FF 41 00 42", u"A", 4, true},
      {3, "41 00 42", u"A", 2, false},
      {6, "E9 41", u"\u00e9A", 2, false},
  };
  for (const Case& c : cases) {
    auto encoding = adopt(StringEncodingWithID(c.id));
    auto string = adopt(new MutableString());
    std::string bytes = Bytes(c.hex);
    ZnIndex consumed = encoding->decodeBytes(reinterpret_cast<const uint8_t*>(bytes.data()), ZnIndex(bytes.size()),
                                             string.get(), true);
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t*>(string->getCharactersPtr()), string->length()), c.text)
        << c.hex;
    EXPECT_EQ(consumed, c.consumed) << c.hex;
    bool mark = c.id == 5 ? static_cast<UTF8Encoding*>(encoding.get())->getWriteBOM()
                          : c.id < 6 && static_cast<UTF16Encoding*>(encoding.get())->getWriteBOM();
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
  // Bytes get the same table but no numeric references.
  auto ascii = adopt(StringEncodingWithID(6));
  auto html = adopt(new HTMLEncoding(ascii.get()));
  auto data = adopt(new MutableData());
  EXPECT_EQ(html->encodeBytes(reinterpret_cast<const uint8_t*>("<\xE9"), 2, data.get(), true), 2);
  EXPECT_EQ(Hex(data.get()), "26 6C 74 3B E9");
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
