//===- ZnParser.h - Base of parsers over a reader, with error reports -----===//
#pragma once
#include <cstdarg>
#include "Zn/Base/ZnRef.h"
#include "Zn/IO/ZnReader.h"
#include "Zn/Util/ZnUtil.h"

namespace Zn {

/// Receives every error a parser reports: the level, the reader's source
/// name, the range of the error and the message. Returns non-zero when it
/// handled the error. LogMessage, which logs one line, is the default.
using ParseErrorHandler = int (*)(uint32_t theLevel, const String* theSourceName, const SourceRange* theRange,
                                  const String* theMessage);

/// Base of the parsers: holds the reader (never null) and reports errors at
/// the reader's position through the error handler.
class Parser : public Object {
public:
  /// Borrowed.
  Reader* getReader() const { return reader_.get(); }
  /// Retains theReader, which must not be null (a sub-parse switches
  /// readers and switches back).
  void setReader(Reader* theReader);
  ParseErrorHandler getErrorHandler() const { return errorHandler_; }
  /// Null ignores errors.
  void setErrorHandler(ParseErrorHandler theHandler) { errorHandler_ = theHandler; }
  /// Borrowed; an object kept for the owner of the parser.
  Object* getAuxiliaryObject() const { return auxiliaryObject_.get(); }
  void setAuxiliaryObject(Object* theObject);

  /// Passes the error to the error handler with the reader's source name;
  /// 0 when there is no handler.
  virtual int handleError(uint32_t theLevel, const String* theMessage, const SourceRange* theRange);
  /// Formats the message ("%@" allowed) and hands it to handleError with
  /// the reader's current line and column as the range.
  int reportError(uint32_t theLevel, const char* theFormat, ...);
  int reportErrorV(uint32_t theLevel, const char* theFormat, va_list theArgs);

  const char* className() const override;
  const char* superclassName() const override;

protected:
  /// Retains theReader.
  explicit Parser(Reader* theReader);
  ~Parser() override;

  Ref<Reader> reader_;
  /// The range of what the parser is at, kept by the subclass.
  SourceRange range_;

private:
  ParseErrorHandler errorHandler_ = LogMessage;
  Ref<Object> auxiliaryObject_;
};
} // namespace Zn
