//===- ZnReaderTest.cpp - Push-back, positions, scanning, block decoding --===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnReader.h"
#include "Zn/IO/ZnStream.h"
#include <string>

using namespace Zn;

namespace {
class ReaderTest : public ZnTest::LeakCheckedTest {};
using ReaderDeathTest = ReaderTest;

Ref<StringReader> ReaderOver(const char* theText) {
  return adopt(new StringReader(adopt(new String(theText)).get()));
}

// Delivers at most one byte per read, as a slow pipe may.
class TrickleStream : public Stream {
public:
  explicit TrickleStream(std::string theBytes) : Stream(nullptr, true, false), bytes_(std::move(theBytes)) {}
  ZnIndex read(uint8_t* theBuffer, ZnIndex theCount, double) override {
    if (theCount < 1 || next_ >= bytes_.size())
      return 0;
    *theBuffer = uint8_t(bytes_[next_++]);
    return 1;
  }
  const char* className() const override { return "TrickleStream"; }

private:
  std::string bytes_;
  size_t next_ = 0;
};

std::string ReadAll(Reader* theReader) {
  auto text = adopt(new MutableString());
  ZnUnichar c;
  while (theReader->readCharacter(&c))
    text->appendCharacter(c);
  return ZnTest::Utf8(text.get());
}
} // namespace

TEST_F(ReaderTest, LineAndColumnCountBreaksAsDelivered) {
  struct Case { const char* text; int read, pushedBack; int64_t line, column; } cases[] = {
      {"ab\ncd", 1, 0, 0, 1},
      {"ab\ncd", 5, 0, 1, 3},
      {"ab\ncd", 4, 0, 1, 2},
      // giving the LF back takes the line back too
      {"ab\ncd", 3, 1, 0, 0},
      // CR LF counts like LF; a half-read pair does not count yet
      {"ab\r\ncd\r\nef", 10, 0, 2, 3},
      {"a\r\nb\r", 5, 0, 1, 1},
      {"a\r\nb\r\n", 5, 0, 1, 1},
      // lone CRs and LFs: counts 1 apart take the smaller, 2 apart the sum
      {"a\rb\rc\nd", 7, 0, 1, 2},
      {"a\rb\rc\rd\ne", 9, 0, 4, 2},
      {"a\rb\rc", 5, 0, 2, 2},
  };
  for (const Case& c : cases) {
    auto reader = ReaderOver(c.text);
    ZnUnichar taken[16];
    for (int i = 0; i < c.read; ++i)
      ASSERT_TRUE(reader->readCharacter(&taken[i]));
    for (int i = 0; i < c.pushedBack; ++i)
      reader->unreadCharacter(taken[c.read - 1 - i]);
    EXPECT_EQ(reader->getLine(), c.line) << c.text << " after " << c.read;
    EXPECT_EQ(reader->getColumn(), c.column) << c.text << " after " << c.read;
  }
}

TEST_F(ReaderTest, ScanningHelpersPushBackWhatTheyRefuse) {
  auto reader = ReaderOver("12x  aBc!9z");
  int32_t value = -1;
  EXPECT_TRUE(reader->readInteger(&value, 10));
  EXPECT_EQ(value, 12);
  EXPECT_FALSE(reader->readInteger(&value, 10));
  ZnUnichar c = 0;
  EXPECT_TRUE(reader->peekCharacter(&c));
  EXPECT_TRUE(reader->skipCharacter('x'));
  EXPECT_TRUE(reader->skipWhitespace());
  // A failed match leaves everything to be read again, in order.
  EXPECT_FALSE(reader->readString(adopt(new String("abd")).get(), 0));
  EXPECT_FALSE(reader->readString(adopt(new String("aBc!9z+")).get(), 0));
  EXPECT_TRUE(reader->readString(adopt(new String("ABC")).get(), Reader::kCompareCaseInsensitive));
  const ZnUnichar set[] = {'?', '!'};
  EXPECT_EQ(reader->readOneOf(set, 2), 1);
  EXPECT_FALSE(reader->readCharacterInRange('a', 'z', &c));
  EXPECT_TRUE(reader->readDigit(10, &value));
  EXPECT_EQ(value, 9);
  // A letter beyond the radix is stored but refused.
  EXPECT_FALSE(reader->readDigit(10, &value));
  EXPECT_EQ(value, 35);
  EXPECT_TRUE(reader->readNonWhitespace(&c));
  EXPECT_EQ(c, 'z');
}

