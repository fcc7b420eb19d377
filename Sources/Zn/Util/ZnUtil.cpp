//===- ZnUtil.cpp - Log, time and the re-entry guard -----------------------===//
#include "Zn/Util/ZnUtil.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnException.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnFileStream.h"
#include "Zn/IO/ZnWriter.h"
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sys/time.h>

namespace Zn {

void Log(uint32_t theLevel, const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  LogV(theLevel, theFormat, args);
  va_end(args);
}

void LogV(uint32_t, const char* theFormat, va_list theArgs) {
  try {
    // The log file is opened for every line, so lines of many runs
    // accumulate. One that cannot be opened loses the line: the log never
    // fails its caller.
    Ref<FilePointerStream> stream;
    if (const char* path = std::getenv("ZNLOGFILE"))
      stream = adopt(FilePointerStream::createForWriting(path, true));
    else
      stream = adopt(FilePointerStream::createStandardError());
    if (!stream)
      return;
    auto encoding = adopt(StringEncodingWithID(kStringEncodingUTF8));
    auto writer = adopt(new StreamWriter(stream.get(), encoding.get()));

    time_t now = std::time(nullptr);
    struct tm local;
    localtime_r(&now, &local);
    auto line = adopt(new MutableString());
    line->appendFormat("%04d-%02d-%02d %02d:%02d:%02d: ", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                       local.tm_hour, local.tm_min, local.tm_sec);
    line->appendFormatV(theFormat, theArgs);
    // One call, one line, written at once; the message's own line breaks
    // go out as they are.
    if (line->unitAt(line->length() - 1) != 10)
      line->appendCharacter(10);
    writer->writeString(line.get());
    std::fflush(stream->getFile());
  } catch (Exception* theException) {
    auto ignored = adopt(theException);
  }
}

int LogMessage(uint32_t theLevel, const String* theSource, const SourceRange* theRange,
               const String* theMessage) {
  Log(theLevel, "%@ from %ld:%ld-%ld:%ld in %@", theMessage, long(int32_t(theRange->startLine + 1)),
      long(int32_t(theRange->startColumn + 1)), long(int32_t(theRange->endLine + 1)),
      long(int32_t(theRange->endColumn + 1)), theSource);
  return 0;
}

double CurrentTime() {
  struct timeval tv;
  ZnAssertNoError(Sys::gettimeofday(&tv, NULL));
  return double(tv.tv_sec) + double(tv.tv_usec) * 1e-6;
}

void Lock(int32_t* theWord) {
  if (*theWord != 0) {
    // Held already: with one thread this is a re-entrant call. Hang on
    // purpose rather than corrupt what the lock protects.
    volatile int spin = 0;
    while (spin == 0) {
    }
  }
  *theWord = 1;
}

void Unlock(int32_t* theWord) { --*theWord; }
} // namespace Zn
