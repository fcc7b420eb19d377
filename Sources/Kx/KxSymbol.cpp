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
  if (theRetain)
    theName->retain();
  name_ = theName;
}

Symbol::Symbol(const char* theASCIIName) {
  ZnAssert(theASCIIName != NULL, 0);
  name_ = new String(theASCIIName);
}

Symbol::~Symbol() { name_->release(); }

ZnIndex Symbol::strippedStart() const {
  const ZnUnichar* units = name_->getCharactersPtr();
  for (ZnIndex i = name_->length() - 1; i >= 0; --i)
    if (units[i] == '`')
      return i + 1 < name_->length() ? i + 1 : 0;
  return 0;
}

void Symbol::writeInputForm(Writer* theWriter, const FormatContext* theContext) const {
  ZnIndex start = theContext->stripContexts ? strippedStart() : 0;
  theWriter->writeCharacters(name_->getCharactersPtr() + start, name_->length() - start);
}

void Symbol::writeFullForm(Writer* theWriter) const {
  theWriter->writeCharacters(name_->getCharactersPtr(), name_->length());
}

Expr* Symbol::head() const { return HeadSymbol(Head::Symbol); }

String* Symbol::fullFormString() const {
  name_->retain();
  return name_;
}

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
  return other && name_->isEqual(other->name_);
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
      symbols[i] = new Symbol(kHeadNames[i]);
    one = new MachineInteger(1);
    ten = new MachineInteger(10);
  }
  ~SharedAtoms() {
    ten->release();
    one->release();
    for (Symbol* symbol : symbols)
      symbol->release();
  }
  Symbol* symbols[size_t(Head::Count)];
  MachineInteger* one;
  MachineInteger* ten;
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
  return Shared().symbols[size_t(theHead)];
}

MachineInteger* SharedOne() { return Shared().one; }
MachineInteger* SharedTen() { return Shared().ten; }
} // namespace Zn::Kx
