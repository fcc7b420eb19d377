//===- FuzzReader.cpp - Fuzzing the stream reader --------------------------===//
//
// Input: an encoding byte, the length of a script, the script, then the
// payload. A stream hands the payload out in reads whose sizes the script
// chooses; a StreamReader decodes it, and the script's operations run both
// on the reader and on a model that works from the payload decoded in one
// piece. Every answer, every character and every position must agree.
//
//===----------------------------------------------------------------------===//
#include <vector>
#include "FuzzEntryPoints.h"
#include "FuzzSupport.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnReader.h"
#include "Zn/IO/ZnStream.h"

using namespace Zn;

namespace NbtextFuzz {

namespace {
using Units = std::vector<ZnUnichar>;

/// Delivers its bytes in reads of the sizes its pattern gives, as a pipe
/// or a slow device may; no size is ever 0 before the end.
class ChoppyStream : public Stream {
public:
  ChoppyStream(const uint8_t* theBytes, size_t theSize, const uint8_t* thePattern, size_t thePatternSize)
      : Stream(nullptr, true, false), bytes_(theBytes), size_(theSize), pattern_(thePattern),
        patternSize_(thePatternSize) {}
  int64_t getLength() override { return int64_t(size_); }
  ZnIndex read(uint8_t* theBuffer, ZnIndex theCount, double) override {
    if (theCount <= 0 || next_ >= size_)
      return 0;
    size_t count = size_t(theCount);
    if (patternSize_ > 0) {
      uint8_t chop = pattern_[reads_++ % patternSize_];
      size_t size = size_t(chop % 16) + 1;
      if (chop < 0xF0 && size < count) // the rest ask for the full count
        count = size;
    }
    if (count > size_ - next_)
      count = size_ - next_;
    for (size_t i = 0; i < count; ++i)
      theBuffer[i] = bytes_[next_ + i];
    next_ += count;
    return ZnIndex(count);
  }
  const char* className() const override { return "ChoppyStream"; }

private:
  const uint8_t* bytes_;
  size_t size_;
  const uint8_t* pattern_;
  size_t patternSize_;
  size_t next_ = 0;
  size_t reads_ = 0;
};

int32_t DigitValue(ZnUnichar c) {
  if (c >= '0' && c <= '9')
    return c - '0';
  if (c >= 'A' && c <= 'Z')
    return c - 'A' + 10;
  if (c >= 'a' && c <= 'z')
    return c - 'a' + 10;
  return -1;
}

ZnUnichar FoldCase(ZnUnichar c) { return c >= 'A' && c <= 'Z' ? ZnUnichar(c + 32) : c; }

bool IsWhitespace(ZnUnichar c) { return (c >= 9 && c <= 13) || c == 32; }

/// What the reader is meant to do, over the characters decoded in one go.
class ReaderModel {
public:
  explicit ReaderModel(const Units& theSource) : source_(theSource) {}

  bool take(ZnUnichar* theOut) {
    if (!pushBack_.empty()) {
      *theOut = pushBack_.back();
      pushBack_.pop_back();
      return true;
    }
    if (next_ >= source_.size())
      return false;
    *theOut = source_[next_++];
    if (*theOut == 10 || *theOut == 13) {
      lastBreak_ = count_;
      ++(*theOut == 10 ? lineFeeds_ : carriageReturns_);
    }
    ++count_;
    return true;
  }
  void unread(ZnUnichar c) { pushBack_.push_back(c); }
  size_t pushedBack() const { return pushBack_.size(); }
  /// The next theCount characters (fewer at the end), left in place.
  Units upcoming(size_t theCount) const {
    Units units;
    for (size_t i = pushBack_.size(); i > 0 && units.size() < theCount; --i)
      units.push_back(pushBack_[i - 1]);
    for (size_t i = next_; i < source_.size() && units.size() < theCount; ++i)
      units.push_back(source_[i]);
    return units;
  }

  int64_t line() const {
    int64_t lf = lineFeeds_, cr = carriageReturns_;
    for (ZnUnichar c : pushBack_) {
      lf -= c == 10;
      cr -= c == 13;
    }
    if (cr == 0)
      return lf;
    if (lf == 0)
      return cr;
    if (lf - cr >= 2 || cr - lf >= 2)
      return lf + cr;
    return lf < cr ? lf : cr;
  }
  int64_t column() const { return count_ - int64_t(pushBack_.size()) - lastBreak_; }
  int64_t count() const { return count_; }

