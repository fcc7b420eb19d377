//===- SearchIndexer.cpp - Walks a parsed notebook for a renderer ---------===//
#include "SearchIndexer.h"
#include "AtomText.h"
#include "CodeDecorator.h"
#include "IndexerVocabulary.h"
#include "NotebookReader.h"
#include "Kx/KxEncoding.h"
#include "Kx/KxExprParser.h"
#include "Kx/KxFunction.h"
#include "Kx/KxNumber.h"
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/Collection/ZnDictionary.h"
#include "Zn/IO/ZnReader.h"
#include "Zn/IO/ZnStream.h"
#include "Zn/IO/ZnWriter.h"

using Zn::adopt;
using Zn::retained;
using Zn::Kx::Expr;
using Zn::Kx::Head;
using Zn::Kx::HeadSymbol;

namespace {

//===--- Expression helpers -----------------------------------------------===//

/// A string atom of one character that is one of theCharacters.
bool isOneCharacterOf(const Expr* theExpr, const char* theCharacters) {
  Zn::String* text = stringText(theExpr);
  if (!text || text->length() != 1)
    return false;
  for (const char* c = theCharacters; *c; ++c)
    if (text->characterAtIndex(0) == ZnUnichar(*c))
      return true;
  return false;
}

bool hasText(const Zn::String* theText, const char* theASCII) {
  return theText && theText->compareToCString(theASCII, true) == 0;
}

/// The value of the option theName among the arguments from theFirst on:
/// the right side of the first Rule or RuleDelayed whose left side is the
/// symbol. Borrowed; null when absent.
Expr* optionValue(Expr* theBox, ZnIndex theFirst, Vocabulary::Constant& theName) {
  for (ZnIndex i = theFirst; i <= theBox->length(); ++i) {
    Expr* option = theBox->part(i);
    if (isRule(option) && theName.matches(option->part(1)))
      return option->part(2);
  }
  return nullptr;
}

/// Whether theText is an address: it holds "://" or is a mail address.
bool isURL(const Zn::String* theText) {
  return theText->indexOfCString("mailto:", true, 0) == 0 || theText->indexOfCString("://", true, 0) >= 0;
}

/// The graphics options say None for a label that is not there.
const Vocabulary::Word sNone("None");
/// A code style besides Input and Code.
const Vocabulary::Word sInputOnly("InputOnly");

} // namespace

//===--- Scratch text -----------------------------------------------------===//

