//===- IndexerDocument.cpp - A document and the notebook's options --------===//
#include "SearchIndexer.h"
#include "IndexerVocabulary.h"
#include "Kx/KxExpr.h"
#include "NotebookReader.h"
#include "Zn/Base/ZnString.h"

using Zn::adopt;
using Zn::Kx::Expr;

bool SearchIndexer::indexStream(Zn::Stream* theStream) {
  refusalReason_ = nullptr;
  auto notebook = adopt(ReadNotebook(theStream, &refusalReason_));
  if (!notebook)
    return false;

  resetDocumentState();
  IndexContext context;
  context.writer = writer_;
  readNotebookOptions(notebook.get(), context);
  // A style sheet's own entries come after those of the one it embeds.
  noteDisplayFunctions(notebook->part(1));
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
      if (Notebook.isHeadOf(value))
        noteDisplayFunctions(value->part(1));
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
