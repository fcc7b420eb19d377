//===- IndexerTemplates.cpp - Templates as the page shows them ------------===//
//
// A TemplateBox holds arguments and a tag; the page shows it through a
// display function, a box with slots (#1, #2, ...) for the arguments. When
// the notebook carries that function, in the box or in a style sheet it
// embeds, the walk applies it. The common tags of the notebook system come
// without one: their page form is written here. Any other template shows
// its arguments, but none of the settings among them.
//
//===----------------------------------------------------------------------===//
#include "SearchIndexer.h"
#include "AtomText.h"
#include "IndexerVocabulary.h"
#include "Kx/KxExpr.h"
#include "Kx/KxFunction.h"
#include "Kx/KxNumber.h"
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "MapArguments.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Collection/ZnRange.h"
#include "Zn/Collection/ZnDictionary.h"
#include "Zn/IO/ZnWriter.h"

using Zn::adopt;
using Zn::retained;
using Zn::Kx::Expr;
using Zn::Kx::Head;
using Zn::Kx::HeadSymbol;

namespace {

/// The page forms of the tags that come without a display function.
enum class Form : uint8_t {
  Generic,
  Joined,         // the arguments one after the other
  Space,          // a space
  First,          // the first argument
  Link,           // the label, and the URL when it is a web address
  Message,        // Symbol::tag: the text with its `n` slots filled
  Quantity,       // value and unit
  Constant,       // C with the argument as subscript
  Subscript,      // base and script
  Superscript,    // base and exponent
  Subsuperscript, // base, script and exponent
  Skeleton,       // <<n>>, the count of elided parts
  Around,         // value ± uncertainty
  Separated,      // the items from the third on, the first between them
  Mod,            // i mod p
};

struct KnownTag {
  const char* tag;
  Form form;
};

const KnownTag kKnownTags[] = {
    {"RowDefault", Form::Joined},
    {"QuantityPostfix", Form::Joined},
    {"Spacer1", Form::Space},
    {"Spacer2", Form::Space},
    {"SummaryPanel", Form::First},
    {"Entity", Form::First},
    {"NotationTemplateTag", Form::First},
    {"HyperlinkURL", Form::Link},
    {"HyperlinkTemplate", Form::Link},
    {"HyperlinkDefault", Form::Link},
    {"HyperlinkStaticTemplate", Form::Link},
    {"RefLink", Form::Link},
    {"RefLinkPlain", Form::Link},
    {"OrangeLink", Form::Link},
    {"MessageTemplate", Form::Message},
    {"Quantity", Form::Quantity},
    {"C", Form::Constant},
    {"Subscript", Form::Subscript},
    {"Superscript", Form::Superscript},
    {"Subsuperscript", Form::Subsuperscript},
    {"OutputSizeLimit`Skeleton", Form::Skeleton},
    {"Around", Form::Around},
    {"RowWithSeparators", Form::Separated},
    {"Mod", Form::Mod},
};

Form formOfTag(const Zn::String* theTag) {
  if (theTag)
    for (const KnownTag& known : kKnownTags)
      if (theTag->compareToCString(known.tag, true) == 0)
        return known.form;
  return Form::Generic;
}

/// The text of a string atom without the quotes that a string of boxes
/// carries; null for anything else. +1.
Zn::String* copyUnquotedText(const Expr* theExpr) {
  Zn::String* text = stringText(theExpr);
  if (!text)
    return nullptr;
  const ZnIndex length = text->length();
  if (length >= 2 && text->characterAtIndex(0) == '"' && text->characterAtIndex(length - 1) == '"')
    return text->substringWithRange(Zn::Range(1, length - 2));
  return retained(text).leak();
}

/// A place in the documentation, which no reader outside can follow.
bool isPacletAddress(const Expr* theExpr) {
  Zn::String* text = stringText(theExpr);
  if (!text)
    return false;
  Zn::WideCharacters units(text);
  return AtomText::isPacletAddress(units.data(), units.length());
}

/// +1. The web address among the arguments after the label: URL[...], a
/// list that starts with one, or a string that is one; null when there is
/// none.
Zn::String* copyWebAddress(const Expr* theArguments) {
  for (ZnIndex i = 2; i <= theArguments->length(); ++i) {
    const Expr* candidate = theArguments->part(i);
    if (isList(candidate))
      candidate = candidate->part(1);
    if (Vocabulary::URL.isHeadOf(candidate))
      candidate = candidate->part(1);
    auto text = adopt(copyUnquotedText(candidate));
    if (isWebAddress(text.get()))
      return text.leak();
  }
  return nullptr;
}

/// Whether theExpr is a setting rather than text: None, Automatic, True,
/// False, a documentation address, or the template's own tag.
bool isSetting(const Expr* theExpr, const Zn::String* theTag) {
  if (theExpr->asSymbol())
    return Vocabulary::None.matches(theExpr) || Vocabulary::True.matches(theExpr) ||
           Vocabulary::False.matches(theExpr) || theExpr->isEqual(HeadSymbol(Head::Automatic));
  if (isPacletAddress(theExpr))
    return true;
  auto text = adopt(copyUnquotedText(theExpr));
  return text && theTag && text->isEqual(theTag);
}

/// What follows a message's values: numbers, and where it came from.
bool isMessageMark(const Expr* theExpr) {
  if (dynamic_cast<const Zn::Kx::Number*>(theExpr))
    return true;
  auto text = adopt(copyUnquotedText(theExpr));
  return text && (text->compareToCString("Local", true) == 0 || text->compareToCString("System", true) == 0);
}

/// +1. theBody with every slot (#n, and ##n in a list or row) replaced by
/// the arguments; slots of functions nested in it are theirs, not ours.
Expr* fillSlots(Expr* theBody, const Expr* theArguments) {
  if (!theBody || theBody->isAtom() || isHead(theBody, Head::Function))
    return retained(theBody).leak();
  if (isHead(theBody, Head::Slot)) {
    const ZnIndex index = theBody->length() == 0 ? 1 : theBody->part(1)->integerValue();
    Expr* argument = index >= 1 ? theArguments->part(index) : nullptr;
    return argument ? retained(argument).leak() : new Zn::Kx::CharacterString("");
  }
  bool hasSequence = false;
  for (ZnIndex i = 1; i <= theBody->length() && !hasSequence; ++i)
    hasSequence = isHead(theBody->part(i), Head::SlotSequence);
  if (!hasSequence)
    return MapArguments(theBody, 1, [&](Expr* thePart) { return fillSlots(thePart, theArguments); });
  // ##n stands for the arguments from n on, spliced in.
  auto copy = adopt(new Zn::Kx::MutableFunction(theBody->length() + theArguments->length(), theBody->head()));
  for (ZnIndex i = 1; i <= theBody->length(); ++i) {
    Expr* part = theBody->part(i);
    if (!isHead(part, Head::SlotSequence)) {
      copy->appendArgument(adopt(fillSlots(part, theArguments)).get(), true);
      continue;
    }
    ZnIndex first = part->length() == 0 ? 1 : part->part(1)->integerValue();
    for (ZnIndex j = first < 1 ? 1 : first; j <= theArguments->length(); ++j)
      copy->appendArgument(theArguments->part(j), true);
  }
  return static_cast<Expr*>(copy->copy());
}

} // namespace