/// Lends one of the indexer's reusable strings, emptied, for one scope.
class SearchIndexer::Scratch {
public:
  explicit Scratch(SearchIndexer* theIndexer) : indexer_(theIndexer) {
    if (theIndexer->scratchCount_ == 0) {
      string_ = new Zn::MutableString(64);
      return;
    }
    string_ = theIndexer->scratchPool_[--theIndexer->scratchCount_];
    string_->setLength(0);
  }
  ~Scratch() {
    if (indexer_->scratchCount_ < kScratchPoolSize)
      indexer_->scratchPool_[indexer_->scratchCount_++] = string_;
    else
      string_->release();
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  Zn::MutableString* operator->() const { return string_; }
  Zn::MutableString* get() const { return string_; }

private:
  SearchIndexer* indexer_;
  Zn::MutableString* string_;
};

//===--- Life cycle -------------------------------------------------------===//

SearchIndexer::SearchIndexer()
    : characterEncoding_(adopt(new Zn::Kx::Encoding(Zn::Kx::Encoding::kTextFlags))) {}

SearchIndexer::~SearchIndexer() {
  for (ZnIndex i = 0; i < scratchCount_; ++i)
    scratchPool_[i]->release();
}

const char* SearchIndexer::className() const { return "SearchIndexer"; }
const char* SearchIndexer::superclassName() const { return "Zn::Object"; }

//===--- Documents --------------------------------------------------------===//

bool SearchIndexer::indexStream(Zn::Stream* theStream) {
  refusalReason_ = nullptr;
  auto notebook = adopt(ReadNotebook(theStream, &refusalReason_));
  if (!notebook)
    return false;

  readNotebookOptions(notebook.get());
  beginDocument(notebook.get());
  if (styleDataCount_ != 0 && overrides(kSetNotebookKind))
    setNotebookKind(Vocabulary::Style.get());
  if (notebook->length() >= 1) {
    IndexContext context;
    context.writer = writer_;
    indexCellList(notebook->part(1), context);
  }
  endDocument(notebook.get());
  return true;
}

void SearchIndexer::readNotebookOptions(Expr* theNotebook) {
  using namespace Vocabulary;
  for (ZnIndex i = 2; i <= theNotebook->length(); ++i) {
    Expr* option = theNotebook->part(i);
    if (!isRule(option) || !dynamic_cast<Zn::Kx::Symbol*>(option->part(1)))
      continue;
    Expr* name = option->part(1);
    Expr* value = option->part(2);
    if (Evaluator.matches(name) && overrides(kSetEvaluator)) {
      setEvaluator(adopt(value->stringValue()).get());
    } else if (StyleDefinitions.matches(name) && overrides(kSetStyleDefinitions)) {
      setStyleDefinitions(value);
    } else if (FrontEndVersion.matches(name) && overrides(kSetFrontEndVersion)) {
      setFrontEndVersion(adopt(value->stringValue()).get());
    } else if (WindowFrame.matches(name) && overrides(kSetWindowFrame)) {
      setWindowFrame(adopt(value->stringValue()).get());
    } else if (WindowClickSelect.matches(name) && False.matches(value) && overrides(kSetNotebookKind)) {
      setNotebookKind(Palette.get());
    } else if (WindowSize.matches(name) && isList(value) && value->length() == 2 && overrides(kSetWindowSize)) {
      setWindowSize(value->doubleValueOfPart(1), value->doubleValueOfPart(2));
    } else if (WindowTitle.matches(name) && overrides(kSetTitle)) {
      setTitle(adopt(value->stringValue()).get());
    }
  }
}

//===--- The dispatcher ---------------------------------------------------===//

void SearchIndexer::walkArguments(Expr* theBox, ZnIndex theFirst, const IndexContext& theContext) {
  for (ZnIndex i = theFirst; i <= theBox->length(); ++i)
    indexBox(theBox->part(i), theContext);
}

void SearchIndexer::walkPieces(Expr* theBox, ZnIndex theFirst, Zn::Writer::Separator theSeparator,
                               const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  bool wrote = false;
  for (ZnIndex i = theFirst; i <= theBox->length(); ++i) {
    // The separator goes out only if this piece writes something after it.
    if (wrote)
      writer->requestSeparator(theSeparator);
    const uint32_t before = writer->getPutCount();
    indexBox(theBox->part(i), theContext);
    wrote = wrote || writer->getPutCount() != before;
  }
  // One asked for after the last piece that wrote is no longer wanted; one
  // asked for before these pieces stays until something is written.
  if (wrote)
    writer->cancelSeparator();
}

namespace {
using namespace Vocabulary;
// The groups of heads that the dispatcher treats alike. Tables rather than
// lists on the stack keep the dispatcher's frame small: it is entered once
// per level of the deepest boxes.
const Word* const kControlsWithoutQuotes[] = {&ActionMenuBox, &CheckboxBox, &InsetBox,  &PopupMenuBox,
                                              &SetterBox,     &TabViewBox,  &TooltipBox};
const Word* const kProduceNothing[] = {
    &ArrowBox,          &Arrow3DBox,   &BezierCurve3DBox, &BezierCurveBox,       &BSplineCurve3DBox,
    &BSplineCurveBox,   &CircleBox,    &ColorSetterBox,   &CompressedData,       &ConeBox,
    &CuboidBox,         &CylinderBox,  &DiskBox,          &ErrorBox,             &LineBox,
    &Line3DBox,         &OpenerBox,    &PointBox,         &Point3DBox,           &PolygonBox,
    &Polygon3DBox,      &ProgressIndicatorBox, &RasterBox, &RectangleBox,        &Slider2DBox,
    &SliderBox,         &SphereBox,    &TogglerBox,       &AbsoluteDashing,      &AbsolutePointSize,
    &AbsoluteThickness, &Arrowheads,   &CMYKColor,        &Dashing,              &Directive,
    &EdgeForm,          &FaceForm,     &GrayLevel,        &Hue,                  &Opacity,
    &PointSize,         &RGBColor,     &Thickness,        &TubeBox};
const Word* const kShowFirstArgument[] = {
    &AdjustmentBox, &AffineTransformBox, &AnimatorBox, &FormBox, &FrameBox, &GeometricTransformationBox,
    &GeometricTransformation3DBox, &GridBox, &InsetBox, &InterpretationBox, &ItemBox, &PaneBox,
    &RotationBox, &TagBox, &TemplateBox, &Text3DBox};
const Word* const kShowSecondArgument[] = {&GraphicsComplexBox, &GraphicsComplex3DBox, &LocatorBox,
                                           &LocatorPaneBox};

template <size_t N> bool isAnyOf(const Word* const (&theWords)[N], const Expr* theHead, uint32_t theHash) {
  for (const Word* word : theWords)
    if (word->matches(theHead, theHash))
      return true;
  return false;
}
} // namespace

void SearchIndexer::indexBox(Expr* theBox, const IndexContext& theContext) {
  using namespace Vocabulary;
  if (theBox->isAtom()) {
    indexString(theBox, theContext);
    return;
  }
  Expr* head = theBox->head();
  const uint32_t hash = head->hash();
  auto is = [head, hash](Constant& theName) { return theName.matches(head, hash); };

  // Only the controls and the text containers change the context; their
  // copies are made in helpers, so that this frame stays small.
  if (theContext.showStringCharacters && isAnyOf(kControlsWithoutQuotes, head, hash))
    return indexWithoutQuotes(theBox, theContext);
  const IndexContext* context = &theContext;

  if (is(Cell))
    return indexCell(theBox, *context);
  if (is(Dynamic) || is(DynamicBox))
    return indexDynamicBox(theBox, *context);
  if (is(DynamicModuleBox))
    return indexDynamicModuleBox(theBox, *context);
  if (is(ActionMenuBox))
    return indexActionMenuBox(theBox, *context);
  if (is(ButtonBox))
    return indexButtonBox(theBox, *context);
  if (is(CheckboxBox))
    return indexCheckboxBox(theBox, *context);
  if (is(InputFieldBox))
    return indexInputFieldBox(theBox, *context);
  if (is(PanelBox))
    return indexPanelBox(theBox, *context);
  if (is(PaneSelectorBox))
    return indexPaneSelectorBox(theBox, *context);
  if (is(PopupMenuBox))
    return indexPopupMenuBox(theBox, *context);
  if (is(RadioButtonBox))
    return indexRadioButtonBox(theBox, *context);
  if (is(SetterBox))
    return indexSetterBox(theBox, *context);
  if (is(TabViewBox))
    return indexTabViewBox(theBox, *context);
  if (is(RowBox))
    return indexRowBox(theBox, *context);
  if (is(CounterBox))
    return indexCounterBox(theBox, *context);
  if (is(FractionBox))
    return indexFractionBox(theBox, *context);
  if (is(GridBox))
    return indexGridBox(theBox, *context);
  if (is(RadicalBox))
    return indexRadicalBox(theBox, *context);
  if (is(SqrtBox))
    return indexSqrtBox(theBox, *context);
  if (is(StyleBox))
    return indexStyleBox(theBox, *context);
  if (is(SubscriptBox))
    return indexSubscriptBox(theBox, *context);
  if (is(SuperscriptBox))
    return indexSuperscriptBox(theBox, *context);
  if (is(GraphicsBox) || is(Graphics3DBox)) {
    indexGraphicsBox(theBox, *context);
    return countGraphics();
  }
  if (is(GraphicsData)) {
    indexGraphicsData(theBox, *context);
    return countGraphics();
  }
  if (is(BoxData) || is(TextData))
    return indexTextContainer(theBox, *context);
  if (isAnyOf(kProduceNothing, head, hash))
    return;
  if (is(CellGroupData) && !context->insideCell) {
    // The group's second argument is its open or closed state.
    if (theBox->length() >= 1)
      indexCellList(theBox->part(1), *context);
    return;
  }
  if (is(CellGroupData) || isAnyOf(kShowFirstArgument, head, hash)) {
    // The wrappers keep their interpretation, tag or options after the
    // first argument.
    if (theBox->length() >= 1)
      indexBox(theBox->part(1), *context);
    return;
  }
  if (is(StyleData)) {
    ++styleDataCount_;
    return;
  }
  if (isAnyOf(kShowSecondArgument, head, hash)) {
    if (theBox->length() >= 2)
      indexBox(theBox->part(2), *context);
    return;
  }
  // A setting is not content: the general walk writes nothing of a rule.
  if (isHead(theBox, Head::Rule) || isHead(theBox, Head::RuleDelayed))
    return;
  walkPieces(theBox, 1, Zn::Writer::kSpaceSeparator, *context);
}

void SearchIndexer::indexWithoutQuotes(Expr* theBox, const IndexContext& theContext) {
  IndexContext context = theContext;
  context.showStringCharacters = false;
  indexBox(theBox, context);
}

void SearchIndexer::indexTextContainer(Expr* theBox, const IndexContext& theContext) {
  IndexContext context = theContext;
  context.textMode = false;
  const bool boxes = Vocabulary::BoxData.isHeadOf(theBox);
  context.insideBoxData = context.insideBoxData || boxes;
  // Outside code, the boxes show a string as the page does: without its
  // quotes, its escapes resolved.
  if (boxes && !context.codeStyle)
    context.showStringCharacters = false;
  for (ZnIndex i = 1; i <= theBox->length(); ++i) {
    Expr* contents = theBox->part(i);
    if (!isList(contents))
      indexBox(contents, context);
    else if (boxes)
      // The expressions of a cell, each on its own line.
      walkPieces(contents, 1, Zn::Writer::kLineSeparator, context);
    else
      // The runs of one text, written together.
      walkArguments(contents, 1, context);
  }
}

// A menu's labels are rendered into strings, and a label may hold another
// menu: each level copies all the text of the levels inside it, and the
// menu's indentation makes that text grow with the square of the height. A
// tower of such controls, which no real notebook holds, would take time by
// the cube of its height; below this many levels its labels are empty.
constexpr ZnIndex kMaxNestedLabels = 32;

Zn::String* SearchIndexer::stringForBox(Expr* theBox, const IndexContext& theContext) {
  auto text = adopt(new Zn::MutableString(32));
  if (labelDepth_ >= kMaxNestedLabels)
    return text.leak();
  struct Nesting {
    ZnIndex& depth;
    ~Nesting() { --depth; }
  } nesting{++labelDepth_};
  IndexContext context = theContext;
  context.writer = adopt(new Zn::StringWriter(text.get()));
  indexBox(theBox, context);
  return text.leak();
}

//===--- Atoms ------------------------------------------------------------===//

void SearchIndexer::indexString(Expr* theLeaf, const IndexContext& theContext) {
  auto symbol = theLeaf->asSymbol();
  if (symbol && symbol->isEqual(HeadSymbol(Head::Null)))
    return;
  if (symbol) {
    // The context (up to the last backquote) is no part of what a reader sees.
    Zn::String* name = symbol->getName();
    const ZnUnichar* units = name->getCharactersPtr();
    ZnIndex start = name->length();
    while (start > 0 && units[start - 1] != '`')
      --start;
    writeAtomText(units + start, name->length() - start, theContext);
    return;
  }
  Zn::String* text = stringText(theLeaf);
  if (!text) {
    auto value = adopt(theLeaf->stringValue());
    writeResolvedText(value->getCharactersPtr(), value->length(), theContext);
    return;
  }
  const ZnUnichar* units = text->getCharactersPtr();
  ZnIndex length = text->length();
  // Outside code the page shows numbers without their precision marks, be
  // the string one number or a run of linear syntax that holds some.
  Scratch unmarked(this);
  if (theContext.insideBoxData && !theContext.codeStyle &&
      AtomText::dropNumberMarks(units, length, unmarked.get())) {
    units = unmarked->getCharactersPtr();
    length = unmarked->length();
  }
  if (!theContext.showStringCharacters) {
    // Where string characters are hidden, string literals lose their quotes
    // and their own escapes resolve: a string that holds one literal,
    // written "\"...\"", or a run of linear syntax in which literals stand
    // with their quotes among other text ("size "2"X").
    Scratch value(this);
    AtomText::resolveEscapes(units, length, value.get());
    if (AtomText::isOneStringLiteral(value->getCharactersPtr(), value->length())) {
      writeAtomText(value->getCharactersPtr() + 1, value->length() - 2, theContext);
      return;
    }
    if (AtomText::holdsStringLiterals(units, length)) {
      ZnIndex written = 0;
      ZnIndex start = 0;
      ZnIndex end = 0;
      while (AtomText::findStringLiteral(units, length, written, &start, &end)) {
        writeAtomText(units + written, start - written, theContext);
        writeAtomText(units + start + 1, end - start - 2, theContext);
        written = end;
      }
      writeAtomText(units + written, length - written, theContext);
      return;
    }
  }
  writeAtomText(units, length, theContext);
}

void SearchIndexer::writeResolvedText(const ZnUnichar* theCharacters, ZnIndex theLength,
                                      const IndexContext& theContext) {
  if (theLength == 0)
    return;
  // Text that the encoding leaves as it is goes out without a copy.
  if (characterEncoding_->plainLength(theCharacters, theLength) == theLength) {
    theContext.writer->putCharacters(theCharacters, theLength);
    return;
  }
  Scratch out(this);
  characterEncoding_->escapeString(theCharacters, theLength, out.get());
  theContext.writer->putCharacters(out->getCharactersPtr(), out->length());
}

void SearchIndexer::writeAtomText(const ZnUnichar* theText, ZnIndex theLength, const IndexContext& theContext) {
  // Without a backslash there is no escape to resolve and no box group.
  ZnIndex backslash = 0;
  while (backslash < theLength && theText[backslash] != '\\')
    ++backslash;
  if (backslash == theLength) {
    writeResolvedText(theText, theLength, theContext);
    return;
  }
  // Box groups can only be found once the escapes around them are resolved:
  // a group inside a string inside a string is written "\\!\\(...\\)".
  Scratch resolved(this);
  AtomText::resolveEscapes(theText, theLength, resolved.get());
  const ZnUnichar* text = resolved->getCharactersPtr();
  const ZnIndex length = resolved->length();
  ZnIndex written = 0;
  ZnIndex start = 0;
  ZnIndex end = 0;
  for (ZnIndex from = 0; AtomText::findBoxGroup(text, length, from, &start, &end);) {
    Zn::Ref<Expr> box = adopt(AtomText::parseBoxGroup(text + start, end - start));
    if (!box) {
      from = start + 1;
      continue;
    }
    writeResolvedText(text + written, start - written, theContext);
    indexBox(box.get(), theContext);
    written = from = end;
  }
  writeResolvedText(text + written, length - written, theContext);
}

//===--- Cells ------------------------------------------------------------===//

void SearchIndexer::indexCellList(Expr* theCells, const IndexContext& theContext) {
  IndexContext cells = theContext;
  cells.inCellList = true;
  if (!isList(theCells))
    return indexBox(theCells, Vocabulary::Cell.isHeadOf(theCells) ? cells : theContext);
  for (ZnIndex i = 1; i <= theCells->length(); ++i) {
    Expr* element = theCells->part(i);
    indexBox(element, Vocabulary::Cell.isHeadOf(element) ? cells : theContext);
  }
}

void SearchIndexer::indexCell(Expr* theCell, const IndexContext& theContext) {
  using namespace Vocabulary;
  // A cell inside another cell's contents is part of that cell's text: only
  // its contents show, where it stands.
  if (!theContext.inCellList) {
    if (theCell->length() >= 1)
      indexBox(theCell->part(1), theContext);
    return;
  }
  IndexContext context = theContext;
  context.inCellList = false;
  Expr* contents = theCell->length() >= 1 ? theCell->part(1) : nullptr;
  // A cell group's cells are cells of the notebook in their turn.
  context.insideCell = !CellGroupData.isHeadOf(contents);
  // Every cell starts flush left, whatever brackets earlier cells left open.
  Zn::Writer* writer = theContext.writer.get();
  writer->setIndentLevel(0);
  if (theCell->length() < 2) {
    if (contents)
      indexBox(contents, context);
    writer->setIndentLevel(0);
    return;
  }
  context.cell = retained(theCell);
  // Whatever stands second and is not a string (an option, say) leaves the
  // cell without a style name; it is a cell of the notebook all the same.
  Zn::String* styleName = stringText(theCell->part(2));
  context.cellStyle = styleName ? retained(styleName) : adopt(new Zn::String());
  Zn::String* style = context.cellStyle.get();
  context.codeStyle = Input.isNameOf(style) || Code.isNameOf(style) || sInputOnly.isNameOf(style);

  namedCounters_.countCell(style);

  beginCell(theCell, context);
  if (Input.isNameOf(style))
    countInputCell();
  else if (Output.isNameOf(style))
    countOutputCell();
  if (Title.isNameOf(style)) {
    countTitleCell();
    if (overrides(kSetTitle))
      setTitle(adopt(stringForBox(contents, context)).get());
  } else if ((hasText(style, "Subtitle") || hasText(style, "Section") || hasText(style, "Subsection")) &&
             overrides(kNoteCellText)) {
    noteCellText(adopt(stringForBox(contents, context)).get());
  }
  readCellOptions(theCell);

  indexBox(contents, context);
  // The separator's line ends are indented like any: the next cell's first
  // line must not inherit this cell's open brackets.
  writer->setIndentLevel(0);
  if (CellGroupData.isHeadOf(contents) || GraphicsData.isHeadOf(contents))
    return;
  endCell(theCell, context);
  writeCellSeparator(context);
}

void SearchIndexer::readCellOptions(Expr* theCell) {
  using namespace Vocabulary;
  for (ZnIndex i = 3; i <= theCell->length(); ++i) {
    Expr* option = theCell->part(i);
    if (!isRule(option))
      continue;
    Expr* name = option->part(1);
    Expr* value = option->part(2);
    if (Evaluator.matches(name)) {
      if (overrides(kSetEvaluator))
        setEvaluator(adopt(value->stringValue()).get());
    } else if (CellTags.matches(name) || InitializationCell.matches(name) || Author.matches(name)) {
      countCellOption();
      if (stringText(value) && overrides(kNoteCellOption))
        noteCellOption(stringText(value));
    }
  }
}

//===--- Default operations -----------------------------------------------===//

void SearchIndexer::beginDocument(Expr*) {}
void SearchIndexer::endDocument(Expr*) {}
void SearchIndexer::beginCell(Expr*, const IndexContext&) {}
void SearchIndexer::endCell(Expr*, const IndexContext&) {}
void SearchIndexer::writeText(Zn::String*) {}
void SearchIndexer::writeCellSeparator(const IndexContext& theContext) { theContext.writer->putNewlines(2); }
void SearchIndexer::setTitle(Zn::String*) {}
void SearchIndexer::noteCellText(Zn::String*) {}
void SearchIndexer::setNotebookKind(Zn::Kx::Symbol*) {}
void SearchIndexer::setEvaluator(Zn::String*) {}
void SearchIndexer::noteCellOption(Zn::String*) {}
void SearchIndexer::setStyleDefinitions(Expr*) {}
void SearchIndexer::setFrontEndVersion(Zn::String*) {}
void SearchIndexer::setWindowFrame(Zn::String*) {}
void SearchIndexer::setWindowSize(double, double) {}
void SearchIndexer::countInputCell() { ++inputCellCount_; }
void SearchIndexer::countOutputCell() { ++outputCellCount_; }
void SearchIndexer::countTitleCell() { ++titleCellCount_; }
void SearchIndexer::countCellOption() { ++cellOptionCount_; }
void SearchIndexer::countGraphics() { ++graphicsCount_; }
void SearchIndexer::writeActionMenu(Zn::String*, Zn::Array*, const IndexContext&) {}
void SearchIndexer::writeCheckbox(int32_t, const IndexContext&) {}
void SearchIndexer::writeInputField(Zn::String*, const IndexContext&) {}
void SearchIndexer::writePopupMenu(Zn::Array*, int32_t, const IndexContext&) {}
void SearchIndexer::writeRadioButton(int32_t, const IndexContext&) {}

void SearchIndexer::writeHyperlink(Zn::String* theLabel, Zn::String* theURL, const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writer->putString(theLabel);
  writer->putBytes(" <");
  writer->putString(theURL);
  writer->putBytes(">");
}

void SearchIndexer::writeButton(Zn::String* theLabel, const IndexContext& theContext) {
  theContext.writer->putString(theLabel);
}

void SearchIndexer::writeSubscript(Expr* theScript, const IndexContext& theContext) {
  indexBox(theScript, theContext);
}

void SearchIndexer::writeSuperscript(Expr* theScript, const IndexContext& theContext) {
  theContext.writer->putCharacter('^');
  indexBox(theScript, theContext);
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

//===--- Box handlers -----------------------------------------------------===//

void SearchIndexer::indexActionMenuBox(Expr* theBox, const IndexContext& theContext) {
  IndexContext context = theContext;
  context.showStringCharacters = false;
  Zn::Ref<Zn::String> label;
  if (theBox->length() >= 1)
    label = adopt(stringForBox(theBox->part(1), context));
  auto items = adopt(new Zn::MutableArray());
  if (theBox->length() >= 2 && isList(theBox->part(2))) {
    Expr* list = theBox->part(2);
    // An item's label is the left side; the right side is its action.
    for (ZnIndex i = 1; i <= list->length(); ++i)
      if (isRule(list->part(i)))
        items->addObject(adopt(stringForBox(list->partOfPart(i, 1), context)).get());
  }
  if (overrides(kWriteActionMenu))
    writeActionMenu(label.get(), items.get(), context);
}

Zn::String* SearchIndexer::copyHyperlinkURL(Expr* theBox) {
  using namespace Vocabulary;
  Expr* data = optionValue(theBox, 2, ButtonData);
  Expr* url = nullptr;
  if (URL.isHeadOf(data))
    url = data;
  else if (isList(data) && data->length() >= 1 && URL.isHeadOf(data->part(1)))
    url = data->part(1);
  if (url)
    return url->length() >= 1 ? url->stringValueOfPart(1) : new Zn::String();

  bool linkStyle = Hyperlink.isNameOf(optionValue(theBox, 2, ButtonStyle)) ||
                   Hyperlink.isNameOf(optionValue(theBox, 2, BaseStyle));
  if (!linkStyle)
    return nullptr;
  if (!data)
    return new Zn::String();
  // A string names a place to go: a URL, or else a cell tag of a notebook,
  // which is no address a reader could follow.
  Zn::String* text = stringText(data);
  if (text && isURL(text))
    return static_cast<Zn::String*>(text->retain());
  return nullptr;
}

void SearchIndexer::indexButtonBox(Expr* theBox, const IndexContext& theContext) {
  auto label = adopt(theBox->length() >= 1 ? stringForBox(theBox->part(1), theContext) : new Zn::String());
  auto url = adopt(copyHyperlinkURL(theBox));
  if (url)
    writeHyperlink(label.get(), url.get(), theContext);
  else
    writeButton(label.get(), theContext);
}

void SearchIndexer::indexCheckboxBox(Expr* theBox, const IndexContext& theContext) {
  Expr* value = theBox->length() >= 1 ? theBox->part(1) : nullptr;
  int32_t state = -1;
  if (Vocabulary::True.matches(value))
    state = 1;
  else if (Vocabulary::False.matches(value))
    state = 0;
  writeCheckbox(state, theContext);
}

void SearchIndexer::indexCounterBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1)
    return;
  auto name = adopt(theBox->stringValueOfPart(1));
  if (Zn::Object* value = namedCounters_.countForName(name.get()))
    theContext.writer->putString(adopt(value->description()).get());
  else
    theContext.writer->putCharacter('0');
}

