//===- ZnObjectHeap.h - Objects of a parse, carved from large blocks -------===//
#pragma once
#include <cstdint>
#include "Zn/Base/ZnTypes.h"

namespace Zn {
class BlockSupplier;

/// A heap for the many small objects of an expression tree. It carves them
/// one after the other from blocks of 2 MB instead of asking malloc for each:
/// no per-object header or rounding, no search for a free chunk, and the
/// blocks after the first few are advised as transparent huge pages, so that
/// a large tree touches far fewer pages. Memory of a freed object is not
/// reused on its own; a block goes back to the system when its last object
/// dies (the block in use is reused from its start instead).
///
/// The kernel zeroes each fresh page when it is first touched, which for a
/// large tree is a tenth of the whole conversion. Once a heap has made
/// kBlocksBeforeSupply blocks, a thread of its own (the BlockSupplier) maps
/// and touches the next block while the parse goes on, on another core
/// where there is one; one block waits at most, and it goes back when the
/// last Scope closes.
///
/// Used from one thread, as the converter is. Requests over kLargest bytes,
/// and every request when a block cannot be mapped, go to malloc; free()
/// tells the two apart by the block that holds the address.
class ObjectHeap {
public:
  static constexpr Sys::size_t kBlockSize = Sys::size_t(2) << 20;
  static constexpr Sys::size_t kLargest = 262144;
  /// Blocks made before the heap asks for huge pages: a small notebook's
  /// tree fits in them and then never pays for zeroing a 2 MB page.
  static constexpr int32_t kSmallPageBlocks = 2;
  /// Blocks made before blocks are made ahead: the tree of a notebook of a
  /// megabyte or two fits in them and never starts the thread, and every
  /// larger one has its pages zeroed ahead from its third block on.
  static constexpr int32_t kBlocksBeforeSupply = 2;

  ObjectHeap() = default;
  ObjectHeap(const ObjectHeap&) = delete;
  ObjectHeap& operator=(const ObjectHeap&) = delete;
  /// Gives every block back, whatever still lives in it.
  ~ObjectHeap();

  /// At least theSize bytes, 8-byte aligned.
  void* allocate(Sys::size_t theSize);
  /// Frees memory that allocate() returned; null is ignored.
  void free(void* theMemory);
  /// Whether theMemory lies in one of this heap's blocks.
  bool owns(const void* theMemory) const;
  /// Blocks mapped now and holding objects (a block made ahead is not one
  /// until it is used).
  int32_t getBlockCount() const { return blocks_; }
  /// Gives back the block made ahead, if one waits; the next block the heap
  /// needs asks for another.
  void stopSupply();
  /// Blocks that came ready from the supplier's thread.
  int32_t getBlocksMadeAhead() const { return blocksMadeAhead_; }
  /// Objects alive in the blocks (not those that went to malloc).
  int64_t getLiveCount() const;

  /// The process's heap for objects made while a Scope is open.
  static ObjectHeap& shared();

  /// While one is open, objects are made in the shared heap (the parser
  /// opens one around building a tree); elsewhere they go to malloc, so that
  /// the short-lived objects of other work do not fill blocks that a
  /// long-lived neighbour keeps alive. Scopes nest.
  class Scope {
  public:
    Scope();
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
  };
  static bool isScopeOpen();

  /// Maps kBlockSize bytes at a multiple of kBlockSize, advised as huge
  /// pages when theHugePages is set; null when the system has no room.
  static void* mapBlock(bool theHugePages);
  static void unmapBlock(void* theBlock);

private:
  struct Block;
  Block* makeBlock();
  void dropBlock(Block* theBlock);
  Block* findBlock(const void* theMemory) const;
  bool reserveSlot();
  void insertBlock(uintptr_t theBase);
  void eraseBlock(uintptr_t theBase);

  Block* current_ = nullptr;
  char* cursor_ = nullptr;
  char* limit_ = nullptr;
  int32_t blocks_ = 0;
  int32_t blocksMade_ = 0;
  BlockSupplier* supplier_ = nullptr;
  int32_t blocksMadeAhead_ = 0;
  // Open addressing over the blocks' base addresses: 0 empty, 1 removed.
  uintptr_t* slots_ = nullptr;
  uint32_t capacity_ = 0;
  uint32_t occupied_ = 0;
};

/// Memory for an object: from the shared ObjectHeap while a Scope is open
/// (and the build has no address sanitizer, whose checks need malloc's
/// chunks), from Allocate otherwise. Counted in GetTotalAllocated either way.
void* AllocateObject(Sys::size_t theSize);
/// Frees what AllocateObject returned, from wherever it came.
void FreeObject(void* theMemory);

} // namespace Zn
