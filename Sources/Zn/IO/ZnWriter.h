//===- ZnWriter.h - Character sinks with line-end translation and indents -===//
#pragma once
#include <cstdarg>
#include "Zn/Base/ZnObject.h"

namespace Zn {
class String;
class MutableString;

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

  int getIndentLevel() const { return indentLevel_; }
  int getLineEndMode() const { return lineEndMode_; }
  void setLineEndMode(int theMode) { lineEndMode_ = theMode; }
  ZnUnichar getLastCharacter() const { return lastCharacter_; }

  const char* className() const override;
  const char* superclassName() const override;

protected:
  /// Writes one line break as the mode says, then the indentation.
  bool putLineBreak(ZnUnichar theCharacter);

  int indentLevel_ = 0;
  int lineEndMode_ = kLineEndLF;
  ZnUnichar lastCharacter_ = 0;
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
} // namespace Zn