void SearchIndexer::indexDynamicBox(Expr* theBox, const IndexContext& theContext) {
  if (theContext.indexDynamic && theBox->length() >= 1)
    indexBox(theBox->part(1), theContext);
  else
    theContext.writer->putBytes("-Dynamic-");
}

void SearchIndexer::noteDynamicModuleVariable(Expr*, IndexContext&) {
  // The variables' values live in the front end; nothing of them is shown,
  // so the walk records nothing yet.
}

void SearchIndexer::indexDynamicModuleBox(Expr* theBox, const IndexContext& theContext) {
  IndexContext context = theContext;
  if (theBox->length() >= 1 && isList(theBox->part(1))) {
    Expr* variables = theBox->part(1);
    for (ZnIndex i = 1; i <= variables->length(); ++i)
      noteDynamicModuleVariable(variables->part(i), context);
  }
  if (theBox->length() >= 2)
    indexBox(theBox->part(2), context);
}

void SearchIndexer::indexFractionBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 2)
    return;
  indexBox(theBox->part(1), theContext);
  theContext.writer->putCharacter('/');
  indexBox(theBox->part(2), theContext);
}

void SearchIndexer::writeGraphicsLabel(Expr* theLabel, const IndexContext& theContext) {
  // None stands for a label that is not there; lists (such as the four
  // sides of a frame) hold one label per element.
  if (sNone.matches(theLabel))
    return;
  if (isList(theLabel)) {
    for (ZnIndex i = 1; i <= theLabel->length(); ++i)
      writeGraphicsLabel(theLabel->part(i), theContext);
    return;
  }
  indexBox(theLabel, theContext);
  theContext.writer->putNewlines(1);
}

