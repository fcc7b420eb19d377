//===- ZnBlockSupplier.cpp - Heap blocks made ready on a thread of their own ===//
#include "Zn/Base/ZnBlockSupplier.h"
#include "Zn/Base/ZnObjectHeap.h"
#include <system_error>
#include <unistd.h>

namespace Zn {

BlockSupplier::~BlockSupplier() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
  }
  wanted_.notify_one();
  if (thread_.joinable())
    thread_.join();
  if (ready_)
    ObjectHeap::unmapBlock(ready_);
}

void* BlockSupplier::take() {
  void* block;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    block = ready_;
    ready_ = nullptr;
    supplying_ = true;
    if (!thread_.joinable()) {
      try {
        thread_ = std::thread([this] { run(); });
      } catch (const std::system_error&) {
        // No thread to be had: the heap maps its blocks itself.
        supplying_ = false;
      }
    }
  }
  wanted_.notify_one();
  return block;
}

void BlockSupplier::stop() {
  void* block;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    supplying_ = false;
    block = ready_;
    ready_ = nullptr;
  }
  if (block)
    ObjectHeap::unmapBlock(block);
}

void BlockSupplier::run() {
  const long page = sysconf(_SC_PAGESIZE);
  const Sys::size_t step = page > 0 ? Sys::size_t(page) : 4096;
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    wanted_.wait(lock, [this] { return ending_ || (supplying_ && !ready_); });
    if (ending_)
      return;
    lock.unlock();
    auto* block = static_cast<volatile char*>(ObjectHeap::mapBlock(true));
    // One write a page: each is zeroed here, on this thread (with huge
    // pages the first write brings in the whole block).
    for (Sys::size_t offset = 0; block && offset < ObjectHeap::kBlockSize; offset += step)
      block[offset] = 0;
    lock.lock();
    if (!block)
      supplying_ = false;  // no room: the heap tries for itself
    else if (supplying_ && !ready_ && !ending_)
      ready_ = const_cast<char*>(block);
    else
      ObjectHeap::unmapBlock(const_cast<char*>(block));
  }
}

} // namespace Zn
