//===- ZnWriter.h - Character sinks with line-end translation and indents -===//
#pragma once
#include <cstdarg>
#include "Zn/Base/ZnObject.h"
#include "Zn/Base/ZnRef.h"

namespace Zn {
class MutableArray;
class MutableData;
class MutableString;
class Stream;
class String;
class StringEncoding;

/// Abstract character sink. The put operations translate line ends and
/// write the indentation after every break; the write operations (the
/// virtual slots) pass characters through as they are.
class Writer : public Object {
public:
  enum LineEndMode { kLineEndCR = 0, kLineEndLF = 1, kLineEndCRLF = 2, kLineEndAsWritten = 3 };

  virtual void setIndentLevel(int theLevel);
  virtual void increaseIndent();
  virtual void decreaseIndent();
  /// indentLevel TABs through writeCharacter; stops at the first failure.
  virtual bool writeIndentation();
  virtual bool writeCharacter(ZnUnichar theCharacter) = 0;
  virtual bool writeCharacters(const ZnUnichar* theCharacters, int theCount);
  virtual bool writeBytes(const uint8_t* theBytes, int theCount);
  virtual bool writeFormatV(const char* theFormat, va_list theArgs);
  /// The units of theString from theFrom on, through writeCharacters or
  /// writeBytes as the string keeps them.
  bool writeString(const String* theString, ZnIndex theFrom = 0);
  bool writeFormat(const char* theFormat, ...);

  bool putCharacter(ZnUnichar theCharacter);
  bool putCharacter(ZnUnichar theCharacter, int theCount);
  bool putCharacters(const ZnUnichar* theCharacters, int theCount);
  bool putString(const String* theString);
  /// 8-bit text, one character per byte; a negative count reads to the terminator.
  bool putBytes(const char* theText, int theCount = -1);
  bool putNewlines(int theCount);
  bool putFormat(const char* theFormat, ...);
  bool putFormatV(const char* theFormat, va_list theArgs);

  /// What keeps two pieces of text apart that must not run together.
  /// kWordSeparator is a space written only before a letter or a digit.
  enum Separator : uint8_t { kNoSeparator = 0, kWordSeparator = 1, kSpaceSeparator = 2, kLineSeparator = 3 };
  /// Asks for theSeparator before the next character put: a space between
  /// two words, a line end between two lines. It is not written when the
  /// text is at the start of a line, or when the next character put is a
  /// line break, which keeps the pieces apart by itself; a space is not
  /// written next to a blank either. A line end wins over a space.
  void requestSeparator(Separator theSeparator) {
    if (theSeparator > separator_)
      separator_ = theSeparator;
  }
  /// The separator asked for and not written yet.
  Separator getSeparator() const { return separator_; }
  /// Drops the separator asked for, if it was not written yet.
  void cancelSeparator() { separator_ = kNoSeparator; }
  /// Writes the separator asked for now, or drops it as the next character
  /// theNext says (0 for one that is neither a break, a blank nor part of a
  /// word). For a caller about to write around the put operations.
  bool flushSeparator(ZnUnichar theNext);
  /// How many put operations have written something: compared before and
  /// after a piece of text, it tells whether the piece wrote anything.
  uint32_t getPutCount() const { return putCount_; }

  int getIndentLevel() const { return indentLevel_; }
  int getLineEndMode() const { return lineEndMode_; }
  void setLineEndMode(int theMode) { lineEndMode_ = theMode; }
  ZnUnichar getLastCharacter() const { return lastCharacter_; }

  const char* className() const override;
  const char* superclassName() const override;

protected:
  /// Writes one line break as the mode says, then the indentation.
  bool putLineBreak(ZnUnichar theCharacter);
  /// Writes a run without line breaks and remembers its last character.
  template <class CharT> bool putRun(const CharT* theCharacters, int theCount);
  template <class CharT> bool putText(const CharT* theCharacters, int theCount);
  /// Counts a put that writes something and writes the separator before
  /// it, theFirst being the first character put.
  bool beginPut(ZnUnichar theFirst) {
    ++putCount_;
    return separator_ == kNoSeparator || flushSeparator(theFirst);
  }

