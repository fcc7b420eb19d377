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
  if (theRetain)
    theValue->retain();
  value_ = theValue;
}

CharacterString::CharacterString(const char* theASCII) {
  ZnAssert(theASCII != NULL, 0);
  value_ = new String(theASCII);
}

CharacterString::~CharacterString() { value_->release(); }

void CharacterString::writeInputForm(Writer* theWriter, const FormatContext* theContext) const {
  if (theContext->quoteStrings) {
    writeFullForm(theWriter);
    return;
  }
  theWriter->writeCharacters(value_->getCharactersPtr(), value_->length());
}

void CharacterString::writeFullForm(Writer* theWriter) const {
  WriteASCII(theWriter, "\"");
  theWriter->writeCharacters(value_->getCharactersPtr(), value_->length());
  WriteASCII(theWriter, "\"");
}

String* CharacterString::stringValue() const {
  value_->retain();
  return value_;
}

bool CharacterString::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const CharacterString* other = ObjectCast<CharacterString>(theOther);
  return other && value_->isEqual(other->value_);
}

uint32_t CharacterString::hash() const { return ~value_->hash(); }

const char* CharacterString::className() const { return "CharacterString"; }
const char* CharacterString::superclassName() const { return "StringExpr"; }

//===--- ByteString ------------------------------------------------------------===//

ByteString::ByteString(Object* theData) : data_(theData) {
  if (data_)
    data_->retain();
}

ByteString::~ByteString() {
  if (data_)
    data_->release();
}

void ByteString::writeFullForm(Writer* theWriter) const {
  WriteASCII(theWriter, "\"");
  if (data_) {
    auto text = adopt(data_->description());
    theWriter->writeCharacters(text->getCharactersPtr(), text->length());
  }
  WriteASCII(theWriter, "\"");
}

bool ByteString::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const ByteString* other = dynamic_cast<const ByteString*>(theOther);
  return other && Equal(data_, other->data_);
}

uint32_t ByteString::hash() const { return data_ ? ~data_->hash() : 0; }

const char* ByteString::className() const { return "ByteString"; }
const char* ByteString::superclassName() const { return "StringExpr"; }
} // namespace Zn::Kx
