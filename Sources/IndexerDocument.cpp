//===- IndexerDocument.cpp - Reading a document and the notebook's options -===//
#include "SearchIndexer.h"
#include "IndexerVocabulary.h"
#include "Kx/KxExprParser.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnReader.h"
#include "Zn/IO/ZnStream.h"

using Zn::adopt;
using Zn::Kx::Expr;

namespace {
/// Keeps the assertion context for the time of one parse, whatever way the
/// parse ends.
class AssertionContextScope {
public:
  explicit AssertionContextScope(Zn::String* theContext) { Zn::SetAssertionContext(theContext); }
  ~AssertionContextScope() { Zn::SetAssertionContext(nullptr); }
};
} // namespace

bool SearchIndexer::indexStream(Zn::Stream* theStream) {
  auto encoding = adopt(Zn::StringEncodingWithID(Zn::kStringEncodingUTF8));
  auto reader = adopt(new Zn::StreamReader(theStream, encoding.get()));
  ZnUnichar first = 0;
  if (!reader->peekCharacter(&first))
    return false;
  // HTML, XML and other files that are plainly no notebook are refused
  // before the parser sees them.
  if (first == '<' || first == '%')
    return false;

  Zn::Ref<Expr> notebook;
  {
    auto context = adopt(Zn::StringWithFormat("Error while processing file %@:\n\n", theStream->getName()));
    AssertionContextScope scope(context.get());
    notebook = adopt(Zn::Kx::ParseExpression(reader.get()));
  }
  if (!notebook || !Vocabulary::Notebook.isHeadOf(notebook.get()))
    return false;

  resetDocumentState();
  IndexContext context;
  context.writer = writer_;
  readNotebookOptions(notebook.get(), context);
  beginDocument(notebook.get());
  indexCellList(notebook->part(1), context);
  if (sawStyleData_)
    setNotebookKind(Vocabulary::Style.get());
  endDocument(notebook.get());
  return true;
}

void SearchIndexer::readNotebookOptions(Expr* theNotebook, const IndexContext& theContext) {
  using namespace Vocabulary;
  for (ZnIndex i = 2; i <= theNotebook->length(); ++i) {
    Expr* option = theNotebook->part(i);
    if (!isRule(option) || !option->part(1)->asSymbol())
      continue;
    Expr* name = option->part(1);
    Expr* value = option->part(2);
    if (Evaluator.matches(name)) {
      setEvaluator(adopt(value->stringValue()).get());
    } else if (StyleDefinitions.matches(name)) {
      setStyleDefinitions(value);
    } else if (FrontEndVersion.matches(name)) {
      setFrontEndVersion(adopt(value->stringValue()).get());
    } else if (WindowFrame.matches(name)) {
      setWindowFrame(adopt(value->stringValue()).get());
    } else if (WindowClickSelect.matches(name) && False.matches(value)) {
      setNotebookKind(Palette.get());
    } else if (WindowSize.matches(name) && isList(value) && value->length() == 2) {
      setWindowSize(value->doubleValueOfPart(1), value->doubleValueOfPart(2));
    } else if (WindowTitle.matches(name)) {
      IndexContext context = theContext;
      context.showStringCharacters = false;
      setTitle(value, context);
    }
  }
}
