//===- ZnObjectHeapTest.cpp - Objects carved from blocks, blocks given back -===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnObjectHeap.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include <chrono>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

using namespace Zn;

namespace {
class ObjectHeapTest : public ZnTest::LeakCheckedTest {};

uintptr_t Address(const void* theMemory) { return reinterpret_cast<uintptr_t>(theMemory); }
} // namespace

TEST_F(ObjectHeapTest, SmallRequestsComeAlignedFromOneBlockAndLargeOnesFromMalloc) {
  ObjectHeap heap;
  std::vector<void*> small;
  for (Sys::size_t size : {1, 7, 8, 13, 24, 100}) {
    void* p = heap.allocate(size);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(Address(p) % 8, 0u) << size;
    EXPECT_TRUE(heap.owns(p)) << size;
    std::memset(p, 0xAB, size);  // every byte asked for is writable
    small.push_back(p);
  }
  // One after the other, each rounded up to 8 bytes.
  EXPECT_EQ(Address(small[1]) - Address(small[0]), 8u);
  EXPECT_EQ(Address(small[4]) - Address(small[3]), 16u);
  EXPECT_EQ(heap.getBlockCount(), 1);
  EXPECT_EQ(heap.getLiveCount(), 6);

  void* large = heap.allocate(ObjectHeap::kLargest + 1);
  EXPECT_FALSE(heap.owns(large));
  EXPECT_FALSE(heap.owns(nullptr));
  heap.free(large);  // back to malloc
  heap.free(nullptr);
  for (void* p : small)
    heap.free(p);
  EXPECT_EQ(heap.getLiveCount(), 0);
}

TEST_F(ObjectHeapTest, TheBlockInUseStartsOverWhenItsObjectsAreGone) {
  ObjectHeap heap;
  void* first = heap.allocate(32);
  void* second = heap.allocate(32);
  heap.free(first);
  EXPECT_NE(heap.allocate(32), first) << "a freed object's room is not reused while others live";
  heap.free(second);
  heap.free(static_cast<char*>(second) + 32);  // the one just made
  EXPECT_EQ(heap.allocate(32), first) << "an empty block in use starts from its beginning";
  EXPECT_EQ(heap.getBlockCount(), 1);
}

TEST_F(ObjectHeapTest, FullBlocksGoBackWhenTheirLastObjectDies) {
  ObjectHeap heap;
  // Largest requests fill a block in about a hundred; 40 blocks also make
  // the table of blocks grow and sweep itself.
  const int perBlock = int(ObjectHeap::kBlockSize / ObjectHeap::kLargest) - 1;
  std::vector<std::vector<void*>> blocks(40);
  for (auto& block : blocks)
    for (int i = 0; i < perBlock; ++i)
      block.push_back(heap.allocate(ObjectHeap::kLargest));
  ASSERT_EQ(heap.getBlockCount(), 40);
  for (const auto& block : blocks)
    for (void* p : block)
      ASSERT_EQ(Address(p) & ~uintptr_t(ObjectHeap::kBlockSize - 1),
                Address(block.front()) & ~uintptr_t(ObjectHeap::kBlockSize - 1));

  // Every other block emptied: each goes back at its last free, not before.
  for (int b = 0; b < 40; b += 2) {
    for (int i = 0; i + 1 < perBlock; ++i)
      heap.free(blocks[b][i]);
    EXPECT_EQ(heap.getBlockCount(), 40 - b / 2);
    EXPECT_TRUE(heap.owns(blocks[b].back()));
    heap.free(blocks[b].back());
    EXPECT_FALSE(heap.owns(blocks[b].back()));
  }
  EXPECT_EQ(heap.getBlockCount(), 20);
  EXPECT_EQ(heap.getLiveCount(), 20 * perBlock);
  // New blocks take the places of the old ones in the table.
  for (int i = 0; i < 30 * perBlock; ++i)
    ASSERT_TRUE(heap.owns(heap.allocate(ObjectHeap::kLargest)));
  for (int b = 1; b < 40; b += 2)
    for (void* p : blocks[b])
      ASSERT_TRUE(heap.owns(p));
  EXPECT_EQ(heap.getBlockCount(), 50);
}

// Past the first blocks the next one is made ready on another thread; such
// blocks are aligned and whole like any other, the supply stops and starts
// again on demand, and the heap's end ends the thread.
TEST_F(ObjectHeapTest, BlocksMadeAheadServeLikeAnyOther) {
  ObjectHeap heap;
  const int perBlock = int(ObjectHeap::kBlockSize / ObjectHeap::kLargest) - 1;
  auto fillBlock = [&] {
    void* first = heap.allocate(ObjectHeap::kLargest);
    std::memset(first, 0x5A, ObjectHeap::kLargest);
    for (int i = 1; i < perBlock; ++i)
      std::memset(heap.allocate(ObjectHeap::kLargest), 0x5A, ObjectHeap::kLargest);
    EXPECT_EQ(Address(first) % ObjectHeap::kBlockSize, 16u);  // just after the block's header
  };
  const int blocks = ObjectHeap::kBlocksBeforeSupply + 6;
  for (int b = 0; b < blocks; ++b) {
    fillBlock();
    if (b == blocks / 2)
      heap.stopSupply();
    // Time for the thread to make the next block ready.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  EXPECT_EQ(heap.getBlockCount(), blocks);
  EXPECT_GT(heap.getBlocksMadeAhead(), 0);
  EXPECT_LT(heap.getBlocksMadeAhead(), blocks - ObjectHeap::kBlocksBeforeSupply);  // none right after the stop
}

TEST_F(ObjectHeapTest, ObjectsOfAScopeOutliveItAndDieAnywhere) {
  Ref<String> made;
  {
    ObjectHeap::Scope scope;
    EXPECT_TRUE(ObjectHeap::isScopeOpen());
    const ZnUnichar text[] = {'a', 'b', 'c'};
    made = adopt(String::createWithCharacters(text, 3));
    auto temporary = adopt(new String("gone"));
  }
  EXPECT_FALSE(ObjectHeap::isScopeOpen());
  auto outside = adopt(new String("outside"));
  EXPECT_FALSE(ObjectHeap::shared().owns(outside.get()));
#if defined(__SANITIZE_ADDRESS__)
  // The address sanitizer's checks need malloc's own chunks.
  EXPECT_FALSE(ObjectHeap::shared().owns(made.get()));
#else
  EXPECT_TRUE(ObjectHeap::shared().owns(made.get()));
#endif
  EXPECT_EQ(made->length(), 3);
  EXPECT_EQ(made->characterAtIndex(2), 'c');
}
