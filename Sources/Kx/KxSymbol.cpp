//===- KxSymbol.cpp - Named atoms and the shared head symbols --------------===//
#include "Kx/KxSymbol.h"
#include "Kx/KxNumber.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Collection/ZnRange.h"
#include "Zn/IO/ZnWriter.h"

namespace Zn::Kx {

//===--- Symbol ----------------------------------------------------------------===//

Symbol::Symbol(String* theName, bool theRetain) {
  ZnAssert(theName != NULL, 0);
  name_ = theRetain ? retained(theName) : adopt(theName);
}

Symbol::Symbol(const char* theASCIIName) {
  ZnAssert(theASCIIName != NULL, 0);
  name_ = adopt(new String(theASCIIName));
}

Symbol::~Symbol() = default;

ZnIndex Symbol::strippedStart() const {
  for (ZnIndex i = name_->length() - 1; i >= 0; --i)
    if (name_->unitAt(i) == '`')
      return i + 1 < name_->length() ? i + 1 : 0;
  return 0;
}

void Symbol::writeInputForm(Writer* theWriter, const FormatContext* theContext) const {
  ZnIndex start = theContext->stripContexts ? strippedStart() : 0;
  theWriter->writeString(name_.get(), start);
}

void Symbol::writeFullForm(Writer* theWriter) const {
  theWriter->writeString(name_.get());
}

Expr* Symbol::head() const { return HeadSymbol(Head::Symbol); }

String* Symbol::fullFormString() const { return retained(name_.get()).leak(); }

String* Symbol::inputFormString(const FormatContext* theContext) const {
  ZnIndex start = theContext->stripContexts ? strippedStart() : 0;
  if (start == 0)
    return fullFormString();
  return name_->substringFromIndex(start);
}

bool Symbol::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const Symbol* other = ObjectCast<Symbol>(theOther);
  return other && name_->isEqual(other->name_.get());
}

uint32_t Symbol::hash() const { return ~name_->hash(); }

String* Symbol::description() const { return fullFormString(); }

const char* Symbol::className() const { return "Symbol"; }
const char* Symbol::superclassName() const { return "Expr"; }

//===--- Shared heads ----------------------------------------------------------===//

namespace {
const char* const kHeadNames[] = {
    "AddTo", "Alternatives", "And", "Apply", "Automatic", "Blank", "BlankNullSequence",
    "BlankSequence", "CompoundExpression", "Condition", "Decrement", "Derivative", "Divide",
    "DivideBy", "$Failed", "$SyntaxError", "Dot", "Equal", "Factorial", "Factorial2", "False",
    "FormBox", "FractionBox", "Function", "Get", "GreaterEqual", "Greater", "Increment", "Integer",
    "LessEqual", "Less", "List", "Map", "MapAll", "Minus", "NonCommutativeMultiply", "Null",
    "Optional", "Or", "Out", "OverscriptBox", "Part", "Pattern", "PatternTest", "Plus", "Power",
    "PreDecrement", "PreIncrement", "Put", "PutAppend", "RadicalBox", "Rational", "Real",
    "Repeated", "RepeatedNull", "ReplaceAll", "ReplaceRepeated", "RowBox", "Rule", "RuleDelayed",
    "SameQ", "Sequence", "Set", "SetDelayed", "Slot", "SlotSequence", "SqrtBox", "String",
    "StringJoin", "SubscriptBox", "SubsuperscriptBox", "Subtract", "SubtractFrom",
    "SuperscriptBox", "Symbol", "TagSet", "TagSetDelayed", "TagUnset", "Times", "TimesBy",
    "ToExpression", "True", "UnderoverscriptBox", "UnderscriptBox", "Unequal", "UnsameQ", "Unset",
    "UpSet", "UpSetDelayed"};
static_assert(sizeof(kHeadNames) / sizeof(kHeadNames[0]) == size_t(Head::Count));

struct SharedAtoms {
  SharedAtoms() {
    for (ZnIndex i = 0; i < ZnIndex(Head::Count); ++i)
      symbols[i] = adopt(new Symbol(kHeadNames[i]));
    one = adopt(new MachineInteger(1));
    ten = adopt(new MachineInteger(10));
  }
  // Released in the reverse order of their making.
  ~SharedAtoms() {
    ten = nullptr;
    one = nullptr;
    for (auto& symbol : symbols)
      symbol = nullptr;
  }
  Ref<Symbol> symbols[size_t(Head::Count)];
  Ref<MachineInteger> one;
  Ref<MachineInteger> ten;
};

// Built on first use, so that another file's static initialiser may already
// ask for a head; released by the exit-time destructors.
SharedAtoms& Shared() {
  static SharedAtoms sShared;
  return sShared;
}

// Forces the creation before main even when nothing asks earlier.
[[maybe_unused]] const SharedAtoms& sMadeAtStartUp = Shared();
} // namespace

Symbol* HeadSymbol(Head theHead) {
  return Shared().symbols[size_t(theHead)].get();
}

MachineInteger* SharedOne() { return Shared().one.get(); }
MachineInteger* SharedTen() { return Shared().ten.get(); }
} // namespace Zn::Kx
