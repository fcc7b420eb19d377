//===- NotebookMarkdownIndexer.cpp - Renders a notebook as Markdown -------===//
#include "NotebookMarkdownIndexer.h"
#include "IndexerVocabulary.h"
#include "Kx/KxEncoding.h"
#include "Kx/KxExpr.h"
#include "Kx/KxSymbol.h"
#include "NotebookSummary.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/IO/ZnWriter.h"

using Zn::adopt;
using Zn::retained;
using Zn::Kx::Expr;
using Block = MarkdownWriter::Block;
using Shape = MarkdownWriter::Shape;

namespace {

const char kBullet[] = "- ";
const char kNumber[] = "1. ";

/// The text of a string or the name of a symbol; null for anything else.
/// Borrowed.
Zn::String* wordOf(const Expr* theExpr) {
  if (Zn::String* text = stringText(theExpr))
    return text;
  auto symbol = theExpr ? theExpr->asSymbol() : nullptr;
  return symbol ? symbol->getName() : nullptr;
}

/// The emphasis that a style box's options ask for: "**" for bold, "*" for
/// italic, "***" for both, or null.
const char* emphasisOf(const Expr* theBox) {
  using namespace Vocabulary;
  bool bold = false;
  bool italic = false;
  for (ZnIndex i = 2; i <= theBox->length(); ++i) {
    Expr* option = theBox->part(i);
    if (isRule(option)) {
      Zn::String* value = wordOf(option->part(2));
      if (FontWeight.matches(option->part(1)))
        bold = Bold.isNameOf(value, false);
      else if (FontSlant.matches(option->part(1)))
        italic = Italic.isNameOf(value, false);
      continue;
    }
    Zn::String* word = wordOf(option);
    bold = bold || Bold.isNameOf(word, false);
    italic = italic || Italic.isNameOf(word, false);
  }
  return bold && italic ? "***" : bold ? "**" : italic ? "*" : nullptr;
}

/// YAML's double-quoted form of theText, which is one line.
void appendQuoted(Zn::MutableString* theYAML, const Zn::String* theText) {
  theYAML->appendCharacter('"');
  for (ZnIndex i = 0; i < theText->length(); ++i) {
    const ZnUnichar c = theText->characterAtIndex(i);
    if (c == '"' || c == '\\')
      theYAML->appendCharacter('\\');
    if (c < 0x20 || c == 0x7F)
      theYAML->appendFormat("\\x%02X", unsigned(c));
    else
      theYAML->appendCharacter(c);
  }
  theYAML->appendCharacter('"');
}
} // namespace

//===--- Life cycle ---------------------------------------------------------===//

NotebookMarkdownIndexer::NotebookMarkdownIndexer(Zn::Stream* theStream) : NotebookTextIndexer(theStream) {
  markdown_ = adopt(new MarkdownWriter(writer_.get()));
  writer_ = Zn::retained<Zn::Writer>(markdown_.get());
  // Greek letters as themselves, as on the page.
  characterEncoding_ = adopt(new Zn::Kx::Encoding(Zn::Kx::Encoding::kHTMLFlags));
}

NotebookMarkdownIndexer::~NotebookMarkdownIndexer() = default;

const char* NotebookMarkdownIndexer::className() const { return "NotebookMarkdownIndexer"; }
const char* NotebookMarkdownIndexer::superclassName() const { return "NotebookTextIndexer"; }

void NotebookMarkdownIndexer::resetDocumentState() {
  NotebookTextIndexer::resetDocumentState();
  markdown_->reset();
  cellKind_ = CellKind::kText;
  outlineRanks_ = 0;
  listDepth_ = 0;
}

bool NotebookMarkdownIndexer::isPage(const IndexContext& theContext) const {
  return theContext.writer.get() == markdown_.get();
}

//===--- Document and cells ------------------------------------------------===//

