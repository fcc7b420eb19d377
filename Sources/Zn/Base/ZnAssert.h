//===- ZnAssert.h - Precondition checks that report and end the process ---===//
#pragma once
#include "Zn/Base/ZnTypes.h"

namespace Zn {
class String;

/// Reports a failed precondition: logs "Assertion "<expr>" failed with code
/// <file>:<line>:<code>" (after the context string, if any) and ends the
/// process with exit(-1) unless the installed handler lets it continue.
void ReportAssertion(const char* theExpression, int32_t theCode, const char* theFile, int theLine);

/// Replaces the text logged in front of every assertion report (null clears).
void SetAssertionContext(String* theContext);

/// Hook called with the complete report; a non-zero result lets execution go on.
using AssertionHandler = int (*)(String* theMessage);
void SetAssertionHandler(AssertionHandler theHandler);
} // namespace Zn

/// The condition's literal text is the report, so never reword a condition.
#define ZnAssert(theCondition, theCode)                                                            \
  do {                                                                                             \
    if (!(theCondition))                                                                           \
      ::Zn::ReportAssertion(#theCondition, static_cast<int32_t>(theCode), __FILE__, __LINE__);    \
  } while (0)

/// For system calls that return 0 on success: the call's text is the report
/// and its result the code.
#define ZnAssertNoError(theCall)                                                                   \
  do {                                                                                             \
    int znResult_ = (theCall);                                                                     \
    if (znResult_ != 0)                                                                            \
      ::Zn::ReportAssertion(#theCall, znResult_, __FILE__, __LINE__);                              \
  } while (0)