//===--- The style sheet's display functions ------------------------------===//

void SearchIndexer::noteDisplayFunctions(Expr* theCells) {
  using namespace Vocabulary;
  if (isList(theCells)) {
    for (ZnIndex i = 1; i <= theCells->length(); ++i)
      noteDisplayFunctions(theCells->part(i));
    return;
  }
  if (!Cell.isHeadOf(theCells))
    return;
  Expr* contents = theCells->part(1);
  if (CellGroupData.isHeadOf(contents))
    return noteDisplayFunctions(contents->part(1));
  Zn::String* tag = StyleData.isHeadOf(contents) ? stringText(contents->part(1)) : nullptr;
  if (!tag)
    return;
  Expr* options = optionValue(theCells, 2, TemplateBoxOptions);
  Expr* function = isList(options) ? optionValue(options, 1, DisplayFunction) : nullptr;
  if (isRule(options) && DisplayFunction.matches(options->part(1)))
    function = options->part(2);
  if (!function)
    return;
  if (!displayFunctions_)
    displayFunctions_ = adopt(new Zn::MutableDictionary());
  displayFunctions_->setObjectForKey(tag, function);
}

//===--- Templates ----------------------------------------------------------===//

// Display functions may show other templates, and a style sheet may make a
// tag show itself: below this many levels a template shows as if it had no
// display function.
constexpr ZnIndex kMaxTemplateDepth = 16;

void SearchIndexer::indexTemplateBox(Expr* theBox, const IndexContext& theContext) {
  Expr* arguments = theBox->part(1);
  if (!arguments)
    return;
  Zn::String* tag = stringText(theBox->part(2));
  Expr* function = optionValue(theBox, 3, Vocabulary::DisplayFunction);
  if (!function && tag && displayFunctions_)
    function = static_cast<Expr*>(displayFunctions_->objectForKey(tag));
  if (isHead(function, Head::Function) && function->length() == 1 && isList(arguments) &&
      templateDepth_ < kMaxTemplateDepth) {
    auto shown = adopt(fillSlots(function->part(1), arguments));
    struct Nesting {
      ZnIndex& depth;
      ~Nesting() { --depth; }
    } nesting{++templateDepth_};
    return indexBox(shown.get(), theContext);
  }
  if (!isList(arguments))
    return;
  writeTemplateForm(arguments, tag, theContext);
}

