//===- ZnNumber.h - Numbers and truth values boxed as objects -------------===//
#pragma once
#include "Zn/Base/ZnValue.h"

namespace Zn {

/// A boxed number. Conversions follow the target's rules: truncation toward
/// zero from floating point, saturating at the 32-bit (or 64-bit) limits,
/// and narrower integer results keeping the low bits. char is unsigned on
/// the target, so getCharValue returns an unsigned byte.
class Number : public Value {
public:
  virtual uint8_t getCharValue() const = 0;
  virtual uint8_t getUnsignedCharValue() const = 0;
  virtual int16_t getShortValue() const = 0;
  virtual uint16_t getUnsignedShortValue() const = 0;
  virtual int32_t getIntValue() const = 0;
  virtual uint32_t getUnsignedIntValue() const = 0;
  virtual int64_t getLongLongValue() const = 0;
  virtual uint64_t getUnsignedLongLongValue() const = 0;
  virtual float getFloatValue() const = 0;
  virtual double getDoubleValue() const = 0;
  /// True for the integer types and Boolean, false for float and double.
  virtual bool isInteger() const = 0;

  /// Numeric equality across types: integers never equal non-integers;
  /// non-integers are equal when their "%f" texts agree; integers of
  /// different sizes compare converted, of one size by their bytes.
  bool isEqual(const Object* theOther) const override;
  const char* className() const override;
  const char* superclassName() const override;
};

/// The storage behind each NumberType: the target's sizes, whatever the
/// build machine's (long is 32-bit and char unsigned there).
template <class T> struct NumberStorage { using Type = T; };
template <> struct NumberStorage<char> { using Type = uint8_t; };
template <> struct NumberStorage<long> { using Type = int32_t; };

/// One number of type T; instantiated for char, unsigned char, short,
/// unsigned short, int, unsigned int, long, long long, unsigned long long,
/// float and double.
template <class T> class NumberType : public Number {
public:
  using Storage = typename NumberStorage<T>::Type;
  explicit NumberType(Storage theValue) : value_(theValue) {}
  using Value::getValue;
  Storage getValue() const { return value_; }

  ZnIndex getSize() const override { return ZnIndex(sizeof(Storage)); }
  const void* getBytes() const override { return &value_; }
  /// The C name of T: "int", "unsigned short", ...
  const char* getTypeName() const override;

  uint8_t getCharValue() const override;
  uint8_t getUnsignedCharValue() const override;
  int16_t getShortValue() const override;
  uint16_t getUnsignedShortValue() const override;
  int32_t getIntValue() const override;
  uint32_t getUnsignedIntValue() const override;
  int64_t getLongLongValue() const override;
  uint64_t getUnsignedLongLongValue() const override;
  float getFloatValue() const override;
  double getDoubleValue() const override;
  bool isInteger() const override;

  /// Floating point: "%f". Integers: decimal, with "-" whenever the top bit
  /// is set, so unsigned 65535 in 16 bits prints "-65535".
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

private:
  Storage value_;
};

/// A truth value; 0 or 1 in every conversion, equal only to another Boolean.
class Boolean : public Number {
public:
  explicit Boolean(bool theValue) : value_(theValue) {}
  bool getBoolValue() const { return value_; }

  ZnIndex getSize() const override { return 1; }
  const void* getBytes() const override { return &value_; }
  uint8_t getCharValue() const override { return value_; }
  uint8_t getUnsignedCharValue() const override { return value_; }
  int16_t getShortValue() const override { return value_; }
  uint16_t getUnsignedShortValue() const override { return value_; }
  int32_t getIntValue() const override { return value_; }
  uint32_t getUnsignedIntValue() const override { return value_; }
  int64_t getLongLongValue() const override { return value_; }
  uint64_t getUnsignedLongLongValue() const override { return value_; }
  float getFloatValue() const override { return value_; }
  double getDoubleValue() const override { return value_; }
  bool isInteger() const override { return true; }

  bool isEqual(const Object* theOther) const override;
  /// "true" or "false".
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

private:
  bool value_;
};

extern template class NumberType<char>;
extern template class NumberType<unsigned char>;
extern template class NumberType<short>;
extern template class NumberType<unsigned short>;
extern template class NumberType<int>;
extern template class NumberType<unsigned int>;
extern template class NumberType<long>;
extern template class NumberType<long long>;
extern template class NumberType<unsigned long long>;
extern template class NumberType<float>;
extern template class NumberType<double>;
} // namespace Zn
