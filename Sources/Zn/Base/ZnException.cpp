//===- ZnException.cpp - The one exception class ---------------------------===//
#include "Zn/Base/ZnException.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/IO/ZnWriter.h"

namespace Zn {

Exception::Exception(const char* theFile, int32_t theLine, const char* theFormat, ...)
    : file_(theFile), line_(theLine) {
  message_[0] = 0;
  va_list args;
  va_start(args, theFormat);
  // At most 2046 characters and the terminator.
  StringFormatV(message_, 2047, theFormat, args);
  va_end(args);
}

void Exception::writeDescription(Writer* theWriter) const {
  theWriter->writeFormat("Exception \"%s\" at %s:%d", message_, file_, line_);
}

const char* Exception::className() const { return "Exception"; }
const char* Exception::superclassName() const { return "Object"; }
} // namespace Zn
