//===- MarkdownWriter.cpp - Cells into Markdown blocks, markup escaped ----===//
#include "MarkdownWriter.h"
#include "NotebookSummary.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/IO/ZnTidyWriter.h"
#include <algorithm>

using Zn::adopt;
using Zn::retained;

namespace {

bool isBlank(ZnUnichar theCharacter) { return theCharacter == ' ' || theCharacter == 9; }
bool isLineBreak(ZnUnichar theCharacter) { return theCharacter == 10 || theCharacter == 13; }

/// What a character counts as beside an emphasis delimiter. Markdown tells
/// white space, punctuation and the rest apart by Unicode's categories;
/// where this short table does not know, the caller assumes the worse.
enum class Kind : uint8_t { kSpace, kPunctuation, kOther, kUnsure };

Kind kindOf(ZnUnichar c) {
  if (c == ' ' || (c >= 9 && c <= 13))
    return Kind::kSpace;
  if (c < 128) {
    const bool punctuation = (c >= '!' && c <= '/') || (c >= ':' && c <= '@') || (c >= '[' && c <= '`') ||
                             (c >= '{' && c <= '~');
    return punctuation ? Kind::kPunctuation : Kind::kOther;
  }
  if (c == 0xA0 || (c >= 0x2000 && c <= 0x200A) || c == 0x202F || c == 0x205F || c == 0x3000)
    return Kind::kSpace;
  if (c == 0xA1 || c == 0xA7 || c == 0xAB || c == 0xB6 || c == 0xB7 || c == 0xBB || c == 0xBF ||
      (c >= 0x2010 && c <= 0x2027) || (c >= 0x2030 && c <= 0x2043) || (c >= 0x2045 && c <= 0x2051) ||
      (c >= 0x2053 && c <= 0x205E) || (c >= 0x3001 && c <= 0x3003) || (c >= 0x3008 && c <= 0x3011))
    return Kind::kPunctuation;
  // Letters of Latin-1 and the alphabets after it; the scripts of East Asia;
  // the private use area.
  if ((c >= 0xC0 && c < 0x2000 && c != 0xD7 && c != 0xF7) || (c >= 0x3040 && c < 0xFE00))
    return Kind::kOther;
  return Kind::kUnsure;
}

/// Characters that are markup wherever they stand in a line.
bool isMarkupCharacter(ZnUnichar c) {
  switch (c) {
  case '\\': case '`': case '*': case '_': case '[': case ']':
  case '#': case '|': case '~': case '&':
    return true;
  default:
    return false;
  }
}

void appendBytes(Zn::MutableString* theText, const char* theBytes) { theText->appendCString(theBytes); }

void appendRepeated(Zn::MutableString* theText, ZnUnichar theCharacter, ZnIndex theCount) {
  for (ZnIndex i = 0; i < theCount; ++i)
    theText->appendCharacter(theCharacter);
}

/// The longest run of theCharacter in theText.
ZnIndex longestRun(const Zn::String* theText, ZnIndex theStart, ZnIndex theEnd, ZnUnichar theCharacter) {
  return theText->withCharacters([&](auto theUnits, ZnIndex) {
    ZnIndex longest = 0;
    ZnIndex run = 0;
    for (ZnIndex i = theStart; i < theEnd; ++i) {
      run = theUnits[i] == theCharacter ? run + 1 : 0;
      if (run > longest)
        longest = run;
    }
    return longest;
  });
}

/// Whether the last word of theText is a web address.
bool endsInAddress(const Zn::String* theText) {
  ZnIndex start = theText->length();
  while (start > 0 && kindOf(theText->unitAt(start - 1)) != Kind::kSpace)
    --start;
  for (ZnIndex i = start; i + 2 < theText->length(); ++i) {
    const ZnUnichar c = theText->unitAt(i);
    if (c == ':' && theText->unitAt(i + 1) == '/' && theText->unitAt(i + 2) == '/')
      return true;
    if (i == start && (c | 0x20) == 'w' && i + 3 < theText->length() &&
        (theText->unitAt(i + 1) | 0x20) == 'w' && (theText->unitAt(i + 2) | 0x20) == 'w' &&
        theText->unitAt(i + 3) == '.')
      return true;
  }
  return false;
}
} // namespace

MarkdownWriter::MarkdownWriter(Zn::Writer* theOutput)
    : output_(retained(theOutput)), held_(adopt(new Zn::MutableString(1024))),
      out_(adopt(new Zn::MutableString(1024))) {}

