//===- ZnObjectHeap.cpp - Objects of a parse, carved from large blocks -----===//
#include "Zn/Base/ZnObjectHeap.h"
#include "Zn/Base/ZnBlockSupplier.h"
#include "Zn/Base/ZnMemory.h"
#include <cstdlib>
#include <sys/mman.h>

#if defined(__SANITIZE_ADDRESS__)
#define ZN_OBJECT_HEAP_IN_USE 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZN_OBJECT_HEAP_IN_USE 0
#endif
#endif
#ifndef ZN_OBJECT_HEAP_IN_USE
#define ZN_OBJECT_HEAP_IN_USE 1
#endif

namespace Zn {

/// Sits at the start of each block; objects follow it.
struct ObjectHeap::Block {
  int64_t live;    // objects handed out from this block and not yet freed
  int64_t unused;  // keeps the first object 16-byte aligned
};

static constexpr uintptr_t kEmptySlot = 0;
static constexpr uintptr_t kRemovedSlot = 1;

static uintptr_t BaseOf(const void* theMemory) {
  return reinterpret_cast<uintptr_t>(theMemory) & ~uintptr_t(ObjectHeap::kBlockSize - 1);
}

static uint32_t SlotOf(uintptr_t theBase, uint32_t theMask) {
  // Bases differ in their high bits only: multiply them into the low ones.
  return uint32_t((uint64_t(theBase >> 21) * 0x9E3779B97F4A7C15ull) >> 32) & theMask;
}

ObjectHeap::~ObjectHeap() {
  delete supplier_;
  for (uint32_t i = 0; i < capacity_; ++i)
    if (slots_[i] > kRemovedSlot)
      munmap(reinterpret_cast<void*>(slots_[i]), kBlockSize);
  std::free(slots_);
}

//===--- The table of blocks ----------------------------------------------------===//

ObjectHeap::Block* ObjectHeap::findBlock(const void* theMemory) const {
  if (capacity_ == 0 || theMemory == nullptr)
    return nullptr;
  uintptr_t base = BaseOf(theMemory);
  uint32_t mask = capacity_ - 1;
  for (uint32_t i = SlotOf(base, mask);; i = (i + 1) & mask) {
    if (slots_[i] == base)
      return reinterpret_cast<Block*>(base);
    if (slots_[i] == kEmptySlot)
      return nullptr;
  }
}

bool ObjectHeap::reserveSlot() {
  if ((occupied_ + 1) * 2 <= capacity_)
    return true;
  // Grow (or just sweep out removed slots) and put the live bases back.
  uint32_t capacity = capacity_ == 0 ? 64 : (uint32_t(blocks_ + 1) * 4 > capacity_ ? capacity_ * 2 : capacity_);
  auto* slots = static_cast<uintptr_t*>(std::calloc(capacity, sizeof(uintptr_t)));
  if (slots == nullptr)
    return false;
  uint32_t mask = capacity - 1;
  for (uint32_t i = 0; i < capacity_; ++i) {
    if (slots_[i] <= kRemovedSlot)
      continue;
    uint32_t j = SlotOf(slots_[i], mask);
    while (slots[j] != kEmptySlot)
      j = (j + 1) & mask;
    slots[j] = slots_[i];
  }
  std::free(slots_);
  slots_ = slots;
  capacity_ = capacity;
  occupied_ = uint32_t(blocks_);
  return true;
}

void ObjectHeap::insertBlock(uintptr_t theBase) {
  uint32_t mask = capacity_ - 1;
  uint32_t i = SlotOf(theBase, mask);
  while (slots_[i] > kRemovedSlot)
    i = (i + 1) & mask;
  if (slots_[i] == kEmptySlot)
    ++occupied_;
  slots_[i] = theBase;
}

void ObjectHeap::eraseBlock(uintptr_t theBase) {
  uint32_t mask = capacity_ - 1;
  uint32_t i = SlotOf(theBase, mask);
  while (slots_[i] != theBase)
    i = (i + 1) & mask;
  slots_[i] = kRemovedSlot;
}

//===--- Blocks ----------------------------------------------------------------===//

void* ObjectHeap::mapBlock(bool theHugePages) {
  // Map twice the size and keep the aligned middle, so that an object's
  // block is its address with the low bits cleared.
  void* mapped = mmap(nullptr, 2 * kBlockSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED)
    return nullptr;
  uintptr_t start = reinterpret_cast<uintptr_t>(mapped);
  uintptr_t base = (start + kBlockSize - 1) & ~uintptr_t(kBlockSize - 1);
  if (base > start)
    munmap(mapped, base - start);
  if (base + kBlockSize < start + 2 * kBlockSize)
    munmap(reinterpret_cast<void*>(base + kBlockSize), start + 2 * kBlockSize - base - kBlockSize);
#ifdef MADV_HUGEPAGE
  // Where the kernel has no huge pages this fails, and nothing changes.
  if (theHugePages)
    madvise(reinterpret_cast<void*>(base), kBlockSize, MADV_HUGEPAGE);
#endif
  return reinterpret_cast<void*>(base);
}

void ObjectHeap::unmapBlock(void* theBlock) { munmap(theBlock, kBlockSize); }

ObjectHeap::Block* ObjectHeap::makeBlock() {
  if (!reserveSlot())
    return nullptr;
  void* memory = nullptr;
  if (blocksMade_ >= kBlocksBeforeSupply) {
    if (!supplier_)
      supplier_ = new BlockSupplier();
    memory = supplier_->take();
    blocksMadeAhead_ += memory != nullptr;
  }
  if (!memory)
    memory = mapBlock(blocksMade_ >= kSmallPageBlocks);
  if (!memory)
    return nullptr;
  ++blocksMade_;
  ++blocks_;
  uintptr_t base = reinterpret_cast<uintptr_t>(memory);
  insertBlock(base);
  auto* block = reinterpret_cast<Block*>(base);
  block->live = 0;
  return block;
}

void ObjectHeap::stopSupply() {
  if (supplier_)
    supplier_->stop();
}

void ObjectHeap::dropBlock(Block* theBlock) {
  uintptr_t base = reinterpret_cast<uintptr_t>(theBlock);
  eraseBlock(base);
  --blocks_;
  unmapBlock(theBlock);
}

//===--- Objects ---------------------------------------------------------------===//

void* ObjectHeap::allocate(Sys::size_t theSize) {
  Sys::size_t size = (theSize + 7) & ~Sys::size_t(7);
  if (size > kLargest || size == 0)
    return std::malloc(theSize == 0 ? 1 : theSize);
  if (current_ == nullptr || Sys::size_t(limit_ - cursor_) < size) {
    Block* block = makeBlock();
    if (block == nullptr)
      return std::malloc(theSize);
    // The block left behind goes when its last object does; an empty one now.
    if (current_ != nullptr && current_->live == 0)
      dropBlock(current_);
    current_ = block;
    cursor_ = reinterpret_cast<char*>(block + 1);
    limit_ = reinterpret_cast<char*>(block) + kBlockSize;
  }
  void* memory = cursor_;
  cursor_ += size;
  ++current_->live;
  return memory;
}

void ObjectHeap::free(void* theMemory) {
  Block* block = findBlock(theMemory);
  if (block == nullptr) {
    std::free(theMemory);
    return;
  }
  if (--block->live > 0)
    return;
  if (block == current_)
    cursor_ = reinterpret_cast<char*>(block + 1);  // empty: start it over
  else
    dropBlock(block);
}

bool ObjectHeap::owns(const void* theMemory) const { return findBlock(theMemory) != nullptr; }

int64_t ObjectHeap::getLiveCount() const {
  int64_t live = 0;
  for (uint32_t i = 0; i < capacity_; ++i)
    if (slots_[i] > kRemovedSlot)
      live += reinterpret_cast<const Block*>(slots_[i])->live;
  return live;
}

//===--- The shared heap and its scopes ------------------------------------------===//

static int32_t sOpenScopes = 0;

ObjectHeap& ObjectHeap::shared() {
  // Never destroyed: objects may outlive every static destructor.
  static ObjectHeap* heap = new ObjectHeap();
  return *heap;
}

ObjectHeap::Scope::Scope() { ++sOpenScopes; }
ObjectHeap::Scope::~Scope() {
  // The tree is built: a block made ahead would only take room.
  if (--sOpenScopes == 0 && ZN_OBJECT_HEAP_IN_USE)
    shared().stopSupply();
}
bool ObjectHeap::isScopeOpen() { return sOpenScopes > 0; }

void* AllocateObject(Sys::size_t theSize) {
  if (!ZN_OBJECT_HEAP_IN_USE || sOpenScopes == 0)
    return Allocate(theSize);
  NoteAllocated(theSize);
  return ObjectHeap::shared().allocate(theSize);
}

void FreeObject(void* theMemory) {
  if (!ZN_OBJECT_HEAP_IN_USE)
    return Free(theMemory);
  ObjectHeap::shared().free(theMemory);
}

} // namespace Zn
