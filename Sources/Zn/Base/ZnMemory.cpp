//===- ZnMemory.cpp - Checked wrappers over memory and byte-string routines ===//
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnAssert.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace Zn {

static uint64_t sTotalAllocated = 0;

void* Allocate(Sys::size_t theSize) {
  sTotalAllocated += theSize;
  return std::malloc(theSize);
}

void* AllocateZeroed(Sys::size_t theSize) { return std::calloc(theSize, 1); }

void* Reallocate(void* theMemory, Sys::size_t theSize) {
  if (theMemory == NULL)
    return Allocate(theSize);
  return std::realloc(theMemory, theSize);
}

void Free(void* theMemory) {
  if (theMemory)
    std::free(theMemory);
}

void Prefault(void* theMemory, Sys::size_t theSize) {
#ifdef MADV_POPULATE_WRITE
  // Only whole pages inside the block: its neighbours are not ours to touch.
  static const long page = sysconf(_SC_PAGESIZE);
  if (page <= 0)
    return;
  const uintptr_t mask = uintptr_t(page) - 1;
  const uintptr_t start = (reinterpret_cast<uintptr_t>(theMemory) + mask) & ~mask;
  const uintptr_t end = (reinterpret_cast<uintptr_t>(theMemory) + theSize) & ~mask;
  // An older kernel refuses the advice, and the pages come as they are written.
  if (end > start)
    madvise(reinterpret_cast<void*>(start), end - start, MADV_POPULATE_WRITE);
#else
  (void)theMemory;
  (void)theSize;
#endif
}

uint64_t GetTotalAllocated() { return sTotalAllocated; }

void NoteAllocated(Sys::size_t theSize) { sTotalAllocated += theSize; }

void MoveMemory(const void* theSrc, void* theDest, Sys::size_t theSize) {
  ZnAssert((theSize == 0) || (theDest != NULL), 0);
  ZnAssert((theSize == 0) || (theSrc != NULL), 0);
  if (theSize)
    std::memmove(theDest, theSrc, theSize);
}

void CopyMemory(const void* theSrc, void* theDest, Sys::size_t theSize) {
  ZnAssert((theDest != NULL) || (theSize == 0), 0);
  ZnAssert((theSrc != NULL) || (theSize == 0), 0);
  if (theSize)
    std::memcpy(theDest, theSrc, theSize);
}

void SetMemory(void* theMemory, Sys::size_t theSize, int theValue) {
  ZnAssert((theMemory != NULL) || (theSize == 0), 0);
  if (theSize)
    std::memset(theMemory, theValue, theSize);
}

uint32_t HashMemory(const void* theData, Sys::size_t theSize) {
  ZnAssert((theData != NULL) || (theSize == 0), 0);
  const uint8_t* bytes = static_cast<const uint8_t*>(theData);
  uint32_t hash = 0;
  Sys::size_t i = 0;
  for (; i + 4 <= theSize; i += 4)
    hash ^= uint32_t(bytes[i]) | uint32_t(bytes[i + 1]) << 8 | uint32_t(bytes[i + 2]) << 16 |
            uint32_t(bytes[i + 3]) << 24;
  for (; i < theSize; ++i)
    hash ^= bytes[i];
  return hash;
}

Sys::size_t StringLength(const char* theString) {
  ZnAssert(theString != NULL, 0);
  return std::strlen(theString);
}

Sys::size_t StringLength16(const ZnUnichar* theString) {
  ZnAssert(theString != NULL, 0);
  Sys::size_t n = 0;
  while (theString[n])
    ++n;
  return n;
}

char* StringCopy(const char* theSrc, char* theDest) {
  ZnAssert(theDest != NULL, 0);
  ZnAssert(theSrc != NULL, 0);
  return std::strcpy(theDest, theSrc);
}

char* StringCopyN(const char* theSrc, char* theDest, Sys::size_t theCount) {
  ZnAssert(theDest != NULL, 0);
  ZnAssert(theSrc != NULL, 0);
  return std::strncpy(theDest, theSrc, theCount);
}

char* StringDuplicate(const char* theSrc, ZnIndex theLength) {
  ZnAssert(theSrc != NULL, 0);
  Sys::size_t length = theLength < 0 ? std::strlen(theSrc) : Sys::size_t(theLength);
  char* theDest = static_cast<char*>(Allocate(length + 1));
  ZnAssert(theDest != NULL, 0);
  std::memcpy(theDest, theSrc, length);
  theDest[length] = 0;
  return theDest;
}

char* StringAppend(char* theString, const char* theAddition) {
  ZnAssert(theString != NULL, 0);
  ZnAssert(theAddition != NULL, 0);
  return std::strcat(theString, theAddition);
}

int StringFormat(char* theBuffer, Sys::size_t theSize, const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  int n = StringFormatV(theBuffer, theSize, theFormat, args);
  va_end(args);
  return n;
}

int StringFormatV(char* theBuffer, Sys::size_t theSize, const char* theFormat, va_list theArgs) {
  int n = std::vsnprintf(theBuffer, theSize, theFormat, theArgs);
  // Terminate at the returned length, as long as it lies inside the buffer.
  if (n >= 0 && Sys::size_t(n) < theSize)
    theBuffer[n] = 0;
  return n;
}

const char* StringSearch(const char* theString, const char* theSearchString) {
  ZnAssert(theString != NULL, 0);
  ZnAssert(theSearchString != NULL, 0);
  return std::strstr(theString, theSearchString);
}

const char* StringFindChar(const char* theString, int theChar) {
  ZnAssert(theString != NULL, 0);
  return std::strchr(theString, theChar);
}

const char* StringFindLastChar(const char* theString, int theChar) {
  ZnAssert(theString != NULL, 0);
  return std::strrchr(theString, theChar);
}

int StringCompare(const char* theString1, const char* theString2) {
  ZnAssert(theString1 != NULL, 0);
  ZnAssert(theString2 != NULL, 0);
  return std::strcmp(theString1, theString2);
}

int StringCompareN(const char* theString1, const char* theString2, Sys::size_t theCount) {
  ZnAssert(theString1 != NULL, 0);
  ZnAssert(theString2 != NULL, 0);
  return std::strncmp(theString1, theString2, theCount);
}
} // namespace Zn