MarkdownWriter::~MarkdownWriter() = default;

const char* MarkdownWriter::className() const { return "MarkdownWriter"; }
const char* MarkdownWriter::superclassName() const { return "Writer"; }

//===--- Blocks --------------------------------------------------------------===//

void MarkdownWriter::beginBlock(const Block& theBlock) {
  // theBlock may be resume_, which endBlock changes.
  const Block block = theBlock;
  endBlock();
  block_ = block;
  open_ = true;
  ++blockCount_;
  line_ = LineState();
}

void MarkdownWriter::endBlock() {
  breakBlock();
  resume_ = Block();
}

void MarkdownWriter::breakBlock() {
  if (!open_)
    return;
  open_ = false;
  pendingLength_ = 0;
  resume_ = block_;
  // What continues a list item after a block of its own is a paragraph of
  // that item.
  if (block_.shape == Shape::kListItem) {
    resume_.shape = Shape::kParagraph;
    resume_.indent += ZnIndex(Zn::StringLength(block_.marker));
  }
  emit(block_, held_.get());
  held_->setLength(0);
}

bool MarkdownWriter::finishDocument() {
  endBlock();
  if (emitted_)
    output_->putCharacter(10);
  auto tidy = dynamic_cast<Zn::TidyWriter*>(output_.get());
  const bool ok = tidy ? tidy->finishDocument() : true;
  emitted_ = false;
  return ok;
}

void MarkdownWriter::reset() {
  open_ = false;
  raw_ = false;
  held_->setLength(0);
  resume_ = Block();
  emitted_ = false;
  pendingLength_ = 0;
  setIndentLevel(0);
  cancelSeparator();
}

bool MarkdownWriter::holdsText() const {
  if (!open_)
    return false;
  for (ZnIndex i = 0; i < held_->length(); ++i) {
    const ZnUnichar c = held_->unitAt(i);
    if (!isBlank(c) && !isLineBreak(c))
      return true;
  }
  return false;
}

void MarkdownWriter::separate(Shape theShape) {
  if (emitted_) {
    // Items one after the other make one tight list.
    const bool items = theShape == Shape::kListItem && lastShape_ == Shape::kListItem;
    appendBytes(out_.get(), items ? "\n" : "\n\n");
  }
  emitted_ = true;
  lastShape_ = theShape;
}

void MarkdownWriter::flushOutput() {
  output_->putString(out_.get());
  out_->setLength(0);
}

void MarkdownWriter::emit(const Block& theBlock, Zn::MutableString* theText) {
  if (theBlock.shape == Shape::kFence)
    return emitFence(theBlock, theText);
  const bool heading = theBlock.shape == Shape::kHeading;
  const bool item = theBlock.shape == Shape::kListItem;
  const ZnIndex length = theText->length();
  ZnIndex firstText = 0;
  while (firstText < length && (isBlank(theText->unitAt(firstText)) ||
                                isLineBreak(theText->unitAt(firstText))))
    ++firstText;
  // An empty cell is no paragraph; an empty heading is still a heading.
  if (firstText == length && !heading)
    return;
  separate(theBlock.shape);
  Zn::MutableString* out = out_.get();
  if (heading)
    appendRepeated(out, '#', theBlock.level);
  const ZnIndex markerWidth = ZnIndex(Zn::StringLength(theBlock.marker));
  // The lines without the blanks at their ends. Empty lines at the ends of
  // the block are dropped and a run of them inside is one: a paragraph
  // break. A heading is one line.
  ZnIndex count = 0;
  bool gap = false;
  ZnIndex start = firstText;
  for (ZnIndex i = firstText; i <= length; ++i) {
    if (i < length && !isLineBreak(theText->unitAt(i)))
      continue;
    ZnIndex end = i;
    while (end > start && isBlank(theText->unitAt(end - 1)))
      --end;
    const ZnIndex lineStart = start;
    start = i + 1;
    if (end == lineStart) {
      gap = count > 0;
      continue;
    }
    if (heading) {
      out->appendCharacter(' ');
    } else {
      if (count > 0) {
        // A line break inside a paragraph is a hard break. After a web
        // address a blank keeps the backslash out of it.
        if (!gap && endsInAddress(out))
          out->appendCharacter(' ');
        if (!gap)
          out->appendCharacter('\\');
        out->appendCharacter(10);
        if (gap)
          out->appendCharacter(10);
      }
      appendRepeated(out, ' ', theBlock.indent);
      if (item && count == 0)
        appendBytes(out, theBlock.marker);
      else if (item)
        appendRepeated(out, ' ', markerWidth);
    }
    for (ZnIndex k = lineStart; k < end; ++k)
      out->appendCharacter(theText->unitAt(k));
    ++count;
    gap = false;
  }
  flushOutput();
}

