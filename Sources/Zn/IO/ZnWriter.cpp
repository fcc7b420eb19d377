//===- ZnWriter.cpp - Character sinks with line-end translation and indents ===//
#include "Zn/IO/ZnWriter.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/IO/ZnStream.h"

namespace Zn {

//===--- Writer --------------------------------------------------------------===//

void Writer::setIndentLevel(int theLevel) { indentLevel_ = theLevel; }
void Writer::increaseIndent() { indentLevel_ += 1; }
void Writer::decreaseIndent() { indentLevel_ -= 1; }

bool Writer::writeIndentation() {
  for (int i = 0; i < indentLevel_; ++i)
    if (!writeCharacter(9))
      return false;
  return true;
}

bool Writer::writeCharacters(const ZnUnichar* theCharacters, int theCount) {
  for (int i = 0; i < theCount; ++i) {
    if (!writeCharacter(theCharacters[i]))
      return false;
    lastCharacter_ = theCharacters[i];
  }
  return true;
}

bool Writer::writeBytes(const uint8_t* theBytes, int theCount) {
  for (int i = 0; i < theCount; ++i) {
    if (!writeCharacter(theBytes[i]))
      return false;
    lastCharacter_ = theBytes[i];
  }
  return true;
}

bool Writer::writeFormatV(const char* theFormat, va_list theArgs) {
  auto text = adopt(new MutableString(32));
  text->appendFormatV(theFormat, theArgs);
  return writeString(text.get());
}

bool Writer::writeString(const String* theString, ZnIndex theFrom) {
  return theString->withCharacters([&](auto theUnits, ZnIndex theLength) {
    if constexpr (sizeof(*theUnits) == 1)
      return writeBytes(theUnits + theFrom, theLength - theFrom);
    else
      return writeCharacters(theUnits + theFrom, theLength - theFrom);
  });
}

bool Writer::writeFormat(const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  bool ok = writeFormatV(theFormat, args);
  va_end(args);
  return ok;
}

namespace {
bool isBlank(ZnUnichar theCharacter) { return theCharacter == ' ' || theCharacter == 9; }

/// Letters and digits of any script: ASCII ones, and the characters from
/// Latin-1's letters on, outside the punctuation, arrows and operators.
bool isWordCharacter(ZnUnichar theCharacter) {
  const ZnUnichar c = theCharacter;
  if (c < 128)
    return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z');
  return c >= 0xC0 && c != 0xD7 && c != 0xF7 && !(c >= 0x2000 && c <= 0x2BFF) && !(c >= 0x3000 && c <= 0x303F);
}
} // namespace

bool Writer::flushSeparator(ZnUnichar theNext) {
  const Separator separator = separator_;
  separator_ = kNoSeparator;
  if (separator == kNoSeparator || theNext == 10 || theNext == 13 || atLineStart_)
    return true;
  if (separator == kLineSeparator)
    return putLineBreak(10);
  if (isBlank(theNext) || isBlank(lastCharacter_))
    return true;
  if (separator == kWordSeparator && !isWordCharacter(theNext))
    return true;
  if (!writeCharacter(' '))
    return false;
  lastCharacter_ = ' ';
  atLineStart_ = false;
  return true;
}

bool Writer::putLineBreak(ZnUnichar theCharacter) {
  atLineStart_ = true;
  if (lineEndMode_ != kLineEndAsWritten) {
    // The LF of a CR LF pair whose CR was already translated.
    if (theCharacter == 10 && lastCharacter_ == 13) {
      lastCharacter_ = 10;
      return true;
    }
    ZnUnichar written = theCharacter;
    switch (lineEndMode_) {
    case kLineEndLF: written = 10; break;
    case kLineEndCR: written = 13; break;
    case kLineEndCRLF:
      if (!writeCharacter(13))
        return false;
      written = 10;
      break;
    default: break;
    }
    if (!writeCharacter(written))
      return false;
  } else if (!writeCharacter(theCharacter)) {
    return false;
  }
  // Remembering the break as it was put (not as translated) lets a CR fold
  // the LF that may follow it, whatever the mode wrote for it.
  lastCharacter_ = theCharacter;
  return writeIndentation();
}

bool Writer::putCharacter(ZnUnichar theCharacter) {
  const bool lineBreak = theCharacter == 13 || theCharacter == 10;
  if (!beginPut(theCharacter))
    return false;
  if (lineBreak)
    return putLineBreak(theCharacter);
  if (!writeCharacter(theCharacter))
    return false;
  lastCharacter_ = theCharacter;
  atLineStart_ = false;
  return true;
}

bool Writer::putCharacter(ZnUnichar theCharacter, int theCount) {
  for (int i = 0; i < theCount; ++i)
    if (!putCharacter(theCharacter))
      return false;
  return true;
}

template <class CharT> bool Writer::putRun(const CharT* theCharacters, int theCount) {
  bool ok;
  if constexpr (sizeof(CharT) == 1)
    ok = writeBytes(theCharacters, theCount);
  else
    ok = writeCharacters(theCharacters, theCount);
  if (ok) {
    lastCharacter_ = theCharacters[theCount - 1];
    atLineStart_ = false;
  }
  return ok;
}

// Runs of ordinary characters go out in one write each; line breaks between
// them are translated one by one.
template <class CharT> bool Writer::putText(const CharT* theCharacters, int theCount) {
  if (theCount <= 0)
    return true;
  if (!beginPut(ZnUnichar(theCharacters[0])))
    return false;
  int runStart = 0;
  for (int i = 0; i < theCount; ++i) {
    CharT c = theCharacters[i];
    if (c != 13 && c != 10)
      continue;
    if (i > runStart && !putRun(theCharacters + runStart, i - runStart))
      return false;
    if (!putLineBreak(c))
      return false;
    runStart = i + 1;
  }
  if (theCount > runStart)
    return putRun(theCharacters + runStart, theCount - runStart);
  return true;
}

bool Writer::putCharacters(const ZnUnichar* theCharacters, int theCount) {
  return putText(theCharacters, theCount);
}

bool Writer::putString(const String* theString) {
  return theString->withCharacters([&](auto theUnits, ZnIndex theLength) { return putText(theUnits, theLength); });
}

bool Writer::putBytes(const char* theText, int theCount) {
  if (theCount < 0)
    theCount = int(StringLength(theText));
  return putText(reinterpret_cast<const uint8_t*>(theText), theCount);
}

bool Writer::putNewlines(int theCount) {
  // This call never writes untranslated breaks, and the switch sticks.
  if (lineEndMode_ == kLineEndAsWritten)
    lineEndMode_ = kLineEndLF;
  if (theCount > 0 && !beginPut(10))
    return false;
  for (int i = 0; i < theCount; ++i) {
    bool ok;
    switch (lineEndMode_) {
    case kLineEndLF: ok = writeCharacter(10); break;
    case kLineEndCR: ok = writeCharacter(13); break;
    case kLineEndCRLF: ok = writeCharacter(13) && writeCharacter(10); break;
    default: ok = false;
    }
    if (!ok)
      return false;
    // As for putLineBreak: what was put is a line feed, whatever went out.
    lastCharacter_ = 10;
    atLineStart_ = true;
  }
  return writeIndentation();
}

bool Writer::putFormat(const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  bool ok = putFormatV(theFormat, args);
  va_end(args);
  return ok;
}

bool Writer::putFormatV(const char* theFormat, va_list theArgs) {
  auto text = adopt(new MutableString(32));
  text->appendFormatV(theFormat, theArgs);
  return putString(text.get());
}

const char* Writer::className() const { return "Writer"; }
const char* Writer::superclassName() const { return "Object"; }

//===--- StringWriter --------------------------------------------------------===//

StringWriter::StringWriter(MutableString* theString) {
  if (theString)
    theString->retain();
  else
    theString = new MutableString(256);
  string_ = theString;
}

StringWriter::~StringWriter() { string_->release(); }

bool StringWriter::writeCharacter(ZnUnichar theCharacter) {
  string_->appendCharacter(theCharacter);
  return true;
}

bool StringWriter::writeCharacters(const ZnUnichar* theCharacters, int theCount) {
  string_->appendCharacters(theCharacters, theCount);
  if (theCount > 0)
    lastCharacter_ = theCharacters[theCount - 1];
  return true;
}

bool StringWriter::writeBytes(const uint8_t* theBytes, int theCount) {
  string_->appendCString(reinterpret_cast<const char*>(theBytes), theCount);
  if (theCount > 0)
    lastCharacter_ = theBytes[theCount - 1];
  return true;
}

bool StringWriter::writeFormatV(const char* theFormat, va_list theArgs) {
  string_->appendFormatV(theFormat, theArgs);
  return true;
}

const char* StringWriter::className() const { return "StringWriter"; }
const char* StringWriter::superclassName() const { return "Writer"; }

//===--- StreamWriter --------------------------------------------------------===//

StreamWriter::StreamWriter(Stream* theStream, StringEncoding* theEncoding) {
  ZnAssert(theStream != NULL, 0);
  ZnAssert(theStream->isWritable(), 0);
  stream_ = retained(theStream);
  encoding_ = theEncoding ? retained(theEncoding) : adopt(StringEncodingWithID(kStringEncodingUTF8));
  byteBuffer_ = adopt(new MutableData(0));
}

StreamWriter::~StreamWriter() { flush(); }

bool StreamWriter::atStart() const { return stream_->getPosition() == 0 && byteBuffer_->getLength() == 0; }

bool StreamWriter::flush() {
  ZnIndex length = byteBuffer_->getLength();
  if (length == 0)
    return true;
  ZnIndex written = stream_->write(byteBuffer_->getBytesPtr(), length);
  if (written > 0)
    stream_->addToWriteCount(written);
  byteBuffer_->setLength(0);
  return written == length;
}

bool StreamWriter::writeEncoded(ZnIndex theHeld, ZnIndex theConsumed, ZnIndex theCount) {
  if (theConsumed != theCount) {
    // What this write encoded goes nowhere; what was held before stays.
    byteBuffer_->setLength(theHeld);
    return false;
  }
  return byteBuffer_->getLength() < holdSize_ || flush();
}

bool StreamWriter::writeCharacters(const ZnUnichar* theCharacters, int theCount) {
  const ZnIndex held = byteBuffer_->getLength();
  ZnIndex consumed = encoding_->encodeCharacters(theCharacters, theCount, byteBuffer_.get(), atStart());
  return writeEncoded(held, consumed, theCount);
}

bool StreamWriter::writeCharacter(ZnUnichar theCharacter) { return writeCharacters(&theCharacter, 1); }

bool StreamWriter::writeBytes(const uint8_t* theBytes, int theCount) {
  const ZnIndex held = byteBuffer_->getLength();
  ZnIndex consumed = encoding_->encodeBytes(theBytes, theCount, byteBuffer_.get(), atStart());
  return writeEncoded(held, consumed, theCount);
}

bool StreamWriter::writeIndentation() {
  if (indentLevel_ <= 0)
    return true;
  ZnUnichar tabs[64];
  for (ZnIndex i = 0; i < 64; ++i)
    tabs[i] = 9;
  for (int left = indentLevel_; left > 0; left -= 64)
    if (!writeCharacters(tabs, left < 64 ? left : 64))
      return false;
  return true;
}

const char* StreamWriter::className() const { return "StreamWriter"; }
const char* StreamWriter::superclassName() const { return "Writer"; }

//===--- MultiWriter ---------------------------------------------------------===//

MultiWriter::MultiWriter() : writers_(adopt(new MutableArray())) {}

MultiWriter::~MultiWriter() = default;

void MultiWriter::addWriter(Writer* theWriter) { writers_->addObject(theWriter); }

template <class Action> bool MultiWriter::forEachWriter(Action theAction) {
  bool ok = true;
  for (ZnIndex i = writers_->getCount() - 1; i >= 0; --i)
    ok = theAction(static_cast<Writer*>(writers_->objectAtIndex(i))) && ok;
  return ok;
}

void MultiWriter::setIndentLevel(int theLevel) {
  Writer::setIndentLevel(theLevel);
  forEachWriter([&](Writer* w) { return w->setIndentLevel(theLevel), true; });
}

void MultiWriter::increaseIndent() {
  Writer::increaseIndent();
  forEachWriter([](Writer* w) { return w->increaseIndent(), true; });
}

void MultiWriter::decreaseIndent() {
  Writer::decreaseIndent();
  forEachWriter([](Writer* w) { return w->decreaseIndent(), true; });
}

bool MultiWriter::writeIndentation() {
  return forEachWriter([](Writer* w) { return w->writeIndentation(); });
}

bool MultiWriter::writeCharacter(ZnUnichar theCharacter) {
  return forEachWriter([&](Writer* w) { return w->writeCharacter(theCharacter); });
}

bool MultiWriter::writeCharacters(const ZnUnichar* theCharacters, int theCount) {
  return forEachWriter([&](Writer* w) { return w->writeCharacters(theCharacters, theCount); });
}

bool MultiWriter::writeBytes(const uint8_t* theBytes, int theCount) {
  return forEachWriter([&](Writer* w) { return w->writeBytes(theBytes, theCount); });
}

const char* MultiWriter::className() const { return "MultiWriter"; }
const char* MultiWriter::superclassName() const { return "Writer"; }
} // namespace Zn
