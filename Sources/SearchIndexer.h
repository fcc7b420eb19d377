//===- SearchIndexer.h - Walks a parsed notebook for a renderer -----------===//
#pragma once
#include "OutlineCounters.h"
#include "Zn/Base/ZnObject.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/IO/ZnWriter.h"

namespace Zn {
class Array;
class MutableArray;
class MutableDictionary;
class MutableString;
class Stream;
class String;
namespace Kx {
class Encoding;
class Expr;
class Symbol;
} // namespace Kx
} // namespace Zn

/// The state that travels down the walk. Handlers receive it by reference
/// and copy it before they change anything, so that a child's changes never
/// reach its siblings.
struct IndexContext {
  /// Where the text goes: the indexer's writer at the top, a string writer
  /// while a box is rendered into a string.
  Zn::Ref<Zn::Writer> writer;
  /// The style name of the cell being walked; empty outside any cell.
  Zn::Ref<Zn::String> cellStyle;
  /// Set for the elements of a cell list (the notebook's, or a cell
  /// group's): a Cell met there is a cell of the notebook. A Cell met
  /// anywhere else is an inline cell, part of the text around it.
  bool inCellList = false;
  /// Set inside the contents of a cell of the notebook.
  bool insideCell = false;
  /// Set inside a cell whose style is a code style ("Input", "InputOnly",
  /// "Code").
  bool codeStyle = false;
  /// Set inside BoxData.
  bool insideBoxData = false;
  /// While false, a string atom written "\"...\"" loses its quotes.
  bool showStringCharacters = true;
  /// While true, Dynamic and DynamicBox are walked into instead of being
  /// shown as "-Dynamic-".
  bool indexDynamic = false;
  /// While true, a hyperlink shows its label alone, as on the page: for
  /// texts that go where no address belongs (a title, an author).
  bool labelsOnly = false;
};

/// Reads one notebook from a stream, parses it and walks it, turning every
/// box into a call of one of its virtual operations. It writes almost
/// nothing itself; renderers derive from it and override what they show.
///
/// The operations that write nothing here (the hooks set*, note*, count*,
/// begin*, end*, write*) are extension points for renderers: the walk calls
/// them whether or not a renderer overrides them. A hook that would need a
/// box rendered into text is handed the box instead, so that the rendering
/// is paid for only by a renderer that wants it (through stringForBox).
///
/// The walk never trusts a box to have the parts it expects: a part that is
/// missing or of the wrong kind makes the box write nothing of itself.
class SearchIndexer : public Zn::Object {
public:
  SearchIndexer();

  bool getIndent() const { return indent_; }
  /// Whether brackets in a row change the writer's indentation.
  void setIndent(bool theIndent) { indent_ = theIndent; }
  /// Borrowed.
  Zn::Writer* getWriter() const { return writer_.get(); }

  // The operations. Handlers take the whole box (head and arguments) and
  // read its arguments by position; Expr::part gives null for a part that
  // is not there, and indexBox writes nothing for null.

