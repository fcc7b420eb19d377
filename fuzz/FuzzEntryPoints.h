//===- FuzzEntryPoints.h - One function per fuzz target --------------------===//
//
// Each function runs one input and returns 0; a fault aborts or trips a
// sanitizer. The fuzz targets call them from LLVMFuzzerTestOneInput, and the
// test suite replays the inputs kept in tests/fuzz-regressions/ through them.
//
//===----------------------------------------------------------------------===//
#pragma once
#include <cstddef>
#include <cstdint>

namespace NbtextFuzz {

/// The escape encoding: decoding whole and in pieces, writing and reading
/// back, escapeString, and the named-character lookups.
int FuzzEscapes(const uint8_t* theData, size_t theSize);
/// A stream reader over an encoding, fed in uneven reads, driven by a
/// script of reader operations and compared with a model of the reader.
int FuzzReader(const uint8_t* theData, size_t theSize);
/// The expression parser over the bytes of a notebook file, then the
/// printer over what it built.
int FuzzParse(const uint8_t* theData, size_t theSize);
/// The bytes of a notebook file converted as nbtext converts a file, by
/// the plain-text renderer.
int FuzzConvertText(const uint8_t* theData, size_t theSize);
/// The same by the HTML renderer.
int FuzzConvertHTML(const uint8_t* theData, size_t theSize);
/// The same by the Markdown renderer.
int FuzzConvertMarkdown(const uint8_t* theData, size_t theSize);
} // namespace NbtextFuzz