void SearchIndexer::indexGraphicsBox(Expr* theBox, const IndexContext& theContext) {
  using namespace Vocabulary;
  for (ZnIndex i = 2; i <= theBox->length(); ++i) {
    Expr* option = theBox->part(i);
    if (isRule(option) && (AxesLabel.matches(option->part(1)) || FrameLabel.matches(option->part(1)) ||
                           PlotLabel.matches(option->part(1))))
      writeGraphicsLabel(option->part(2), theContext);
  }
}

void SearchIndexer::indexGraphicsData(Expr*, const IndexContext&) {}

void SearchIndexer::indexGridBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1 || !isList(theBox->part(1)))
    return;
  Expr* rows = theBox->part(1);
  Zn::Writer* writer = theContext.writer.get();
  for (ZnIndex r = 1; r <= rows->length(); ++r) {
    Expr* row = rows->part(r);
    if (!isList(row))
      continue;
    for (ZnIndex c = 1; c <= row->length(); ++c) {
      indexBox(row->part(c), theContext);
      writer->putCharacter(9);
    }
    if (r < rows->length())
      writer->putNewlines(1);
  }
}

void SearchIndexer::indexInputFieldBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1)
    return;
  IndexContext context = theContext;
  context.indexDynamic = true;
  // A field for a string shows the string; any other field shows its value
  // as code, quotes and all.
  context.showStringCharacters = !(theBox->length() >= 2 && theBox->part(2)->isEqual(HeadSymbol(Head::String)));
  if (!overrides(kWriteInputField))
    return;
  auto value = adopt(stringForBox(theBox->part(1), context));
  writeInputField(value.get(), context);
}

