//===- KxOperatorTable.cpp - How each operator prints, and how tightly -----===//
#include "Kx/KxOperatorTable.h"
#include "Zn/Base/ZnString.h"

namespace Zn::Kx {

// Columns: head, min and max arguments, precedence, operand precedence,
// head printed, prefix, first separator, separator, suffix.
const OperatorRow kOperatorTable[kOperatorCount] = {
    {Head::AddTo, 2, -1, 100, 100, false, nullptr, nullptr, " += ", nullptr},
    {Head::Alternatives, 2, -1, 160, 160, false, nullptr, nullptr, " | ", nullptr},
    {Head::And, 2, -1, 215, 215, false, nullptr, nullptr, " && ", nullptr},
    {Head::Apply, 2, 2, 620, 620, false, nullptr, nullptr, " @@ ", nullptr},
    {Head::Blank, 0, 1, 730, 730, false, "_", nullptr, nullptr, nullptr},
    {Head::BlankSequence, 0, 1, 730, 730, false, "__", nullptr, nullptr, nullptr},
    {Head::BlankNullSequence, 0, 1, 730, 730, false, "___", nullptr, nullptr, nullptr},
    {Head::CompoundExpression, 2, -1, 10, 10, false, nullptr, nullptr, "; ", nullptr},
    {Head::Condition, 2, 2, 130, 130, false, nullptr, nullptr, " /; ", nullptr},
    {Head::Decrement, 1, 1, 660, 660, false, nullptr, nullptr, nullptr, "--"},
    {Head::Divide, 2, 2, 470, 470, false, nullptr, nullptr, "/", nullptr},
    {Head::DivideBy, 2, 2, 100, 100, false, nullptr, nullptr, " /= ", nullptr},
    {Head::Dot, 2, -1, 490, 490, false, nullptr, nullptr, ".", nullptr},
    {Head::Equal, 2, -1, 290, 290, false, nullptr, nullptr, " == ", nullptr},
    {Head::Factorial, 1, 1, 610, 610, false, nullptr, nullptr, nullptr, "!"},
    {Head::Factorial2, 1, 1, 610, 610, false, nullptr, nullptr, nullptr, "!!"},
    {Head::Get, 2, -1, 720, 720, false, nullptr, nullptr, " << ", nullptr},
    {Head::Greater, 2, -1, 290, 290, false, nullptr, nullptr, " > ", nullptr},
    {Head::GreaterEqual, 2, -1, 290, 290, false, nullptr, nullptr, " >= ", nullptr},
    {Head::Increment, 1, 1, 660, 660, false, nullptr, nullptr, nullptr, "++"},
    {Head::Less, 2, -1, 290, 290, false, nullptr, nullptr, " < ", nullptr},
    {Head::LessEqual, 2, -1, 290, 290, false, nullptr, nullptr, " <= ", nullptr},
    {Head::List, 0, -1, 670, 0, false, "{", nullptr, ", ", "}"},
    {Head::Map, 2, 2, 620, 620, false, nullptr, nullptr, " /@ ", nullptr},
    {Head::MapAll, 2, 2, 620, 620, false, nullptr, nullptr, " //@ ", nullptr},
    {Head::Minus, 1, 1, 480, 480, false, "-", nullptr, nullptr, nullptr},
    {Head::NonCommutativeMultiply, 2, -1, 510, 510, false, nullptr, nullptr, "**", nullptr},
    {Head::Optional, 2, 2, 140, 140, false, nullptr, nullptr, ":", nullptr},
    {Head::Or, 2, -1, 215, 215, false, nullptr, nullptr, " || ", nullptr},
    {Head::Part, 2, -1, 670, 670, false, nullptr, "[[", ", ", "]]"},
    {Head::Pattern, 2, 2, 150, 150, false, nullptr, nullptr, ":", nullptr},
    {Head::PatternTest, 2, 2, 680, 680, false, nullptr, nullptr, "?", nullptr},
    {Head::Plus, 2, -1, 310, 310, false, nullptr, nullptr, " + ", nullptr},
    {Head::Power, 2, 2, 590, 590, false, nullptr, nullptr, "^", nullptr},
    {Head::PreDecrement, 1, 1, 660, 660, false, "--", nullptr, nullptr, nullptr},
    {Head::PreIncrement, 1, 1, 660, 660, false, "++", nullptr, nullptr, nullptr},
    {Head::Put, 2, 2, 30, 30, false, nullptr, nullptr, " >> ", nullptr},
    {Head::PutAppend, 2, 2, 30, 30, false, nullptr, nullptr, " >>> ", nullptr},
    {Head::Rational, 2, 2, 470, 470, false, nullptr, nullptr, "/", nullptr},
    {Head::Repeated, 1, 1, 170, 170, false, nullptr, nullptr, nullptr, ".."},
    {Head::RepeatedNull, 1, 1, 170, 170, false, nullptr, nullptr, nullptr, "..."},
    {Head::ReplaceAll, 2, 2, 110, 110, false, nullptr, nullptr, " /. ", nullptr},
    {Head::ReplaceRepeated, 2, 2, 110, 110, false, nullptr, nullptr, " //. ", nullptr},
    {Head::Rule, 2, 2, 120, 120, false, nullptr, nullptr, " -> ", nullptr},
    {Head::RuleDelayed, 2, 2, 120, 120, false, nullptr, nullptr, " :> ", nullptr},
    {Head::SameQ, 2, -1, 290, 290, false, nullptr, nullptr, " === ", nullptr},
    {Head::Set, 2, 2, 40, 40, false, nullptr, nullptr, " = ", nullptr},
    {Head::SetDelayed, 2, 2, 40, 40, false, nullptr, nullptr, " := ", nullptr},
    {Head::TagSet, 3, 3, 670, 670, false, nullptr, " /: ", " = ", nullptr},
    {Head::TagSetDelayed, 3, 3, 670, 670, false, nullptr, " /: ", " := ", nullptr},
    {Head::StringJoin, 2, -1, 600, 600, false, nullptr, nullptr, " <> ", nullptr},
    {Head::Subtract, 2, 2, 310, 310, false, nullptr, nullptr, " - ", nullptr},
    {Head::SubtractFrom, 2, -1, 100, 100, false, nullptr, nullptr, " -= ", nullptr},
    {Head::Times, 2, -1, 400, 400, false, nullptr, nullptr, " ", nullptr},
    {Head::TimesBy, 2, -1, 100, 100, false, nullptr, nullptr, " *= ", nullptr},
    {Head::Unequal, 2, -1, 290, 290, false, nullptr, nullptr, " != ", nullptr},
    {Head::UnsameQ, 2, -1, 290, 290, false, nullptr, nullptr, " =!= ", nullptr},
    {Head::Unset, 1, 1, 670, 670, false, nullptr, nullptr, nullptr, " =."},
    {Head::UpSet, 2, 2, 40, 40, false, nullptr, nullptr, " ^= ", nullptr},
    {Head::UpSetDelayed, 2, 2, 40, 40, false, nullptr, nullptr, " ^:= ", nullptr},
    {kAnyHead, 0, -1, 670, 0, true, "[", nullptr, ", ", "]"},
};

const OperatorRow* FindOperator(const Expr* theHead, ZnIndex theArgumentCount) {
  // Only a symbol can select an operator; any other head takes the last row.
  const Symbol* symbol = dynamic_cast<const Symbol*>(theHead);
  for (const OperatorRow& row : kOperatorTable) {
    if (theArgumentCount < row.minArguments || (row.maxArguments >= 0 && theArgumentCount > row.maxArguments))
      continue;
    if (row.head == kAnyHead)
      return &row;
    if (!symbol)
      continue;
    // The parser's heads are the shared symbols themselves; names read from
    // a file are separate objects with equal names.
    const Symbol* rowSymbol = HeadSymbol(row.head);
    if (rowSymbol == symbol || rowSymbol->getName()->isEqual(symbol->getName()))
      return &row;
  }
  return &kOperatorTable[kOperatorCount - 1];
}
} // namespace Zn::Kx
