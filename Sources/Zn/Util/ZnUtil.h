//===- ZnUtil.h - Log, time and the re-entry guard -------------------------===//
#pragma once
#include <cstdarg>
#include "Zn/Base/ZnTypes.h"

namespace Zn {
class String;

/// Log levels: the log takes them but does not print them.
constexpr uint32_t kLogLevelError = 0xC0020011;
constexpr uint32_t kLogLevelNestedParseError = 0x80020012;

/// A span of source text: 0-based lines and columns.
struct SourceRange {
  int64_t startLine = 0;
  int64_t startColumn = 0;
  int64_t endLine = 0;
  int64_t endColumn = 0;
};

/// Writes one time-stamped line to standard error, or appends it to the file
/// named by ZNLOGFILE. The format is the string format with "%@". Never fails
/// its caller: a log that cannot be written loses the line.
void Log(uint32_t theLevel, const char* theFormat, ...);
void LogV(uint32_t theLevel, const char* theFormat, va_list theArgs);

/// The default message handler: logs "<message> from l:c-l:c in <source>"
/// with 1-based positions and returns 0 (not handled).
int LogMessage(uint32_t theLevel, const String* theSource, const SourceRange* theRange,
               const String* theMessage);

/// Seconds since the Unix epoch, with microseconds.
double CurrentTime();

/// Guard against re-entry (there is one thread): Lock hangs for good when the
/// word is already held, rather than corrupt the state it protects.
void Lock(int32_t* theWord);
void Unlock(int32_t* theWord);
} // namespace Zn
