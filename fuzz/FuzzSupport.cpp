//===- FuzzSupport.cpp - What every fuzz entry point shares ----------------===//
#include "FuzzSupport.h"
#include <cstdio>
#include <cstdlib>
#include <string>
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnString.h"

namespace NbtextFuzz {

namespace {
struct AcceptedAssertion {
  const char* condition;
  const char* file;
};

// The assertions that a well-formed file never reaches and a malformed one
// may: the walk fetches parts that a hand-edited box may lack, and a tab
// view's selection may point past its panes. Everything else is a fault.
const AcceptedAssertion kAcceptedAssertions[] = {
    {"e != NULL", "KxExpr.h"},
    {"theLabels->getCount() == theContents->getCount()", "SearchIndexer.cpp"},
    {"theIndex < count_", "ZnArray.h"},
    {"theIndex >= 0", "ZnArray.h"},
};

std::string Narrow(const Zn::String* theString) {
  std::string text;
  for (ZnIndex i = 0; i < theString->length(); ++i) {
    ZnUnichar c = theString->getCharactersPtr()[i];
    text += c < 128 ? char(c) : '?';
  }
  return text;
}

// The report ends in: Assertion "<condition>" failed with code <file>:<line>:<code>
bool IsAccepted(const std::string& theReport) {
  static const char kBefore[] = "Assertion \"";
  static const char kAfter[] = "\" failed with code ";
  size_t start = theReport.rfind(kBefore);
  if (start == std::string::npos)
    return false;
  start += sizeof kBefore - 1;
  size_t end = theReport.find(kAfter, start);
  if (end == std::string::npos)
    return false;
  std::string condition = theReport.substr(start, end - start);
  size_t fileStart = end + sizeof kAfter - 1;
  std::string file = theReport.substr(fileStart, theReport.find(':', fileStart) - fileStart);
  for (const AcceptedAssertion& accepted : kAcceptedAssertions)
    if (condition == accepted.condition && file == accepted.file)
      return true;
  return false;
}

int HandleAssertion(Zn::String* theMessage) {
  std::string report = Narrow(theMessage);
  if (IsAccepted(report))
    throw AssertionRefusal{};
  std::fprintf(stderr, "nbtext fuzz: unexpected assertion: %s", report.c_str());
  std::fflush(stderr);
  std::abort();
}
} // namespace

void InstallFuzzAssertionHandler() { Zn::SetAssertionHandler(HandleAssertion); }

void FuzzFailure(const char* theWhat, const char* theFile, int theLine) {
  std::fprintf(stderr, "nbtext fuzz: check \"%s\" failed at %s:%d\n", theWhat, theFile, theLine);
  std::fflush(stderr);
  std::abort();
}
} // namespace NbtextFuzz
