//===- ZnWriter.cpp - Character sinks with line-end translation and indents ===//
#include "Zn/IO/ZnWriter.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"

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
  return writeCharacters(text->getCharactersPtr(), text->length());
}

bool Writer::writeFormat(const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  bool ok = writeFormatV(theFormat, args);
  va_end(args);
  return ok;
}

bool Writer::putLineBreak(ZnUnichar theCharacter) {
  if (lineEndMode_ == kLineEndAsWritten) {
    if (!writeCharacter(theCharacter))
      return false;
    lastCharacter_ = theCharacter;
    return true;
  }
  // The LF of a CR LF pair whose CR was already translated.
  if (theCharacter == 10 && lastCharacter_ == 13) {
    lastCharacter_ = 10;
    return true;
  }
  ZnUnichar last = theCharacter;
  switch (lineEndMode_) {
  case kLineEndLF: last = 10; break;
  case kLineEndCR: last = 13; break;
  case kLineEndCRLF:
    if (!writeCharacter(13))
      return false;
    last = 10;
    break;
  default: break;
  }
  if (!writeCharacter(last))
    return false;
  // A CR that stands for a whole break must fold the LF that may follow it.
  lastCharacter_ = theCharacter == 13 ? 13 : last;
  return writeIndentation();
}

bool Writer::putCharacter(ZnUnichar theCharacter) {
  if (theCharacter == 13 || theCharacter == 10)
    return putLineBreak(theCharacter);
  if (!writeCharacter(theCharacter))
    return false;
  lastCharacter_ = theCharacter;
  return true;
}

bool Writer::putCharacter(ZnUnichar theCharacter, int theCount) {
  for (int i = 0; i < theCount; ++i)
    if (!putCharacter(theCharacter))
      return false;
  return true;
}

bool Writer::putCharacters(const ZnUnichar* theCharacters, int theCount) {
  int runStart = 0;
  for (int i = 0; i < theCount; ++i) {
    ZnUnichar c = theCharacters[i];
    if (c != 13 && c != 10)
      continue;
    if (i > runStart && !writeCharacters(theCharacters + runStart, i - runStart))
      return false;
    if (!putLineBreak(c))
      return false;
    runStart = i + 1;
  }
  if (theCount > runStart)
    return writeCharacters(theCharacters + runStart, theCount - runStart);
  return true;
}

bool Writer::putString(const String* theString) {
  return putCharacters(theString->getCharactersPtr(), theString->length());
}

bool Writer::putBytes(const char* theText, int theCount) {
  if (theCount < 0)
    theCount = int(StringLength(theText));
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(theText);
  int runStart = 0;
  for (int i = 0; i < theCount; ++i) {
    uint8_t c = bytes[i];
    if (c != 13 && c != 10)
      continue;
    if (i > runStart && !writeBytes(bytes + runStart, i - runStart))
      return false;
    if (!putLineBreak(c))
      return false;
    runStart = i + 1;
  }
  if (theCount > runStart)
    return writeBytes(bytes + runStart, theCount - runStart);
  return true;
}

bool Writer::putNewlines(int theCount) {
  // This call never writes untranslated breaks, and the switch sticks.
  if (lineEndMode_ == kLineEndAsWritten)
    lineEndMode_ = kLineEndLF;
  for (int i = 0; i < theCount; ++i) {
    switch (lineEndMode_) {
    case kLineEndLF:
      if (!writeCharacter(10))
        return false;
      lastCharacter_ = 10;
      break;
    case kLineEndCR:
      if (!writeCharacter(13))
        return false;
      lastCharacter_ = 13;
      break;
    case kLineEndCRLF:
      if (!writeCharacter(13) || !writeCharacter(10))
        return false;
      lastCharacter_ = 10;
      break;
    default: return false;
    }
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
  return putCharacters(text->getCharactersPtr(), text->length());
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
} // namespace Zn
