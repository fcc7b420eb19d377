//===- KxString.h - String atoms --------------------------------------------===//
#pragma once
#include "Kx/KxExpr.h"
#include "Zn/Base/ZnRef.h"

namespace Zn::Kx {

/// A string atom; its head is the symbol String.
class StringExpr : public Expr {
public:
  Expr* head() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~StringExpr() override = default;
};

/// Text, held as it was read (escapes already decoded).
class CharacterString final : public StringExpr {
public:
  /// Retains theValue unless theRetain is false (then it takes the +1).
  CharacterString(String* theValue, bool theRetain);
  explicit CharacterString(const char* theASCII);

  /// Borrowed.
  String* getValue() const { return value_.get(); }

  /// The text, quoted only when the context asks for quotes.
  void writeInputForm(Writer* theWriter, const FormatContext* theContext) const override;
  /// The text between double quotes, without escaping.
  void writeFullForm(Writer* theWriter) const override;
  /// +1. The text itself, without quotes.
  String* stringValue() const override;
  const CharacterString* asCharacterString() const override { return this; }

  bool isEqual(const Object* theOther) const override;
  uint32_t hash() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~CharacterString() override;

private:
  Ref<String> value_;
};

/// Raw bytes. Holds a data object (or nothing) and prints its description
/// between quotes.
class ByteString : public StringExpr {
public:
  /// Retains theData, which may be null.
  explicit ByteString(Object* theData);

  /// Borrowed; may be null.
  Object* getData() const { return data_.get(); }

  void writeFullForm(Writer* theWriter) const override;
  bool isEqual(const Object* theOther) const override;
  uint32_t hash() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~ByteString() override;

private:
  Ref<Object> data_;
};
} // namespace Zn::Kx
