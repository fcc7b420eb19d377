//===- ZnDataStream.h - A stream over the bytes of a Data ------------------===//
#pragma once
#include "Zn/IO/ZnStream.h"

namespace Zn {
class Data;

/// Reads the bytes of a Data and, when writable, overwrites and extends a
/// MutableData. Made by the stream operations of Data.
class DataStream : public Stream {
public:
  /// Retains theData, which must be a MutableData when theWritable is set.
  DataStream(Data* theData, bool theReadable, bool theWritable);

  ZnIndex skip(ZnIndex theCount) override;
  int64_t getPosition() const override { return position_; }
  /// Anywhere up to and including the end.
  bool setPosition(int64_t thePosition) override;
  int64_t getLength() override;
  ZnIndex read(uint8_t* theBuffer, ZnIndex theCount, double theTimeoutSeconds) override;
  /// Overwrites from the position on and grows the data past its end.
  ZnIndex write(const uint8_t* theBuffer, ZnIndex theCount) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~DataStream() override;

private:
  Ref<Data> data_;
  ZnIndex position_ = 0;
};
} // namespace Zn
