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
  int runStart = 0;
  for (int i = 0; i <= theCount; ++i) {
    const ZnUnichar c = i < theCount ? ZnUnichar(theCharacters[i]) : 0;
    const bool blank = c == ' ' || c == 9;
    const bool lineBreak = c == 10;
    if (i < theCount && !blank && !lineBreak)
      continue;
    // The run before this character is ordinary text.
    if (i > runStart) {
      releaseHeld();
      if constexpr (sizeof(CharT) == sizeof(ZnUnichar)) {
        text_->appendCharacters(theCharacters + runStart, i - runStart);
      } else {
        for (int k = runStart; k < i; ++k)
          text_->appendCharacter(ZnUnichar(theCharacters[k]));
      }
    }
    runStart = i + 1;
    if (blank) {
      heldBlanks_->appendCharacter(c);
    } else if (lineBreak) {
      heldBlanks_->setLength(0);
      ++heldBreaks_;
    }
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
