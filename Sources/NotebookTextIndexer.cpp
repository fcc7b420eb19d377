//===- NotebookTextIndexer.cpp - Renders a notebook as plain text ---------===//
#include "NotebookTextIndexer.h"
#include "Kx/KxEncoding.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/IO/ZnStream.h"
#include "Zn/IO/ZnTidyWriter.h"
#include "Zn/IO/ZnWriter.h"
#include "Zn/Util/ZnUtil.h"

NotebookTextIndexer::NotebookTextIndexer(Zn::Stream* theStream) {
  ZnAssert(theStream, 0);
  auto encoding = Zn::adopt(Zn::StringEncodingWithID(Zn::kStringEncodingUTF8));
  auto output = Zn::adopt<Zn::Writer>(new Zn::StreamWriter(theStream, encoding.get()));
  // The page's text has no blanks at the ends of lines and no runs of
  // empty lines, whatever boxes wrote nothing between two line ends.
  writer_ = Zn::adopt<Zn::Writer>(new Zn::TidyWriter(output.get()));
}

NotebookTextIndexer::NotebookTextIndexer(Zn::Writer* theWriter) {
  ZnAssert(theWriter, 0);
  writer_ = Zn::retained(theWriter);
}

NotebookTextIndexer* NotebookTextIndexer::createLabelRenderer(Zn::Kx::Encoding* theEncoding) {
  auto renderer = Zn::adopt(new NotebookTextIndexer(Zn::adopt<Zn::Writer>(new Zn::StringWriter()).get()));
  renderer->characterEncoding_ = Zn::retained(theEncoding);
  return renderer.leak();
}

const char* NotebookTextIndexer::className() const { return "NotebookTextIndexer"; }
const char* NotebookTextIndexer::superclassName() const { return "SearchIndexer"; }

void NotebookTextIndexer::writeText(Zn::String* theText) { writer_->putString(theText); }

void NotebookTextIndexer::endDocument(Zn::Kx::Expr*) {
  if (auto tidy = dynamic_cast<Zn::TidyWriter*>(writer_.get()))
    tidy->finishDocument();
}

void NotebookTextIndexer::writeCheckbox(int32_t theState, const IndexContext& theContext) {
  theContext.writer->putBytes(theState == 0 ? " [ ] " : theState == 1 ? " [X] " : " [-] ");
}

void NotebookTextIndexer::writeRadioButton(int32_t theState, const IndexContext& theContext) {
  theContext.writer->putBytes(theState == 0 ? " ( ) " : theState == 1 ? " (*) " : " (-) ");
}

void NotebookTextIndexer::writeInputField(Zn::String* theValue, const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writer->putBytes("|__");
  if (theValue->length() == 0)
    writer->putBytes("____");
  else
    writer->putString(theValue);
  writer->putBytes("__|");
}

void NotebookTextIndexer::writeMenuItems(Zn::Array* theItems, int32_t theSelected, bool theMarked,
                                         const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writer->increaseIndent();
  for (ZnIndex i = 0; i < theItems->getCount(); ++i) {
    writer->putNewlines(1);
    if (theMarked)
      writer->putBytes(i == theSelected ? "* " : "  ");
    writer->putString(static_cast<Zn::String*>(theItems->objectAtIndex(i)));
  }
  writer->decreaseIndent();
  writer->putNewlines(1);
}

void NotebookTextIndexer::writePopupMenu(Zn::Array* theItems, int32_t theSelected, const IndexContext& theContext) {
  writeMenuItems(theItems, theSelected, true, theContext);
}

void NotebookTextIndexer::writeActionMenu(Zn::String* theLabel, Zn::Array* theItems,
                                          const IndexContext& theContext) {
  if (theLabel)
    theContext.writer->putString(theLabel);
  writeMenuItems(theItems, -1, false, theContext);
}