void SearchIndexer::indexPanelBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() >= 1)
    indexBox(theBox->part(1), theContext);
}

void SearchIndexer::indexPaneSelectorBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1)
    return;
  Expr* panes = theBox->part(1);
  if (!isList(panes) || panes->length() < 1)
    return indexBox(panes, theContext);
  // Only the first pane is shown, whatever the current value says.
  Expr* first = panes->part(1);
  if (isHead(first, Head::Rule) && first->length() >= 2)
    return indexBox(first->part(2), theContext);
  indexBox(first, theContext);
}

void SearchIndexer::indexPopupMenuBox(Expr* theBox, const IndexContext& theContext) {
  auto items = adopt(new Zn::MutableArray());
  int32_t selected = -1;
  if (theBox->length() >= 2 && isList(theBox->part(2))) {
    auto current = adopt(theBox->stringValueOfPart(1));
    Expr* list = theBox->part(2);
    for (ZnIndex i = 1; i <= list->length(); ++i) {
      Expr* rule = list->part(i);
      if (!isRule(rule))
        continue;
      // The last rule whose value matches wins.
      if (adopt(rule->stringValueOfPart(1))->isEqual(current.get()))
        selected = items->getCount();
      items->addObject(adopt(stringForBox(rule->part(2), theContext)).get());
    }
  }
  if (overrides(kWritePopupMenu))
    writePopupMenu(items.get(), selected, theContext);
}

