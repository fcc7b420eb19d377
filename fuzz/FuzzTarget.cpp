//===- FuzzTarget.cpp - The libFuzzer entry of one fuzz target -------------===//
//
// Compiled once per target with NBTEXT_FUZZ_ENTRY naming its function in
// FuzzEntryPoints.h.
//
//===----------------------------------------------------------------------===//
#include <cstdlib>
#include "FuzzEntryPoints.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // Every refused input would log a line; the fuzzer's own output is enough.
  setenv("ZNLOGFILE", "/dev/null", 0);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* theData, size_t theSize) {
  return NbtextFuzz::NBTEXT_FUZZ_ENTRY(theData, theSize);
}