void MarkdownWriter::emitFence(const Block& theBlock, const Zn::String* theText) {
  // Empty lines at either end are no part of the code.
  ZnIndex start = 0;
  ZnIndex end = theText->length();
  for (ZnIndex i = 0; i < end; ++i) {
    const ZnUnichar c = theText->unitAt(i);
    if (isLineBreak(c))
      start = i + 1;
    else if (!isBlank(c))
      break;
  }
  while (end > start && (isBlank(theText->unitAt(end - 1)) || isLineBreak(theText->unitAt(end - 1))))
    --end;
  if (end <= start)
    return;
  separate(Shape::kFence);
  const ZnIndex fence = std::max<ZnIndex>(3, longestRun(theText, start, end, '`') + 1);
  Zn::MutableString* out = out_.get();
  appendRepeated(out, '`', fence);
  appendBytes(out, theBlock.info);
  out->appendCharacter(10);
  flushOutput();
  // The code goes out as it stands, in one write.
  theText->withCharacters([&](auto theUnits, ZnIndex) {
    if constexpr (sizeof(*theUnits) == 1)
      output_->writeBytes(theUnits + start, end - start);
    else
      output_->writeCharacters(theUnits + start, end - start);
  });
  out->appendCharacter(10);
  appendRepeated(out, '`', fence);
  flushOutput();
}

//===--- Text ---------------------------------------------------------------===//

bool MarkdownWriter::beginsAddress(const Zn::MutableString* theText, ZnUnichar theCharacter) {
  auto endsWith = [theText](const char* theTail) {
    const ZnIndex length = ZnIndex(Zn::StringLength(theTail));
    if (theText->length() < length)
      return false;
    for (ZnIndex i = 0; i < length; ++i)
      if (theText->unitAt(theText->length() - length + i) != ZnUnichar(theTail[i]))
        return false;
    // Only where a word starts: "awww." is none.
    return theText->length() == length || kindOf(theText->unitAt(theText->length() - length - 1)) != Kind::kOther;
  };
  if (theCharacter == '/')
    return endsWith("http://") || endsWith("https://") || endsWith("ftp://");
  return theCharacter == '.' && endsWith("www.");
}

void MarkdownWriter::appendEscaped(Zn::MutableString* theText, ZnUnichar theCharacter, LineState& theLine) {
  const ZnUnichar c = theCharacter;
  if (isLineBreak(c)) {
    theText->appendCharacter(10);
    theLine = LineState();
    return;
  }
  // Blanks that start a line would indent it into a code block.
  if (theLine.atStart && isBlank(c))
    return;
  // Angle brackets as references: a backslash next to a web address would
  // be read as part of it.
  if (c == '<' || c == '>') {
    theText->appendCString(c == '<' ? "&lt;" : "&gt;");
    theLine.atStart = false;
    theLine.digits = -1;
    theLine.inAddress = false;
    return;
  }
  if (kindOf(c) == Kind::kSpace)
    theLine.inAddress = false;
  bool escape = theLine.inAddress ? c == '|' : isMarkupCharacter(c);
  // "- ", "+ ", "= " and "1. " are markup only where a line starts: a
  // list item, or the line under a heading.
  if ((c == '-' || c == '+' || c == '=') && theLine.atStart)
    escape = true;
  if ((c == '.' || c == ')') && theLine.digits > 0 && theLine.digits <= 9)
    escape = true;
  if (escape)
    theText->appendCharacter('\\');
  theText->appendCharacter(c);
  const bool digit = c >= '0' && c <= '9';
  theLine.digits = digit && theLine.digits >= 0 ? theLine.digits + 1 : -1;
  theLine.atStart = false;
  if (!theLine.inAddress && (c == '/' || c == '.'))
    theLine.inAddress = beginsAddress(theText, c);
}

void MarkdownWriter::appendEscaped(Zn::MutableString* theText, const Zn::String* theSource, LineState& theLine) {
  for (ZnIndex i = 0; i < theSource->length(); ++i)
    appendEscaped(theText, theSource->unitAt(i), theLine);
}

