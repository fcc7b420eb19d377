//===- NotebookMarkdownIndexer.h - Renders a notebook as Markdown ---------===//
#pragma once
#include "MarkdownWriter.h"
#include "NotebookTextIndexer.h"

/// The renderer behind "-markdown": the notebook as GitHub-flavoured
/// Markdown (CommonMark with tables), for readers and for pipelines that
/// split a text at its headings.
///
/// Each cell is one block (MarkdownWriter): the outline styles are headings,
/// the levels the notebook uses numbered from "#" down; the item styles are
/// lists; code is fenced, and output fenced with the info string "output";
/// every other cell is a paragraph. Inside them the text is the plain
/// text's, with bold and italic, links, inline cells as code and grids as
/// tables; characters stand as themselves, Greek letters included.
class NotebookMarkdownIndexer : public NotebookTextIndexer {
public:
  /// Writes UTF-8 to theStream.
  explicit NotebookMarkdownIndexer(Zn::Stream* theStream);

  /// The front matter, when the notebook has a title or authors.
  void beginDocument(Zn::Kx::Expr* theNotebook) override;
  void endDocument(Zn::Kx::Expr* theNotebook) override;
  void beginCell(Zn::Kx::Expr* theCell, const IndexContext& theContext) override;
  void endCell(Zn::Kx::Expr* theCell, const IndexContext& theContext) override;
  /// Nothing: the blocks keep the cells apart.
  void writeCellSeparator(const IndexContext& theContext) override;
  /// An inline cell outside code is a code span.
  void indexCell(Zn::Kx::Expr* theCell, const IndexContext& theContext) override;
  void indexGridBox(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  void indexStyleBox(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  void writeHyperlink(Zn::String* theLabel, Zn::String* theURL, const IndexContext& theContext) override;

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~NotebookMarkdownIndexer() override;
  /// Also forgets the lists, the outline levels and the block of the
  /// document before.
  void resetDocumentState() override;

private:
  /// Whether theContext writes to the page. Labels, table entries and code
  /// spans are rendered into strings first, as plain text: the Markdown
  /// goes around them.
  bool isPage(const IndexContext& theContext) const;

  /// What a cell of the notebook is, for the boxes in it.
  enum class CellKind : uint8_t { kText, kHeading, kListItem, kCode, kOutput };

  /// The block of a cell of theStyle; keeps the nesting of lists.
  MarkdownWriter::Block blockForStyle(Zn::String* theStyle, bool theIsCode);
  /// The block of a list item at theLevel (0 for Item), or of a paragraph
  /// inside the item at that level.
  MarkdownWriter::Block listBlock(int32_t theLevel, const char* theMarker);
  MarkdownWriter::Block listParagraphBlock(int32_t theLevel);
  /// Writes theBox as a table when it is a rectangular grid whose entries
  /// are one line each; false, having written nothing, otherwise.
  bool writeTable(Zn::Kx::Expr* theBox, const IndexContext& theContext);

  Zn::Ref<MarkdownWriter> markdown_;
  CellKind cellKind_ = CellKind::kText;
  /// The outline ranks that the document uses, bit 0 for Title: the
  /// highest is "#", the next "##", and so on.
  uint32_t outlineRanks_ = 0;
  /// The list items open now, outermost first: the width of each marker.
  static constexpr int32_t kListLevels = 3;
  int32_t listWidths_[kListLevels] = {};
  int32_t listDepth_ = 0;
};