void NotebookMarkdownIndexer::beginDocument(Expr* theNotebook) {
  NotebookSummary summary = SummarizeNotebook(theNotebook, *this);
  outlineRanks_ = summary.outlineRanks;
  const ZnIndex authors = summary.authors->getCount();
  if (!summary.title && authors == 0)
    return;
  auto yaml = adopt(new Zn::MutableString(128));
  yaml->appendCString("---\n");
  if (summary.title) {
    yaml->appendCString("title: ");
    appendQuoted(yaml.get(), summary.title.get());
    yaml->appendCharacter(10);
  }
  if (authors == 1) {
    yaml->appendCString("author: ");
    appendQuoted(yaml.get(), static_cast<Zn::String*>(summary.authors->objectAtIndex(0)));
    yaml->appendCharacter(10);
  } else if (authors > 1) {
    yaml->appendCString("author:\n");
    for (ZnIndex i = 0; i < authors; ++i) {
      yaml->appendCString("  - ");
      appendQuoted(yaml.get(), static_cast<Zn::String*>(summary.authors->objectAtIndex(i)));
      yaml->appendCharacter(10);
    }
  }
  yaml->appendCString("---");
  markdown_->putOutside(yaml.get());
}

void NotebookMarkdownIndexer::endDocument(Expr*) { markdown_->finishDocument(); }

Block NotebookMarkdownIndexer::listBlock(int32_t theLevel, const char* theMarker) {
  // A sub-item with no item above it is an item of the level there is: four
  // blanks before a marker with no list to nest in would start code.
  const int32_t level = theLevel < listDepth_ ? theLevel : listDepth_;
  Block block;
  block.shape = Shape::kListItem;
  block.marker = theMarker;
  for (int32_t i = 0; i < level; ++i)
    block.indent += listWidths_[i];
  listWidths_[level] = int32_t(Zn::StringLength(theMarker));
  listDepth_ = level + 1;
  return block;
}

Block NotebookMarkdownIndexer::listParagraphBlock(int32_t theLevel) {
  Block block;
  if (listDepth_ == 0)
    return block;
  const int32_t level = theLevel < listDepth_ ? theLevel : listDepth_ - 1;
  for (int32_t i = 0; i <= level; ++i)
    block.indent += listWidths_[i];
  listDepth_ = level + 1;
  return block;
}

Block NotebookMarkdownIndexer::blockForStyle(Zn::String* theStyle, bool theIsCode) {
  using namespace Vocabulary;
  struct ListStyle {
    Constant* style;
    int32_t level;
    const char* marker; // null for a paragraph of the item
  };
  static const ListStyle kListStyles[] = {
      {&Item, 0, kBullet},        {&ItemNumbered, 0, kNumber},        {&ItemParagraph, 0, nullptr},
      {&Subitem, 1, kBullet},     {&SubitemNumbered, 1, kNumber},     {&SubitemParagraph, 1, nullptr},
      {&Subsubitem, 2, kBullet},  {&SubsubitemNumbered, 2, kNumber},  {&SubsubitemParagraph, 2, nullptr},
  };
  for (const ListStyle& list : kListStyles) {
    if (!list.style->isNameOf(theStyle))
      continue;
    cellKind_ = CellKind::kListItem;
    if (!list.marker)
      return listParagraphBlock(list.level);
    return listBlock(list.level, list.marker);
  }
  listDepth_ = 0;
  Block block;
  if (const int32_t rank = OutlineRank(theStyle); rank >= 0) {
    cellKind_ = CellKind::kHeading;
    block.shape = Shape::kHeading;
    // A level that the notebook skips takes no number: a notebook of
    // sections and subsections is "#" and "##".
    int32_t level = 1;
    for (int32_t higher = 0; higher < rank; ++higher)
      level += (outlineRanks_ >> higher) & 1;
    block.level = level < 1 ? 1 : level > 6 ? 6 : level;
    return block;
  }
  if (theIsCode) {
    cellKind_ = CellKind::kCode;
    block.shape = Shape::kFence;
    return block;
  }
  if (Output.isNameOf(theStyle) || Print.isNameOf(theStyle) || Message.isNameOf(theStyle) ||
      Echo.isNameOf(theStyle)) {
    cellKind_ = CellKind::kOutput;
    block.shape = Shape::kFence;
    block.info = "output";
    return block;
  }
  cellKind_ = CellKind::kText;
  return block;
}

void NotebookMarkdownIndexer::beginCell(Expr*, const IndexContext& theContext) {
  markdown_->beginBlock(blockForStyle(theContext.cellStyle.get(), theContext.codeStyle));
}

void NotebookMarkdownIndexer::endCell(Expr*, const IndexContext&) {
  markdown_->endBlock();
  cellKind_ = CellKind::kText;
}

void NotebookMarkdownIndexer::writeCellSeparator(const IndexContext&) {}

//===--- Boxes --------------------------------------------------------------===//

