//===- ZnStream.h - Byte channels and windows onto them --------------------===//
#pragma once
#include "Zn/Base/ZnObject.h"
#include "Zn/Base/ZnRef.h"

namespace Zn {
class String;

/// A named byte channel with a read side, a write side or both.
///
/// The raw read and write operations do not move the read and write
/// counters: whoever consumed the bytes adds them (readers, writers, skip),
/// which is what lets a stream with no position of its own report one.
class Stream : public Object {
public:
  /// theName is retained and may be null. At least one side must exist.
  Stream(String* theName, bool theReadable, bool theWritable);

  /// Borrowed; null when the stream has no name.
  String* getName() const { return name_.get(); }
  bool isReadable() const { return readCount_ >= 0; }
  bool isWritable() const { return writeCount_ >= 0; }
  /// Bytes consumed through the stream; -1 when the side is absent.
  int64_t getReadCount() const { return readCount_; }
  int64_t getWriteCount() const { return writeCount_; }
  void addToReadCount(int64_t theCount) { readCount_ += theCount; }
  void addToWriteCount(int64_t theCount) { writeCount_ += theCount; }

  /// Moves on by theCount bytes: repositions when it can (stopping at the
  /// end), otherwise reads and discards. Returns the bytes skipped.
  virtual ZnIndex skip(ZnIndex theCount);
  /// Without a position of its own: the bytes read plus the bytes written.
  virtual int64_t getPosition() const;
  /// False when the stream cannot be positioned there.
  virtual bool setPosition(int64_t thePosition);
  /// -1 while unknown.
  virtual int64_t getLength();
  /// Bytes delivered, 0 at the end, -1 without a read side. A negative
  /// time-out blocks as the channel blocks.
  virtual ZnIndex read(uint8_t* theBuffer, ZnIndex theCount, double theTimeoutSeconds);
  /// Bytes accepted, or -1.
  virtual ZnIndex write(const uint8_t* theBuffer, ZnIndex theCount);

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Stream() override;

private:
  Ref<String> name_;
  int64_t readCount_;
  int64_t writeCount_;
};

/// A window (start, length) onto a readable stream, which it positions at
/// the start. Reads and writes never go past the window's end, and the bytes
/// they move are counted on the parent.
class SubStream : public Stream {
public:
  SubStream(Stream* theStream, int64_t theStart, int64_t theLength);

  int64_t getPosition() const override;
  bool setPosition(int64_t thePosition) override;
  int64_t getLength() override { return length_; }
  ZnIndex read(uint8_t* theBuffer, ZnIndex theCount, double theTimeoutSeconds) override;
  ZnIndex write(const uint8_t* theBuffer, ZnIndex theCount) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~SubStream() override;

private:
  /// theCount cut so that it ends at the window's end, and never negative.
  ZnIndex clampCount(ZnIndex theCount) const;
  Ref<Stream> stream_;
  int64_t start_;
  int64_t length_;
};
} // namespace Zn
