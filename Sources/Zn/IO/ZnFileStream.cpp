//===- ZnFileStream.cpp - Streams over the C library's FILE ----------------===//
#include "Zn/IO/ZnFileStream.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include <cerrno>

namespace Zn {

//===--- FileStream ----------------------------------------------------------===//

const char* FileStream::className() const { return "FileStream"; }
const char* FileStream::superclassName() const { return "Stream"; }

//===--- FilePointerStream ---------------------------------------------------===//

FilePointerStream::FilePointerStream(String* theName, bool theReadable, bool theWritable, FILE* theFile,
                                     bool theCloseOnDestroy)
    : FileStream(theName, theReadable, theWritable), file_(theFile), closeOnDestroy_(theCloseOnDestroy) {
  // A file opened here only to be read is read through one large buffer:
  // the C library's default (a page) costs a system call every 4 KB.
  if (theReadable && !theWritable && theCloseOnDestroy && theFile) {
    readBuffer_ = static_cast<char*>(Allocate(kReadBufferSize));
    if (readBuffer_ && std::setvbuf(theFile, readBuffer_, _IOFBF, kReadBufferSize) != 0) {
      Free(readBuffer_);
      readBuffer_ = nullptr;
    }
  }
}

FilePointerStream::~FilePointerStream() {
  if (file_ && closeOnDestroy_)
    std::fclose(file_);
  Free(readBuffer_);  // only once the file no longer uses it
}

FilePointerStream* FilePointerStream::createWithFile(String* theName, bool theReadable, bool theWritable,
                                                     FILE* theFile, bool theCloseOnDestroy) {
  if (theFile == nullptr)
    return nullptr;
  return new FilePointerStream(theName, theReadable, theWritable, theFile, theCloseOnDestroy);
}

// Nothing is allocated unless the file opens.
FilePointerStream* FilePointerStream::open(const char* thePath, const char* theMode, bool theReadable,
                                           bool theWritable) {
  FILE* file = std::fopen(thePath, theMode);
  if (file == nullptr)
    return nullptr;
  auto name = adopt(String::createWithBytes(thePath, -1, kStringEncodingUTF8));
  return new FilePointerStream(name.get(), theReadable, theWritable, file, true);
}

FilePointerStream* FilePointerStream::createForReading(const char* thePath) {
  return open(thePath, "rb", true, false);
}

FilePointerStream* FilePointerStream::createForReading(const String* thePath) {
  auto path = adopt(thePath->createTerminatedData(kStringEncodingUTF8));
  FILE* file = std::fopen(reinterpret_cast<const char*>(path->getBytesPtr()), "rb");
  return createWithFile(const_cast<String*>(thePath), true, false, file, true);
}

FilePointerStream* FilePointerStream::createForWriting(const char* thePath, bool theAppend) {
  return open(thePath, theAppend ? "ab" : "wb", false, true);
}

FilePointerStream* FilePointerStream::createForReadingAndWriting(const char* thePath) {
  return open(thePath, "rwb", true, true);
}

FilePointerStream* FilePointerStream::createStandardInput() {
  auto name = adopt(new String("stdin"));
  return createWithFile(name.get(), true, false, stdin, false);
}

FilePointerStream* FilePointerStream::createStandardOutput() {
  auto name = adopt(new String("stdout"));
  return createWithFile(name.get(), false, true, stdout, false);
}

FilePointerStream* FilePointerStream::createStandardError() {
  auto name = adopt(new String("stderr"));
  return createWithFile(name.get(), false, true, stderr, false);
}

bool FilePointerStream::setPosition(int64_t thePosition) {
  if (getLength() < thePosition && !isWritable())
    return false;
  // The C library's offset is a long: 32 bits on the target.
  if (std::fseek(file_, long(thePosition), SEEK_SET) != 0)
    return false;
  position_ = thePosition;
  return true;
}

int64_t FilePointerStream::getLength() {
  if (length_ >= 0)
    return length_;
  int64_t position = position_;
  // A pipe cannot seek: the length stays unknown and is tried again later.
  if (std::fseek(file_, 0, SEEK_END) != 0)
    return length_;
  long length = std::ftell(file_);
  if (length >= 0) {
    length_ = length;
    setPosition(position);
  } else {
    // Without a length setPosition would measure again; seek back directly.
    std::fseek(file_, long(position), SEEK_SET);
  }
  return length_;
}

ZnIndex FilePointerStream::read(uint8_t* theBuffer, ZnIndex theCount, double) {
  if (theCount <= 0)
    return 0;
  ZnIndex got = ZnIndex(std::fread(theBuffer, 1, Sys::size_t(theCount), file_));
  position_ += got;
  return got;
}

ZnIndex FilePointerStream::write(const uint8_t* theBuffer, ZnIndex theCount) {
  if (theCount <= 0)
    return 0;
  errno = 0;
  ZnIndex put = ZnIndex(std::fwrite(theBuffer, 1, Sys::size_t(theCount), file_));
  if (put < theCount && error_ == 0)
    error_ = errno != 0 ? int32_t(errno) : EIO;
  position_ += put;
  if (length_ >= 0 && length_ < position_)
    length_ = position_;
  return put;
}

bool FilePointerStream::flush() {
  errno = 0;
  if (std::fflush(file_) == 0 && !std::ferror(file_))
    return true;
  if (error_ == 0)
    error_ = errno != 0 ? int32_t(errno) : EIO;
  return false;
}

void FilePointerStream::clearError() {
  error_ = 0;
  std::clearerr(file_);
}

const char* FilePointerStream::className() const { return "FilePointerStream"; }
const char* FilePointerStream::superclassName() const { return "FileStream"; }
} // namespace Zn
