//===- ZnAssert.cpp - Assertion reporter ------------------------------------===//
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Util/ZnUtil.h"
#include <cstdlib>

namespace Zn {

static String* sAssertionContext = nullptr;
static AssertionHandler sAssertionHandler = nullptr;

void SetAssertionContext(String* theContext) {
  if (theContext)
    theContext->retain();
  if (sAssertionContext)
    sAssertionContext->release();
  sAssertionContext = theContext;
}

void SetAssertionHandler(AssertionHandler theHandler) { sAssertionHandler = theHandler; }

void ReportAssertion(const char* theExpression, int32_t theCode, const char* theFile, int theLine) {
  auto message = adopt(new MutableString());
  if (sAssertionContext)
    message->appendString(sAssertionContext);
  const char* slash = StringFindLastChar(theFile, '/');
  const char* fileName = slash ? slash + 1 : theFile;
  message->appendCString("Assertion \"");
  message->appendCString(theExpression);
  message->appendCString("\" failed with code ");
  message->appendFormat("%s:%d:%d\n", fileName, theLine, theCode);
  Log(kLogLevelError, "%@", message.get());
  if (sAssertionHandler == nullptr || sAssertionHandler(message.get()) == 0)
    std::exit(-1);
}
} // namespace Zn
