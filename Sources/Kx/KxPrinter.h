//===- KxPrinter.h - Full form of compound expressions ---------------------===//
#pragma once
#include "Kx/KxExpr.h"

namespace Zn::Kx {

/// Writes theFunction as head[arguments], all the way down. The walk keeps
/// its own stack on the heap, so any depth of nesting prints.
void PrintFullForm(const Function* theFunction, Writer* theWriter);
} // namespace Zn::Kx
