//===- ZnData.cpp - Immutable and growable byte buffers --------------------===//
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/IO/ZnDataStream.h"
#include <cstdio>

namespace Zn {

//===--- Data ----------------------------------------------------------------===//

Data::Data(const void* theBytes, ZnIndex theLength) {
  ZnAssert((theBytes != NULL) || (theLength == 0), theLength);
  if (theLength <= 0)
    return;
  bytes_ = static_cast<uint8_t*>(Allocate(Sys::size_t(theLength)));
  CopyMemory(theBytes, bytes_, Sys::size_t(theLength));
  length_ = theLength;
}

Data::~Data() { Free(bytes_); }

void Data::getBytes(Range theRange, void* theOut) const {
  ZnAssert(theRange.getMaximum() <= length_, theRange.location);
  CopyMemory(bytes_ + theRange.location, theOut, Sys::size_t(theRange.length));
}

// Moves the low `theLength` bits to the top of the word, then reverses its
// four bytes: for whole bytes this turns one byte order into the other.
static uint32_t SwapBits(uint32_t theValue, ZnIndex theLength) {
  uint32_t v = theValue << (32 - theLength);
  return (v >> 24) | ((v >> 8) & 0xFF00) | ((v << 8) & 0xFF0000) | (v << 24);
}

uint32_t Data::getBits(Range theBitRange, bool theBigEndian) const {
  ZnAssert(theBitRange.location >= 0, theBitRange.location);
  ZnAssert((theBitRange.length >= 0) && (theBitRange.length <= 32), theBitRange.length);
  ZnAssert(theBitRange.getMaximum() <= 8*length_, theBitRange.location);
  if (theBitRange.length == 0)
    return 0;
  uint32_t value = 0;
  if (theBitRange.location % 8 == 0 && theBitRange.length % 8 == 0) {
    const uint8_t* p = bytes_ + theBitRange.location / 8;
    for (ZnIndex i = theBitRange.length / 8 - 1; i >= 0; --i)
      value = (value << 8) | p[i];
    return theBigEndian ? SwapBits(value, theBitRange.length) : value;
  }
  // Bit by bit, each byte from its top bit down: already big-endian.
  for (ZnIndex bit = theBitRange.location; bit < theBitRange.getMaximum(); ++bit)
    value = (value << 1) | ((bytes_[bit / 8] >> (7 - bit % 8)) & 1);
  return theBigEndian ? value : SwapBits(value, theBitRange.length);
}

bool Data::writeToFile(const char* thePath) const {
  FILE* file = std::fopen(thePath, "wb");
  if (file == nullptr)
    return false;
  Sys::size_t written = length_ ? std::fwrite(bytes_, 1, Sys::size_t(length_), file) : 0;
  std::fclose(file);
  return written == Sys::size_t(length_);
}

MutableData* Data::dataWithContentsOfStream(Stream* theStream) {
  ZnAssert(theStream != NULL, 0);
  auto data = adopt(new MutableData());
  uint8_t block[1024];
  for (;;) {
    ZnIndex got = theStream->read(block, ZnIndex(sizeof block), -1.0);
    if (got <= 0)
      break;
    theStream->addToReadCount(got);
    data->appendBytes(block, got);
  }
  return data.leak();
}

static Stream* CreateStream(Data* theData, bool readable, bool writable) {
  ZnAssert(theData != NULL, 0);
  ZnAssert(!writable || (dynamic_cast<MutableData*>(theData) != NULL), 0);
  return new DataStream(theData, readable, writable);
}

Stream* Data::createReadStream(Data* theData) { return CreateStream(theData, true, false); }
Stream* Data::createWriteStream(Data* theData) { return CreateStream(theData, false, true); }
Stream* Data::createReadWriteStream(Data* theData) { return CreateStream(theData, true, true); }

bool Data::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const Data* other = dynamic_cast<const Data*>(theOther);
  if (other == nullptr || other->length_ != length_)
    return false;
  for (ZnIndex i = 0; i < length_; ++i)
    if (bytes_[i] != other->bytes_[i])
      return false;
  return true;
}

uint32_t Data::hash() const { return HashMemory(bytes_, Sys::size_t(length_)); }

Object* Data::copy() const { return retain(); }

Object* Data::mutableCopy() const { return new MutableData(this); }

const char* Data::className() const { return "Data"; }
const char* Data::superclassName() const { return "Object"; }

//===--- MutableData ---------------------------------------------------------===//

MutableData::MutableData(ZnIndex theCapacity) {
  if (theCapacity > 0)
    grow(theCapacity);
}

MutableData::MutableData(const Data* theData) {
  ZnAssert(theData != NULL, 0);
  ZnIndex length = theData->getLength();
  if (length == 0)
    return;
  bytes_ = static_cast<uint8_t*>(Allocate(Sys::size_t(length)));
  CopyMemory(theData->getBytesPtr(), bytes_, Sys::size_t(length));
  length_ = capacity_ = length;
}

void MutableData::grow(ZnIndex theLength) {
  ZnIndex capacity = capacity_ ? capacity_ : 1;
  while (capacity < theLength)
    capacity *= 2;
  bytes_ = static_cast<uint8_t*>(Reallocate(bytes_, Sys::size_t(capacity)));
  capacity_ = capacity;
}

void MutableData::setLength(ZnIndex theLength) {
  ZnAssert(theLength >= 0, theLength);
  ensureCapacity(theLength);
  if (theLength > length_)
    SetMemory(bytes_ + length_, Sys::size_t(theLength - length_), 0);
  length_ = theLength;
}

void MutableData::appendBytes(const void* theBytes, ZnIndex theLength) {
  if (theLength <= 0)
    return;
  ensureCapacity(length_ + theLength);
  CopyMemory(theBytes, bytes_ + length_, Sys::size_t(theLength));
  length_ += theLength;
}

void MutableData::replaceBytesInRange(Range theRange, const void* theBytes) {
  ZnAssert((theRange.location >= 0) && (theRange.length >= 0), theRange.location);
  if (theRange.getMaximum() > length_) {
    ensureCapacity(theRange.getMaximum());
    // Bytes between the old end and the range would otherwise be undefined.
    if (theRange.location > length_)
      SetMemory(bytes_ + length_, Sys::size_t(theRange.location - length_), 0);
    length_ = theRange.getMaximum();
  }
  CopyMemory(theBytes, bytes_ + theRange.location, Sys::size_t(theRange.length));
}

Object* MutableData::copy() const { return new Data(bytes_, length_); }

const char* MutableData::className() const { return "MutableData"; }
const char* MutableData::superclassName() const { return "Data"; }
} // namespace Zn
