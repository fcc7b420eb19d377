//===- ZnTidyWriter.cpp - Text without trailing blanks or runs of empty lines ===//
#include "Zn/IO/ZnTidyWriter.h"
#include "Zn/Base/ZnString.h"

namespace Zn {

namespace {
/// Text is handed on in pieces of about this many units.
constexpr ZnIndex kFlushLength = 16384;
/// One empty line: the break that ends a line and the one that ends the
/// empty line.
constexpr int kMaxBreaks = 2;
} // namespace

TidyWriter::TidyWriter(Writer* theWriter)
    : inner_(retained(theWriter)), text_(adopt(new MutableString(kFlushLength + 256))),
      heldBlanks_(adopt(new MutableString(16))) {}

TidyWriter::~TidyWriter() = default;

const char* TidyWriter::className() const { return "TidyWriter"; }
const char* TidyWriter::superclassName() const { return "Writer"; }

void TidyWriter::releaseHeld() {
  if (documentStarted_) {
    for (int i = 0; i < heldBreaks_ && i < kMaxBreaks; ++i)
      text_->appendCharacter(10);
  }
  heldBreaks_ = 0;
  documentStarted_ = true;
  if (heldBlanks_->length() > 0) {
    text_->appendString(heldBlanks_.get());
    heldBlanks_->setLength(0);
  }
}

bool TidyWriter::flushText() {
  if (text_->length() == 0)
    return !failed_;
  if (!inner_->writeString(text_.get()))
    failed_ = true;
  text_->setLength(0);
  return !failed_;
}

template <class CharT> bool TidyWriter::tidy(const CharT* theCharacters, int theCount) {
  // Line by line: a line's text, blanks between words included, goes on in
  // one piece; only the blanks at its end wait for what follows.
  for (int start = 0;; ++start) {
    int end = start;
    while (end < theCount && theCharacters[end] != 10)
      ++end;
    int textEnd = end;
    while (textEnd > start && (theCharacters[textEnd - 1] == ' ' || theCharacters[textEnd - 1] == 9))
      --textEnd;
    if (textEnd > start) {
      if (heldBreaks_ > 0 || !documentStarted_ || heldBlanks_->length() > 0)
        releaseHeld();
      if constexpr (sizeof(CharT) == sizeof(ZnUnichar))
        text_->appendCharacters(theCharacters + start, textEnd - start);
      else
        text_->appendCString(reinterpret_cast<const char*>(theCharacters + start), textEnd - start);
    }
    if constexpr (sizeof(CharT) == sizeof(ZnUnichar))
      heldBlanks_->appendCharacters(theCharacters + textEnd, end - textEnd);
    else
      heldBlanks_->appendCString(reinterpret_cast<const char*>(theCharacters + textEnd), end - textEnd);
    if (end == theCount)
      break;
    heldBlanks_->setLength(0);
    ++heldBreaks_;
    start = end;
  }
  return text_->length() < kFlushLength ? !failed_ : flushText();
}

bool TidyWriter::writeCharacter(ZnUnichar theCharacter) { return tidy(&theCharacter, 1); }

bool TidyWriter::writeCharacters(const ZnUnichar* theCharacters, int theCount) {
  return tidy(theCharacters, theCount);
}

bool TidyWriter::writeBytes(const uint8_t* theBytes, int theCount) { return tidy(theBytes, theCount); }

bool TidyWriter::finishDocument() {
  heldBlanks_->setLength(0);
  if (documentStarted_) {
    for (int i = 0; i < heldBreaks_ && i < kMaxBreaks; ++i)
      text_->appendCharacter(10);
  }
  heldBreaks_ = 0;
  documentStarted_ = false;
  const bool ok = flushText();
  failed_ = false;
  return ok;
}

} // namespace Zn
