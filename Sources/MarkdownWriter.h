//===- MarkdownWriter.h - Cells into Markdown blocks, markup escaped ------===//
#pragma once
#include "Zn/IO/ZnWriter.h"

namespace Zn {
class Array;
class MutableString;
class String;
} // namespace Zn

/// Turns the text of a notebook's cells into Markdown blocks. The walk
/// writes a cell's text through it as through any writer; the text is held
/// until the block ends and then goes out in the block's shape: a heading on
/// one line, a paragraph whose line breaks are hard breaks, a list item
/// whose later lines stand under its first, a fence that no backtick run
/// inside it can close.
///
/// Outside fences every character that Markdown would read as markup is
/// escaped as it arrives, unless the renderer writes markup of its own
/// between setRaw(true) and setRaw(false). Blanks at the start of a line are
/// dropped there: four of them would start a code block.
class MarkdownWriter : public Zn::Writer {
public:
  enum class Shape : uint8_t { kParagraph, kHeading, kListItem, kFence };
  struct Block {
    Shape shape = Shape::kParagraph;
    /// A heading's level, 1 to 6.
    int32_t level = 1;
    /// Blanks before every line: the nesting of a list. A fence stands at
    /// the margin.
    int32_t indent = 0;
    /// A list item's marker, "- " or "1. ".
    const char* marker = "";
    /// A fence's info string.
    const char* info = "";
  };

  /// Retains theOutput, which receives whole blocks. When it is a
  /// TidyWriter, finishDocument finishes its document too.
  explicit MarkdownWriter(Zn::Writer* theOutput);

  /// Ends the open block, if any, and opens theBlock.
  void beginBlock(const Block& theBlock);
  /// Writes the open block out. Text that comes after it, outside any
  /// block, opens a paragraph.
  void endBlock();
  /// Writes the open block out, but text that comes after it continues in a
  /// block of the same shape: for a block of its own (a table) inside a cell.
  void breakBlock();
  /// Ends the document: the open block goes out and everything written is
  /// pushed on. False when a write failed.
  bool finishDocument();
  /// Forgets the open block and what a document left behind.
  void reset();

  /// Whether the text written now goes into a fence, as it is.
  bool isVerbatim() const { return open_ && block_.shape == Shape::kFence; }
  /// Whether the open block holds anything but blanks and line breaks.
  bool holdsText() const;
  /// While set, characters go into the block as they are: the renderer's
  /// own markup.
  void setRaw(bool theRaw) { raw_ = theRaw; }

  /// A place in the text of a block, for emphasize.
  struct Mark {
    uint32_t block;
    ZnIndex position;
  };
  /// Where the text stands now.
  Mark mark() const;
  /// Puts theDelimiter (a run of asterisks) on both sides of what was
  /// written since theMark, blanks at its ends left outside, where Markdown
  /// reads the two as emphasis whatever comes next: text of one line, not
  /// next to another asterisk, whose ends let the delimiters open and close.
  /// Where that depends on the next character, that character decides, and
  /// the delimiters are taken out again if it would keep them from closing.
  void emphasize(Mark theMark, const char* theDelimiter);

  /// Writes theText as a code span, on one line; nothing for blank text.
  void putCodeSpan(const Zn::String* theText);
  /// Writes a link to theURL whose text is theLabel.
  void putLink(const Zn::String* theLabel, const Zn::String* theURL);
  /// Writes a table of its own amid the blocks: theRows are arrays of
  /// strings of one line, all of one length, the first row the header.
  void putTable(const Zn::Array* theRows);
  /// Writes theText in a fence of its own amid the blocks.
  void putFencedText(const Zn::String* theText, const char* theInfo);
  /// Writes theText straight out, before any block: the front matter.
  void putOutside(const Zn::String* theText);

  bool writeCharacter(ZnUnichar theCharacter) override;
  bool writeCharacters(const ZnUnichar* theCharacters, int theCount) override;
  bool writeBytes(const uint8_t* theBytes, int theCount) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~MarkdownWriter() override;

private:
  /// Where a line stands, for the characters that are markup only at the
  /// start of a line ("- ", "# ", "1. ").
  struct LineState {
    bool atStart = true;
    /// How many digits the line holds so far; -1 once it holds anything else.
    int32_t digits = 0;
    /// Set inside a web address ("http://...", "www..."), up to the next
    /// blank: readers turn it into a link as it stands in the source, with
    /// any backslash in it, so it is written as it is.
    bool inAddress = false;
  };

  /// Adds one character of text to the open block, opening one first when
  /// needed.
  void take(ZnUnichar theCharacter);
  /// Appends theCharacter to theText, escaped where Markdown would read it
  /// as markup at this place of the line.
  static void appendEscaped(Zn::MutableString* theText, ZnUnichar theCharacter, LineState& theLine);
  /// Whether theText, which ends in theCharacter just appended, has just
  /// begun a web address.
  static bool beginsAddress(const Zn::MutableString* theText, ZnUnichar theCharacter);
  static void appendEscaped(Zn::MutableString* theText, const Zn::String* theSource, LineState& theLine);
  /// Writes theText (the block) out in theBlock's shape.
  void emit(const Block& theBlock, Zn::MutableString* theText);
  void emitFence(const Block& theBlock, const Zn::String* theText);
  /// Starts a block in the output: the empty line (or, between two list
  /// items, the line end) that keeps it from the one before.
  void separate(Shape theShape);
  void flushOutput();
  /// Takes the delimiters of the last emphasis out again.
  void undoEmphasis();

  Zn::Ref<Zn::Writer> output_;
  /// The open block's text, escaped.
  Zn::Ref<Zn::MutableString> held_;
  /// One block's Markdown on its way out.
  Zn::Ref<Zn::MutableString> out_;
  Block block_;
  /// The block that text written outside any block opens.
  Block resume_;
  bool open_ = false;
  /// Counts the blocks opened, so that a mark of an earlier one is known.
  uint32_t blockCount_ = 0;
  bool raw_ = false;
  LineState line_;
  /// Set once a block has gone out in this document, with its shape.
  bool emitted_ = false;
  Shape lastShape_ = Shape::kParagraph;
  /// The last emphasis whose closing depends on the next character: where
  /// its delimiters stand, and how long they are; 0 when there is none.
  ZnIndex pendingOpen_ = 0;
  ZnIndex pendingClose_ = 0;
  ZnIndex pendingLength_ = 0;
};
