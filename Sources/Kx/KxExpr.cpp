//===- KxExpr.cpp - Root of the immutable expression tree ------------------===//
#include "Kx/KxExpr.h"
#include "Kx/KxFunction.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnWriter.h"

namespace Zn::Kx {

void Expr::writeInputForm(Writer* theWriter, const FormatContext*) const { writeFullForm(theWriter); }

ZnIndex Expr::length() const { return 0; }

Expr* Expr::part(ZnIndex thePart) const { return thePart == 0 ? head() : nullptr; }

String* Expr::stringValueOfPart(ZnIndex thePart) const {
  Expr* e = part(thePart);
  return e ? e->stringValue() : new String();
}

bool Expr::isAtom() const { return true; }

bool Expr::isAtomic() const { return isAtom(); }

const Function* Expr::asFunction() const { return nullptr; }
const Symbol* Expr::asSymbol() const { return nullptr; }
const CharacterString* Expr::asCharacterString() const { return nullptr; }

String* Expr::fullFormString() const {
  auto text = adopt(new MutableString(256));
  auto writer = adopt(new StringWriter(text.get()));
  writeFullForm(writer.get());
  return text.leak();
}

String* Expr::inputFormString(const FormatContext* theContext) const {
  // Most input forms are short: a number, a name, an option value.
  auto text = adopt(new MutableString(32));
  auto writer = adopt(new StringWriter(text.get()));
  writeInputForm(writer.get(), theContext);
  return text.leak();
}

String* Expr::stringValue() const {
  FormatContext context;
  return inputFormString(&context);
}

int32_t Expr::integerValue() const { return 0; }

double Expr::doubleValue() const { return 0.0; }

Expr* Expr::negated() const { return new Function(HeadSymbol(Head::Minus), const_cast<Expr*>(this)); }

void Expr::writeDescription(Writer* theWriter) const {
  FormatContext context;
  writeInputForm(theWriter, &context);
}

void WriteASCII(Writer* theWriter, const char* theText) {
  theWriter->writeBytes(reinterpret_cast<const uint8_t*>(theText), int(StringLength(theText)));
}

const char* Expr::className() const { return "Expr"; }
const char* Expr::superclassName() const { return "Zn::Object"; }
} // namespace Zn::Kx
