//===- ZnFileDescriptorStream.cpp - Streams over POSIX descriptors --------===//
#include "Zn/IO/ZnFileDescriptorStream.h"
#include <ctime>
#include <sys/select.h>
#include <unistd.h>

namespace Zn {

FileDescriptorStream::FileDescriptorStream(String* theName, int theInputDescriptor, int theOutputDescriptor,
                                           bool theCloseOnDestroy)
    : Stream(theName, theInputDescriptor >= 0, theOutputDescriptor >= 0), inputDescriptor_(theInputDescriptor),
      outputDescriptor_(theOutputDescriptor), closeOnDestroy_(theCloseOnDestroy) {}

FileDescriptorStream::~FileDescriptorStream() {
  if (!closeOnDestroy_)
    return;
  if (inputDescriptor_ >= 0)
    ::close(inputDescriptor_);
  if (outputDescriptor_ >= 0 && outputDescriptor_ != inputDescriptor_)
    ::close(outputDescriptor_);
}

// Whole seconds of the wall clock; only differences are used.
static double Now() { return double(std::time(nullptr)); }

ZnIndex FileDescriptorStream::read(uint8_t* theBuffer, ZnIndex theCount, double theTimeoutSeconds) {
  if (!isReadable())
    return -1;
  if (theTimeoutSeconds < 0)
    return ZnIndex(::read(inputDescriptor_, theBuffer, Sys::size_t(theCount > 0 ? theCount : 0)));
  if (theCount < 1 || inputDescriptor_ >= FD_SETSIZE)
    return 0;
  double now = Now();
  double deadline = now + theTimeoutSeconds;
  double remaining = theTimeoutSeconds;
  ZnIndex got = 0;
  do {
    struct timeval wait;
    wait.tv_sec = time_t(remaining);
    wait.tv_usec = suseconds_t((remaining - double(wait.tv_sec)) * 1e6);
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(inputDescriptor_, &readable);
    if (::select(inputDescriptor_ + 1, &readable, nullptr, nullptr, &wait) != 1 ||
        !FD_ISSET(inputDescriptor_, &readable) || ::read(inputDescriptor_, &theBuffer[got], 1) != 1)
      break;
    ++got;
    now = Now();
    remaining = deadline - now;
  } while (got < theCount && now <= deadline);
  return got;
}

ZnIndex FileDescriptorStream::write(const uint8_t* theBuffer, ZnIndex theCount) {
  if (!isWritable())
    return -1;
  return ZnIndex(::write(outputDescriptor_, theBuffer, Sys::size_t(theCount > 0 ? theCount : 0)));
}

const char* FileDescriptorStream::className() const { return "FileDescriptorStream"; }
const char* FileDescriptorStream::superclassName() const { return "Stream"; }
} // namespace Zn
