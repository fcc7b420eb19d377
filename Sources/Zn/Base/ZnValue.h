//===- ZnValue.h - Plain values boxed as objects ---------------------------===//
#pragma once
#include "Zn/Base/ZnObject.h"

namespace Zn {

/// A plain value seen through its bytes. Equality, ordering, hash and
/// description work on the bytes and the type name, so one implementation
/// serves every value class without knowing its type.
class Value : public Object {
public:
  /// Size of the stored value in bytes.
  virtual ZnIndex getSize() const = 0;
  /// Copies getSize() bytes to theOut.
  virtual void getValue(void* theOut) const;
  /// Borrowed; the stored bytes.
  virtual const void* getBytes() const = 0;
  /// Tells instantiations of one class apart; the class name by default.
  virtual const char* getTypeName() const;

  /// Same size, same bytes and the same type name.
  bool isEqual(const Object* theOther) const override;
  /// By size, then bytes, then type name.
  int32_t compare(const Object* theOther) const override;
  uint32_t hash() const override;
  /// "Value (<type>) {" then the bytes in hex, grouped by four, then " }".
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;
};

/// One plain value of type T, compared by its bytes. Instantiated for
/// Object* (a pointer that is not retained; pairs look through it to the
/// object) and unsigned short (a UTF-16 unit).
template <class T> class ValueType : public Value {
public:
  explicit ValueType(T theValue) : value_(theValue) {}
  using Value::getValue;
  T getValue() const { return value_; }

  ZnIndex getSize() const override { return ZnIndex(sizeof(T)); }
  const void* getBytes() const override { return &value_; }
  const char* getTypeName() const override;
  const char* className() const override { return "ValueType"; }
  const char* superclassName() const override { return "Value"; }

private:
  T value_;
};

template <> inline const char* ValueType<Object*>::getTypeName() const { return "ValueType<Zn::Object*>"; }
template <> inline const char* ValueType<unsigned short>::getTypeName() const { return "ValueType<unsigned short>"; }

/// The value that holds nothing; all nulls are equal.
class Null : public Value {
public:
  ZnIndex getSize() const override { return 0; }
  const void* getBytes() const override { return nullptr; }
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;
};
} // namespace Zn
