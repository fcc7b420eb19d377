//===- NotebookTextIndexer.h - Renders a notebook as plain text -----------===//
#pragma once
#include "SearchIndexer.h"

/// The default renderer: what a reader sees on the page, as UTF-8 text.
/// Controls come out as bracketed marks: " [X] " for a checked box,
/// " (*) " for a chosen radio button, "|__value__|" for an input field, and
/// menus as one indented line per item.
class NotebookTextIndexer : public SearchIndexer {
public:
  /// Writes to theStream, which must be writable.
  explicit NotebookTextIndexer(Zn::Stream* theStream);
  /// Writes to theWriter, such as a string writer for the text of a box.
  explicit NotebookTextIndexer(Zn::Writer* theWriter);
  /// +1. A renderer of labels and option values as plain text, for the
  /// stringForBox of a renderer that writes markup. It names characters
  /// through theEncoding (retained), as that renderer's page does, so that
  /// a label reads like the text around it; its own writer is a string, so
  /// nothing it does can reach the page.
  static NotebookTextIndexer* createLabelRenderer(Zn::Kx::Encoding* theEncoding);

  void writeText(Zn::String* theText) override;
  /// Pushes the document's tidied text out to the stream.
  void endDocument(Zn::Kx::Expr* theNotebook) override;
  void writeActionMenu(Zn::String* theLabel, Zn::Array* theItems, const IndexContext& theContext) override;
  void writeCheckbox(int32_t theState, const IndexContext& theContext) override;
  void writeInputField(Zn::String* theValue, const IndexContext& theContext) override;
  void writePopupMenu(Zn::Array* theItems, int32_t theSelected, const IndexContext& theContext) override;
  void writeRadioButton(int32_t theState, const IndexContext& theContext) override;

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~NotebookTextIndexer() override = default;

private:
  /// One line per item, one level deeper; with theMarked the chosen item
  /// gets "* " and the others two blanks.
  void writeMenuItems(Zn::Array* theItems, int32_t theSelected, bool theMarked, const IndexContext& theContext);
};