void SearchIndexer::indexRadioButtonBox(Expr* theBox, const IndexContext& theContext) {
  int32_t state = 0;
  if (theBox->length() >= 2) {
    // The button's value comes wrapped in a list: {value}.
    Expr* value = theBox->part(2);
    if (isList(value) && value->length() >= 1)
      value = value->part(1);
    state = Zn::Equal(theBox->part(1), value) ? 1 : 0;
  }
  writeRadioButton(state, theContext);
}

void SearchIndexer::indexRadicalBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1)
    return;
  Zn::Writer* writer = theContext.writer.get();
  writer->putCharacter('(');
  indexBox(theBox->part(1), theContext);
  writer->putCharacter(')');
  if (theBox->length() >= 2) {
    writer->putBytes("^(1/");
    indexBox(theBox->part(2), theContext);
    writer->putCharacter(')');
  }
}

void SearchIndexer::indexRowBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1)
    return;
  Expr* items = theBox->part(1);
  if (items->isAtom()) {
    // The "\\*" element of a box group is held as the text of the box it
    // stands for.
    auto embedded = adopt(AtomText::parseEmbeddedBox(items));
    return indexBox(embedded ? embedded.get() : items, theContext);
  }
  Zn::Writer* writer = theContext.writer.get();
  const ZnIndex count = items->length();
  for (ZnIndex i = 1; i <= count; ++i) {
    Expr* item = items->part(i);
    if (indent_ && i < count && isOneCharacterOf(items->part(i + 1), ")]}"))
      writer->decreaseIndent();
    bool spaceBefore = false;
    bool spaceAfter = false;
    if (Zn::String* text = stringText(item)) {
      const ZnIndex length = text->length();
      if (length == 1) {
        const ZnUnichar c = text->characterAtIndex(0);
        if (c == '*' || c == '+' || c == '-' || c == '/' || c == '=') {
          spaceBefore = spaceAfter = true;
        } else if (c == ',') {
          spaceAfter = true;
        } else if ((c == '(' || c == '[' || c == '{') && indent_) {
          writer->increaseIndent();
        }
      } else if (length == 2 || length == 3) {
        spaceBefore = spaceAfter = hasText(text, "==") || hasText(text, "!=") || hasText(text, "===") ||
                                   hasText(text, "=!=");
      }
    }
    if (spaceBefore)
      writer->putCharacter(' ');
    indexBox(item, theContext);
    if (spaceAfter)
      writer->putCharacter(' ');
  }
}

