//===- KxString.cpp - String atoms ------------------------------------------===//
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnWriter.h"

namespace Zn::Kx {

//===--- StringExpr ------------------------------------------------------------===//

Expr* StringExpr::head() const { return HeadSymbol(Head::String); }

const char* StringExpr::className() const { return "StringExpr"; }
const char* StringExpr::superclassName() const { return "Expr"; }

//===--- CharacterString -------------------------------------------------------===//

CharacterString::CharacterString(String* theValue, bool theRetain) {
  ZnAssert(theValue != NULL, 0);
  value_ = theRetain ? retained(theValue) : adopt(theValue);
}

CharacterString::CharacterString(const char* theASCII) {
  ZnAssert(theASCII != NULL, 0);
  value_ = adopt(new String(theASCII));
}

CharacterString::~CharacterString() = default;

void CharacterString::writeInputForm(Writer* theWriter, const FormatContext* theContext) const {
  if (theContext->quoteStrings) {
    writeFullForm(theWriter);
    return;
  }
  theWriter->writeString(value_.get());
}

void CharacterString::writeFullForm(Writer* theWriter) const {
  WriteASCII(theWriter, "\"");
  theWriter->writeString(value_.get());
  WriteASCII(theWriter, "\"");
}

String* CharacterString::stringValue() const { return retained(value_.get()).leak(); }

bool CharacterString::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const CharacterString* other = ObjectCast<CharacterString>(theOther);
  return other && value_->isEqual(other->value_.get());
}

uint32_t CharacterString::hash() const { return ~value_->hash(); }

const char* CharacterString::className() const { return "CharacterString"; }
const char* CharacterString::superclassName() const { return "StringExpr"; }

//===--- ByteString ------------------------------------------------------------===//

ByteString::ByteString(Object* theData) : data_(retained(theData)) {}

ByteString::~ByteString() = default;

void ByteString::writeFullForm(Writer* theWriter) const {
  WriteASCII(theWriter, "\"");
  if (data_) {
    auto text = adopt(data_->description());
    theWriter->writeString(text.get());
  }
  WriteASCII(theWriter, "\"");
}

bool ByteString::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const ByteString* other = dynamic_cast<const ByteString*>(theOther);
  return other && Equal(data_.get(), other->data_.get());
}

uint32_t ByteString::hash() const { return data_ ? ~data_->hash() : 0; }

const char* ByteString::className() const { return "ByteString"; }
const char* ByteString::superclassName() const { return "StringExpr"; }
} // namespace Zn::Kx
