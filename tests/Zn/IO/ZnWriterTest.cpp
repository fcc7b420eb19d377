//===- ZnWriterTest.cpp - Line ends, indentation, encoding onto streams ---===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnFileStream.h"
#include "Zn/IO/ZnWriter.h"
#include <string>
#include <unistd.h>

using namespace Zn;

namespace {
class WriterTest : public ZnTest::LeakCheckedTest {};
using WriterDeathTest = WriterTest;
using ZnTest::Bytes;
} // namespace

TEST_F(WriterTest, LineEndsAreTranslatedAndIndented) {
  struct Case { int mode, indent; const char* input; const char* expected; } cases[] = {
      {Writer::kLineEndCRLF, 0, "a\r\nb", "a\r\nb"},
      {Writer::kLineEndCRLF, 1, "a\r\nb\n", "a\r\n\tb\r\n\t"},
      {Writer::kLineEndLF, 2, "a\r\nb\rc\nd", "a\n\t\tb\n\t\tc\n\t\td"},
      {Writer::kLineEndLF, 0, "a\r\r\n\nb", "a\n\n\nb"},
      {Writer::kLineEndCR, 0, "a\n\nb\r\n", "a\r\rb\r"},
      {Writer::kLineEndAsWritten, 1, "a\r\nb", "a\r\t\n\tb"},
      // a negative level writes no TABs
      {Writer::kLineEndLF, -1, "a\nb", "a\nb"},
  };
  for (const Case& c : cases) {
    for (bool asBytes : {false, true}) {
      auto writer = adopt(new StringWriter());
      writer->setLineEndMode(c.mode);
      writer->setIndentLevel(c.indent);
      if (asBytes) {
        EXPECT_TRUE(writer->putBytes(c.input));
      } else {
        auto text = adopt(new String(c.input));
        EXPECT_TRUE(writer->putString(text.get()));
      }
      EXPECT_EQ(ZnTest::Utf8(writer->getString()), c.expected) << "mode " << c.mode << " " << c.input;
    }
  }
}

TEST_F(WriterTest, PutNewlinesLeavesAsWrittenModeForGood) {
  auto writer = adopt(new StringWriter());
  writer->setLineEndMode(Writer::kLineEndAsWritten);
  writer->increaseIndent();
  EXPECT_TRUE(writer->putNewlines(2));
  EXPECT_EQ(writer->getLineEndMode(), Writer::kLineEndLF);
  writer->decreaseIndent();
  writer->decreaseIndent();
  EXPECT_TRUE(writer->putFormat("%d\r", 7));
  EXPECT_EQ(ZnTest::Utf8(writer->getString()), "\n\n\t7\n");
  writer->setLineEndMode(9);
  EXPECT_FALSE(writer->putNewlines(1));
}

TEST_F(WriterTest, SeparatorGoesOutOnlyBetweenTwoPiecesOfText) {
  auto writer = adopt(new StringWriter());
  writer->increaseIndent();
  // Nothing written yet: the text is at the start of a line.
  writer->requestSeparator(Writer::kSpaceSeparator);
  writer->putBytes("a");
  writer->requestSeparator(Writer::kSpaceSeparator);
  writer->putCharacter('b');
  // A line end wins over a space and is translated and indented as any.
  writer->requestSeparator(Writer::kSpaceSeparator);
  writer->requestSeparator(Writer::kLineSeparator);
  writer->requestSeparator(Writer::kSpaceSeparator);
  writer->putBytes("c");
  // A line break put next keeps the pieces apart by itself.
  writer->requestSeparator(Writer::kSpaceSeparator);
  writer->putBytes("\nd");
  writer->requestSeparator(Writer::kLineSeparator);
  writer->putNewlines(1);
  writer->requestSeparator(Writer::kSpaceSeparator);
  writer->putBytes("e");
  // A cancelled one, and one flushed by hand before a write around the puts.
  writer->requestSeparator(Writer::kSpaceSeparator);
  writer->cancelSeparator();
  writer->putBytes("f");
  writer->requestSeparator(Writer::kSpaceSeparator);
  EXPECT_TRUE(writer->flushSeparator(0));
  writer->writeCharacter('g');
  // No space next to a blank; a word separator only before a letter or digit.
  writer->requestSeparator(Writer::kSpaceSeparator);
  writer->putBytes(" h");
  writer->putBytes("i ");
  writer->requestSeparator(Writer::kSpaceSeparator);
  writer->putBytes("j");
  writer->requestSeparator(Writer::kWordSeparator);
  writer->putBytes("2");
  writer->requestSeparator(Writer::kWordSeparator);
  writer->putBytes("+");
  writer->requestSeparator(Writer::kWordSeparator);
  writer->putCharacter(0x3B1);
  EXPECT_EQ(ZnTest::Utf8(writer->getString()), "a b\n\tc\n\td\n\tef g hi j 2+ \u03B1");

  // Only puts that write something count.
  const uint32_t before = writer->getPutCount();
  writer->putBytes("");
  writer->putNewlines(0);
  EXPECT_EQ(writer->getPutCount(), before);
  writer->putCharacter('x');
  EXPECT_EQ(writer->getPutCount(), before + 1);
}