TEST_F(ReaderTest, SequencesCutByTheBlockEndAreCompleted) {
  // Every cut around byte 250 of sequences well-formed and not, and a
  // sequence that the end of the stream cuts short.
  const char* const kTail = "\xE2\x82\xAC\xC3\xA9\xF0\x9F\x98\x80z\xE9s\xE2\x82" "A\xE2\x82";
  const char* const kText = "\u20ac\u00e9\U0001F600z\u00e9s\u00e2\u201a" "A\u00e2\u201a";
  for (int prefix = 244; prefix <= 250; ++prefix) {
    std::string bytes = std::string(prefix, 'a') + kTail;
    auto data = adopt(new Data(bytes.data(), ZnIndex(bytes.size())));
    auto stream = adopt(Data::createReadStream(data.get()));
    auto reader = adopt(new StreamReader(stream.get(), adopt(StringEncodingWithID(5)).get()));
    EXPECT_EQ(ReadAll(reader.get()), std::string(prefix, 'a') + kText) << prefix;
    EXPECT_EQ(stream->getReadCount(), ZnIndex(bytes.size()));
  }
  // One byte per read, a mark first and a lone lead byte last.
  auto trickle = adopt(new TrickleStream("\xEF\xBB\xBF\xC3\xA9\xE2\x82\xAC" "A\xC3"));
  auto utf8 = adopt(new UTF8Encoding());
  auto reader = adopt(new StreamReader(trickle.get(), utf8.get()));
  EXPECT_EQ(ReadAll(reader.get()), "\u00e9\u20ac" "A\u00c3");
  EXPECT_TRUE(utf8->getWriteBOM());
  // Without an encoding each byte is a character.
  auto raw = adopt(new StreamReader(adopt(new TrickleStream("\xE9!")).get(), nullptr));
  EXPECT_EQ(ReadAll(raw.get()), "\u00e9!");
}

// A stream reader hands out its decoded block without a call per character
// and counts line breaks only when asked or when the block is used up. At
// every point it must answer as a string reader does: across block ends,
// with characters given back, after runs taken from the buffer at once, and
// for a position marked long before it is asked for.
TEST_F(ReaderTest, BlockReaderCountsAsAStringReaderDoes) {
  std::string text;
  for (int i = 0; i < 300; ++i)
    text += i % 7 == 0 ? "\r\n" : i % 5 == 0 ? "\r" : i % 3 == 0 ? "\n" : "ab";
  auto data = adopt(new Data(text.data(), ZnIndex(text.size())));
  auto stream = adopt(Data::createReadStream(data.get()));
  auto block = adopt(new StreamReader(stream.get(), adopt(StringEncodingWithID(5)).get()));
  auto plain = ReaderOver(text.c_str());
  ZnUnichar a = 0, b = 0;
  for (int step = 0; plain->readCharacter(&b); ++step) {
    ASSERT_TRUE(block->readCharacter(&a));
    ASSERT_EQ(a, b) << step;
    if (step % 19 == 0) {
      // A run straight from the buffer, against the same characters one by one.
      ZnIndex count = 0;
      const ZnUnichar* run = block->getBufferedCharacters(&count);
      count = count < 5 ? count : 5;
      ZnUnichar c;
      for (ZnIndex i = 0; i < count && plain->readCharacter(&c); ++i)
        ASSERT_EQ(run[i], c) << step;
      block->skipBufferedCharacters(count);
    }
    if (step % 23 == 0) {
      block->markPosition();
      plain->markPosition();
    }
    if (step % 13 == 0) {
      block->unreadCharacter(a);
      plain->unreadCharacter(b);
    }
    if (step % 17 == 0 || step % 13 == 0) {
      EXPECT_EQ(block->getLine(), plain->getLine()) << step;
      EXPECT_EQ(block->getColumn(), plain->getColumn()) << step;
    }
    if (step % 101 == 0) {
      EXPECT_EQ(block->getMarkedColumn(), plain->getMarkedColumn()) << step;
    }
  }
  EXPECT_FALSE(block->readCharacter(&a));
  EXPECT_EQ(block->getCharacterCount(), plain->getCharacterCount());
  EXPECT_EQ(block->getLine(), plain->getLine());
  EXPECT_EQ(block->getMarkedColumn(), plain->getMarkedColumn());
}

TEST_F(ReaderDeathTest, SourcesMustExistAndBeReadable) {
  EXPECT_EXIT(adopt(new StreamReader(nullptr, nullptr)), testing::ExitedWithCode(255), "theStream != NULL");
  auto data = adopt(new MutableData());
  auto output = adopt(Data::createWriteStream(data.get()));
  EXPECT_EXIT(adopt(new StreamReader(output.get(), nullptr)), testing::ExitedWithCode(255),
              "theStream->isReadable\\(\\)");
  EXPECT_EXIT(adopt(new StringReader(nullptr)), testing::ExitedWithCode(255), "theString != NULL");
}
