//===- CodeDecorator.h - Marks up the code of input cells -----------------===//
#pragma once
#include "Zn/Base/ZnTypes.h"

namespace Zn::Kx {
class Expr;
} // namespace Zn::Kx

/// Input code marked up for a renderer that shows styles: comments, string
/// literals and the local variables of scoping constructs come back wrapped
/// in StyleBoxes (see the .cpp for what is marked and how). Parts that
/// nothing changes are shared with the original, not copied.

/// +1. theBox marked up as code; theBox itself, retained, when nothing changed.
Zn::Kx::Expr* DecorateCode(Zn::Kx::Expr* theBox);
/// +1. theCell with only its contents (the first argument) marked up: the
/// style and the options stay as they are.
Zn::Kx::Expr* DecorateCodeCell(Zn::Kx::Expr* theCell);
