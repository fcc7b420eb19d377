//===- KxFunction.h - Compound expressions: a head and its arguments -------===//
#pragma once
#include <type_traits>
#include "Kx/KxExpr.h"

namespace Zn {
class Array;
}

namespace Zn::Kx {

/// A pointer that can stand for an expression argument (nullptr included,
/// plain integers excluded so that they never pass for null pointers).
template <class T>
concept ExprPointer = std::is_convertible_v<T, Expr*> && !std::is_integral_v<T>;

/// head[arg1, ..., argN]. The head is part 0, the arguments parts 1 to N;
/// every part is retained. The head slot may be empty, and then the head
/// reads as the symbol Sequence. Two functions are equal only when they are
/// the same object; equal trees still hash alike.
class Function : public Expr {
public:
  /// head[args]: the arguments up to the first null, each retained, e.g.
  /// Function(plus, a, b) or Function(plus, a, b, nullptr).
  template <ExprPointer... Args> explicit Function(Expr* theHead, Args... theArguments) {
    Expr* list[] = {static_cast<Expr*>(theArguments)..., nullptr};
    initWithList(theHead, nullptr, list);
  }
  /// From theLength + 1 pointers, head first. With theCopy the block is
  /// copied; otherwise this function takes it over (it must come from
  /// Allocate). With theRetain each non-null part gains a reference.
  Function(Expr** theParts, ZnIndex theLength, bool theRetain, bool theCopy);
  /// head[the array's elements], each retained; each must be an Expr.
  Function(Expr* theHead, const Array* theArguments);

  /// +1. Like the variadic constructor, except that an argument that is
  /// itself a Function whose head equals theFlatHead contributes its own
  /// arguments instead (one level): n-ary operators stay flat.
  template <ExprPointer... Args>
  static Function* createFlattened(Expr* theFlatHead, Expr* theHead, Args... theArguments) {
    Expr* list[] = {static_cast<Expr*>(theArguments)..., nullptr};
    return new Function(Flatten(), theHead, theFlatHead, list);
  }
  /// +1. Rule[theLeft, theRight].
  static Function* createRule(Expr* theLeft, Expr* theRight);
  /// +1. theHead[theArguments...] with its parts in the object's own
  /// allocation: one block per node, of exactly the size needed (the parser
  /// makes millions of them). Each part gains a reference.
  template <ExprPointer... Args> static Function* create(Expr* theHead, Args... theArguments) {
    Expr* parts[] = {theHead, static_cast<Expr*>(theArguments)...};
    Function* function = allocate(sizeof...(Args));
    Expr** slots = function->parts();
    for (ZnIndex i = 0; i <= ZnIndex(sizeof...(Args)); ++i)
      slots[i] = parts[i] ? static_cast<Expr*>(parts[i]->retain()) : nullptr;
    return function;
  }
  /// +1. The same from theHead (taken over) and theLength arguments at
  /// theArguments, whose references the function takes over.
  static Function* createAdopting(Expr* theHead, Expr* const* theArguments, ZnIndex theLength);

  /// Full form, or input form driven by the operator table.
  void writeInputForm(Writer* theWriter, const FormatContext* theContext) const override;
  void writeFullForm(Writer* theWriter) const override;
  ZnIndex length() const override { return ZnIndex(length_); }
  /// Borrowed. Part 0 is head(); an index below 0 or past length() gives null.
  Expr* part(ZnIndex thePart) const override;
  Expr* head() const override;
  bool isAtom() const override;
  const Function* asFunction() const override;

  /// The head's hash XOR every argument's hash.
  uint32_t hash() const override;
  /// +1. A MutableFunction with the same parts.
  Object* mutableCopy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  Function() = default;
  ~Function() override;

  // The count and the flag first: they fill the four bytes that Object
  // leaves after its count on 64-bit targets, so a node is 8 bytes smaller
  // there.
  uint32_t length_ : 31 = 0;
  /// Whether the parts lie in a block of their own, whose address the slot
  /// holds (null for none). Otherwise the parts start at the slot itself and
  /// run on past the object, in the same allocation: a node made by
  /// create() needs no pointer to its parts.
  uint32_t hasBlock_ : 1 = 1;
  alignas(Expr*) unsigned char slot_[sizeof(Expr*)] = {};

  /// Borrowed: head, then the arguments; null when a function has none.
  Expr** parts() const {
    return hasBlock_ ? block() : reinterpret_cast<Expr**>(const_cast<unsigned char*>(slot_));
  }
  Expr** block() const {
    Expr** block;
    __builtin_memcpy(&block, slot_, sizeof block);
    return block;
  }
  void setBlock(Expr** theBlock) { __builtin_memcpy(slot_, &theBlock, sizeof theBlock); }

private:
  struct Flatten {};
  /// A function of theLength arguments whose parts (uninitialised) start at
  /// the slot, in the same block as the object.
  static Function* allocate(ZnIndex theLength);
  /// theList ends at its first null; with theFlatHead set, arguments with
  /// that head are spliced in.
  Function(Flatten, Expr* theHead, Expr* theFlatHead, Expr* const* theList);
  void initWithList(Expr* theHead, Expr* theFlatHead, Expr* const* theList);
  /// Releases every part without recursing into parts that die with it.
  void releaseParts();
};

/// A Function under construction; only the parser changes one. Its parts
/// block holds capacity_ slots, the head's included, and grows by doubling.
class MutableFunction : public Function {
public:
  /// theCapacityHint slots (clamped to 0-2) and theHead, retained.
  explicit MutableFunction(ZnIndex theCapacityHint = 0, Expr* theHead = nullptr);
  /// head[args] up to the first null, each retained.
  template <ExprPointer H, ExprPointer... Args>
  explicit MutableFunction(H theHead, Args... theArguments) : MutableFunction(2, theHead) {
    Expr* list[] = {static_cast<Expr*>(theArguments)..., nullptr};
    for (Expr* const* e = list; *e; ++e)
      appendArgument(*e, true);
  }

  ZnIndex capacity() const { return capacity_; }
  /// Replaces the head; takes over the caller's reference unless theRetain.
  void setHead(Expr* theHead, bool theRetain);
  void appendArgument(Expr* theArgument, bool theRetain);
  /// Inserts before the argument at 0-based theIndex (theIndex == length()
  /// appends), so 0 makes theArgument the first argument.
  void insertArgument(Expr* theArgument, ZnIndex theIndex, bool theRetain);

  /// +1. An immutable Function with the same parts.
  Object* copy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~MutableFunction() override = default;

private:
  /// Room for theSlots parts: from 1, doubling.
  void ensureCapacity(ZnIndex theSlots);

  ZnIndex capacity_ = 0;
};
} // namespace Zn::Kx
