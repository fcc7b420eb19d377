//===- IndexerBoxes.cpp - Typeset layout, graphics and dynamic boxes ------===//
#include "SearchIndexer.h"
#include "AtomText.h"
#include "IndexerVocabulary.h"
#include "Kx/KxExpr.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnWriter.h"

using Zn::adopt;
using Zn::Kx::Expr;
using Zn::Kx::Head;

namespace {
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

/// Whether the items of a row stand inside one pair of matching brackets:
/// the first opens the pair and the last closes it.
bool isEnclosed(const Expr* theItems) {
  static const char kOpening[] = "([{";
  static const char kClosing[] = ")]}";
  const ZnIndex count = theItems->length();
  Zn::String* first = stringText(theItems->part(1));
  if (count < 2 || !first || first->length() != 1)
    return false;
  const ZnUnichar open = first->characterAtIndex(0);
  int32_t pair = 0;
  while (pair < 3 && ZnUnichar(kOpening[pair]) != open)
    ++pair;
  if (pair == 3)
    return false;
  const char opening[2] = {kOpening[pair], 0};
  const char closing[2] = {kClosing[pair], 0};
  int32_t depth = 0;
  for (ZnIndex i = 1; i <= count; ++i) {
    Zn::String* text = stringText(theItems->part(i));
    if (hasText(text, opening))
      ++depth;
    else if (hasText(text, closing))
      --depth;
    if (depth == 0)
      return i == count;
  }
  return false;
}
} // namespace

bool SearchIndexer::needsGrouping(const Expr* theBox) {
  using Vocabulary::BoxKind;
  while (theBox && !theBox->isAtom()) {
    const Expr* head = theBox->head();
    switch (Vocabulary::boxKindOf(head, head->hash())) {
    case BoxKind::FractionBox:
      return true;
    case BoxKind::RowBox: {
      const Expr* items = theBox->part(1);
      if (!isList(items) || items->length() == 0)
        return false;
      if (items->length() > 1)
        return !isEnclosed(items);
      theBox = items->part(1);
      break;
    }
    // Wrappers that add nothing around what they show.
    case BoxKind::StyleBox:
    case BoxKind::TagBox:
    case BoxKind::FormBox:
    case BoxKind::InterpretationBox:
    case BoxKind::AdjustmentBox:
    case BoxKind::ItemBox:
      theBox = theBox->part(1);
      break;
    default:
      return false;
    }
  }
  return false;
}

void SearchIndexer::walkGrouped(Expr* theBox, const IndexContext& theContext) {
  if (!needsGrouping(theBox))
    return indexBox(theBox, theContext);
  theContext.writer->putCharacter('(');
  indexBox(theBox, theContext);
  theContext.writer->putCharacter(')');
}

//===--- Dynamic content --------------------------------------------------===//

void SearchIndexer::indexDynamicBox(Expr* theBox, const IndexContext& theContext) {
  if (theContext.indexDynamic && theBox->length() >= 1)
    indexBox(theBox->part(1), theContext);
  else
    theContext.writer->putBytes("-Dynamic-");
}

void SearchIndexer::indexDynamicModuleBox(Expr* theBox, const IndexContext& theContext) {
  // The variables (the first argument) hold values that live in the front
  // end; only the body shows.
  indexBox(theBox->part(2), theContext);
}

//===--- Graphics ---------------------------------------------------------===//

void SearchIndexer::writeGraphicsLabel(Expr* theLabel, const IndexContext& theContext) {
  // None stands for a label that is not there; lists (such as the four
  // sides of a frame) hold one label per element.
  if (Vocabulary::None.matches(theLabel))
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

//===--- Layout -----------------------------------------------------------===//

void SearchIndexer::indexCounterBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1)
    return;
  auto name = adopt(theBox->stringValueOfPart(1));
  if (Zn::Object* value = namedCounters_.countForName(name.get()))
    theContext.writer->putString(adopt(value->description()).get());
  else
    theContext.writer->putCharacter('0');
}

void SearchIndexer::indexFractionBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 2)
    return;
  walkGrouped(theBox->part(1), theContext);
  theContext.writer->putCharacter('/');
  walkGrouped(theBox->part(2), theContext);
}

void SearchIndexer::indexGridBox(Expr* theBox, const IndexContext& theContext) {
  Expr* rows = theBox->part(1);
  if (!isList(rows))
    return;
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

void SearchIndexer::indexPanelBox(Expr* theBox, const IndexContext& theContext) {
  indexBox(theBox->part(1), theContext);
}

void SearchIndexer::indexPaneSelectorBox(Expr* theBox, const IndexContext& theContext) {
  Expr* panes = theBox->part(1);
  if (!isList(panes) || panes->length() < 1)
    return indexBox(panes, theContext);
  // Only the first pane is shown, whatever the current value says.
  Expr* first = panes->part(1);
  if (isHead(first, Head::Rule) && first->length() >= 2)
    return indexBox(first->part(2), theContext);
  indexBox(first, theContext);
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
  Expr* items = theBox->part(1);
  if (!items)
    return;
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

void SearchIndexer::indexSqrtBox(Expr* theBox, const IndexContext& theContext) {
  static const ZnUnichar kSquareRoot = 0x221A;
  writeResolvedText(&kSquareRoot, 1, theContext);
  indexBox(theBox->part(1), theContext);
}

void SearchIndexer::indexStyleBox(Expr* theBox, const IndexContext& theContext) {
  using namespace Vocabulary;
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

void SearchIndexer::indexScriptsBox(Expr* theBox, const IndexContext& theContext) {
  using Vocabulary::BoxKind;
  if (theBox->length() < 2)
    return;
  Expr* head = theBox->head();
  const BoxKind kind = Vocabulary::boxKindOf(head, head->hash());
  indexBox(theBox->part(1), theContext);
  if (kind == BoxKind::OverscriptBox)
    return writeSuperscript(theBox->part(2), theContext);
  writeSubscript(theBox->part(2), theContext);
  if (theBox->length() >= 3 && kind != BoxKind::UnderscriptBox)
    writeSuperscript(theBox->part(3), theContext);
}
