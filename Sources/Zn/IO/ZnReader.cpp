//===- ZnReader.cpp - Character sources with push-back and positions ------===//
#include "Zn/IO/ZnReader.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnStream.h"

namespace Zn {

//===--- Reader --------------------------------------------------------------===//

Reader::Reader() : pushBack_(adopt(new MutableString(256))) {}

Reader::~Reader() = default;

bool Reader::takeFromSource(ZnUnichar* theOut) {
  countWindow();
  bool filled = fillWindow();
  counted_ = window_;
  if (filled) {
    *theOut = *window_++;
    return true;
  }
  if (!readRawCharacter(theOut))
    return false;
  if (*theOut == 10 || *theOut == 13) {
    lastLineBreakOffset_ = characterCount_;
    ++(*theOut == 10 ? lineFeedCount_ : carriageReturnCount_);
  }
  ++characterCount_;
  return true;
}

void Reader::countRange(const ZnUnichar* theStart, const ZnUnichar* theEnd) const {
  // Line breaks are counted 16 characters at a time without a branch, which
  // the compiler turns into vector compares; the last break, when there is
  // one, is then found from the end.
  const ZnUnichar* p = theStart;
  int64_t lineFeeds = 0, carriageReturns = 0;
  for (; theEnd - p >= 16; p += 16) {
    uint16_t lf = 0, cr = 0;
    for (int i = 0; i < 16; ++i) {
      lf = uint16_t(lf + (p[i] == 10));
      cr = uint16_t(cr + (p[i] == 13));
    }
    lineFeeds += lf;
    carriageReturns += cr;
  }
  for (; p < theEnd; ++p) {
    lineFeeds += *p == 10;
    carriageReturns += *p == 13;
  }
  if (lineFeeds + carriageReturns > 0) {
    lineFeedCount_ += lineFeeds;
    carriageReturnCount_ += carriageReturns;
    for (p = theEnd; *--p != 10 && *p != 13;) {
    }
    lastLineBreakOffset_ = characterCount_ + (p - theStart);
  }
  characterCount_ += theEnd - theStart;
}

void Reader::countWindow() const {
  const ZnUnichar* start = counted_;
  if (mark_) {
    // The mark lies in the window, at or after what was counted.
    countRange(start, mark_);
    markedColumn_ = characterCount_ - markPending_ - lastLineBreakOffset_;
    start = mark_;
    mark_ = nullptr;
  }
  countRange(start, window_);
  counted_ = window_;
}

bool Reader::peekCharacter(ZnUnichar* theOut) {
  ZnIndex pending = pushBack_->length();
  if (pending > 0) {
    *theOut = pushBack_->unitAt(pending - 1);
    return true;
  }
  if (!take(theOut))
    return false;
  unreadCharacter(*theOut);
  return true;
}

bool Reader::skipCharacter(ZnUnichar theCharacter) {
  ZnUnichar c;
  if (!take(&c))
    return false;
  if (c == theCharacter)
    return true;
  unreadCharacter(c);
  return false;
}

bool Reader::readCharacterInRange(ZnUnichar theLow, ZnUnichar theHigh, ZnUnichar* theOut) {
  ZnUnichar c;
  if (!take(&c))
    return false;
  if (c < theLow || c > theHigh) {
    unreadCharacter(c);
    return false;
  }
  if (theOut)
    *theOut = c;
  return true;
}

ZnIndex Reader::readOneOf(const ZnUnichar* theSet, ZnIndex theCount) {
  ZnUnichar c;
  if (!take(&c))
    return -1;
  for (ZnIndex i = 0; i < theCount; ++i)
    if (theSet[i] == c)
      return i;
  unreadCharacter(c);
  return -1;
}

static ZnUnichar FoldCase(ZnUnichar theCharacter) {
  return (theCharacter >= 'A' && theCharacter <= 'Z') ? ZnUnichar(theCharacter + 32) : theCharacter;
}

bool Reader::readString(const String* theExpected, int theCompareOptions) {
  ZnIndex length = theExpected->length();
  if (length == 0)
    return true;
  // Most expected texts are short: keep what was taken on the stack.
  ZnUnichar local[32];
  Ref<MutableString> spill;
  ZnUnichar* taken = local;
  if (length > ZnIndex(sizeof local / sizeof local[0])) {
    spill = adopt(new MutableString(length));
    spill->widen();
    taken = spill->getMutableCharactersPtr();
  }
  ZnIndex count = 0;
  while (count < length && take(&taken[count]))
    ++count;
  bool equal = count == length;
  for (ZnIndex i = 0; equal && i < length; ++i) {
    if (theCompareOptions & kCompareCaseInsensitive)
      equal = FoldCase(taken[i]) == FoldCase(theExpected->unitAt(i));
    else
      equal = taken[i] == theExpected->unitAt(i);
  }
  if (equal)
    return true;
  // Last first, so that they come back in the order they came.
  while (count > 0)
    unreadCharacter(taken[--count]);
  return false;
}

static bool IsWhitespace(ZnUnichar theCharacter) {
  return (theCharacter >= 9 && theCharacter <= 13) || theCharacter == 32;
}

bool Reader::readNonWhitespace(ZnUnichar* theOut) {
  while (take(theOut))
    if (!IsWhitespace(*theOut))
      return true;
  return false;
}

bool Reader::skipWhitespace() {
  ZnUnichar c;
  if (!readNonWhitespace(&c))
    return false;
  unreadCharacter(c);
  return true;
}

bool Reader::readDigit(int theRadix, int32_t* theOut) {
  ZnUnichar c;
  if (!take(&c))
    return false;
  int32_t value = DigitValue(c);
  if (value > 35) {
    unreadCharacter(c);
    return false;
  }
  if (theOut)
    *theOut = value;
  if (value < theRadix)
    return true;
  unreadCharacter(c);
  return false;
}

bool Reader::readInteger(int32_t* theOut, int theRadix) {
  // Wrapping arithmetic: there is no overflow check.
  uint32_t value = 0;
  bool found = false;
  ZnUnichar c;
  *theOut = 0;
  while (take(&c)) {
    int32_t digit = DigitValue(c);
    if (digit >= theRadix) {
      unreadCharacter(c);
      break;
    }
    value = value * uint32_t(theRadix) + uint32_t(digit);
    *theOut = int32_t(value);
    found = true;
  }
  return found;
}

int64_t Reader::getLine() const {
  countWindow();
  int64_t lf = lineFeedCount_, cr = carriageReturnCount_;
  for (ZnIndex i = 0; i < pushBack_->length(); ++i) {
    const ZnUnichar c = pushBack_->unitAt(i);
    if (c == 10)
      --lf;
    else if (c == 13)
      --cr;
  }
  if (cr == 0)
    return lf;
  if (lf == 0)
    return cr;
  // Counts far apart: single CRs and single LFs are mixed, each a break.
  if (lf - cr >= 2 || cr - lf >= 2)
    return lf + cr;
  // CR LF pairs count once; a half-read pair does not count yet.
  return lf < cr ? lf : cr;
}

const char* Reader::className() const { return "Reader"; }
const char* Reader::superclassName() const { return "Zn::Object"; }

//===--- StreamReader --------------------------------------------------------===//

StreamReader::StreamReader(Stream* theStream, StringEncoding* theEncoding) {
  ZnAssert(theStream != NULL, 0);
  ZnAssert(theStream->isReadable(), 0);
  stream_ = retained(theStream);
  encoding_ = retained(theEncoding);
  if (theEncoding) {
    // The window is read through a pointer to 16-bit units.
    decoded_ = adopt(new MutableString(256));
    decoded_->widen();
  }
}

StreamReader::~StreamReader() = default;

String* StreamReader::getSourceName() const {
  String* name = stream_->getName();
  return name ? static_cast<String*>(name->retain()) : new String();
}

double StreamReader::getProgress() const {
  int64_t read = stream_->getReadCount();
  return double(read > 0 ? read : 0) / double(stream_->getLength());
}

bool StreamReader::readRawCharacter(ZnUnichar* theOut) {
  if (!encoding_) {
    uint8_t byte;
    ZnIndex got = stream_->read(&byte, 1, -1.0);
    if (got <= 0)
      return false;
    stream_->addToReadCount(got);
    *theOut = byte;
    return true;
  }
  // What take() delivered is counted; a raw character is not.
  countWindow();
  if (window_ >= windowEnd_ && !fillWindow())
    return false;
  *theOut = *window_++;
  skipCounting();
  return true;
}

bool StreamReader::fillWindow() {
  if (!encoding_)
    return false;
  // Everything delivered: empty the buffer, keeping its storage.
  decoded_->setLength(0);
  constexpr ZnIndex kBlockSize = 250;
  uint8_t block[kBlockSize];
  // A block may decode to nothing (a lone byte-order mark, a short read that
  // ends inside a sequence), so blocks are read until something came out.
  while (decoded_->length() == 0) {
    bool isFirst = stream_->getPosition() == 0;
    ZnIndex have = stream_->read(block, kBlockSize, -1.0);
    if (have <= 0) {
      window_ = windowEnd_ = nullptr;
      return false;
    }
    stream_->addToReadCount(have);
    for (;;) {
      ZnIndex consumed = encoding_->decodeBytes(block, have, decoded_.get(), isFirst);
      if (consumed >= have || (consumed <= 0 && have == kBlockSize))
        break;
      if (consumed > 0) {
        isFirst = false;
        // A sequence cut by the end of the block: complete it from the stream.
        MoveMemory(block + consumed, block, Sys::size_t(have - consumed));
        have -= consumed;
      }
      ZnIndex more = stream_->read(block + have, kBlockSize - have, -1.0);
      if (more <= 0) {
        // The input ends inside the sequence.
        encoding_->decodeLastBytes(block, have, decoded_.get());
        break;
      }
      stream_->addToReadCount(more);
      have += more;
    }
  }
  window_ = decoded_->getMutableCharactersPtr();
  windowEnd_ = window_ + decoded_->length();
  return true;
}

//===--- StringReader --------------------------------------------------------===//

StringReader::StringReader(const String* theString) {
  ZnAssert(theString != NULL, 0);
  string_ = retained(theString);
}

StringReader::~StringReader() = default;

String* StringReader::getSourceName() const { return new String("(Memory Buffer)"); }

double StringReader::getProgress() const { return double(index_) / double(string_->length()); }

bool StringReader::readRawCharacter(ZnUnichar* theOut) {
  if (index_ >= string_->length())
    return false;
  *theOut = string_->unitAt(index_++);
  return true;
}

const char* StringReader::className() const { return "StringReader"; }
} // namespace Zn
