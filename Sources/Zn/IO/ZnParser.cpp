//===- ZnParser.cpp - Base of parsers over a reader, with error reports ---===//
#include "Zn/IO/ZnParser.h"
#include "Zn/Base/ZnAssert.h"

namespace Zn {

Parser::Parser(Reader* theReader) {
  ZnAssert(theReader != NULL, 0);
  reader_ = retained(theReader);
}

Parser::~Parser() = default;

void Parser::setReader(Reader* theReader) {
  ZnAssert(theReader != NULL, 0);
  reader_ = retained(theReader);
}

void Parser::setAuxiliaryObject(Object* theObject) { auxiliaryObject_ = retained(theObject); }

int Parser::handleError(uint32_t theLevel, const String* theMessage, const SourceRange* theRange) {
  if (errorHandler_ == nullptr)
    return 0;
  auto sourceName = adopt(reader_->getSourceName());
  return errorHandler_(theLevel, sourceName.get(), theRange, theMessage);
}

int Parser::reportError(uint32_t theLevel, const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  int result = reportErrorV(theLevel, theFormat, args);
  va_end(args);
  return result;
}

int Parser::reportErrorV(uint32_t theLevel, const char* theFormat, va_list theArgs) {
  auto message = adopt(new MutableString());
  message->appendFormatV(theFormat, theArgs);
  SourceRange range;
  range.startLine = range.endLine = reader_->getLine();
  range.startColumn = range.endColumn = reader_->getColumn();
  return handleError(theLevel, message.get(), &range);
}

const char* Parser::className() const { return "Parser"; }
const char* Parser::superclassName() const { return "Object"; }
} // namespace Zn
