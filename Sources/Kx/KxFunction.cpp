//===- KxFunction.cpp - Compound expressions: a head and its arguments -----===//
#include "Kx/KxFunction.h"
#include "Kx/KxExprStack.h"
#include "Kx/KxPrinter.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnObjectHeap.h"
#include "Zn/Collection/ZnArray.h"
#include <new>

namespace Zn::Kx {

static Expr* Retained(Expr* theExpr) {
  if (theExpr)
    theExpr->retain();
  return theExpr;
}

static Expr** AllocateParts(ZnIndex theSlots) {
  return static_cast<Expr**>(Allocate(Sys::size_t(theSlots) * sizeof(Expr*)));
}

//===--- Construction ----------------------------------------------------------===//

void Function::initWithList(Expr* theHead, Expr* theFlatHead, Expr* const* theList) {
  // Counted first so that the parts take exactly one allocation.
  ZnIndex count = 0;
  for (Expr* const* e = theList; *e; ++e) {
    const Function* inner = theFlatHead ? (*e)->asFunction() : nullptr;
    count += inner && Equal(inner->head(), theFlatHead) ? inner->length_ : 1;
  }
  parts_ = AllocateParts(count + 1);
  parts_[0] = Retained(theHead);
  for (Expr* const* e = theList; *e; ++e) {
    const Function* inner = theFlatHead ? (*e)->asFunction() : nullptr;
    if (inner && Equal(inner->head(), theFlatHead)) {
      for (ZnIndex i = 1; i <= inner->length_; ++i)
        parts_[++length_] = Retained(inner->parts_[i]);
    } else {
      parts_[++length_] = Retained(*e);
    }
  }
}

Function::Function(Flatten, Expr* theHead, Expr* theFlatHead, Expr* const* theList) {
  initWithList(theHead, theFlatHead, theList);
}

Function::Function(Expr** theParts, ZnIndex theLength, bool theRetain, bool theCopy) {
  ZnAssert(theLength >= 0, theLength);
  ZnAssert((theParts != NULL) || (theLength == 0), theLength);
  if (theCopy) {
    Sys::size_t size = Sys::size_t(theLength + 1) * sizeof(Expr*);
    parts_ = AllocateParts(theLength + 1);
    if (theParts)
      CopyMemory(theParts, parts_, size);
    else
      parts_[0] = nullptr;
  } else {
    parts_ = theParts;
  }
  length_ = theLength;
  if (theRetain && parts_)
    for (ZnIndex i = 0; i <= length_; ++i)
      Retained(parts_[i]);
}

Function::Function(Expr* theHead, const Array* theArguments) {
  ZnIndex count = theArguments ? theArguments->getCount() : 0;
  parts_ = AllocateParts(count + 1);
  parts_[0] = Retained(theHead);
  for (ZnIndex i = 0; i < count; ++i) {
    Expr* e = dynamic_cast<Expr*>(theArguments->objectAtIndex(i));
    ZnAssert(e != NULL, i);
    parts_[++length_] = Retained(e);
  }
}

Function* Function::allocate(ZnIndex theLength) {
  static_assert(sizeof(Function) % alignof(Expr*) == 0, "the parts follow the object");
  static_assert(sizeof(Function) == 3 * sizeof(void*) || sizeof(void*) == 4, "the count sits in Object's padding");
  void* memory = AllocateObject(sizeof(Function) + Sys::size_t(theLength + 1) * sizeof(Expr*));
  Function* function = ::new (memory) Function();
  function->parts_ = function->inlineParts();
  function->length_ = theLength;
  return function;
}

Function* Function::createAdopting(Expr* theHead, Expr* const* theArguments, ZnIndex theLength) {
  Function* function = allocate(theLength);
  function->parts_[0] = theHead;
  if (theLength > 0)
    CopyMemory(theArguments, function->parts_ + 1, Sys::size_t(theLength) * sizeof(Expr*));
  return function;
}

Function* Function::createRule(Expr* theLeft, Expr* theRight) {
  return new Function(HeadSymbol(Head::Rule), theLeft, theRight);
}

//===--- Destruction -----------------------------------------------------------===//

Function::~Function() { releaseParts(); }

void Function::releaseParts() {
  // Releasing a part that dies with this function would destroy its parts
  // from inside this destructor, and so on down the tree: a long chain of
  // operators would exhaust the C++ stack. Such parts are queued instead and
  // emptied here one at a time; when their count finally drops they have
  // nothing left to release.
  ExprStack<Function*> dying;
  Function* function = this;
  for (;;) {
    if (function->parts_) {
      for (ZnIndex i = 0; i <= function->length_; ++i) {
        Expr* part = function->parts_[i];
        if (!part)
          continue;
        const Function* inner = part->asFunction();
        if (inner && inner->parts_ && part->getRetainCount() == 1)
          dying.push(const_cast<Function*>(inner));
        else
          part->release();
      }
      if (function->parts_ != function->inlineParts())
        Free(function->parts_);
      function->parts_ = nullptr;
      function->length_ = 0;
    }
    if (function != this)
      function->release();
    if (dying.isEmpty())
      return;
    function = dying.pop();
  }
}

//===--- Access ----------------------------------------------------------------===//

Expr* Function::part(ZnIndex thePart) const {
  if (thePart > length_)
    return nullptr;
  if (thePart <= 0)
    return thePart == 0 ? head() : nullptr;
  return parts_[thePart];
}

Expr* Function::head() const {
  Expr* head = parts_ ? parts_[0] : nullptr;
  // A bare argument list reads as a sequence.
  return head ? head : HeadSymbol(Head::Sequence);
}

bool Function::isAtom() const { return false; }

const Function* Function::asFunction() const { return this; }

void Function::writeInputForm(Writer* theWriter, const FormatContext* theContext) const {
  PrintFunction(this, theWriter, theContext, false);
}

void Function::writeFullForm(Writer* theWriter) const {
  FormatContext context;
  PrintFunction(this, theWriter, &context, true);
}

uint32_t Function::hash() const {
  // The hash of a function is the XOR of its parts' hashes, so the hash of a
  // tree is the XOR over its atoms; collected with a stack, not recursion.
  uint32_t hash = 0;
  ExprStack<const Function*> pending;
  const Function* function = this;
  for (;;) {
    for (ZnIndex i = 0; i <= function->length_; ++i) {
      const Expr* part = i == 0 ? function->head() : function->parts_[i];
      if (!part)
        continue;
      if (const Function* inner = part->asFunction())
        pending.push(inner);
      else
        hash ^= part->hash();
    }
    if (pending.isEmpty())
      return hash;
    function = pending.pop();
  }
}

Object* Function::mutableCopy() const {
  MutableFunction* copy = new MutableFunction(2, parts_ ? parts_[0] : nullptr);
  for (ZnIndex i = 1; i <= length_; ++i)
    copy->appendArgument(parts_[i], true);
  return copy;
}

const char* Function::className() const { return "Function"; }
const char* Function::superclassName() const { return "Expr"; }

//===--- MutableFunction -------------------------------------------------------===//

MutableFunction::MutableFunction(ZnIndex theCapacityHint, Expr* theHead) {
  ensureCapacity(theCapacityHint < 2 ? theCapacityHint : 2);
  if (theHead)
    setHead(theHead, true);
}

void MutableFunction::ensureCapacity(ZnIndex theSlots) {
  if (theSlots <= capacity_)
    return;
  ZnIndex capacity = capacity_ == 0 ? 1 : capacity_;
  while (capacity < theSlots)
    capacity *= 2;
  parts_ = static_cast<Expr**>(Reallocate(parts_, Sys::size_t(capacity) * sizeof(Expr*)));
  if (capacity_ == 0)
    parts_[0] = nullptr;
  capacity_ = capacity;
}

void MutableFunction::setHead(Expr* theHead, bool theRetain) {
  ensureCapacity(1);
  Expr* old = parts_[0];
  parts_[0] = theRetain ? Retained(theHead) : theHead;
  if (old)
    old->release();
}

void MutableFunction::appendArgument(Expr* theArgument, bool theRetain) {
  ensureCapacity(length_ + 2);
  parts_[++length_] = theRetain ? Retained(theArgument) : theArgument;
}

void MutableFunction::insertArgument(Expr* theArgument, ZnIndex theIndex, bool theRetain) {
  ZnAssert(theIndex <= length_, theIndex);
  ZnAssert(theIndex >= 0, theIndex);
  ensureCapacity(length_ + 2);
  MoveMemory(parts_ + 1 + theIndex, parts_ + 2 + theIndex, Sys::size_t(length_ - theIndex) * sizeof(Expr*));
  parts_[1 + theIndex] = theRetain ? Retained(theArgument) : theArgument;
  ++length_;
}

Object* MutableFunction::copy() const { return new Function(parts_, length_, true, true); }

const char* MutableFunction::className() const { return "MutableFunction"; }
const char* MutableFunction::superclassName() const { return "Function"; }
} // namespace Zn::Kx
