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

// Pages brought in ahead keep what the block and its neighbours hold,
// whatever the block's alignment and size (down to less than a page).
TEST(ZnMemoryTest, PrefaultChangesNoByte) {
  constexpr size_t kSize = 3 << 20;
  auto* block = static_cast<uint8_t*>(Allocate(kSize));
  for (size_t i = 0; i < kSize; ++i)
    block[i] = uint8_t(i * 7 + 1);
  const struct { size_t offset, size; } ranges[] = {{0, kSize}, {1, kSize - 2}, {4095, 3}, {100, 0}, {5000, 70001}};
  for (const auto& range : ranges)
    Prefault(block + range.offset, range.size);
  size_t differing = 0;
  for (size_t i = 0; i < kSize; ++i)
    differing += block[i] != uint8_t(i * 7 + 1);
  EXPECT_EQ(differing, 0u);
  Free(block);
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