void SearchIndexer::indexSetterBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() > 2)
    indexBox(theBox->part(3), theContext);
  else if (theBox->length() == 2)
    indexBox(theBox->part(2), theContext);
}

void SearchIndexer::indexSqrtBox(Expr* theBox, const IndexContext& theContext) {
  static const ZnUnichar kSquareRoot = 0x221A;
  writeResolvedText(&kSquareRoot, 1, theContext);
  if (theBox->length() >= 1)
    indexBox(theBox->part(1), theContext);
}

void SearchIndexer::indexStyleBox(Expr* theBox, const IndexContext& theContext) {
  using namespace Vocabulary;
  if (theBox->length() < 1)
    return;
  // Only ShowStringCharacters changes what the text shows. A SetterBox
  // inside clears it again on the way in, so a setter's label never shows
  // quotes whatever the style says.
  Expr* show = optionValue(theBox, 2, ShowStringCharacters);
  if (True.matches(show) || False.matches(show)) {
    IndexContext context = theContext;
    context.showStringCharacters = True.matches(show);
    return indexBox(theBox->part(1), context);
  }
  indexBox(theBox->part(1), theContext);
}

void SearchIndexer::indexSubscriptBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1)
    return;
  indexBox(theBox->part(1), theContext);
  if (theBox->length() >= 2)
    writeSubscript(theBox->part(2), theContext);
}