  /// Parses and walks one document. False for a document that ReadNotebook
  /// refuses, with the reason in getRefusalReason.
  virtual bool indexStream(Zn::Stream* theStream);
  /// Borrowed. Why the last indexStream refused its document; null when it
  /// did not.
  Zn::String* getRefusalReason() const { return refusalReason_.get(); }
  /// The dispatcher: looks the head up in the vocabulary and calls the walk
  /// that the list names for it; atoms go to indexString. theBox may be null.
  virtual void indexBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  /// +1. The box rendered by the dispatcher into a new string.
  virtual Zn::String* stringForBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  /// +1. The box with the code of input cells marked up by style boxes; see
  /// CodeDecorator.h for what is marked. theIsCode treats theBox itself as code.
  virtual Zn::Kx::Expr* decorateBox(Zn::Kx::Expr* theBox, bool theIsCode);
  /// Whether theBox, written in the linear notation, needs parentheses to
  /// stay one operand: a row of several items that its own brackets do not
  /// enclose, or a fraction (through wrappers that add nothing around it).
  static bool needsGrouping(const Zn::Kx::Expr* theBox);
  /// Whether theBox is a cell whose contents decorateBox marks up as code
  /// (style "Input" or "Code").
  static bool isCodeCell(Zn::Kx::Expr* theBox);
  virtual void beginDocument(Zn::Kx::Expr* theNotebook);
  virtual void endDocument(Zn::Kx::Expr* theNotebook);
  /// theContext.cellStyle holds the cell's style name.
  virtual void beginCell(Zn::Kx::Expr* theCell, const IndexContext& theContext);
  virtual void endCell(Zn::Kx::Expr* theCell, const IndexContext& theContext);
  virtual void writeText(Zn::String* theText);
  /// Two line ends: cells are separated by one empty line.
  virtual void writeCellSeparator(const IndexContext& theContext);
  /// theTitle is the value of the notebook's WindowTitle option or the
  /// contents of a Title cell.
  virtual void setTitle(Zn::Kx::Expr* theTitle, const IndexContext& theContext);
  /// The contents of a Subtitle, Section or Subsection cell.
  virtual void noteCellText(Zn::Kx::Expr* theContents, const IndexContext& theContext);
  /// Palette for a notebook that cannot be clicked into; Style, after the
  /// walk, for a style sheet (a notebook with StyleData cells).
  virtual void setNotebookKind(Zn::Kx::Symbol* theKind);
  virtual void setEvaluator(Zn::String* theName);
  virtual void noteCellOption(Zn::String* theText);
  /// A style sheet name, or an embedded Notebook expression.
  virtual void setStyleDefinitions(Zn::Kx::Expr* theValue);
  virtual void setFrontEndVersion(Zn::String* theText);
  virtual void setWindowFrame(Zn::String* theText);
  virtual void setWindowSize(double theWidth, double theHeight);
  virtual void countInputCell();
  virtual void countOutputCell();
  virtual void countTitleCell();
  virtual void countCellOption();
  virtual void countGraphics();
  virtual void indexCell(Zn::Kx::Expr* theCell, const IndexContext& theContext);
  virtual void indexString(Zn::Kx::Expr* theLeaf, const IndexContext& theContext);
  virtual void indexActionMenuBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  /// theLabel may be null; theItems holds strings.
  virtual void writeActionMenu(Zn::String* theLabel, Zn::Array* theItems, const IndexContext& theContext);
  virtual void indexButtonBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void writeHyperlink(Zn::String* theLabel, Zn::String* theURL, const IndexContext& theContext);
  virtual void writeButton(Zn::String* theLabel, const IndexContext& theContext);
  virtual void indexCheckboxBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  /// 1 checked, 0 unchecked, anything else (-1) undetermined.
  virtual void writeCheckbox(int32_t theState, const IndexContext& theContext);
  virtual void indexCounterBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexDynamicBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexDynamicModuleBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexFractionBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexGraphicsBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexGraphicsData(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexGridBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexInputFieldBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void writeInputField(Zn::String* theValue, const IndexContext& theContext);
  virtual void indexPanelBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexPaneSelectorBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexPopupMenuBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  /// theItems holds strings; theSelected is 0-based, or matches none.
  virtual void writePopupMenu(Zn::Array* theItems, int32_t theSelected, const IndexContext& theContext);
  virtual void indexRadioButtonBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void writeRadioButton(int32_t theState, const IndexContext& theContext);
  virtual void indexRadicalBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexRowBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexSetterBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexSqrtBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexStyleBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexSubscriptBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void writeSubscript(Zn::Kx::Expr* theScript, const IndexContext& theContext);
  virtual void indexSuperscriptBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void writeSuperscript(Zn::Kx::Expr* theScript, const IndexContext& theContext);
  /// A base with scripts below and above it, or beside it: the one below
  /// (or after) goes to writeSubscript, the one above to writeSuperscript.
  virtual void indexScriptsBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  virtual void indexTabViewBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  /// Shown by its display function when the notebook has one for it, else
  /// in the page form of its tag (see IndexerTemplates.cpp).
  virtual void indexTemplateBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  /// theLabels and theContents hold boxes, at least one of each and as many
  /// of one as of the other; theSelected is one of their indices.
  virtual void writeTabView(Zn::Array* theLabels, Zn::Array* theContents, int32_t theSelected,
                            const IndexContext& theContext);

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~SearchIndexer() override;

  /// Forgets everything that an earlier document left behind (counts,
  /// outline numbers, the writer's indentation), before a document's first
  /// hook is called. Renderers with state of their own extend it.
  virtual void resetDocumentState();

  /// Calls indexBox on every argument from theFirst to the last.
  void walkArguments(Zn::Kx::Expr* theBox, ZnIndex theFirst, const IndexContext& theContext);
  /// The same for arguments that are separate pieces of text: theSeparator
  /// keeps apart two pieces that both write something, so that no word of
  /// one runs into the next.
  void walkPieces(Zn::Kx::Expr* theBox, ZnIndex theFirst, Zn::Writer::Separator theSeparator,
                  const IndexContext& theContext);
  /// +1. What stringForBox renders, with the separator that the box asked
  /// for after its text in theTrailing: a piece of text rendered apart
  /// stays apart from the next as it would have on the page.
  Zn::String* renderBox(Zn::Kx::Expr* theBox, const IndexContext& theContext, Zn::Writer::Separator& theTrailing);
  /// Walks theBox, in parentheses where needsGrouping says so.
  void walkGrouped(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  /// Writes text that is already resolved, through the character encoding.
  void writeResolvedText(const ZnUnichar* theCharacters, ZnIndex theLength, const IndexContext& theContext);

  /// Owning. The renderers make the writer; the HTML renderer replaces the
  /// character encoding with its own flags.
  Zn::Ref<Zn::Writer> writer_;
  Zn::Ref<Zn::Kx::Encoding> characterEncoding_;

private:
  class Scratch;

  // The walks that the vocabulary list names besides the handlers above.
  // The context changes are made out of line, so that the dispatcher's own
  // frame, entered once per level of the deepest boxes, stays small.
  __attribute__((noinline)) void indexWithoutQuotes(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  __attribute__((noinline)) void walkTextContainer(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  void walkCellGroup(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  void walkStyleData(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  void walkGraphicsBox(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  void walkGraphicsData(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  void walkFirstArgument(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  void walkSecondArgument(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  void walkNothing(Zn::Kx::Expr* theBox, const IndexContext& theContext);
  /// Every argument, as separate pieces: the walk of any head not listed.
  void walkPieces(Zn::Kx::Expr* theBox, const IndexContext& theContext);

  void readNotebookOptions(Zn::Kx::Expr* theNotebook, const IndexContext& theContext);
  /// Keeps the display functions that the StyleData cells among theCells
  /// give their template tags.
  void noteDisplayFunctions(Zn::Kx::Expr* theCells);
  void writeTemplateForm(Zn::Kx::Expr* theArguments, Zn::String* theTag, const IndexContext& theContext);
  void writeMessage(Zn::Kx::Expr* theArguments, const IndexContext& theContext);
  /// Walks a cell list: theCells (a list, or one element), each element
  /// that is a Cell as a cell of the notebook.
  void indexCellList(Zn::Kx::Expr* theCells, const IndexContext& theContext);
  void readCellOptions(Zn::Kx::Expr* theCell);
  /// Resolves the escapes of an atom's text and writes the result; a box
  /// group inside the text is walked where it stands.
  void writeAtomText(const ZnUnichar* theText, ZnIndex theLength, const IndexContext& theContext);
  void writeGraphicsLabel(Zn::Kx::Expr* theLabel, const IndexContext& theContext);
  /// +1. The URL when theBox is a hyperlink button, else null.
  Zn::String* copyHyperlinkURL(Zn::Kx::Expr* theBox);

  Zn::Ref<Zn::String> refusalReason_;
  // Per document; resetDocumentState starts them again.
  OutlineCounters namedCounters_;
  bool sawStyleData_ = false;
  /// Template tags to display functions; null until one is met.
  Zn::Ref<Zn::MutableDictionary> displayFunctions_;
  /// How many display functions are being applied, one inside the other.
  ZnIndex templateDepth_ = 0;

  bool indent_ = true;
  /// How many stringForBox calls are under way, one inside the other.
  ZnIndex labelDepth_ = 0;
  /// Reusable text buffers, so that writing an atom allocates nothing once
  /// the walk is under way. Owning.
  static constexpr ZnIndex kScratchPoolSize = 8;
  Zn::Ref<Zn::MutableString> scratchPool_[kScratchPoolSize];
  ZnIndex scratchCount_ = 0;
};
