//===- CodeDecorator.cpp - Marks up the code of input cells ---------------===//
#include "CodeDecorator.h"
#include "IndexerVocabulary.h"
#include "MapArguments.h"
#include "Kx/KxFunction.h"
#include "Kx/KxNumber.h"
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnString.h"

using Zn::adopt;
using Zn::retained;
using Zn::Kx::CharacterString;
using Zn::Kx::Expr;
using Zn::Kx::Head;
using Zn::Kx::HeadSymbol;

// The decorator marks up the code of "Input" and "Code" cells for a renderer
// that shows styles. Everything it marks becomes a StyleBox around the part:
// - a comment, from "(*" to its matching "*)" among the items of one row, or
//   a string atom that is a whole comment: FontSlant -> "Italic" and
//   FontColor -> RGBColor[67/255, 137/255, 88/255];
// - a string literal (an atom written "\"...\""): FontColor -> GrayLevel[0.4];
// - the local variables of a scoping construct, found as a row whose items
//   are the construct's name, "[", the arguments and "]": for Module, Block
//   and With each variable of the brace list of the first argument, where a
//   variable given a value ("x = v", "x := v") has only its name marked; for
//   Table, Do, Manipulate and Animate the variable of each iterator list
//   after the first argument: FontColor -> GrayLevel[0.6].
// Dynamic content and graphics are left as they are. Parts that nothing
// changes are shared with the original, not copied.

namespace {
using Zn::Kx::Function;

struct CodeMarks {
  Zn::Ref<Expr> text(const char* theText) { return adopt<Expr>(new CharacterString(theText)); }
  Zn::Ref<Expr> rule(Expr* theName, Expr* theValue) { return adopt<Expr>(Function::createRule(theName, theValue)); }

  // The items that shape code in a row.
  Zn::Ref<Expr> leftBracket = text("["), rightBracket = text("]"), leftBrace = text("{"),
                rightBrace = text("}"), equal = text("="), delayedEqual = text(":="), comma = text(","),
                commentOpen = text("(*"), commentClose = text("*)");
  // Scoping constructs: the first three name their variables in a list
  // first, the others in iterators after the first argument.
  Zn::Ref<Expr> module = text("Module"), block = text("Block"), with = text("With"), table = text("Table"),
                loop = text("Do"), manipulate = text("Manipulate"), animate = text("Animate");
  // The style options.
  Zn::Ref<Expr> fontSlant = adopt<Expr>(new Zn::Kx::Symbol("FontSlant"));
  Zn::Ref<Expr> fontColor = adopt<Expr>(new Zn::Kx::Symbol("FontColor"));
  Zn::Ref<Expr> italic = rule(fontSlant.get(), adopt<Expr>(new CharacterString("Italic")).get());
  Zn::Ref<Expr> commentColor =
      rule(fontColor.get(), adopt<Expr>(new Function(Vocabulary::RGBColor.get(),
                                                     adopt(new Zn::Kx::MachineReal(67.0 / 255.0)).get(),
                                                     adopt(new Zn::Kx::MachineReal(137.0 / 255.0)).get(),
                                                     adopt(new Zn::Kx::MachineReal(88.0 / 255.0)).get()))
                                  .get());
  Zn::Ref<Expr> stringColor = gray(0.4);
  Zn::Ref<Expr> variableColor = gray(0.6);

