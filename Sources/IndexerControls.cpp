//===- IndexerControls.cpp - Buttons, menus, fields and tab views ---------===//
#include "SearchIndexer.h"
#include "IndexerVocabulary.h"
#include "Kx/KxExpr.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/IO/ZnWriter.h"

using Zn::adopt;
using Zn::retained;
using Zn::Kx::Expr;
using Zn::Kx::Head;
using Zn::Kx::HeadSymbol;

void SearchIndexer::indexActionMenuBox(Expr* theBox, const IndexContext& theContext) {
  IndexContext context = theContext;
  context.showStringCharacters = false;
  Zn::Ref<Zn::String> label;
  if (theBox->length() >= 1)
    label = adopt(stringForBox(theBox->part(1), context));
  auto items = adopt(new Zn::MutableArray());
  if (Expr* list = theBox->part(2); isList(list)) {
    // An item's label is the left side; the right side is its action.
    for (ZnIndex i = 1; i <= list->length(); ++i)
      if (isRule(list->part(i)))
        items->addObject(adopt(stringForBox(list->partOfPart(i, 1), context)).get());
  }
  writeActionMenu(label.get(), items.get(), context);
}

Zn::String* SearchIndexer::copyHyperlinkURL(Expr* theBox) {
  using namespace Vocabulary;
  Expr* data = optionValue(theBox, 2, ButtonData);
  Expr* url = nullptr;
  if (URL.isHeadOf(data))
    url = data;
  else if (isList(data) && URL.isHeadOf(data->part(1)))
    url = data->part(1);
  if (url)
    return url->stringValueOfPart(1);

  bool linkStyle = Hyperlink.isNameOf(optionValue(theBox, 2, ButtonStyle)) ||
                   Hyperlink.isNameOf(optionValue(theBox, 2, BaseStyle));
  if (!linkStyle)
    return nullptr;
  if (!data)
    return new Zn::String();
  // A string names a place to go: a URL, or else a cell tag of a notebook,
  // which is no address a reader could follow.
  Zn::String* text = stringText(data);
  if (isWebAddress(text))
    return retained(text).leak();
  return nullptr;
}

void SearchIndexer::indexButtonBox(Expr* theBox, const IndexContext& theContext) {
  auto label = adopt(stringForBox(theBox->part(1), theContext));
  auto url = adopt(copyHyperlinkURL(theBox));
  if (url)
    writeHyperlink(label.get(), url.get(), theContext);
  else
    writeButton(label.get(), theContext);
}

void SearchIndexer::indexCheckboxBox(Expr* theBox, const IndexContext& theContext) {
  Expr* value = theBox->part(1);
  int32_t state = -1;
  if (Vocabulary::True.matches(value))
    state = 1;
  else if (Vocabulary::False.matches(value))
    state = 0;
  writeCheckbox(state, theContext);
}

void SearchIndexer::indexInputFieldBox(Expr* theBox, const IndexContext& theContext) {
  if (theBox->length() < 1)
    return;
  IndexContext context = theContext;
  context.indexDynamic = true;
  // A field for a string shows the string; any other field shows its value
  // as code, quotes and all.
  Expr* type = theBox->part(2);
  context.showStringCharacters = !(type && type->isEqual(HeadSymbol(Head::String)));
  auto value = adopt(stringForBox(theBox->part(1), context));
  writeInputField(value.get(), context);
}

void SearchIndexer::indexPopupMenuBox(Expr* theBox, const IndexContext& theContext) {
  auto items = adopt(new Zn::MutableArray());
  int32_t selected = -1;
  if (Expr* list = theBox->part(2); isList(list)) {
    auto current = adopt(theBox->stringValueOfPart(1));
    for (ZnIndex i = 1; i <= list->length(); ++i) {
      Expr* rule = list->part(i);
      if (!isRule(rule))
        continue;
      // The last rule whose value matches wins.
      if (adopt(rule->stringValueOfPart(1))->isEqual(current.get()))
        selected = int32_t(items->getCount());
      items->addObject(adopt(stringForBox(rule->part(2), theContext)).get());
    }
  }
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

void SearchIndexer::indexSetterBox(Expr* theBox, const IndexContext& theContext) {
  // The label, or without one the value.
  indexBox(theBox->length() > 2 ? theBox->part(3) : theBox->part(2), theContext);
}

void SearchIndexer::indexTabViewBox(Expr* theBox, const IndexContext& theContext) {
  auto labels = adopt(new Zn::MutableArray());
  auto contents = adopt(new Zn::MutableArray());
  int32_t selected = -1;
  Expr* current = theBox->part(2);
  if (Expr* tabs = theBox->part(1); isList(tabs)) {
    for (ZnIndex i = 1; i <= tabs->length(); ++i) {
      // A tab is {key, label -> content}, or label -> content alone.
      Expr* tab = tabs->part(i);
      Expr* rule = isList(tab) ? tab->part(tab->length()) : tab;
      if (!isRule(rule))
        continue;
      if (selected < 0 && current && isList(tab) && tab->length() == 2 && Zn::Equal(tab->part(1), current))
        selected = int32_t(labels->getCount());
      labels->addObject(rule->part(1));
      contents->addObject(rule->part(2));
    }
  }
  // A tab view without a tab shows nothing.
  if (labels->getCount() == 0)
    return;
  writeTabView(labels.get(), contents.get(), selected < 0 ? 0 : selected, theContext);
}
