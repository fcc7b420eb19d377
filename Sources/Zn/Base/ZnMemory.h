//===- ZnMemory.h - Checked wrappers over memory and byte-string routines -===//
#pragma once
#include <cstdarg>
#include "Zn/Base/ZnTypes.h"

namespace Zn {

/// malloc; adds the size to the running total of bytes allocated.
void* Allocate(Sys::size_t theSize);
void* AllocateZeroed(Sys::size_t theSize);
/// realloc, or Allocate when the pointer is null.
void* Reallocate(void* theMemory, Sys::size_t theSize);
/// free; null is ignored.
void Free(void* theMemory);
/// Brings in the pages of theSize bytes at theMemory at once, where the
/// system can, rather than one fault at a time as each is first written: for
/// a large block about to be filled. Changes no byte.
void Prefault(void* theMemory, Sys::size_t theSize);
/// Bytes handed out so far (never decreases): by Allocate and by
/// AllocateObject, whether an object came from malloc or from a block.
uint64_t GetTotalAllocated();
/// Adds to that total the bytes of memory handed out without Allocate.
void NoteAllocated(Sys::size_t theSize);

/// Note the order: source first, then destination.
void MoveMemory(const void* theSrc, void* theDest, Sys::size_t theSize);
void CopyMemory(const void* theSrc, void* theDest, Sys::size_t theSize);
void SetMemory(void* theMemory, Sys::size_t theSize, int theValue);
/// XOR-fold: each whole little-endian 32-bit word, then each remaining byte.
uint32_t HashMemory(const void* theData, Sys::size_t theSize);

Sys::size_t StringLength(const char* theString);
Sys::size_t StringLength16(const ZnUnichar* theString);
char* StringCopy(const char* theSrc, char* theDest);
char* StringCopyN(const char* theSrc, char* theDest, Sys::size_t theCount);
/// malloc'd copy of theLength bytes plus a terminator; a negative length
/// copies up to the source's terminator.
char* StringDuplicate(const char* theSrc, ZnIndex theLength);
char* StringAppend(char* theString, const char* theAddition);
int StringFormat(char* theBuffer, Sys::size_t theSize, const char* theFormat, ...)
    __attribute__((format(printf, 3, 4)));
int StringFormatV(char* theBuffer, Sys::size_t theSize, const char* theFormat, va_list theArgs);
const char* StringSearch(const char* theString, const char* theSearchString);
const char* StringFindChar(const char* theString, int theChar);
const char* StringFindLastChar(const char* theString, int theChar);
int StringCompare(const char* theString1, const char* theString2);
int StringCompareN(const char* theString1, const char* theString2, Sys::size_t theCount);
} // namespace Zn
