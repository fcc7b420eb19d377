//===- NotebookReader.h - Reads one notebook document, or says why not ----===//
#pragma once
#include "Zn/Base/ZnRef.h"

namespace Zn {
class Stream;
class String;
namespace Kx {
class Expr;
} // namespace Kx
} // namespace Zn

/// +1. Reads and parses the one document of theStream: the Notebook[...]
/// expression, or null with *theReason set to why the document is refused
/// (short, lower case, fit to follow "could not index file NAME: "). The
/// reasons: empty input (or only white space and comments); an old
/// plain-text notebook, which is not read; markup or other text that begins
/// with "<" or "%"; a syntax error with its line and column; nesting beyond
/// the parser's limit; a top expression that is not Notebook[...].
Zn::Kx::Expr* ReadNotebook(Zn::Stream* theStream, Zn::Ref<Zn::String>* theReason);
