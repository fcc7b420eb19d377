//===- ZnMemoryTest.cpp - Memory wrappers and the XOR-fold hash ------------===//
#include <gtest/gtest.h>
#include <cstring>
#include "Zn/Base/ZnMemory.h"

using namespace Zn;

TEST(ZnMemoryTest, HashFoldsWholeWordsThenSingleBytes) {
  const uint8_t bytes[] = {1, 2, 3, 4, 5};
  EXPECT_EQ(HashMemory(bytes, 5), 0x04030204u);
  EXPECT_EQ(HashMemory(bytes, 4), 0x04030201u);
  EXPECT_EQ(HashMemory(bytes, 0), 0u);
  EXPECT_EQ(HashMemory(nullptr, 0), 0u);
}

TEST(ZnMemoryDeathTest, NullPointersAreReportedByParameterName) {
  char buffer[4];
  EXPECT_EXIT(CopyMemory(nullptr, buffer, 1), testing::ExitedWithCode(255), "\\(theSrc != NULL\\) \\|\\| \\(theSize == 0\\)");
  EXPECT_EXIT(MoveMemory(buffer, nullptr, 1), testing::ExitedWithCode(255), "\\(theSize == 0\\) \\|\\| \\(theDest != NULL\\)");
  EXPECT_EXIT(StringLength(nullptr), testing::ExitedWithCode(255), "theString != NULL");
  EXPECT_EXIT(StringCompare("a", nullptr), testing::ExitedWithCode(255), "theString2 != NULL");
  CopyMemory(nullptr, nullptr, 0);
  SetMemory(nullptr, 0, 0);
}
