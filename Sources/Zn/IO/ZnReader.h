//===- ZnReader.h - Character sources with push-back and positions --------===//
#pragma once
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"

namespace Zn {
class Stream;
class StringEncoding;

/// Abstract source of UTF-16 characters with unlimited push-back and line
/// and column tracking.
///
/// The counters count what the source delivered: taking a character back
/// out of the push-back does not advance them and pushing one back does not
/// rewind them; the line and column queries correct for the push-back.
class Reader : public Object {
public:
  /// Options of readString.
  enum { kCompareCaseInsensitive = 1 };

  Reader();

  /// +1. The name of what is read, for messages.
  virtual String* getSourceName() const = 0;
  /// How much of the source has been read, from 0 to 1.
  virtual double getProgress() const = 0;
  /// The next character of the source itself; false at its end.
  virtual bool readRawCharacter(ZnUnichar* theOut) = 0;

  bool readCharacter(ZnUnichar* theOut) { return take(theOut); }
  /// The next character, left to be read again.
  bool peekCharacter(ZnUnichar* theOut);
  /// Gives a character back: the last one given back is read first.
  void unreadCharacter(ZnUnichar theCharacter) { pushBack_->appendCharacter(theCharacter); }
  /// Consumes the next character only when it is theCharacter.
  bool skipCharacter(ZnUnichar theCharacter);
  /// Consumes the next character only when it lies in theLow..theHigh;
  /// theOut may be null.
  bool readCharacterInRange(ZnUnichar theLow, ZnUnichar theHigh, ZnUnichar* theOut);
  /// Consumes the next character when it is in theSet and returns its first
  /// index there; otherwise -1.
  ZnIndex readOneOf(const ZnUnichar* theSet, ZnIndex theCount);
  /// Consumes theExpected when the next characters match it (with the
  /// kCompare options); otherwise leaves the reader where it was.
  bool readString(const String* theExpected, int theCompareOptions);
  /// The first character that is not TAB-CR or space, consumed.
  bool readNonWhitespace(ZnUnichar* theOut);
  /// Consumes whitespace; false when the source ends in it.
  bool skipWhitespace();
  /// Digits of theRadix, without overflow check; false when there is none.
  bool readInteger(int32_t* theOut, int theRadix);
  /// Consumes one digit below theRadix. The value of a letter or digit is
  /// stored to theOut (when not null) even when it is too large.
  bool readDigit(int theRadix, int32_t* theOut);

  /// Completed line breaks before the next character: a CR LF pair counts
  /// once, and a text that mixes lone CRs and LFs counts both.
  int64_t getLine() const;
  /// Characters since the last line break. On the first line that is the
  /// characters consumed; on later lines the break itself counts as well.
  int64_t getColumn() const {
    countWindow();
    return characterCount_ - pushBack_->length() - lastLineBreakOffset_;
  }
  int64_t getCharacterCount() const {
    countWindow();
    return characterCount_;
  }
  /// Remembers the position before the next character, for
  /// getMarkedColumn(): what getColumn() would answer now, without counting
  /// the line breaks taken so far (they are counted when the window is).
  /// A lexer marks the start of every token and asks only for an error.
  void markPosition() {
    markPending_ = pushBack_->length();
    if (window_ == counted_) {
      markedColumn_ = characterCount_ - markPending_ - lastLineBreakOffset_;
      mark_ = nullptr;
    } else {
      mark_ = window_;
    }
  }
  int64_t getMarkedColumn() const {
    if (mark_)
      countWindow();
    return markedColumn_;
  }

  /// The characters that the next takes will deliver straight from the
  /// source's buffer, for scanning a run of them at once: *theCount of them
  /// (0 while characters wait in the push-back). Valid until the next read.
  const ZnUnichar* getBufferedCharacters(ZnIndex* theCount) const {
    *theCount = pushBack_->length() == 0 ? ZnIndex(windowEnd_ - window_) : 0;
    return window_;
  }
  /// Takes theCount of the buffered characters, as readCharacter would.
  void skipBufferedCharacters(ZnIndex theCount) { window_ += theCount; }

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Reader() override;

  /// Decoded characters ready to be taken, so that reading one costs no
  /// call. A subclass that decodes in blocks points the window at its buffer
  /// in fillWindow(); the others leave it empty and are read one
  /// readRawCharacter at a time.
  const ZnUnichar* window_ = nullptr;
  const ZnUnichar* windowEnd_ = nullptr;
  /// Called when the window is empty: points it at the next characters of
  /// the source (at least one) and returns true, or returns false at the
  /// end or when the source has no buffer. The characters taken from the
  /// old window have been counted.
  virtual bool fillWindow() { return false; }
  /// Marks the window's characters up to window_ as counted: they were
  /// delivered raw, not taken.
  void skipCounting() { counted_ = window_; }
  /// Brings the counters up to date with the characters taken from the window.
  void countWindow() const;

private:
  bool take(ZnUnichar* theOut) {
    if (pushBack_->length() > 0) {
      *theOut = pushBack_->takeLastCharacter();
      return true;
    }
    if (window_ < windowEnd_) {
      *theOut = *window_++;
      return true;
    }
    return takeFromSource(theOut);
  }
  /// The window is empty: refills it, or reads one raw character.
  bool takeFromSource(ZnUnichar* theOut);
  /// Counts the characters from theStart to theEnd, in order.
  void countRange(const ZnUnichar* theStart, const ZnUnichar* theEnd) const;

  Ref<MutableString> pushBack_;
  // Characters taken from the window are counted when the counters are
  // read or the window is refilled: counted_ marks how far that has gone.
  mutable const ZnUnichar* counted_ = nullptr;
  mutable int64_t characterCount_ = 0;
  mutable int64_t lineFeedCount_ = 0;
  mutable int64_t carriageReturnCount_ = 0;
  mutable int64_t lastLineBreakOffset_ = 0;
  /// The marked position while the window's characters before it are not
  /// yet counted; null once markedColumn_ holds its column.
  mutable const ZnUnichar* mark_ = nullptr;
  mutable int64_t markedColumn_ = 0;
  ZnIndex markPending_ = 0;
};

/// Characters decoded from a readable stream in blocks of 250 bytes. A
/// multi-byte sequence cut by the end of a block is completed from the next
/// bytes of the stream; one cut by the end of the stream goes to the
/// encoding's decodeLastBytes. Without an encoding every byte is one
/// character.
class StreamReader : public Reader {
public:
  /// Retains both; theEncoding may be null.
  StreamReader(Stream* theStream, StringEncoding* theEncoding);

  /// +1. The stream's name, or an empty string.
  String* getSourceName() const override;
  double getProgress() const override;
  bool readRawCharacter(ZnUnichar* theOut) override;

protected:
  ~StreamReader() override;
  /// Decodes the next block into decoded_, the window.
  bool fillWindow() override;

private:
  Ref<Stream> stream_;
  Ref<StringEncoding> encoding_;
  Ref<MutableString> decoded_;
};

/// The characters of a string, named "(Memory Buffer)" in messages.
class StringReader : public Reader {
public:
  /// Retains theString.
  explicit StringReader(const String* theString);

  String* getSourceName() const override;
  double getProgress() const override;
  bool readRawCharacter(ZnUnichar* theOut) override;
  const char* className() const override;

protected:
  ~StringReader() override;

private:
  Ref<const String> string_;
  ZnIndex index_ = 0;
};
} // namespace Zn