  Zn::Ref<Expr> gray(double theLevel) {
    return rule(fontColor.get(),
                adopt<Expr>(new Function(Vocabulary::GrayLevel.get(), adopt(new Zn::Kx::MachineReal(theLevel)).get()))
                    .get());
  }
};

const CodeMarks& codeMarks() {
  static CodeMarks sMarks;
  return sMarks;
}

bool isItem(const Expr* theExpr, const Zn::Ref<Expr>& theMark) { return Zn::Equal(theExpr, theMark.get()); }

/// +1. StyleBox[theContent, theOptions...].
Expr* styled(Expr* theContent, Expr* theOption, Expr* theSecondOption = nullptr) {
  return new Function(Vocabulary::StyleBox.get(), theContent, theOption, theSecondOption);
}

/// +1. RowBox[theList] with theRow's further arguments, if any.
Expr* rowLike(Expr* theRow, Expr* theList) {
  auto row = adopt(new Zn::Kx::MutableFunction(2, Vocabulary::RowBox.get()));
  row->appendArgument(theList, true);
  for (ZnIndex i = 2; i <= theRow->length(); ++i)
    row->appendArgument(theRow->part(i), true);
  return static_cast<Expr*>(row->copy());
}

bool isQuotedText(const Zn::String* theText) {
  auto t = [theText](ZnIndex theIndex) { return theText->unitAt(theIndex); };
  const ZnIndex n = theText->length();
  if (n >= 2 && t(0) == '"' && t(n - 1) == '"')
    return true;
  return n >= 4 && t(0) == '\\' && t(1) == '"' && t(n - 2) == '\\' && t(n - 1) == '"';
}

bool isCommentText(const Zn::String* theText) {
  auto t = [theText](ZnIndex theIndex) { return theText->unitAt(theIndex); };
  const ZnIndex n = theText->length();
  return n >= 4 && t(0) == '(' && t(1) == '*' && t(n - 2) == '*' && t(n - 1) == ')';
}

class CodeDecorator {
public:
  /// +1.
  Expr* decorate(Expr* theBox);

private:
  Expr* decorateRow(Expr* theRow);
  Expr* decorateScope(Expr* theArguments, bool theVariablesFirst);
  Expr* markVariables(Expr* theList, bool theIterator);
  Expr* markVariable(Expr* theVariable);
  const CodeMarks& marks_ = codeMarks();
};

Expr* CodeDecorator::decorate(Expr* theBox) {
  using namespace Vocabulary;
  if (theBox->isAtom()) {
    Zn::String* text = stringText(theBox);
    if (text && isCommentText(text))
      return styled(theBox, marks_.italic.get(), marks_.commentColor.get());
    if (text && isQuotedText(text))
      return styled(theBox, marks_.stringColor.get());
    return Zn::retained(theBox).leak();
  }
  Expr* head = theBox->head();
  if (Dynamic.matches(head) || DynamicBox.matches(head) || GraphicsBox.matches(head) ||
      Graphics3DBox.matches(head))
    return Zn::retained(theBox).leak();
  if (RowBox.matches(head) && theBox->length() >= 1 && isList(theBox->part(1)))
    return decorateRow(theBox);
  return MapArguments(theBox, 1, [this](Expr* theArgument) { return decorate(theArgument); });
}

Expr* CodeDecorator::decorateRow(Expr* theRow) {
  Expr* items = theRow->part(1);
  const ZnIndex count = items->length();
  auto result = adopt(new Zn::Kx::MutableFunction(2, HeadSymbol(Head::List)));
  bool changed = false;
  for (ZnIndex i = 1; i <= count; ++i) {
    Expr* item = items->part(i);
    if (isItem(item, marks_.commentOpen)) {
      // The comment runs to the "*)" that matches this "(*".
      ZnIndex end = i + 1;
      for (int32_t depth = 1; end <= count; ++end) {
        if (isItem(items->part(end), marks_.commentOpen))
          ++depth;
        else if (isItem(items->part(end), marks_.commentClose) && --depth == 0)
          break;
      }
      if (end <= count) {
        if (i == 1 && end == count)
          return styled(theRow, marks_.italic.get(), marks_.commentColor.get());
        auto run = adopt(new Zn::Kx::MutableFunction(2, HeadSymbol(Head::List)));
        for (ZnIndex j = i; j <= end; ++j)
          run->appendArgument(items->part(j), true);
        auto comment = adopt(new Function(Vocabulary::RowBox.get(), static_cast<Expr*>(run.get())));
        result->appendArgument(styled(comment.get(), marks_.italic.get(), marks_.commentColor.get()), false);
        changed = true;
        i = end;
        continue;
      }
    }
    const bool variablesFirst = isItem(item, marks_.module) || isItem(item, marks_.block) || isItem(item, marks_.with);
    const bool iterators = isItem(item, marks_.table) || isItem(item, marks_.loop) ||
                           isItem(item, marks_.manipulate) || isItem(item, marks_.animate);
    if ((variablesFirst || iterators) && i + 2 <= count && isItem(items->part(i + 1), marks_.leftBracket)) {
      Expr* arguments = items->part(i + 2);
      Expr* scoped = decorateScope(arguments, variablesFirst);
      changed = changed || scoped != arguments;
      result->appendArgument(item, true);
      result->appendArgument(items->part(i + 1), true);
      result->appendArgument(scoped, false);
      i += 2;
      continue;
    }
    Expr* decorated = decorate(item);
    changed = changed || decorated != item;
    result->appendArgument(decorated, false);
  }
  if (!changed)
    return Zn::retained(theRow).leak();
  return rowLike(theRow, result.get());
}

Expr* CodeDecorator::decorateScope(Expr* theArguments, bool theVariablesFirst) {
  // The arguments are one row of items separated by commas, or a single box.
  if (!Vocabulary::RowBox.isHeadOf(theArguments) || theArguments->length() < 1 || !isList(theArguments->part(1)))
    return theVariablesFirst ? markVariables(theArguments, false) : decorate(theArguments);
  Expr* items = theArguments->part(1);
  ZnIndex position = 0;
  auto marked = MapArguments(items, 1, [&](Expr* theItem) {
    if (isItem(theItem, marks_.comma))
      return Zn::retained(theItem).leak();
    ++position;
    if (theVariablesFirst && position == 1)
      return markVariables(theItem, false);
    if (!theVariablesFirst && position > 1)
      return markVariables(theItem, true);
    return decorate(theItem);
  });
  auto list = adopt(marked);
  if (list.get() == items)
    return Zn::retained(theArguments).leak();
  return rowLike(theArguments, list.get());
}

Expr* CodeDecorator::markVariables(Expr* theList, bool theIterator) {
  // {x, y = 1} or {i, 1, n}: a row of "{", the contents and "}".
  if (!Vocabulary::RowBox.isHeadOf(theList) || theList->length() < 1 || !isList(theList->part(1)) ||
      theList->lengthOfPart(1) != 3 || !isItem(theList->partOfPart(1, 1), marks_.leftBrace) ||
      !isItem(theList->partOfPart(1, 3), marks_.rightBrace))
    return decorate(theList);
  Expr* inner = theList->partOfPart(1, 2);
  Zn::Ref<Expr> marked;
  if (Vocabulary::RowBox.isHeadOf(inner) && inner->length() >= 1 && isList(inner->part(1))) {
    Expr* items = inner->part(1);
    ZnIndex position = 0;
    auto list = adopt(MapArguments(items, 1, [&](Expr* theItem) {
      if (isItem(theItem, marks_.comma))
        return Zn::retained(theItem).leak();
      ++position;
      // An iterator names its variable first; a variable list names one in
      // every place.
      if (!theIterator || position == 1)
        return markVariable(theItem);
      return decorate(theItem);
    }));
    marked = list.get() == items ? retained(inner) : adopt(rowLike(inner, list.get()));
  } else {
    marked = adopt(markVariable(inner));
  }
  if (marked.get() == inner)
    return Zn::retained(theList).leak();
  auto braces = adopt(new Function(HeadSymbol(Head::List), theList->partOfPart(1, 1), marked.get(),
                                   theList->partOfPart(1, 3)));
  return rowLike(theList, braces.get());
}

Expr* CodeDecorator::markVariable(Expr* theVariable) {
  if (stringText(theVariable) && !isQuotedText(stringText(theVariable)))
    return styled(theVariable, marks_.variableColor.get());
  // x = v or x := v: the name is the variable, the value is code.
  if (Vocabulary::RowBox.isHeadOf(theVariable) && theVariable->length() >= 1 && isList(theVariable->part(1)) &&
      theVariable->lengthOfPart(1) == 3 &&
      (isItem(theVariable->partOfPart(1, 2), marks_.equal) ||
       isItem(theVariable->partOfPart(1, 2), marks_.delayedEqual))) {
    Expr* items = theVariable->part(1);
    auto name = adopt(markVariable(items->part(1)));
    auto value = adopt(decorate(items->part(3)));
    auto list = adopt(new Function(HeadSymbol(Head::List), name.get(), items->part(2), value.get()));
    return rowLike(theVariable, list.get());
  }
  return decorate(theVariable);
}
} // namespace

Expr* DecorateCode(Expr* theBox) { return CodeDecorator().decorate(theBox); }

Expr* DecorateCodeCell(Expr* theCell) {
  CodeDecorator decorator;
  ZnIndex position = 0;
  return MapArguments(theCell, 1, [&](Expr* theArgument) {
    return ++position == 1 ? decorator.decorate(theArgument) : Zn::retained(theArgument).leak();
  });
}
