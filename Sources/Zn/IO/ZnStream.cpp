//===- ZnStream.cpp - Byte channels and windows onto them ------------------===//
#include "Zn/IO/ZnStream.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnString.h"

namespace Zn {

//===--- Stream --------------------------------------------------------------===//

Stream::Stream(String* theName, bool theReadable, bool theWritable)
    : name_(retained(theName)), readCount_(theReadable ? 0 : -1), writeCount_(theWritable ? 0 : -1) {
  const bool readable = isReadable(), writable = isWritable();
  ZnAssert(readable || writable, 0);
}

Stream::~Stream() = default;

ZnIndex Stream::skip(ZnIndex theCount) {
  int64_t position = getPosition();
  int64_t target = position + theCount;
  if (setPosition(target))
    return theCount;
  int64_t length = getLength();
  if (length < target && setPosition(length))
    return ZnIndex(length - position);
  if (theCount < 1)
    return 0;
  // Not positionable: read and discard.
  uint8_t buffer[4096];
  ZnIndex done = 0;
  while (done < theCount) {
    ZnIndex wanted = theCount - done < ZnIndex(sizeof buffer) ? theCount - done : ZnIndex(sizeof buffer);
    ZnIndex got = read(buffer, wanted, -1.0);
    if (got < 1)
      break;
    done += got;
    readCount_ += got;
  }
  return done;
}

int64_t Stream::getPosition() const {
  return (readCount_ > 0 ? readCount_ : 0) + (writeCount_ > 0 ? writeCount_ : 0);
}

bool Stream::setPosition(int64_t) { return false; }

int64_t Stream::getLength() { return -1; }

ZnIndex Stream::read(uint8_t*, ZnIndex, double) { return -1; }

ZnIndex Stream::write(const uint8_t*, ZnIndex) { return -1; }

const char* Stream::className() const { return "Stream"; }
const char* Stream::superclassName() const { return "Zn::Object"; }

//===--- SubStream -----------------------------------------------------------===//

SubStream::SubStream(Stream* theStream, int64_t theStart, int64_t theLength)
    : Stream(theStream->getName(), theStream->isReadable(), theStream->isWritable()),
      stream_(retained(theStream)), start_(theStart), length_(theLength) {
  int64_t streamLength = theStream->getLength();
  ZnAssert(theStart + theLength <= streamLength, int32_t(streamLength));
  ZnAssert(theStream->isReadable(), 0);
  bool success = theStream->setPosition(theStart);
  ZnAssert(success, 0);
}

SubStream::~SubStream() = default;

int64_t SubStream::getPosition() const { return stream_->getPosition() - start_; }

bool SubStream::setPosition(int64_t thePosition) { return stream_->setPosition(thePosition + start_); }

ZnIndex SubStream::clampCount(ZnIndex theCount) const {
  int64_t position = getPosition();
  if (length_ < position + theCount)
    theCount = ZnIndex(length_ - position);
  return theCount > 0 ? theCount : 0;
}

ZnIndex SubStream::read(uint8_t* theBuffer, ZnIndex theCount, double theTimeoutSeconds) {
  ZnIndex got = stream_->read(theBuffer, clampCount(theCount), theTimeoutSeconds);
  if (got > 0)
    stream_->addToReadCount(got);
  return got;
}

ZnIndex SubStream::write(const uint8_t* theBuffer, ZnIndex theCount) {
  ZnIndex put = stream_->write(theBuffer, clampCount(theCount));
  if (put > 0)
    stream_->addToWriteCount(put);
  return put;
}

const char* SubStream::className() const { return "SubStream"; }
const char* SubStream::superclassName() const { return "Stream"; }
} // namespace Zn
