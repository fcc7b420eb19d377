//===- ZnTidyWriter.h - Text without trailing blanks or runs of empty lines ===//
#pragma once
#include "Zn/IO/ZnWriter.h"

namespace Zn {
class MutableString;

/// Passes text on to another writer, tidied: blanks (spaces and TABs) at
/// the end of a line are dropped, at most one empty line stands in a row,
/// and a document's text starts at its first character that is no line
/// break. Line breaks arrive as line feeds (the line-end mode LF).
///
/// Blanks and line breaks are held back until the next character shows
/// whether they stand inside a line; everything goes out in large writes.
/// finishDocument writes what is held back and pushes the text on.
class TidyWriter : public Writer {
public:
  /// Retains theWriter.
  explicit TidyWriter(Writer* theWriter);

  /// Ends a document: the line breaks held back (at most two) and the text
  /// go out to the inner writer, the blanks are dropped, and the next
  /// document starts afresh. False when a write failed.
  bool finishDocument();

  bool writeCharacter(ZnUnichar theCharacter) override;
  bool writeCharacters(const ZnUnichar* theCharacters, int theCount) override;
  bool writeBytes(const uint8_t* theBytes, int theCount) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~TidyWriter() override;

private:
  template <class CharT> bool tidy(const CharT* theCharacters, int theCount);
  /// Makes what is held back part of the text, before a character that is
  /// neither blank nor a line break.
  void releaseHeld();
  bool flushText();

  Ref<Writer> inner_;
  Ref<MutableString> text_;
  Ref<MutableString> heldBlanks_;
  int heldBreaks_ = 0;
  bool documentStarted_ = false;
  bool failed_ = false;
};
} // namespace Zn
