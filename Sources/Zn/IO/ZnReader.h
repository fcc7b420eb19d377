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
    return characterCount_ - pushBack_->length() - lastLineBreakOffset_;
  }
  int64_t getCharacterCount() const { return characterCount_; }

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Reader() override;

private:
  bool take(ZnUnichar* theOut) {
    ZnIndex pending = pushBack_->length();
    if (pending > 0) {
      *theOut = pushBack_->getCharactersPtr()[pending - 1];
      pushBack_->setLength(pending - 1);
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

  Ref<MutableString> pushBack_;
  int64_t characterCount_ = 0;
  int64_t lineFeedCount_ = 0;
  int64_t carriageReturnCount_ = 0;
  int64_t lastLineBreakOffset_ = 0;
};

/// Characters decoded from a readable stream in blocks of 250 bytes. A
/// multi-byte sequence cut by the end of a block is completed from the next
/// bytes of the stream. Without an encoding every byte is one character.
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

private:
  /// Decodes blocks until theCount characters are waiting; false when the
  /// stream ends first.
  bool fill(ZnIndex theCount);
  Ref<Stream> stream_;
  Ref<StringEncoding> encoding_;
  Ref<MutableString> decoded_;
  ZnIndex decodedIndex_ = 0;
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
