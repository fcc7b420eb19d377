//===- ZnFileDescriptorStream.h - Streams over POSIX descriptors ----------===//
#pragma once
#include "Zn/IO/ZnStream.h"

namespace Zn {

/// A stream over one descriptor to read and one to write (either may be -1,
/// and both may be the same). Reads can wait with a time-out.
class FileDescriptorStream : public Stream {
public:
  /// Readable exactly when theInputDescriptor >= 0, writable exactly when
  /// theOutputDescriptor >= 0.
  FileDescriptorStream(String* theName, int theInputDescriptor, int theOutputDescriptor, bool theCloseOnDestroy);

  /// With a time-out of 0 or more, bytes are taken one at a time while they
  /// arrive before the deadline; the result may then be short, or 0.
  ZnIndex read(uint8_t* theBuffer, ZnIndex theCount, double theTimeoutSeconds) override;
  ZnIndex write(const uint8_t* theBuffer, ZnIndex theCount) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  /// Closes the descriptors when asked to; a shared one only once.
  ~FileDescriptorStream() override;

private:
  int inputDescriptor_;
  int outputDescriptor_;
  bool closeOnDestroy_;
};
} // namespace Zn
