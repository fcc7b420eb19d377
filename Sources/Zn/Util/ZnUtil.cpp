//===- ZnUtil.cpp - Log, time and the re-entry guard -----------------------===//
#include "Zn/Util/ZnUtil.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <sys/time.h>

namespace Zn {

// Appends the units as UTF-8; a lone surrogate is written as its own 3 bytes.
static void AppendUtf8(std::string& theOut, const ZnUnichar* theUnits, ZnIndex theLength) {
  for (ZnIndex i = 0; i < theLength; ++i) {
    uint32_t c = theUnits[i];
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < theLength && theUnits[i + 1] >= 0xDC00 && theUnits[i + 1] < 0xE000)
      c = 0x10000 + ((c - 0xD800) << 10) + (theUnits[++i] - 0xDC00);
    if (c < 0x80) {
      theOut += char(c);
    } else if (c < 0x800) {
      theOut += char(0xC0 | (c >> 6));
      theOut += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      theOut += char(0xE0 | (c >> 12));
      theOut += char(0x80 | ((c >> 6) & 0x3F));
      theOut += char(0x80 | (c & 0x3F));
    } else {
      theOut += char(0xF0 | (c >> 18));
      theOut += char(0x80 | ((c >> 12) & 0x3F));
      theOut += char(0x80 | ((c >> 6) & 0x3F));
      theOut += char(0x80 | (c & 0x3F));
    }
  }
}

void Log(uint32_t theLevel, const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  LogV(theLevel, theFormat, args);
  va_end(args);
}

void LogV(uint32_t, const char* theFormat, va_list theArgs) {
  auto message = adopt(new MutableString());
  message->appendFormatV(theFormat, theArgs);

  time_t now = std::time(nullptr);
  struct tm local;
  localtime_r(&now, &local);
  char prefix[64];
  std::snprintf(prefix, sizeof prefix, "%04d-%02d-%02d %02d:%02d:%02d: ", local.tm_year + 1900,
                local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
  std::string line = prefix;
  AppendUtf8(line, message->getCharactersPtr(), message->length());
  // One call, one line.
  if (line.back() != '\n')
    line += '\n';

  const char* path = std::getenv("ZNLOGFILE");
  if (path == nullptr) {
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
    return;
  }
  // The log file is opened for every line, so lines of many runs accumulate.
  FILE* file = std::fopen(path, "ab");
  if (file == nullptr)
    return;
  std::fwrite(line.data(), 1, line.size(), file);
  std::fclose(file);
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
