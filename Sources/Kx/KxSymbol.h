//===- KxSymbol.h - Named atoms and the shared head symbols ----------------===//
#pragma once
#include "Kx/KxExpr.h"
#include "Zn/Base/ZnRef.h"

namespace Zn::Kx {
class MachineInteger;

/// A name, such as x, Plus or System`List. The name keeps its context
/// prefix; input form can strip it.
class Symbol final : public Expr {
public:
  /// Retains theName unless theRetain is false (then it takes the +1).
  explicit Symbol(String* theName, bool theRetain = true);
  explicit Symbol(const char* theASCIIName);

  /// Borrowed.
  String* getName() const { return name_.get(); }

  void writeInputForm(Writer* theWriter, const FormatContext* theContext) const override;
  void writeFullForm(Writer* theWriter) const override;
  Expr* head() const override;
  const Symbol* asSymbol() const override { return this; }
  String* fullFormString() const override;
  String* inputFormString(const FormatContext* theContext) const override;

  /// Another Symbol with the same name.
  bool isEqual(const Object* theOther) const override;
  uint32_t hash() const override;
  String* description() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Symbol() override;

private:
  /// Index of the first unit after the last backquote; 0 when the name has
  /// no context or ends with a backquote (then the whole name is kept).
  ZnIndex strippedStart() const;

  Ref<String> name_;
};

/// The symbols that the language layer uses as heads, in creation order.
enum class Head : int32_t {
  AddTo, Alternatives, And, Apply, Automatic, Blank, BlankNullSequence, BlankSequence,
  CompoundExpression, Condition, Decrement, Derivative, Divide, DivideBy,
  Failed,      // "$Failed"
  SyntaxError, // "$SyntaxError"
  Dot, Equal, Factorial, Factorial2, False, FormBox, FractionBox, Function, Get, GreaterEqual,
  Greater, Increment, Integer, LessEqual, Less, List, Map, MapAll, Minus, NonCommutativeMultiply,
  Null, Optional, Or, Out, OverscriptBox, Part, Pattern, PatternTest, Plus, Power, PreDecrement,
  PreIncrement, Put, PutAppend, RadicalBox, Rational, Real, Repeated, RepeatedNull, ReplaceAll,
  ReplaceRepeated, RowBox, Rule, RuleDelayed, SameQ, Sequence, Set, SetDelayed, Slot,
  SlotSequence, SqrtBox, String, StringJoin, SubscriptBox, SubsuperscriptBox, Subtract,
  SubtractFrom, SuperscriptBox, Symbol, TagSet, TagSetDelayed, TagUnset, Times, TimesBy,
  ToExpression, True, UnderoverscriptBox, UnderscriptBox, Unequal, UnsameQ, Unset, UpSet,
  UpSetDelayed,
  Count
};

/// Borrowed. The shared symbol for theHead; created before main, released
/// at exit.
Symbol* HeadSymbol(Head theHead);
/// Borrowed. The shared integers 1 and 10, made together with the symbols.
MachineInteger* SharedOne();
MachineInteger* SharedTen();
} // namespace Zn::Kx