TEST_F(WriterTest, StreamWriterEncodesAndMarksOnlyTheStart) {
  auto data = adopt(new MutableData());
  auto stream = adopt(Data::createWriteStream(data.get()));
  auto writer = adopt(new StreamWriter(stream.get(), adopt(StringEncodingWithID(4)).get()));
  writer->setIndentLevel(1);
  EXPECT_TRUE(writer->putCharacter(0xE9));
  EXPECT_TRUE(writer->putBytes("\n<"));
  EXPECT_EQ(Bytes(data.get()), "\xEF\xBB\xBF\xC3\xA9\n\t<");
  EXPECT_EQ(stream->getWriteCount(), 8);
  // The default encoding is UTF-8 without a mark; a unit the encoder
  // refuses fails the write.
  data->setLength(0);
  auto plain = adopt(Data::createWriteStream(data.get()));
  auto utf8 = adopt(new StreamWriter(plain.get()));
  EXPECT_TRUE(utf8->putCharacter(0x263A));
  EXPECT_EQ(Bytes(data.get()), "\xE2\x98\xBA");
  auto strict = adopt(new StreamWriter(plain.get(), adopt(StringEncodingWithID(6)).get()));
  EXPECT_FALSE(strict->putCharacter(0x263A));
}

TEST_F(WriterTest, StreamWriterHoldingBytesWritesTheSameInLargePieces) {
  auto data = adopt(new MutableData());
  auto stream = adopt(Data::createWriteStream(data.get()));
  auto writer = adopt(new StreamWriter(stream.get(), adopt(StringEncodingWithID(4)).get()));
  writer->holdBytes(8);
  EXPECT_TRUE(writer->putCharacter(0xE9));
  EXPECT_TRUE(writer->putBytes("ab"));
  // Held: the mark still goes only before the first character.
  EXPECT_EQ(Bytes(data.get()), "");
  EXPECT_TRUE(writer->putBytes("cd"));
  EXPECT_EQ(Bytes(data.get()), "\xEF\xBB\xBF\xC3\xA9" "abcd");
  // A write the encoder refuses drops its own bytes, not those held.
  auto strict = adopt(new StreamWriter(stream.get(), adopt(StringEncodingWithID(6)).get()));
  strict->holdBytes(8);
  EXPECT_TRUE(strict->putBytes("x"));
  const ZnUnichar refused[] = {'y', 0x263A};
  EXPECT_FALSE(strict->writeCharacters(refused, 2));
  EXPECT_TRUE(strict->flush());
  EXPECT_TRUE(writer->putBytes("e"));
  writer = Ref<StreamWriter>();
  EXPECT_EQ(Bytes(data.get()), "\xEF\xBB\xBF\xC3\xA9" "abcdxe");
  EXPECT_EQ(stream->getWriteCount(), 11);
}

// A string kept one byte a unit goes out through the byte path of the
// encoders: each must write what the 16-bit form of the same text writes.
TEST_F(WriterTest, BothFormsOfAStringEncodeAlike) {
  const ZnUnichar units[] = {'a', '<', 0xE9, 0x80, 0xFF, '&', '"', 10, 'z'};
  auto compact = adopt(String::createWithCharacters(units, 9));
  auto wide = adopt(new MutableString());
  wide->widen();
  wide->appendCharacters(units, 9);
  ASSERT_FALSE(compact->isWide());
  for (int id : {kStringEncodingUTF8, kStringEncodingUTF8WithBOM, kStringEncodingUTF16, kStringEncodingASCII,
                 kStringEncodingASCIIEscaped}) {
    for (bool html : {false, true}) {
      std::string written[2];
      for (int form = 0; form < 2; ++form) {
        auto data = adopt(new MutableData());
        auto stream = adopt(Data::createWriteStream(data.get()));
        auto inner = adopt(StringEncodingWithID(id));
        auto encoding = html ? adopt<StringEncoding>(new HTMLEncoding(inner.get())) : inner;
        auto writer = adopt(new StreamWriter(stream.get(), encoding.get()));
        EXPECT_TRUE(writer->putString(form == 0 ? compact.get() : static_cast<String*>(wide.get())));
        EXPECT_TRUE(writer->writeString(form == 0 ? compact.get() : static_cast<String*>(wide.get()), 2));
        written[form] = Bytes(data.get());
      }
      EXPECT_EQ(written[0], written[1]) << "encoding " << id << (html ? " in HTML" : "");
    }
  }
}

TEST_F(WriterTest, MultiWriterWritesToAllEvenAfterAFailure) {
  // "rwb" opens read-only: every write to it falls short.
  std::string path = testing::TempDir() + "ZnWriterTest." + std::to_string(getpid());
  adopt(new Data("", 0))->writeToFile(path.c_str());
  auto readOnly = adopt(FilePointerStream::createForReadingAndWriting(path.c_str()));
  auto first = adopt(new StringWriter());
  auto second = adopt(new StringWriter());
  auto multi = adopt(new MultiWriter());
  multi->addWriter(first.get());
  multi->addWriter(adopt(new StreamWriter(readOnly.get())).get());
  multi->addWriter(second.get());
  multi->increaseIndent();
  EXPECT_FALSE(multi->putString(adopt(new String("ab")).get()));
  EXPECT_FALSE(multi->writeIndentation());
  EXPECT_EQ(ZnTest::Utf8(first->getString()), "ab\t");
  EXPECT_EQ(ZnTest::Utf8(second->getString()), "ab\t");
  unlink(path.c_str());
}

TEST_F(WriterDeathTest, StreamMustExistAndBeWritable) {
  EXPECT_EXIT(adopt(new StreamWriter(nullptr)), testing::ExitedWithCode(255), "theStream != NULL");
  auto data = adopt(new Data("x", 1));
  auto input = adopt(Data::createReadStream(data.get()));
  EXPECT_EXIT(adopt(new StreamWriter(input.get())), testing::ExitedWithCode(255), "theStream->isWritable\\(\\)");
}
