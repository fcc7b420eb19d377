//===- KxPrinter.h - Full form and input form of compound expressions ------===//
#pragma once
#include "Kx/KxExpr.h"

namespace Zn::Kx {

/// Writes theFunction in full form (head[arguments], all the way down) or in
/// input form (operators from the operator table, parenthesised only where
/// the context's precedence demands). The walk keeps its own stack on the
/// heap, so any depth of nesting prints.
void PrintFunction(const Function* theFunction, Writer* theWriter, const FormatContext* theContext,
                   bool theFullForm);
} // namespace Zn::Kx
