//===- KxNumber.h - Integer and real atoms ---------------------------------===//
#pragma once
#include "Kx/KxSymbol.h"

namespace Zn::Kx {

/// A numeric atom. Numbers are stored and printed, never computed with.
class Number : public Expr {
public:
  /// Another Number whose integerValue and doubleValue agree.
  bool isEqual(const Object* theOther) const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Number() override = default;
};

/// A family of numbers that answer one type head. Within a family a
/// machine number and a big number are equal when their descriptions (the
/// texts they print) are; numbers of different families never are.
template <Head TypeHead> class NumberFamily : public Number {
public:
  Expr* head() const override;
  bool isEqual(const Object* theOther) const override;
  /// Hashes the description, as equality compares it.
  uint32_t hash() const override;

protected:
  ~NumberFamily() override = default;
};

class Integer : public NumberFamily<Head::Integer> {
public:
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Integer() override = default;
};

class Real : public NumberFamily<Head::Real> {
public:
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Real() override = default;
};

class MachineInteger : public Integer {
public:
  explicit MachineInteger(int32_t theValue) : value_(theValue) {}

  int32_t integerValue() const override;
  double doubleValue() const override;
  /// +1. The negated value, wrapping around at the 32-bit limits.
  Expr* negated() const override;
  void writeFullForm(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~MachineInteger() override = default;

private:
  int32_t value_;
};

class MachineReal : public Real {
public:
  explicit MachineReal(double theValue) : value_(theValue) {}

  /// Truncated toward zero.
  int32_t integerValue() const override;
  double doubleValue() const override;
  /// +1.
  Expr* negated() const override;
  /// Six decimals, as "%f" gives them.
  void writeFullForm(Writer* theWriter) const override;
  /// +1. The shortest text that reads back as the same value, as the
  /// notation writes a real: "2.", "0.4", "6.02*^23", "1.5*^-10".
  String* shortestText() const;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~MachineReal() override = default;

private:
  double value_;
};

/// A literal too long for a machine number: its text exactly as it was
/// read (sign, digits, point, precision marks) and a float approximation
/// for the numeric accessors. Shared by BigInteger and BigReal.
template <class Family> class BigNumber : public Family {
public:
  /// Borrowed.
  String* getDigits() const { return digits_.get(); }

  /// The approximation truncated toward zero (saturating at the limits).
  int32_t integerValue() const override;
  double doubleValue() const override;
  /// The digit text.
  void writeFullForm(Writer* theWriter) const override;
  /// +1. The digit text.
  String* description() const override;

protected:
  /// Retains theDigits; null stands for an empty text.
  BigNumber(String* theDigits, double theApproximation);
  ~BigNumber() override;
  /// +1. The digit text with its sign flipped.
  String* negatedDigits() const;

  Ref<String> digits_;
  double approximation_;
};

class BigInteger : public BigNumber<Integer> {
public:
  BigInteger(String* theDigits, double theApproximation) : BigNumber(theDigits, theApproximation) {}
  /// +1. The same digits with the sign flipped.
  Expr* negated() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~BigInteger() override = default;
};

class BigReal : public BigNumber<Real> {
public:
  BigReal(String* theDigits, double theApproximation) : BigNumber(theDigits, theApproximation) {}
  /// +1. The same text with the sign flipped.
  Expr* negated() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~BigReal() override = default;
};

/// Truncates toward zero; values beyond the 32-bit range saturate (as the
/// target's conversion does) and NaN gives 0.
int32_t TruncateToInt32(double theValue);
} // namespace Zn::Kx
