//===- ZnFileStream.h - Streams over the C library's FILE ------------------===//
#pragma once
#include <cstdio>
#include "Zn/IO/ZnStream.h"

namespace Zn {

/// Common base of the streams over files.
class FileStream : public Stream {
public:
  const char* className() const override;
  const char* superclassName() const override;

protected:
  using Stream::Stream;
};

/// A stream over a FILE: files by path and the standard streams. It keeps
/// its own position and caches the file's length once it has measured it.
class FilePointerStream : public FileStream {
public:
  /// +1 each, named by the path; null when the file does not open.
  static FilePointerStream* createForReading(const char* thePath);
  static FilePointerStream* createForReading(const String* thePath);
  static FilePointerStream* createForWriting(const char* thePath, bool theAppend);
  /// Opened with mode "rwb", which the C library takes as read-only; the
  /// stream reports itself writable all the same.
  static FilePointerStream* createForReadingAndWriting(const char* thePath);
  /// +1 each; the standard streams are never closed.
  static FilePointerStream* createStandardInput();
  static FilePointerStream* createStandardOutput();
  static FilePointerStream* createStandardError();
  /// +1; null when theFile is null.
  static FilePointerStream* createWithFile(String* theName, bool theReadable, bool theWritable, FILE* theFile,
                                           bool theCloseOnDestroy);

  FilePointerStream(String* theName, bool theReadable, bool theWritable, FILE* theFile, bool theCloseOnDestroy);
  /// Borrowed.
  FILE* getFile() const { return file_; }

  int64_t getPosition() const override { return position_; }
  /// A read-only file cannot be positioned beyond its end.
  bool setPosition(int64_t thePosition) override;
  int64_t getLength() override;
  /// fread: blocks as the file blocks; the time-out is not used.
  ZnIndex read(uint8_t* theBuffer, ZnIndex theCount, double theTimeoutSeconds) override;
  ZnIndex write(const uint8_t* theBuffer, ZnIndex theCount) override;
  /// Pushes out what the C library holds; false when that fails.
  bool flush();
  /// The errno of the first write or flush that failed since the stream was
  /// made or the error cleared; 0 when none failed. Writes fail quietly on
  /// the way, and whoever delivers the text states why once at the end.
  int32_t getError() const { return error_; }
  /// Forgets the failure, the file's as well, so that the next one counts.
  void clearError();
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~FilePointerStream() override;

private:
  static FilePointerStream* open(const char* thePath, const char* theMode, bool theReadable, bool theWritable);

  static constexpr Sys::size_t kReadBufferSize = 65536;
  char* readBuffer_ = nullptr;
  FILE* file_;
  int64_t position_ = 0;
  int64_t length_ = -1;
  int32_t error_ = 0;
  bool closeOnDestroy_;
};
} // namespace Zn
