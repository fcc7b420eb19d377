//===- KxOperatorTable.h - How each operator prints, and how tightly -------===//
#pragma once
#include "Kx/KxSymbol.h"

namespace Zn::Kx {

/// One operator of the input form. A row applies to a call whose head is
/// the row's head and whose argument count lies in the row's range.
struct OperatorRow {
  /// The selecting head; kAnyHead matches every head.
  Head head;
  int32_t minArguments;
  /// -1: no upper bound.
  int32_t maxArguments;
  /// Binding strength; a lower number binds less tightly.
  int32_t precedence;
  /// The context precedence handed to the operands.
  int32_t operandPrecedence;
  /// Write the head (in full form) before the prefix.
  bool printHead;
  // Texts; null when absent. firstSeparator replaces separator between the
  // first and the second argument.
  const char* prefix;
  const char* firstSeparator;
  const char* separator;
  const char* suffix;
};

inline constexpr Head kAnyHead = Head::Count;
inline constexpr ZnIndex kOperatorCount = 61;

/// Searched in order; the last row matches any head and prints head[args].
extern const OperatorRow kOperatorTable[kOperatorCount];

/// The first row that applies to a call of theHead with theArgumentCount
/// arguments; never null.
const OperatorRow* FindOperator(const Expr* theHead, ZnIndex theArgumentCount);
} // namespace Zn::Kx
