//===- TestMain.cpp - Test entry point --------------------------------------===//
#include <gtest/gtest.h>
#include <cstdio>
#include <unistd.h>
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnAssert.h"

// A failed assertion has already been logged when the handler runs. Ending
// the child with _exit keeps the status (255, as exit(-1) gives) while
// skipping the end-of-process leak check, which would otherwise count the
// objects that the interrupted statement still held.
int EndAfterAssertionForTests(Zn::String*) {
  std::fflush(nullptr);
  _exit(255);
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  GTEST_FLAG_SET(death_test_style, "fast");
  Zn::SetAssertionHandler(EndAfterAssertionForTests);
  return RUN_ALL_TESTS();
}