void NotebookMarkdownIndexer::indexCell(Expr* theCell, const IndexContext& theContext) {
  if (theContext.inCellList || !isPage(theContext) || markdown_->isVerbatim())
    return NotebookTextIndexer::indexCell(theCell, theContext);
  Zn::Writer::Separator trailing;
  auto text = adopt(renderBox(theCell->part(1), theContext, trailing));
  auto code = adopt(CopySingleLine(text.get()));
  Zn::Writer* writer = theContext.writer.get();
  // One that writes nothing (a picture) still stands between two words.
  if (code->length() == 0)
    return writer->requestSeparator(Zn::Writer::kSpaceSeparator);
  // Blanks at its ends stay outside the span, between it and the words
  // around it.
  auto isSpace = [](ZnUnichar c) { return c == ' ' || c == 9 || c == 10 || c == 13; };
  if (isSpace(text->characterAtIndex(0)))
    writer->requestSeparator(Zn::Writer::kSpaceSeparator);
  writer->flushSeparator('`');
  markdown_->putCodeSpan(code.get());
  writer->requestSeparator(isSpace(text->characterAtIndex(text->length() - 1)) ? Zn::Writer::kSpaceSeparator
                                                                                 : trailing);
}

void NotebookMarkdownIndexer::indexStyleBox(Expr* theBox, const IndexContext& theContext) {
  const char* emphasis = isPage(theContext) && !markdown_->isVerbatim() ? emphasisOf(theBox) : nullptr;
  if (!emphasis)
    return NotebookTextIndexer::indexStyleBox(theBox, theContext);
  const MarkdownWriter::Mark mark = markdown_->mark();
  NotebookTextIndexer::indexStyleBox(theBox, theContext);
  markdown_->emphasize(mark, emphasis);
}

void NotebookMarkdownIndexer::writeHyperlink(Zn::String* theLabel, Zn::String* theURL,
                                             const IndexContext& theContext) {
  if (!isPage(theContext) || markdown_->isVerbatim())
    return NotebookTextIndexer::writeHyperlink(theLabel, theURL, theContext);
  theContext.writer->flushSeparator('[');
  markdown_->putLink(theLabel, theURL);
}

void NotebookMarkdownIndexer::indexGridBox(Expr* theBox, const IndexContext& theContext) {
  // Tables stand between the blocks of text and output cells; a heading,
  // a list item or code keeps the grid's plain layout.
  if (!isPage(theContext) || (cellKind_ != CellKind::kText && cellKind_ != CellKind::kOutput))
    return NotebookTextIndexer::indexGridBox(theBox, theContext);
  // In output, a grid after other text (a matrix between its brackets)
  // keeps its layout inside the fence.
  if (cellKind_ == CellKind::kOutput && markdown_->holdsText())
    return NotebookTextIndexer::indexGridBox(theBox, theContext);
  if (writeTable(theBox, theContext))
    return;
  if (cellKind_ == CellKind::kOutput)
    return NotebookTextIndexer::indexGridBox(theBox, theContext);
  IndexContext text = theContext;
  text.writer = adopt<Zn::Writer>(new Zn::StringWriter());
  NotebookTextIndexer::indexGridBox(theBox, text);
  auto layout = retained<Zn::String>(static_cast<Zn::StringWriter*>(text.writer.get())->getString());
  markdown_->putFencedText(layout.get(), "");
}

bool NotebookMarkdownIndexer::writeTable(Expr* theBox, const IndexContext& theContext) {
  Expr* rows = theBox->part(1);
  if (!isList(rows) || rows->length() == 0)
    return false;
  const ZnIndex columns = isList(rows->part(1)) ? rows->part(1)->length() : 0;
  if (columns == 0)
    return false;
  for (ZnIndex r = 1; r <= rows->length(); ++r)
    if (!isList(rows->part(r)) || rows->part(r)->length() != columns)
      return false;
  auto table = adopt(new Zn::MutableArray());
  for (ZnIndex r = 1; r <= rows->length(); ++r) {
    auto entries = adopt(new Zn::MutableArray());
    for (ZnIndex c = 1; c <= columns; ++c) {
      auto text = adopt(stringForBox(rows->part(r)->part(c), theContext));
      for (ZnIndex i = 0; i < text->length(); ++i)
        if (text->characterAtIndex(i) == 10 || text->characterAtIndex(i) == 13)
          return false;
      entries->addObject(text.get());
    }
    table->addObject(entries.get());
  }
  markdown_->putTable(table.get());
  return true;
}