  bool readString(const Units& theExpected, bool theFold) {
    Units taken;
    ZnUnichar c;
    while (taken.size() < theExpected.size() && take(&c))
      taken.push_back(c);
    bool equal = taken.size() == theExpected.size();
    for (size_t i = 0; equal && i < taken.size(); ++i)
      equal = theFold ? FoldCase(taken[i]) == FoldCase(theExpected[i]) : taken[i] == theExpected[i];
    if (equal)
      return true;
    while (!taken.empty()) {
      unread(taken.back());
      taken.pop_back();
    }
    return false;
  }
  bool readInteger(int32_t* theOut, int theRadix) {
    uint32_t value = 0;
    bool found = false;
    ZnUnichar c;
    *theOut = 0;
    while (take(&c)) {
      int32_t digit = DigitValue(c);
      if (digit < 0 || digit >= theRadix) {
        unread(c);
        break;
      }
      value = value * uint32_t(theRadix) + uint32_t(digit);
      *theOut = int32_t(value);
      found = true;
    }
    return found;
  }
  bool readDigit(int theRadix, int32_t* theOut) {
    ZnUnichar c;
    if (!take(&c))
      return false;
    int32_t digit = DigitValue(c);
    if (digit < 0) {
      unread(c);
      return false;
    }
    if (theOut)
      *theOut = digit;
    if (digit < theRadix)
      return true;
    unread(c);
    return false;
  }
  bool readNonWhitespace(ZnUnichar* theOut) {
    while (take(theOut))
      if (!IsWhitespace(*theOut))
        return true;
    return false;
  }

private:
  const Units& source_;
  size_t next_ = 0;
  std::vector<ZnUnichar> pushBack_;
  int64_t count_ = 0, lineFeeds_ = 0, carriageReturns_ = 0, lastBreak_ = 0;
};

// The encodings a reader may be given; index 0 means none (bytes as characters).
constexpr int kEncodingIDs[] = {-1, kStringEncodingUTF8, kStringEncodingUTF8WithBOM, kStringEncodingUTF16,
                                kStringEncodingUTF16Swapped, kStringEncodingUTF16WithBOM, kStringEncodingASCII,
                                kStringEncodingUTF16SwappedWithBOM};

Units DecodeAtOnce(int theID, const uint8_t* theBytes, size_t theSize) {
  if (theID < 0)
    return Units(theBytes, theBytes + theSize);
  auto encoding = adopt(StringEncodingWithID(theID));
  auto text = adopt(new MutableString());
  // In one piece: only a sequence that the end cuts short is left, and it
  // goes where the reader sends it at the end of the stream.
  ZnIndex consumed = encoding->decodeBytes(theBytes, ZnIndex(theSize), text.get(), true);
  encoding->decodeLastBytes(theBytes + consumed, ZnIndex(theSize) - consumed, text.get());
  WideCharacters units(text.get());
  return Units(units.data(), units.data() + units.length());
}

void CheckPosition(Reader* theReader, const ReaderModel& theModel) {
  FuzzCheck(theReader->getLine() == theModel.line());
  FuzzCheck(theReader->getColumn() == theModel.column());
  FuzzCheck(theReader->getCharacterCount() == theModel.count());
}

// One scripted operation on both; theParameter picks its arguments.
void Step(Reader* theReader, ReaderModel& theModel, uint8_t theOperation, uint8_t theParameter) {
  ZnUnichar got = 0, want = 0;
  Units next = theModel.upcoming(8);
  ZnUnichar nextCharacter = next.empty() ? 'x' : next[0];
  switch (theOperation % 12) {
  case 0: {
    bool ok = theReader->readCharacter(&got);
    FuzzCheck(ok == theModel.take(&want) && (!ok || got == want));
    break;
  }
  case 1: {
    // Taken from the source and given back, so it counts as delivered.
    bool ok = theReader->peekCharacter(&got);
    bool expected = theModel.take(&want);
    if (expected)
      theModel.unread(want);
    FuzzCheck(ok == expected && (!ok || got == want));
    break;
  }
  case 2: {
    // Bounded, so that the line query's walk over the push-back stays cheap.
    if (theModel.pushedBack() >= 64)
      break;
    static const ZnUnichar kBack[] = {10, 13, '0', 'a', ' ', 0xFEFF, 0xD800, '\\'};
    ZnUnichar c = theParameter & 1 ? nextCharacter : kBack[theParameter >> 5];
    theReader->unreadCharacter(c);
    theModel.unread(c);
    break;
  }
  case 3: {
    ZnUnichar c = theParameter & 1 ? nextCharacter : ZnUnichar(theParameter >> 1);
    bool ok = theReader->skipCharacter(c);
    bool expected = theModel.take(&want);
    if (expected && want != c) {
      theModel.unread(want);
      expected = false;
    }
    FuzzCheck(ok == expected);
    break;
  }
  case 4: {
    ZnUnichar low = ZnUnichar(nextCharacter - (theParameter & 3));
    ZnUnichar high = ZnUnichar(low + (theParameter >> 2));
    bool ok = theReader->readCharacterInRange(low, high, theParameter & 0x80 ? nullptr : &got);
    bool expected = theModel.take(&want);
    if (expected && (want < low || want > high)) {
      theModel.unread(want);
      expected = false;
    }
    FuzzCheck(ok == expected && (!ok || (theParameter & 0x80) || got == want));
    break;
  }
  case 5: {
    ZnUnichar set[3] = {ZnUnichar(theParameter), 10, theParameter & 1 ? nextCharacter : ZnUnichar(' ')};
    ZnIndex index = theReader->readOneOf(set, 3);
    ZnIndex expected = -1;
    if (theModel.take(&want)) {
      for (ZnIndex i = 2; i >= 0; --i)
        if (set[i] == want)
          expected = i;
      if (expected < 0)
        theModel.unread(want);
    }
    FuzzCheck(index == expected);
    break;
  }
  case 6: {
    Units expected(next.begin(), next.begin() + (theParameter % 9 < next.size() ? theParameter % 9 : next.size()));
    if ((theParameter & 0x10) && !expected.empty())
      expected.back() ^= 0x20; // a case change, or a real difference
    if (theParameter & 0x20)
      expected.push_back('q');
    bool fold = theParameter & 0x40;
    auto text = adopt(new String(expected.data(), ZnIndex(expected.size())));
    bool ok = theReader->readString(text.get(), fold ? Reader::kCompareCaseInsensitive : 0);
    FuzzCheck(ok == theModel.readString(expected, fold));
    break;
  }
  case 7: {
    bool ok = theReader->readNonWhitespace(&got);
    FuzzCheck(ok == theModel.readNonWhitespace(&want) && (!ok || got == want));
    break;
  }
  case 8: {
    bool ok = theReader->skipWhitespace();
    bool expected = theModel.readNonWhitespace(&want);
    if (expected)
      theModel.unread(want);
    FuzzCheck(ok == expected);
    break;
  }
  case 9: {
    int radix = 2 + theParameter % 35;
    int32_t value = -1, expectedValue = -2;
    bool ok = theReader->readInteger(&value, radix);
    FuzzCheck(ok == theModel.readInteger(&expectedValue, radix) && value == expectedValue);
    break;
  }
  case 10: {
    int radix = 1 + theParameter % 36;
    bool keep = (theParameter & 0x80) == 0;
    int32_t value = -1, expectedValue = -1;
    bool ok = theReader->readDigit(radix, keep ? &value : nullptr);
    FuzzCheck(ok == theModel.readDigit(radix, keep ? &expectedValue : nullptr) && value == expectedValue);
    break;
  }
  case 11: {
    double progress = theReader->getProgress();
    FuzzCheck(!(progress < 0.0) && !(progress > 1.0));
    auto name = adopt(theReader->getSourceName());
    FuzzCheck(name && name->length() == 0);
    break;
  }
  }
  CheckPosition(theReader, theModel);
}
} // namespace

int FuzzReader(const uint8_t* theData, size_t theSize) {
  InstallFuzzAssertionHandler();
  InputSplitter input(theData, theSize);
  int encodingID = kEncodingIDs[input.takeByte() % (sizeof kEncodingIDs / sizeof kEncodingIDs[0])];
  size_t scriptSize = 0;
  const uint8_t* script = input.takeBytes(input.takeByte(), &scriptSize);
  size_t payloadSize = 0;
  const uint8_t* payload = input.rest(&payloadSize);

  Units source = DecodeAtOnce(encodingID, payload, payloadSize);
  auto stream = adopt<Stream>(new ChoppyStream(payload, payloadSize, script, scriptSize));
  auto encoding = adopt(encodingID < 0 ? nullptr : StringEncodingWithID(encodingID));
  auto reader = adopt<Reader>(new StreamReader(stream.get(), encoding.get()));
  ReaderModel model(source);

  // The script runs round and round; pushing back lets it go on for ever,
  // so the number of steps is bounded by the size of the text, and in all,
  // so that the largest input stays well within the fuzzer's time limit.
  size_t steps = scriptSize / 2 == 0 ? 0 : 4 * (source.size() + 16);
  if (steps > 40000)
    steps = 40000;
  for (size_t i = 0; i < steps; ++i)
    Step(reader.get(), model, script[(2 * i) % (scriptSize & ~size_t(1))],
         script[(2 * i + 1) % (scriptSize & ~size_t(1))]);
  // Whatever is left comes out the same, and then the end stays the end.
  ZnUnichar got = 0, want = 0;
  for (;;) {
    bool ok = reader->readCharacter(&got);
    FuzzCheck(ok == model.take(&want));
    if (!ok)
      break;
    FuzzCheck(got == want);
  }
  FuzzCheck(!reader->readCharacter(&got) && !reader->peekCharacter(&got));
  CheckPosition(reader.get(), model);
  return 0;
}
} // namespace NbtextFuzz
