//===- SearchIndexer.cpp - Life cycle and the operations' defaults --------===//
//
// The walk itself lives in the Indexer*.cpp files beside this one, one
// concern each: IndexerDocument (reading a document and the notebook's
// options), IndexerDispatch (the dispatcher and the generic walks),
// IndexerCells, IndexerAtoms, IndexerBoxes (layout) and IndexerControls.
//
//===----------------------------------------------------------------------===//
#include "SearchIndexer.h"
#include "CodeDecorator.h"
#include "IndexerVocabulary.h"
#include "Kx/KxEncoding.h"
#include "Kx/KxExpr.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/Collection/ZnDictionary.h"
#include "Zn/IO/ZnWriter.h"

using Zn::adopt;
using Zn::retained;
using Zn::Kx::Expr;

//===--- Life cycle -------------------------------------------------------===//

SearchIndexer::SearchIndexer()
    : characterEncoding_(adopt(new Zn::Kx::Encoding(Zn::Kx::Encoding::kTextFlags))) {}

SearchIndexer::~SearchIndexer() = default;

const char* SearchIndexer::className() const { return "SearchIndexer"; }
const char* SearchIndexer::superclassName() const { return "Zn::Object"; }

void SearchIndexer::resetDocumentState() {
  namedCounters_.reset();
  sawStyleData_ = false;
  displayFunctions_ = nullptr;
  templateDepth_ = 0;
  labelDepth_ = 0;
  if (writer_) {
    writer_->cancelSeparator();
    writer_->setIndentLevel(0);
  }
}

//===--- Default operations -----------------------------------------------===//
//
// Extension points: the walk calls each of these where the notebook has
// what it is about; a renderer overrides those it shows.

void SearchIndexer::beginDocument(Expr*) {}
void SearchIndexer::endDocument(Expr*) {}
void SearchIndexer::beginCell(Expr*, const IndexContext&) {}
void SearchIndexer::endCell(Expr*, const IndexContext&) {}
void SearchIndexer::writeText(Zn::String*) {}
void SearchIndexer::writeCellSeparator(const IndexContext& theContext) { theContext.writer->putNewlines(2); }
void SearchIndexer::setTitle(Expr*, const IndexContext&) {}
void SearchIndexer::noteCellText(Expr*, const IndexContext&) {}
void SearchIndexer::setNotebookKind(Zn::Kx::Symbol*) {}
void SearchIndexer::setEvaluator(Zn::String*) {}
void SearchIndexer::noteCellOption(Zn::String*) {}
void SearchIndexer::setStyleDefinitions(Expr*) {}
void SearchIndexer::setFrontEndVersion(Zn::String*) {}
void SearchIndexer::setWindowFrame(Zn::String*) {}
void SearchIndexer::setWindowSize(double, double) {}
void SearchIndexer::countInputCell() {}
void SearchIndexer::countOutputCell() {}
void SearchIndexer::countTitleCell() {}
void SearchIndexer::countCellOption() {}
void SearchIndexer::countGraphics() {}
void SearchIndexer::writeActionMenu(Zn::String*, Zn::Array*, const IndexContext&) {}
void SearchIndexer::writeCheckbox(int32_t, const IndexContext&) {}
void SearchIndexer::writeInputField(Zn::String*, const IndexContext&) {}
void SearchIndexer::writePopupMenu(Zn::Array*, int32_t, const IndexContext&) {}
void SearchIndexer::writeRadioButton(int32_t, const IndexContext&) {}

void SearchIndexer::writeHyperlink(Zn::String* theLabel, Zn::String* theURL, const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writer->putString(theLabel);
  if (theContext.labelsOnly)
    return;
  writer->putBytes(" <");
  writer->putString(theURL);
  writer->putBytes(">");
}

void SearchIndexer::writeButton(Zn::String* theLabel, const IndexContext& theContext) {
  theContext.writer->putString(theLabel);
}

// Scripts in the linear notation: x1, x_(i + 1), x^2, x^(n + 1). A letter
// or digit right after a script would read as part of it: "TX^2 2AX".
void SearchIndexer::writeSubscript(Expr* theScript, const IndexContext& theContext) {
  if (needsGrouping(theScript)) {
    theContext.writer->putCharacter('_');
    walkGrouped(theScript, theContext);
  } else {
    indexBox(theScript, theContext);
  }
  theContext.writer->requestSeparator(Zn::Writer::kWordSeparator);
}

void SearchIndexer::writeSuperscript(Expr* theScript, const IndexContext& theContext) {
  theContext.writer->putCharacter('^');
  walkGrouped(theScript, theContext);
  theContext.writer->requestSeparator(Zn::Writer::kWordSeparator);
}

void SearchIndexer::writeTabView(Zn::Array* theLabels, Zn::Array* theContents, int32_t,
                                 const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writer->putNewlines(1);
  for (ZnIndex i = 0; i < theLabels->getCount(); ++i) {
    indexBox(static_cast<Expr*>(theLabels->objectAtIndex(i)), theContext);
    writer->putNewlines(1);
    indexBox(static_cast<Expr*>(theContents->objectAtIndex(i)), theContext);
    writer->putNewlines(1);
  }
}

//===--- Marking up input code --------------------------------------------===//

bool SearchIndexer::isCodeCell(Expr* theBox) {
  using namespace Vocabulary;
  return Cell.isHeadOf(theBox) && (Input.isNameOf(theBox->part(2)) || Code.isNameOf(theBox->part(2)));
}

Expr* SearchIndexer::decorateBox(Expr* theBox, bool theIsCode) {
  if (theIsCode)
    return DecorateCode(theBox);
  if (!isCodeCell(theBox))
    return retained(theBox).leak();
  return DecorateCodeCell(theBox);
}
