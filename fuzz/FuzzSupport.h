//===- FuzzSupport.h - What every fuzz entry point shares ------------------===//
#pragma once
#include <cstddef>
#include <cstdint>

namespace NbtextFuzz {

/// Makes a failed assertion print its report and abort, so that the
/// fuzzer keeps the input: no input may reach one. Each entry point calls
/// this first, since the test suite runs the entry points under a handler
/// of its own.
void InstallFuzzAssertionHandler();

/// Reports a broken expectation of an entry point's own checks and aborts.
[[noreturn]] void FuzzFailure(const char* theWhat, const char* theFile, int theLine);

/// Reads an input as a few control bytes followed by a payload.
class InputSplitter {
public:
  InputSplitter(const uint8_t* theData, size_t theSize) : data_(theData), size_(theSize) {}
  /// The next byte, 0 once everything is taken.
  uint8_t takeByte() { return offset_ < size_ ? data_[offset_++] : 0; }
  /// Up to theCount bytes; *theTaken says how many there were.
  const uint8_t* takeBytes(size_t theCount, size_t* theTaken) {
    size_t left = size_ - offset_;
    *theTaken = theCount < left ? theCount : left;
    const uint8_t* bytes = data_ + offset_;
    offset_ += *theTaken;
    return bytes;
  }
  /// Everything not taken yet.
  const uint8_t* rest(size_t* theSize) const {
    *theSize = size_ - offset_;
    return data_ + offset_;
  }

private:
  const uint8_t* data_;
  size_t size_;
  size_t offset_ = 0;
};
} // namespace NbtextFuzz

/// A check of the fuzz entry points themselves, kept in every build.
#define FuzzCheck(theCondition)                                                                    \
  do {                                                                                             \
    if (!(theCondition))                                                                           \
      ::NbtextFuzz::FuzzFailure(#theCondition, __FILE__, __LINE__);                                \
  } while (0)
