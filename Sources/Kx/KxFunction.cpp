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
    count += inner && Equal(inner->head(), theFlatHead) ? inner->length() : 1;
  }
  Expr** parts = AllocateParts(count + 1);
  setBlock(parts);
  parts[0] = Retained(theHead);
  ZnIndex length = 0;
  for (Expr* const* e = theList; *e; ++e) {
    const Function* inner = theFlatHead ? (*e)->asFunction() : nullptr;
    if (inner && Equal(inner->head(), theFlatHead)) {
      for (ZnIndex i = 1; i <= inner->length(); ++i)
        parts[++length] = Retained(inner->parts()[i]);
    } else {
      parts[++length] = Retained(*e);
    }
  }
  length_ = uint32_t(length);
}

Function::Function(Flatten, Expr* theHead, Expr* theFlatHead, Expr* const* theList) {
  initWithList(theHead, theFlatHead, theList);
}

Function::Function(Expr** theParts, ZnIndex theLength, bool theRetain, bool theCopy) {
  ZnAssert(theLength >= 0, theLength);
  ZnAssert((theParts != NULL) || (theLength == 0), theLength);
  Expr** parts = theParts;
  if (theCopy) {
    Sys::size_t size = Sys::size_t(theLength + 1) * sizeof(Expr*);
    parts = AllocateParts(theLength + 1);
    if (theParts)
      CopyMemory(theParts, parts, size);
    else
      parts[0] = nullptr;
  }
  setBlock(parts);
  length_ = uint32_t(theLength);
  if (theRetain && parts)
    for (ZnIndex i = 0; i <= theLength; ++i)
      Retained(parts[i]);
}

Function::Function(Expr* theHead, const Array* theArguments) {
  ZnIndex count = theArguments ? theArguments->getCount() : 0;
  Expr** parts = AllocateParts(count + 1);
  setBlock(parts);
  parts[0] = Retained(theHead);
  for (ZnIndex i = 0; i < count; ++i) {
    Expr* e = dynamic_cast<Expr*>(theArguments->objectAtIndex(i));
    ZnAssert(e != NULL, i);
    parts[i + 1] = Retained(e);
    length_ = uint32_t(i + 1);
  }
}

Function* Function::allocate(ZnIndex theLength) {
  // The slot ends the object: the parts start where it starts.
  constexpr Sys::size_t kSlotOffset = sizeof(Function) - sizeof(Expr*);
  static_assert(sizeof(Function) % alignof(Expr*) == 0, "the parts follow the object");
  static_assert(sizeof(Function) == 3 * sizeof(void*) || sizeof(void*) == 4, "the count sits in Object's padding");
  void* memory = AllocateObject(kSlotOffset + Sys::size_t(theLength + 1) * sizeof(Expr*));
  Function* function = ::new (memory) Function();
  ZnAssert(reinterpret_cast<char*>(function->slot_) == static_cast<char*>(memory) + kSlotOffset, 0);
  function->hasBlock_ = 0;
  function->length_ = uint32_t(theLength);
  return function;
}

Function* Function::createAdopting(Expr* theHead, Expr* const* theArguments, ZnIndex theLength) {
  Function* function = allocate(theLength);
  Expr** parts = function->parts();
  parts[0] = theHead;
  if (theLength > 0)
    CopyMemory(theArguments, parts + 1, Sys::size_t(theLength) * sizeof(Expr*));
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
    if (Expr** parts = function->parts()) {
      for (ZnIndex i = 0; i <= function->length(); ++i) {
        Expr* part = parts[i];
        if (!part)
          continue;
        // The count first: most parts are shared atoms, which need no
        // look at their class.
        const Function* inner = part->getRetainCount() == 1 ? part->asFunction() : nullptr;
        if (inner && inner->parts())
          dying.push(const_cast<Function*>(inner));
        else
          part->release();
      }
      if (function->hasBlock_)
        Free(parts);
      // Released: no parts, as for a function that never had any.
      function->hasBlock_ = 1;
      function->setBlock(nullptr);
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
  if (thePart > length())
    return nullptr;
  if (thePart <= 0)
    return thePart == 0 ? head() : nullptr;
  return parts()[thePart];
}

Expr* Function::head() const {
  Expr** parts = this->parts();
  Expr* head = parts ? parts[0] : nullptr;
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
    for (ZnIndex i = 0; i <= function->length(); ++i) {
      const Expr* part = i == 0 ? function->head() : function->parts()[i];
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
  Expr** parts = this->parts();
  MutableFunction* copy = new MutableFunction(2, parts ? parts[0] : nullptr);
  for (ZnIndex i = 1; i <= length(); ++i)
    copy->appendArgument(parts[i], true);
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
  Expr** parts = static_cast<Expr**>(Reallocate(block(), Sys::size_t(capacity) * sizeof(Expr*)));
  setBlock(parts);
  if (capacity_ == 0)
    parts[0] = nullptr;
  capacity_ = capacity;
}

void MutableFunction::setHead(Expr* theHead, bool theRetain) {
  ensureCapacity(1);
  Expr* old = parts()[0];
  parts()[0] = theRetain ? Retained(theHead) : theHead;
  if (old)
    old->release();
}

void MutableFunction::appendArgument(Expr* theArgument, bool theRetain) {
  ensureCapacity(length() + 2);
  parts()[length() + 1] = theRetain ? Retained(theArgument) : theArgument;
  length_ = length_ + 1;
}

void MutableFunction::insertArgument(Expr* theArgument, ZnIndex theIndex, bool theRetain) {
  ZnAssert(theIndex <= length_, theIndex);
  ZnAssert(theIndex >= 0, theIndex);
  ensureCapacity(length() + 2);
  Expr** parts = this->parts();
  MoveMemory(parts + 1 + theIndex, parts + 2 + theIndex, Sys::size_t(length() - theIndex) * sizeof(Expr*));
  parts[1 + theIndex] = theRetain ? Retained(theArgument) : theArgument;
  length_ = length_ + 1;
}

Object* MutableFunction::copy() const { return new Function(parts(), length(), true, true); }

const char* MutableFunction::className() const { return "MutableFunction"; }
const char* MutableFunction::superclassName() const { return "Function"; }
} // namespace Zn::Kx
