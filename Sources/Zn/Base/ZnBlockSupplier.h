//===- ZnBlockSupplier.h - Heap blocks made ready on a thread of their own -===//
#pragma once
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Zn {

/// Makes the next block of an ObjectHeap ready while its owner goes on:
/// maps it and touches each of its pages, so that the kernel zeroes them on
/// this thread rather than in the middle of a parse. One block waits at
/// most. The thread starts with the first take() and sleeps while the
/// supply is stopped; the destructor ends it.
class BlockSupplier {
public:
  BlockSupplier() = default;
  BlockSupplier(const BlockSupplier&) = delete;
  BlockSupplier& operator=(const BlockSupplier&) = delete;
  /// Gives back the waiting block and joins the thread.
  ~BlockSupplier();

  /// The block made ready, or null when none is (the caller maps its own);
  /// never waits. Either way the next one is asked for.
  void* take();
  /// Gives back the waiting block; nothing more is made until the next take().
  void stop();

private:
  void run();

  std::mutex mutex_;
  std::condition_variable wanted_;
  std::thread thread_;
  void* ready_ = nullptr;
  bool supplying_ = false;
  bool ending_ = false;
};

} // namespace Zn