void MarkdownWriter::take(ZnUnichar theCharacter) {
  if (!open_) {
    // Nothing opens a block but text.
    if (isBlank(theCharacter) || isLineBreak(theCharacter))
      return;
    beginBlock(resume_);
  }
  if (pendingLength_ > 0) {
    // The emphasis before closes only before white space or punctuation.
    const Kind next = kindOf(theCharacter);
    if (next != Kind::kSpace && next != Kind::kPunctuation)
      undoEmphasis();
    pendingLength_ = 0;
  }
  if (block_.shape == Shape::kFence) {
    held_->appendCharacter(theCharacter);
    return;
  }
  if (raw_) {
    held_->appendCharacter(theCharacter);
    line_.atStart = isLineBreak(theCharacter);
    line_.digits = -1;
    return;
  }
  appendEscaped(held_.get(), theCharacter, line_);
}

bool MarkdownWriter::writeCharacter(ZnUnichar theCharacter) {
  take(theCharacter);
  return true;
}

bool MarkdownWriter::writeCharacters(const ZnUnichar* theCharacters, int theCount) {
  // Code goes into its fence as it is.
  if (open_ && block_.shape == Shape::kFence && pendingLength_ == 0) {
    held_->appendCharacters(theCharacters, theCount);
    return true;
  }
  for (int i = 0; i < theCount; ++i)
    take(theCharacters[i]);
  return true;
}

bool MarkdownWriter::writeBytes(const uint8_t* theBytes, int theCount) {
  if (open_ && block_.shape == Shape::kFence && pendingLength_ == 0) {
    held_->appendCString(reinterpret_cast<const char*>(theBytes), theCount);
    return true;
  }
  for (int i = 0; i < theCount; ++i)
    take(theBytes[i]);
  return true;
}

//===--- Inline markup --------------------------------------------------------===//

MarkdownWriter::Mark MarkdownWriter::mark() const {
  // Text written outside any block opens the next one.
  return open_ ? Mark{blockCount_, held_->length()} : Mark{blockCount_ + 1, 0};
}

void MarkdownWriter::emphasize(Mark theMark, const char* theDelimiter) {
  if (!open_ || isVerbatim() || theMark.block != blockCount_)
    return;
  Zn::MutableString* text = held_.get();
  ZnIndex first = theMark.position;
  while (first < text->length() && isBlank(text->unitAt(first)))
    ++first;
  if (first == text->length())
    return;
  ZnIndex last = text->length() - 1;
  while (isBlank(text->unitAt(last)))
    --last;
  for (ZnIndex i = first; i <= last; ++i)
    if (isLineBreak(text->unitAt(i)))
      return;
  const ZnUnichar before = first > 0 ? text->unitAt(first - 1) : ZnUnichar(10);
  const ZnUnichar head = text->unitAt(first);
  const ZnUnichar tail = text->unitAt(last);
  // Asterisks next to each other would merge into one run.
  if (before == '*' || head == '*' || tail == '*')
    return;
  // Where the text starts with punctuation, the opening delimiter opens
  // only after white space or punctuation.
  const Kind headKind = kindOf(head);
  const Kind beforeKind = kindOf(before);
  const bool headIsPunctuation = headKind == Kind::kPunctuation || headKind == Kind::kUnsure;
  const bool beforeAllows = beforeKind == Kind::kSpace || beforeKind == Kind::kPunctuation;
  if (headIsPunctuation && !beforeAllows)
    return;
  // A delimiter is a few asterisks.
  ZnUnichar delimiter[4];
  ZnIndex length = 0;
  for (; length < 4 && theDelimiter[length]; ++length)
    delimiter[length] = ZnUnichar(theDelimiter[length]);
  text->insertCharacters(last + 1, delimiter, length);
  text->insertCharacters(first, delimiter, length);
  // Where it ends with punctuation, the closing delimiter closes only before
  // white space or punctuation: the next character decides.
  const Kind tailKind = kindOf(tail);
  if (tailKind == Kind::kPunctuation || tailKind == Kind::kUnsure) {
    pendingOpen_ = first;
    pendingClose_ = last + 1 + length;
    pendingLength_ = length;
  }
}

void MarkdownWriter::undoEmphasis() {
  held_->deleteCharactersInRange(Zn::Range(pendingClose_, pendingLength_));
  held_->deleteCharactersInRange(Zn::Range(pendingOpen_, pendingLength_));
  pendingLength_ = 0;
}

