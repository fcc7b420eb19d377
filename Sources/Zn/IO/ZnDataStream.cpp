//===- ZnDataStream.cpp - A stream over the bytes of a Data ----------------===//
#include "Zn/IO/ZnDataStream.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnString.h"

namespace Zn {

DataStream::DataStream(Data* theData, bool theReadable, bool theWritable)
    : Stream(adopt(new String("(Memory Buffer)")).get(), theReadable, theWritable), data_(retained(theData)) {}

DataStream::~DataStream() = default;

ZnIndex DataStream::skip(ZnIndex theCount) {
  if (!isReadable())
    return -1;
  ZnIndex available = data_->getLength() - position_;
  ZnIndex skipped = theCount < available ? theCount : available;
  // Backwards no further than the start.
  if (skipped < -position_)
    skipped = -position_;
  position_ += skipped;
  return skipped;
}

bool DataStream::setPosition(int64_t thePosition) {
  if (thePosition < 0 || thePosition > data_->getLength())
    return false;
  position_ = ZnIndex(thePosition);
  return true;
}

int64_t DataStream::getLength() { return data_->getLength(); }

ZnIndex DataStream::read(uint8_t* theBuffer, ZnIndex theCount, double) {
  if (!isReadable())
    return -1;
  ZnIndex available = data_->getLength() - position_;
  if (available <= 0 || theCount <= 0)
    return 0;
  ZnIndex got = theCount < available ? theCount : available;
  CopyMemory(data_->getBytesPtr() + position_, theBuffer, Sys::size_t(got));
  position_ += got;
  return got;
}

ZnIndex DataStream::write(const uint8_t* theBuffer, ZnIndex theCount) {
  if (!isWritable())
    return -1;
  if (theCount <= 0)
    return 0;
  // Writable streams are only made over mutable data.
  static_cast<MutableData*>(data_.get())->replaceBytesInRange(Range(position_, theCount), theBuffer);
  position_ += theCount;
  return theCount;
}

const char* DataStream::className() const { return "DataStream"; }
const char* DataStream::superclassName() const { return "Stream"; }
} // namespace Zn
