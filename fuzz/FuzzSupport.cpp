//===- FuzzSupport.cpp - What every fuzz entry point shares ----------------===//
#include "FuzzSupport.h"
#include <cstdio>
#include <cstdlib>
#include <string>
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnString.h"

namespace NbtextFuzz {

namespace {
std::string Narrow(const Zn::String* theString) {
  std::string text;
  for (ZnIndex i = 0; i < theString->length(); ++i) {
    ZnUnichar c = theString->unitAt(i);
    text += c < 128 ? char(c) : '?';
  }
  return text;
}

// No input may reach an assertion: each one is a fault of the program, kept
// by the fuzzer as a crash.
int HandleAssertion(Zn::String* theMessage) {
  std::fprintf(stderr, "nbtext fuzz: assertion reached: %s", Narrow(theMessage).c_str());
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