void MarkdownWriter::putCodeSpan(const Zn::String* theText) {
  // On one line: a line break would become a hard break of the paragraph.
  auto code = adopt(CopySingleLine(theText));
  if (code->length() == 0)
    return;
  const ZnIndex fence = longestRun(code.get(), 0, code->length(), '`') + 1;
  // A backtick at either end would join the fence; a blank on each side
  // keeps it apart and is taken off again by the reader.
  const bool pad = code->unitAt(0) == '`' || code->unitAt(code->length() - 1) == '`';
  auto span = adopt(new Zn::MutableString(code->length() + 2 * fence + 2));
  appendRepeated(span.get(), '`', fence);
  if (pad)
    span->appendCharacter(' ');
  span->appendString(code.get());
  if (pad)
    span->appendCharacter(' ');
  appendRepeated(span.get(), '`', fence);
  // Two spans side by side would read as one run of backticks.
  if (open_ && held_->length() > 0 && held_->unitAt(held_->length() - 1) == '`')
    requestSeparator(kSpaceSeparator);
  setRaw(true);
  putString(span.get());
  setRaw(false);
}

void MarkdownWriter::putLink(const Zn::String* theLabel, const Zn::String* theURL) {
  auto label = adopt(CopySingleLine(theLabel));
  // A destination with blanks, brackets or parentheses goes between angle
  // brackets, where only those and the backslash need escaping.
  bool angled = false;
  bool plain = true;
  for (ZnIndex i = 0; i < theURL->length(); ++i) {
    const ZnUnichar c = theURL->unitAt(i);
    if (c <= ' ' || c == '(' || c == ')' || c == '<' || c == '>' || c == '\\')
      angled = true;
    if (c <= ' ' || c == '<' || c == '>' || c == '\\')
      plain = false;
  }
  auto destination = adopt(new Zn::MutableString(theURL->length() + 8));
  for (ZnIndex i = 0; i < theURL->length(); ++i) {
    const ZnUnichar c = theURL->unitAt(i);
    if (isLineBreak(c))
      continue;
    if (!plain && (c == '<' || c == '>' || c == '\\'))
      destination->appendCharacter('\\');
    destination->appendCharacter(c);
  }
  setRaw(true);
  // A link that shows its own address is the address in angle brackets.
  if (plain && (label->length() == 0 || label->isEqual(theURL))) {
    putCharacter('<');
    putString(destination.get());
    putCharacter('>');
    setRaw(false);
    return;
  }
  putCharacter('[');
  setRaw(false);
  putString(label->length() > 0 ? label.get() : theURL);
  setRaw(true);
  putBytes(angled ? "](<" : "](");
  putString(destination.get());
  putBytes(angled ? ">)" : ")");
  setRaw(false);
}

//===--- Blocks of their own ------------------------------------------------===//

void MarkdownWriter::putTable(const Zn::Array* theRows) {
  if (theRows->getCount() == 0)
    return;
  breakBlock();
  separate(Shape::kParagraph);
  Zn::MutableString* out = out_.get();
  for (ZnIndex r = 0; r < theRows->getCount(); ++r) {
    auto row = static_cast<const Zn::Array*>(theRows->objectAtIndex(r));
    if (r > 0)
      out->appendCharacter(10);
    out->appendCharacter('|');
    for (ZnIndex c = 0; c < row->getCount(); ++c) {
      out->appendCharacter(' ');
      auto entry = adopt(CopySingleLine(static_cast<const Zn::String*>(row->objectAtIndex(c))));
      LineState line;
      appendEscaped(out, entry.get(), line);
      appendBytes(out, " |");
    }
    // The header row's delimiter row.
    if (r == 0) {
      appendBytes(out, "\n|");
      for (ZnIndex c = 0; c < row->getCount(); ++c)
        appendBytes(out, " --- |");
    }
  }
  flushOutput();
}

void MarkdownWriter::putFencedText(const Zn::String* theText, const char* theInfo) {
  breakBlock();
  Block fence;
  fence.shape = Shape::kFence;
  fence.info = theInfo;
  emitFence(fence, theText);
}

void MarkdownWriter::putOutside(const Zn::String* theText) {
  breakBlock();
  separate(Shape::kParagraph);
  out_->appendString(theText);
  flushOutput();
}
