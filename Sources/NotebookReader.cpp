//===- NotebookReader.cpp - Reads one notebook document, or says why not --===//
#include "NotebookReader.h"
#include "Kx/KxExprParser.h"
#include "Kx/KxNumber.h"
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnReader.h"
#include "Zn/IO/ZnStream.h"

using Zn::adopt;
using Zn::Kx::Expr;
using Zn::Kx::ExprParser;

namespace {
/// Keeps the assertion context for the time of one parse, whatever way the
/// parse ends.
class AssertionContextScope {
public:
  explicit AssertionContextScope(Zn::String* theContext) { Zn::SetAssertionContext(theContext); }
  ~AssertionContextScope() { Zn::SetAssertionContext(nullptr); }
};

/// The first characters of a notebook of the old plain-text format (its
/// versions 1 and 2): the whole file is one comment that opens so.
const char kOldFormatStart[] = "(*^";

/// Whether the input starts with theExpected (at most 7 characters). What
/// was read is put back, so the parser still sees everything.
bool StartsWith(Zn::Reader* theReader, const char* theExpected) {
  ZnUnichar read[8];
  int32_t count = 0;
  bool matches = true;
  for (; theExpected[count] != '\0'; ++count) {
    ZnAssert(count < 8, count);
    if (!theReader->readCharacter(&read[count])) {
      matches = false;
      break;
    }
    if (read[count] != ZnUnichar(theExpected[count])) {
      matches = false;
      ++count;
      break;
    }
  }
  // The reader gives back the last character put back first.
  while (count > 0)
    theReader->unreadCharacter(read[--count]);
  return matches;
}

/// +1. How the top expression reads in a refusal: the head with "[...]" for
/// a compound, the name of a symbol, or the kind of any other atom.
Zn::String* DescribeTop(Expr* theExpr) {
  if (auto symbol = dynamic_cast<Zn::Kx::Symbol*>(theExpr))
    return Zn::StringWithFormat("%@", symbol->getName());
  if (!theExpr->isAtom()) {
    if (auto head = dynamic_cast<Zn::Kx::Symbol*>(theExpr->head()))
      return Zn::StringWithFormat("%@[...]", head->getName());
    return new Zn::String("a compound expression");
  }
  if (dynamic_cast<Zn::Kx::CharacterString*>(theExpr))
    return new Zn::String("a string");
  if (dynamic_cast<Zn::Kx::Number*>(theExpr))
    return new Zn::String("a number");
  return new Zn::String("an atom");
}

/// +1. Why theParser gave no expression.
Zn::String* DescribeFailure(const ExprParser* theParser) {
  const Zn::SourceRange& range = theParser->getFailureRange();
  // The reader's column counts the characters before the place on the
  // first line, and the line break as well on every later one.
  const long line = long(int32_t(range.startLine + 1));
  const long column = long(int32_t(range.startColumn + (range.startLine == 0 ? 1 : 0)));
  if (theParser->getFailure() == ExprParser::Failure::kTooDeep)
    return Zn::StringWithFormat("nested deeper than %ld levels at line %ld, column %ld",
                                long(Zn::Kx::kMaxNestingDepth), line, column);
  const Zn::String* message = theParser->getFailureMessage();
  if (!message)
    return new Zn::String("syntax error");
  // The grammar's own messages begin "syntax error, "; the lexer's name
  // what was cut short.
  if (message->indexOfCString("syntax error", true, 0) == 0)
    return Zn::StringWithFormat("%@ at line %ld, column %ld", message, line, column);
  return Zn::StringWithFormat("syntax error, %@ at line %ld, column %ld", message, line, column);
}
} // namespace

Expr* ReadNotebook(Zn::Stream* theStream, Zn::Ref<Zn::String>* theReason) {
  auto encoding = adopt(Zn::StringEncodingWithID(Zn::kStringEncodingUTF8));
  auto reader = adopt(new Zn::StreamReader(theStream, encoding.get()));
  ZnUnichar first = 0;
  // Empty input, and below input of only white space and comments.
  if (!reader->peekCharacter(&first)) {
    *theReason = adopt(new Zn::String("empty input"));
    return nullptr;
  }
  // HTML, XML and other files that are plainly no notebook are refused
  // before the parser sees them.
  if (first == '<' || first == '%') {
    *theReason = adopt(new Zn::String(first == '<' ? "not a notebook: it begins with \"<\""
                                                   : "not a notebook: it begins with \"%\""));
    return nullptr;
  }
  // Such a file parses as a comment and whatever its initialization cells
  // left outside it; say what it is rather than what the parser makes of it.
  if (StartsWith(reader.get(), kOldFormatStart)) {
    *theReason = adopt(new Zn::String("old plain-text notebook format, which is not read"));
    return nullptr;
  }

  Zn::Ref<Expr> notebook;
  {
    auto context = adopt(Zn::StringWithFormat("Error while processing file %@:\n\n", theStream->getName()));
    AssertionContextScope scope(context.get());
    auto parser = adopt(new ExprParser(reader.get()));
    parser->setReportsErrors(false);
    notebook = adopt(parser->parse());
    if (!notebook) {
      *theReason = adopt(DescribeFailure(parser.get()));
      return nullptr;
    }
    if (parser->wasBlank()) {
      *theReason = adopt(new Zn::String("empty input"));
      return nullptr;
    }
  }
  auto head = dynamic_cast<Zn::Kx::Symbol*>(notebook->isAtom() ? nullptr : notebook->head());
  if (!head || head->getName()->compareToCString("Notebook", true) != 0) {
    auto top = adopt(DescribeTop(notebook.get()));
    *theReason = adopt(Zn::StringWithFormat("the top expression is %@, not Notebook[...]", top.get()));
    return nullptr;
  }
  return notebook.leak();
}