  int indentLevel_ = 0;
  int lineEndMode_ = kLineEndLF;
  ZnUnichar lastCharacter_ = 0;
  uint32_t putCount_ = 0;
  Separator separator_ = kNoSeparator;
  /// Whether the last character put was a line break (or nothing was put).
  bool atLineStart_ = true;
};

/// Appends every character to a mutable string.
class StringWriter : public Writer {
public:
  /// Retains theString; null makes a new string with room for 256 units.
  explicit StringWriter(MutableString* theString = nullptr);
  /// Borrowed.
  MutableString* getString() const { return string_; }

  bool writeCharacter(ZnUnichar theCharacter) override;
  bool writeCharacters(const ZnUnichar* theCharacters, int theCount) override;
  bool writeBytes(const uint8_t* theBytes, int theCount) override;
  bool writeFormatV(const char* theFormat, va_list theArgs) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~StringWriter() override;

private:
  MutableString* string_;
};

/// Encodes characters onto a writable stream. Each write goes out at once
/// (the stream may buffer); nothing is flushed or closed here.
class StreamWriter : public Writer {
public:
  /// Retains both; a null encoding means UTF-8 without byte-order mark.
  StreamWriter(Stream* theStream, StringEncoding* theEncoding = nullptr);
  /// Borrowed.
  Stream* getStream() const { return stream_.get(); }
  StringEncoding* getEncoding() const { return encoding_.get(); }

  /// Holds the encoded bytes back until theSize of them wait (0, the
  /// default: each write goes to the stream at once), so that text written
  /// in many small pieces reaches the stream in large writes. A write that
  /// the stream refuses then shows in flush's result or the stream's error.
  void holdBytes(ZnIndex theSize) { holdSize_ = theSize; }
  /// Writes the bytes held back; false when the stream took fewer. The
  /// writer's end flushes as well.
  bool flush();

  /// The TABs of one line go out in one write.
  bool writeIndentation() override;
  bool writeCharacter(ZnUnichar theCharacter) override;
  bool writeCharacters(const ZnUnichar* theCharacters, int theCount) override;
  bool writeBytes(const uint8_t* theBytes, int theCount) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~StreamWriter() override;

private:
  /// Ends a write that found theHeld bytes waiting: false unless the
  /// encoder took everything (else its bytes are dropped) and, when the
  /// bytes go out now, the stream accepted every one.
  bool writeEncoded(ZnIndex theHeld, ZnIndex theConsumed, ZnIndex theCount);
  /// True while nothing was written or held, where a mark may go.
  bool atStart() const;

  Ref<Stream> stream_;
  Ref<StringEncoding> encoding_;
  /// The encoded bytes on their way to the stream.
  Ref<MutableData> byteBuffer_;
  ZnIndex holdSize_ = 0;
};

/// Hands every write to each of its writers, the last added first. All of
/// them are written to even after one failed; the result is true only when
/// all succeeded.
class MultiWriter : public Writer {
public:
  MultiWriter();
  /// Retains theWriter.
  void addWriter(Writer* theWriter);

  void setIndentLevel(int theLevel) override;
  void increaseIndent() override;
  void decreaseIndent() override;
  bool writeIndentation() override;
  bool writeCharacter(ZnUnichar theCharacter) override;
  bool writeCharacters(const ZnUnichar* theCharacters, int theCount) override;
  bool writeBytes(const uint8_t* theBytes, int theCount) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~MultiWriter() override;

private:
  /// Calls theAction on every writer, last first, and ANDs the results.
  template <class Action> bool forEachWriter(Action theAction);
  Ref<MutableArray> writers_;
};
} // namespace Zn
