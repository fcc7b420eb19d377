//===- MapArguments.h - A box with some of its arguments rewritten --------===//
#pragma once
#include "Kx/KxFunction.h"
#include "Zn/Base/ZnRef.h"

/// +1. theBox with every argument from theFirst on replaced by what
/// theChange (which returns +1) makes of it; theBox itself, retained, when
/// nothing changed. Parts that do not change are shared, not copied.
template <class Change> Zn::Kx::Expr* MapArguments(Zn::Kx::Expr* theBox, ZnIndex theFirst, Change theChange) {
  const ZnIndex count = theBox->length();
  ZnIndex i = theFirst;
  Zn::Ref<Zn::Kx::Expr> first;
  for (; i <= count; ++i) {
    first = Zn::adopt(theChange(theBox->part(i)));
    if (first.get() != theBox->part(i))
      break;
  }
  if (i > count)
    return Zn::retained(theBox).leak();
  auto copy = Zn::adopt(new Zn::Kx::MutableFunction(2, theBox->head()));
  for (ZnIndex j = 1; j < i; ++j)
    copy->appendArgument(theBox->part(j), true);
  copy->appendArgument(first.get(), true);
  for (ZnIndex j = i + 1; j <= count; ++j)
    copy->appendArgument(Zn::adopt(theChange(theBox->part(j))).get(), true);
  return static_cast<Zn::Kx::Expr*>(copy->copy());
}