void SearchIndexer::indexSuperscriptBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1)
    return;
  indexBox(theBox->part(1), theContext);
  if (theBox->length() >= 2)
    writeSuperscript(theBox->part(2), theContext);
}

void SearchIndexer::indexTabViewBox(Expr* theBox, const IndexContext& theContext) {
  auto theLabels = adopt(new Zn::MutableArray());
  auto theContents = adopt(new Zn::MutableArray());
  int32_t selected = -1;
  Expr* current = theBox->length() >= 2 ? theBox->part(2) : nullptr;
  if (theBox->length() >= 1 && isList(theBox->part(1))) {
    Expr* tabs = theBox->part(1);
    for (ZnIndex i = 1; i <= tabs->length(); ++i) {
      // A tab is {key, label -> content}, or label -> content alone.
      Expr* tab = tabs->part(i);
      Expr* rule = tab;
      if (isList(tab) && tab->length() >= 1)
        rule = tab->part(tab->length());
      if (!isRule(rule))
        continue;
      if (selected < 0 && current && isList(tab) && tab->length() == 2 && Zn::Equal(tab->part(1), current))
        selected = theLabels->getCount();
      theLabels->addObject(rule->part(1));
      theContents->addObject(rule->part(2));
    }
  }
  ZnAssert(theLabels->getCount() == theContents->getCount(), theLabels->getCount());
  writeTabView(theLabels.get(), theContents.get(), selected < 0 ? 0 : selected, theContext);
}

//===--- Marking up input code --------------------------------------------===//

bool SearchIndexer::isCodeCell(Expr* theBox) {
  using namespace Vocabulary;
  return Cell.isHeadOf(theBox) && theBox->length() >= 2 &&
         (Input.isNameOf(theBox->part(2)) || Code.isNameOf(theBox->part(2)));
}

Expr* SearchIndexer::decorateBox(Expr* theBox, bool theIsCode) {
  if (theIsCode)
    return DecorateCode(theBox);
  if (!isCodeCell(theBox))
    return static_cast<Expr*>(theBox->retain());
  return DecorateCodeCell(theBox);
}