void SearchIndexer::writeTemplateForm(Expr* theArguments, Zn::String* theTag, const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  Expr* first = theArguments->part(1);
  Expr* second = theArguments->part(2);
  Form form = formOfTag(theTag);
  if (form == Form::Generic) {
    // Any other link into the documentation shows its label.
    for (ZnIndex i = 2; i <= theArguments->length() && form == Form::Generic; ++i)
      if (isPacletAddress(theArguments->part(i)))
        form = Form::Link;
  }
  switch (form) {
  case Form::Joined:
    return walkArguments(theArguments, 1, theContext);
  case Form::Space:
    writer->putCharacter(' ');
    return;
  case Form::First:
    return indexBox(first, theContext);
  case Form::Link: {
    auto url = adopt(copyWebAddress(theArguments));
    if (!url)
      return indexBox(first, theContext);
    return writeHyperlink(adopt(stringForBox(first, theContext)).get(), url.get(), theContext);
  }
  case Form::Message:
    return writeMessage(theArguments, theContext);
  case Form::Quantity:
    indexBox(first, theContext);
    writer->requestSeparator(Zn::Writer::kSpaceSeparator);
    return indexBox(second, theContext);
  case Form::Constant:
    writer->putCharacter('C');
    return writeSubscript(first, theContext);
  case Form::Subscript:
  case Form::Superscript:
  case Form::Subsuperscript:
    indexBox(first, theContext);
    if (form == Form::Superscript)
      return writeSuperscript(second, theContext);
    writeSubscript(second, theContext);
    if (form == Form::Subsuperscript)
      writeSuperscript(theArguments->part(3), theContext);
    return;
  case Form::Skeleton:
    writer->putBytes("<<");
    indexBox(first, theContext);
    writer->putBytes(">>");
    return;
  case Form::Around: {
    static const ZnUnichar kPlusMinus[] = {' ', 0xB1, ' '};
    indexBox(first, theContext);
    writeResolvedText(kPlusMinus, 3, theContext);
    return indexBox(second, theContext);
  }
  case Form::Separated:
    for (ZnIndex i = 3; i <= theArguments->length(); ++i) {
      if (i > 3)
        indexBox(first, theContext);
      indexBox(theArguments->part(i), theContext);
    }
    return;
  case Form::Mod:
    indexBox(first, theContext);
    writer->putBytes(" mod ");
    return indexBox(second, theContext);
  case Form::Generic:
    break;
  }
  // The arguments, each a piece of its own, without the settings among them.
  bool wrote = false;
  for (ZnIndex i = 1; i <= theArguments->length(); ++i) {
    Expr* argument = theArguments->part(i);
    if (isSetting(argument, theTag))
      continue;
    if (wrote)
      writer->requestSeparator(Zn::Writer::kSpaceSeparator);
    const uint32_t before = writer->getPutCount();
    indexBox(argument, theContext);
    wrote = wrote || writer->getPutCount() != before;
  }
  if (wrote)
    writer->cancelSeparator();
}

void SearchIndexer::writeMessage(Expr* theArguments, const IndexContext& theContext) {
  // {symbol, tag, text, values..., then the count, the serial numbers and
  // where it came from ("Local"), which the page does not show}.
  Zn::Writer* writer = theContext.writer.get();
  indexBox(theArguments->part(1), theContext);
  writer->putBytes("::");
  indexBox(theArguments->part(2), theContext);
  writer->putBytes(": ");
  Expr* message = theArguments->part(3);
  ZnIndex last = theArguments->length();
  while (last > 3 && isMessageMark(theArguments->part(last)))
    --last;
  Zn::String* source = stringText(message);
  if (!source || last <= 3 || source->indexOfCString("`", true, 0) < 0)
    return indexBox(message, theContext);
  // The slots `1`, `2`, ... of the text as shown take the values' text.
  IndexContext plain = theContext;
  plain.showStringCharacters = false;
  auto text = adopt(stringForBox(message, plain));
  auto filled = adopt(new Zn::MutableString(text->length() + 32));
  Zn::WideCharacters wide(text.get());
  const ZnUnichar* units = wide.data();
  const ZnIndex length = wide.length();
  for (ZnIndex i = 0; i < length; ++i) {
    ZnIndex end = i + 1;
    int32_t slot = 0;
    while (units[i] == '`' && end < length && units[end] >= '0' && units[end] <= '9' && slot < 1000)
      slot = slot * 10 + (units[end++] - '0');
    const bool isSlot = units[i] == '`' && end > i + 1 && end < length && units[end] == '`';
    Expr* value = isSlot && slot >= 1 && slot + 3 <= last ? theArguments->part(slot + 3) : nullptr;
    if (!value) {
      filled->appendCharacter(units[i]);
      continue;
    }
    filled->appendString(adopt(stringForBox(value, plain)).get());
    i = end;
  }
  // Both texts are written already, escapes and names resolved.
  writer->putString(filled.get());
}
