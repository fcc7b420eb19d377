//===- KxNumber.cpp - Integer and real atoms -------------------------------===//
#include "Kx/KxNumber.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnWriter.h"
#include <charconv>
#include <cmath>
#include <cstring>

namespace Zn::Kx {

int32_t TruncateToInt32(double theValue) {
  if (theValue != theValue)
    return 0;
  if (theValue >= 2147483647.0)
    return INT32_MAX;
  if (theValue <= -2147483648.0)
    return INT32_MIN;
  return int32_t(theValue);
}

//===--- Number, Integer, Real -------------------------------------------------===//

bool Number::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const Number* other = dynamic_cast<const Number*>(theOther);
  return other && integerValue() == other->integerValue() && doubleValue() == other->doubleValue();
}

const char* Number::className() const { return "Number"; }
const char* Number::superclassName() const { return "Expr"; }

template <Head TypeHead> Expr* NumberFamily<TypeHead>::head() const { return HeadSymbol(TypeHead); }

template <Head TypeHead> bool NumberFamily<TypeHead>::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  if (!dynamic_cast<const NumberFamily*>(theOther))
    return false;
  auto mine = adopt(description());
  auto theirs = adopt(theOther->description());
  return mine->isEqual(theirs.get());
}

template <Head TypeHead> uint32_t NumberFamily<TypeHead>::hash() const {
  return adopt(description())->hash() * 37;
}

template class NumberFamily<Head::Integer>;
template class NumberFamily<Head::Real>;

const char* Integer::className() const { return "Integer"; }
const char* Integer::superclassName() const { return "Number"; }

const char* Real::className() const { return "Real"; }
const char* Real::superclassName() const { return "Number"; }

//===--- Machine numbers -------------------------------------------------------===//

int32_t MachineInteger::integerValue() const { return value_; }

double MachineInteger::doubleValue() const { return double(value_); }

Expr* MachineInteger::negated() const { return new MachineInteger(int32_t(0u - uint32_t(value_))); }

void MachineInteger::writeFullForm(Writer* theWriter) const {
  char text[16];
  StringFormat(text, sizeof text, "%ld", long(value_));
  WriteASCII(theWriter, text);
}

const char* MachineInteger::className() const { return "MachineInteger"; }
const char* MachineInteger::superclassName() const { return "Integer"; }

int32_t MachineReal::integerValue() const { return TruncateToInt32(value_); }

double MachineReal::doubleValue() const { return value_; }

Expr* MachineReal::negated() const { return new MachineReal(-value_); }

void MachineReal::writeFullForm(Writer* theWriter) const {
  // "%f" of the largest double has 316 characters.
  char text[330];
  StringFormat(text, sizeof text, "%f", value_);
  WriteASCII(theWriter, text);
}

String* MachineReal::shortestText() const {
  char text[64];
  auto [end, error] = std::to_chars(text, text + sizeof text - 1, value_);
  *(error == std::errc() ? end : text) = 0;
  auto result = adopt(new MutableString(32));
  char* exponent = std::isfinite(value_) ? std::strchr(text, 'e') : nullptr;
  if (exponent)
    *exponent++ = 0;
  result->appendCString(text);
  if (std::isfinite(value_) && !std::strchr(text, '.'))
    result->appendCharacter('.');
  if (exponent) {
    const bool negative = *exponent == '-';
    if (*exponent == '-' || *exponent == '+')
      ++exponent;
    while (exponent[0] == '0' && exponent[1])
      ++exponent;
    result->appendCString(negative ? "*^-" : "*^");
    result->appendCString(exponent);
  }
  return result.leak();
}

const char* MachineReal::className() const { return "MachineReal"; }
const char* MachineReal::superclassName() const { return "Real"; }

//===--- Big numbers -----------------------------------------------------------===//

template <class Family>
BigNumber<Family>::BigNumber(String* theDigits, double theApproximation)
    : digits_(theDigits ? retained(theDigits) : adopt(new String())), approximation_(theApproximation) {}

template <class Family> BigNumber<Family>::~BigNumber() = default;

template <class Family> int32_t BigNumber<Family>::integerValue() const {
  return TruncateToInt32(approximation_);
}

template <class Family> double BigNumber<Family>::doubleValue() const { return approximation_; }

template <class Family> void BigNumber<Family>::writeFullForm(Writer* theWriter) const {
  theWriter->writeString(digits_.get());
}

template <class Family> String* BigNumber<Family>::description() const { return retained(digits_.get()).leak(); }

template <class Family> String* BigNumber<Family>::negatedDigits() const {
  if (digits_->length() > 0 && digits_->characterAtIndex(0) == '-')
    return digits_->substringFromIndex(1);
  return StringWithFormat("-%@", digits_.get());
}

template class BigNumber<Integer>;
template class BigNumber<Real>;

Expr* BigInteger::negated() const {
  auto digits = adopt(negatedDigits());
  return new BigInteger(digits.get(), -approximation_);
}

const char* BigInteger::className() const { return "BigInteger"; }
const char* BigInteger::superclassName() const { return "Integer"; }

Expr* BigReal::negated() const {
  auto digits = adopt(negatedDigits());
  return new BigReal(digits.get(), -approximation_);
}

const char* BigReal::className() const { return "BigReal"; }
const char* BigReal::superclassName() const { return "Real"; }
} // namespace Zn::Kx
