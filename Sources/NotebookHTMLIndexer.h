//===- NotebookHTMLIndexer.h - Renders a notebook as one HTML page --------===//
#pragma once
#include "NotebookTextIndexer.h"

namespace Zn {
class HTMLEncoding;
class StreamWriter;
class StringEncoding;
} // namespace Zn

/// The renderer behind "-html": every notebook becomes one self-contained
/// page inside one inert form. Cells become div elements whose class is the
/// cell's style, controls become static HTML controls, grids and tab views
/// become tables and graphics a grey placeholder.
///
/// All output goes through one HTML encoding. Markup is written with its
/// escaping switched off for that one write; everything taken from the
/// notebook (text, labels, values, URLs) is written with it on, so that
/// notebook content can never open or cut short an element or attribute.
class NotebookHTMLIndexer : public NotebookTextIndexer {
public:
  /// Writes to theStream through an HTML encoding over theEncoding, which
  /// is retained; null means UTF-8 without byte-order mark.
  explicit NotebookHTMLIndexer(Zn::Stream* theStream, Zn::StringEncoding* theEncoding = nullptr);

  /// Marks up the code of input cells before walking it.
  void indexBox(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  /// +1. The box as plain text, without markup: labels and option values.
  Zn::String* stringForBox(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  void beginDocument(Zn::Kx::Expr* theNotebook) override;
  void endDocument(Zn::Kx::Expr* theNotebook) override;
  void beginCell(Zn::Kx::Expr* theCell, const IndexContext& theContext) override;
  void endCell(Zn::Kx::Expr* theCell, const IndexContext& theContext) override;
  /// Nothing: the div elements keep the cells apart.
  void writeCellSeparator(const IndexContext& theContext) override;
  void setStyleDefinitions(Zn::Kx::Expr* theValue) override;
  void writeActionMenu(Zn::String* theLabel, Zn::Array* theItems, const IndexContext& theContext) override;
  void writeHyperlink(Zn::String* theLabel, Zn::String* theURL, const IndexContext& theContext) override;
  void writeButton(Zn::String* theLabel, const IndexContext& theContext) override;
  /// Anything but unchecked shows checked: HTML has no third state here.
  void writeCheckbox(int32_t theState, const IndexContext& theContext) override;
  void indexGraphicsBox(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  void indexGraphicsData(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  void indexGridBox(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  void writeInputField(Zn::String* theValue, const IndexContext& theContext) override;
  void indexPanelBox(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  void writePopupMenu(Zn::Array* theItems, int32_t theSelected, const IndexContext& theContext) override;
  void writeRadioButton(int32_t theState, const IndexContext& theContext) override;
  void indexSetterBox(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  void indexStyleBox(Zn::Kx::Expr* theBox, const IndexContext& theContext) override;
  void writeSubscript(Zn::Kx::Expr* theScript, const IndexContext& theContext) override;
  void writeSuperscript(Zn::Kx::Expr* theScript, const IndexContext& theContext) override;
  /// Only the selected pane is shown; the others are dropped.
  void writeTabView(Zn::Array* theLabels, Zn::Array* theContents, int32_t theSelected,
                    const IndexContext& theContext) override;

  /// +1, or null when there is none. CSS for a StyleDefinitions value (a
  /// style sheet name or an embedded notebook), put into the page head.
  /// This renderer knows no style sheets.
  virtual Zn::String* styleSheetText(Zn::Object* theStyleDefinitions);

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~NotebookHTMLIndexer() override;
  /// Also forgets the style sheet of the document before.
  void resetDocumentState() override;

private:
  /// Writes theMarkup with the escaping off.
  void writeMarkup(Zn::Writer* theWriter, const char* theMarkup);
  void writeMarkupFormat(Zn::Writer* theWriter, const char* theFormat, ...);
  /// <meta name="theName"> whose content is theTexts joined by commas;
  /// nothing when there are none.
  void writeMetaElement(Zn::Writer* theWriter, const char* theName, Zn::Array* theTexts);
  /// The grey table that stands for a graphic; ImageSize options are read
  /// from the argument theFirstOption on.
  void writeGraphicsPlaceholder(Zn::Kx::Expr* theBox, ZnIndex theFirstOption, const IndexContext& theContext);
  /// At most one CSS declaration for the style box option theName -> theValue.
  void writeStyleOption(Zn::Kx::Expr* theName, Zn::Kx::Expr* theValue, const IndexContext& theContext);

  Zn::Ref<Zn::HTMLEncoding> htmlEncoding_;
  /// The writer of the page (also writer_), which holds its bytes back
  /// until they fill a large write or the page ends.
  Zn::Ref<Zn::StreamWriter> page_;
  /// The last StyleDefinitions value of the document, "Default.nb" at first.
  Zn::Ref<Zn::Object> styleDefinitions_;
  /// The plain-text renderer behind stringForBox, kept for the whole run.
  Zn::Ref<NotebookTextIndexer> textRenderer_;
  /// Set while the walk is inside code that decorateBox has marked up.
  bool inDecoratedCode_ = false;
};
