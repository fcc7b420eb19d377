//===- ZnData.h - Immutable and growable byte buffers ----------------------===//
#pragma once
#include "Zn/Base/ZnObject.h"
#include "Zn/Collection/ZnRange.h"

namespace Zn {
class MutableData;
class Stream;

/// An immutable run of bytes. Encoders write into its mutable subclass, data
/// streams read and write it, and bit fields of up to 32 bits can be taken
/// out of it.
class Data : public Object {
public:
  Data() = default;
  /// Copies theLength bytes.
  Data(const void* theBytes, ZnIndex theLength);

  ZnIndex getLength() const { return length_; }
  /// Borrowed; valid until the data changes. Null while nothing was stored.
  const uint8_t* getBytesPtr() const { return bytes_; }
  /// Copies the bytes of theRange out.
  void getBytes(Range theRange, void* theOut) const;
  /// The bits of theBitRange (at most 32) as a number. Byte-aligned fields
  /// are read in little-endian byte order, other fields bit by bit from each
  /// byte's top bit down; theBigEndian picks the order of the result.
  uint32_t getBits(Range theBitRange, bool theBigEndian) const;
  /// Writes every byte to a new file; false when it cannot be created or the
  /// write falls short.
  bool writeToFile(const char* thePath) const;

  /// +1. Reads theStream to its end in blocks of up to 1024 bytes.
  static MutableData* dataWithContentsOfStream(Stream* theStream);
  /// +1 each. A stream over theData, positioned at its start. Only a
  /// MutableData may be written through a stream.
  static Stream* createReadStream(Data* theData);
  static Stream* createWriteStream(Data* theData);
  static Stream* createReadWriteStream(Data* theData);

  bool isEqual(const Object* theOther) const override;
  uint32_t hash() const override;
  Object* copy() const override;
  Object* mutableCopy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Data() override;
  uint8_t* bytes_ = nullptr;
  ZnIndex length_ = 0;
};

/// A byte buffer that grows: its capacity doubles from 1 and never shrinks.
class MutableData : public Data {
public:
  /// Room for theCapacity bytes, rounded up to a power of two (0: no buffer).
  explicit MutableData(ZnIndex theCapacity = 0);
  /// A copy whose capacity equals the length.
  explicit MutableData(const Data* theData);

  ZnIndex getCapacity() const { return capacity_; }
  /// Borrowed, writable; valid until the next growth.
  uint8_t* getMutableBytesPtr() { return bytes_; }
  /// Makes room for at least theLength bytes under the doubling rule.
  void ensureCapacity(ZnIndex theLength) {
    if (theLength > capacity_)
      grow(theLength);
  }
  /// Sets the length, growing when it is beyond the capacity; bytes that
  /// become part of the data are zeroed. Length 0 empties without freeing.
  void setLength(ZnIndex theLength);

  void appendByte(uint8_t theByte) {
    if (length_ >= capacity_)
      grow(length_ + 1);
    bytes_[length_++] = theByte;
  }
  void appendBytes(const void* theBytes, ZnIndex theLength);
  /// For writers that know a bound of their output: makes room for
  /// theMaximum more bytes and returns where they go. Write them, then hand
  /// the end of what was written to endAppend, which sets the length.
  uint8_t* beginAppend(ZnIndex theMaximum) {
    ensureCapacity(length_ + theMaximum);
    return bytes_ + length_;
  }
  void endAppend(const uint8_t* theEnd) { length_ = ZnIndex(theEnd - bytes_); }
  /// Copies theRange.length bytes to theRange.location, growing when the
  /// range ends beyond the length.
  void replaceBytesInRange(Range theRange, const void* theBytes);

  Object* copy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~MutableData() override = default;

private:
  void grow(ZnIndex theLength);
  ZnIndex capacity_ = 0;
};
} // namespace Zn
