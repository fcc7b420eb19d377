//===- ZnException.h - The one exception class, thrown as a pointer -------===//
#pragma once
#include "Zn/Base/ZnObject.h"

namespace Zn {

/// Thrown as `throw new Exception(__FILE__, __LINE__, ...)`; the catcher
/// releases it. The message is formatted with the C library's printf rules.
class Exception : public Object {
public:
  Exception(const char* theFile, int32_t theLine, const char* theFormat, ...)
      __attribute__((format(printf, 4, 5)));
  const char* getMessage() const { return message_; }
  const char* getFile() const { return file_; }
  int32_t getLine() const { return line_; }
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

private:
  char message_[2048];
  const char* file_;
  int32_t line_;
};
} // namespace Zn
