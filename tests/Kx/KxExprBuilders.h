//===- KxExprBuilders.h - Short ways to build expressions in tests ---------===//
#pragma once
#include <string>
#include "Kx/KxFunction.h"
#include "Kx/KxNumber.h"
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"

namespace KxTest {
using Zn::Ref;
using Zn::Kx::Expr;

/// A new symbol, not the shared one: heads are matched by name.
inline Ref<Expr> Sym(const char* theName) { return Zn::adopt<Expr>(new Zn::Kx::Symbol(theName)); }
inline Ref<Expr> Str(const char* theText) { return Zn::adopt<Expr>(new Zn::Kx::CharacterString(theText)); }
inline Ref<Expr> Int(int32_t theValue) { return Zn::adopt<Expr>(new Zn::Kx::MachineInteger(theValue)); }
inline Ref<Expr> Float(double theValue) { return Zn::adopt<Expr>(new Zn::Kx::MachineReal(theValue)); }
inline Ref<Expr> Big(const char* theDigits, double theApproximation) {
  auto digits = Zn::adopt(new Zn::String(theDigits));
  return Zn::adopt<Expr>(new Zn::Kx::BigInteger(digits.get(), theApproximation));
}
/// theHead[theArguments...]
template <class... A> Ref<Expr> F(const Ref<Expr>& theHead, const A&... theArguments) {
  return Zn::adopt<Expr>(new Zn::Kx::Function(theHead.get(), theArguments.get()...));
}
/// theName[theArguments...] with a new head symbol.
template <class... A> Ref<Expr> F(const char* theName, const A&... theArguments) {
  return F(Sym(theName), theArguments...);
}

inline std::string FullForm(const Expr* theExpr) { return ZnTest::Utf8(Zn::adopt(theExpr->fullFormString()).get()); }
inline std::string InputForm(const Expr* theExpr, const Zn::Kx::FormatContext& theContext = {}) {
  return ZnTest::Utf8(Zn::adopt(theExpr->inputFormString(&theContext)).get());
}
} // namespace KxTest
