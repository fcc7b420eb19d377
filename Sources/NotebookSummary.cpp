//===- NotebookSummary.cpp - What a page's head says of a notebook --------===//
#include "NotebookSummary.h"
#include "IndexerVocabulary.h"
#include "Kx/KxExpr.h"
#include "SearchIndexer.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Collection/ZnArray.h"

using Zn::adopt;
using Zn::retained;
using Zn::Kx::Expr;

int32_t OutlineRank(const Zn::String* theStyle) {
  using namespace Vocabulary;
  static Constant* const kLevels[kOutlineLevels] = {&Title,      &Chapter,       &Section,
                                                    &Subsection, &Subsubsection, &Subsubsubsection};
  if (!theStyle)
    return -1;
  for (int32_t rank = 0; rank < kOutlineLevels; ++rank)
    if (kLevels[rank]->isNameOf(theStyle))
      return rank;
  return -1;
}

Zn::String* CopySingleLine(const Zn::String* theText) {
  auto line = adopt(new Zn::MutableString(theText->length()));
  bool pendingSpace = false;
  for (ZnIndex i = 0; i < theText->length(); ++i) {
    const ZnUnichar c = theText->characterAtIndex(i);
    if (c == ' ' || c == 9 || c == 10 || c == 13) {
      pendingSpace = line->length() > 0;
      continue;
    }
    if (pendingSpace)
      line->appendCharacter(' ');
    pendingSpace = false;
    line->appendCharacter(c);
  }
  return line.leak();
}

namespace {

class Summarizer {
public:
  Summarizer(SearchIndexer& theRenderer) : renderer_(theRenderer) {
    summary_.authors = adopt(new Zn::MutableArray());
    summary_.keywords = adopt(new Zn::MutableArray());
  }

  NotebookSummary take(Expr* theNotebook) {
    readCells(theNotebook->part(1));
    if (!summary_.title)
      readWindowTitle(theNotebook);
    return summary_;
  }

private:
  /// A cell list (or one element), and the lists of the cell groups in it.
  void readCells(Expr* theCells) {
    if (!isList(theCells))
      return readCell(theCells);
    for (ZnIndex i = 1; i <= theCells->length(); ++i)
      readCell(theCells->part(i));
  }

  void readCell(Expr* theCell) {
    using namespace Vocabulary;
    if (!Cell.isHeadOf(theCell))
      return;
    Expr* contents = theCell->part(1);
    if (CellGroupData.isHeadOf(contents))
      return readCells(contents->part(1));
    Zn::String* style = stringText(theCell->part(2));
    if (!style)
      return;
    if (const int32_t rank = OutlineRank(style); rank >= 0)
      summary_.outlineRanks |= 1u << rank;
    if (Title.isNameOf(style) && !summary_.title) {
      summary_.title = textOf(contents, style);
      if (summary_.title->length() == 0)
        summary_.title = nullptr;
    } else if (Author.isNameOf(style)) {
      addText(summary_.authors.get(), contents, style);
    } else if (Keywords.isNameOf(style)) {
      addText(summary_.keywords.get(), contents, style);
    }
  }

  void readWindowTitle(Expr* theNotebook) {
    Expr* value = optionValue(theNotebook, 2, Vocabulary::WindowTitle);
    if (!stringText(value))
      return;
    IndexContext context;
    context.showStringCharacters = false;
    context.labelsOnly = true;
    auto text = adopt(renderer_.stringForBox(value, context));
    auto line = adopt(CopySingleLine(text.get()));
    if (line->length() > 0)
      summary_.title = line;
  }

  /// The cell's text as the page shows it, on one line.
  Zn::Ref<Zn::String> textOf(Expr* theContents, Zn::String* theStyle) {
    IndexContext context;
    context.insideCell = true;
    context.labelsOnly = true;
    context.cellStyle = retained(theStyle);
    auto text = adopt(renderer_.stringForBox(theContents, context));
    return adopt(CopySingleLine(text.get()));
  }

  void addText(Zn::MutableArray* theTexts, Expr* theContents, Zn::String* theStyle) {
    auto text = textOf(theContents, theStyle);
    if (text->length() > 0)
      theTexts->addObject(text.get());
  }

  SearchIndexer& renderer_;
  NotebookSummary summary_;
};
} // namespace

NotebookSummary SummarizeNotebook(Expr* theNotebook, SearchIndexer& theRenderer) {
  return Summarizer(theRenderer).take(theNotebook);
}
