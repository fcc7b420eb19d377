//===- ZnNumber.cpp - Numbers and truth values boxed as objects -----------===//
#include "Zn/Base/ZnNumber.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/IO/ZnWriter.h"
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace Zn {

//===--- Conversions ---------------------------------------------------------===//

// Floating point to an integer of the given limits as the target's
// converter does it: toward zero, saturating, NaN to 0.
template <class I> static I Saturate(double theValue) {
  if (std::isnan(theValue))
    return 0;
  if (theValue <= double(std::numeric_limits<I>::min()))
    return std::numeric_limits<I>::min();
  // The maximum is not exact in a double for 64-bit types: compare with
  // the power of two just above it.
  if (theValue >= std::ldexp(1.0, std::numeric_limits<I>::digits))
    return std::numeric_limits<I>::max();
  return I(theValue);
}

// One conversion of a stored value to a result type. Floating sources go
// through a 32-bit conversion for results of 32 bits or fewer (signed or
// unsigned like the result) and keep the low bits; everything else is the
// language's own conversion, modular for integers.
template <class To, class From> static To Convert(From theValue) {
  if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To>) {
    if constexpr (sizeof(To) == 8)
      return Saturate<To>(theValue);
    else if constexpr (std::is_unsigned_v<To>)
      return To(Saturate<uint32_t>(theValue));
    else
      return To(Saturate<int32_t>(theValue));
  } else if constexpr (std::is_same_v<To, float> && std::is_same_v<From, double>) {
    // Out of float's range the hardware gives an infinity.
    if (std::isfinite(theValue) && std::fabs(theValue) > double(FLT_MAX))
      return theValue > 0 ? HUGE_VALF : -HUGE_VALF;
    return float(theValue);
  } else {
    return To(theValue);
  }
}

// "%f" into a 256-character buffer: the text that decides non-integer equality.
static void FormatFixed(double theValue, char (&theBuffer)[256]) {
  StringFormat(theBuffer, sizeof theBuffer, "%f", theValue);
}

//===--- Number --------------------------------------------------------------===//

bool Number::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const Number* other = dynamic_cast<const Number*>(theOther);
  if (other == nullptr || isInteger() != other->isInteger())
    return false;
  if (!isInteger()) {
    if (getDoubleValue() == other->getDoubleValue())
      return true;
    char mine[256], theirs[256];
    FormatFixed(getDoubleValue(), mine);
    FormatFixed(other->getDoubleValue(), theirs);
    return StringCompare(mine, theirs) == 0;
  }
  if (getSize() != other->getSize()) {
    if (getSize() <= 4 && other->getSize() <= 4)
      return getUnsignedIntValue() == other->getUnsignedIntValue();
    return getLongLongValue() == other->getLongLongValue();
  }
  return std::memcmp(getBytes(), other->getBytes(), Sys::size_t(getSize())) == 0;
}

const char* Number::className() const { return "Number"; }
const char* Number::superclassName() const { return "Value"; }

//===--- NumberType ----------------------------------------------------------===//

template <class T> constexpr const char* kTypeName = nullptr;
template <> constexpr const char* kTypeName<char> = "char";
template <> constexpr const char* kTypeName<unsigned char> = "unsigned char";
template <> constexpr const char* kTypeName<short> = "short";
template <> constexpr const char* kTypeName<unsigned short> = "unsigned short";
template <> constexpr const char* kTypeName<int> = "int";
template <> constexpr const char* kTypeName<unsigned int> = "unsigned int";
template <> constexpr const char* kTypeName<long> = "long";
template <> constexpr const char* kTypeName<long long> = "long long";
template <> constexpr const char* kTypeName<unsigned long long> = "unsigned long long";
template <> constexpr const char* kTypeName<float> = "float";
template <> constexpr const char* kTypeName<double> = "double";

template <class T> uint8_t NumberType<T>::getCharValue() const { return Convert<uint8_t>(value_); }
template <class T> uint8_t NumberType<T>::getUnsignedCharValue() const { return Convert<uint8_t>(value_); }
template <class T> int16_t NumberType<T>::getShortValue() const { return Convert<int16_t>(value_); }
template <class T> uint16_t NumberType<T>::getUnsignedShortValue() const { return Convert<uint16_t>(value_); }
template <class T> int32_t NumberType<T>::getIntValue() const { return Convert<int32_t>(value_); }
template <class T> uint32_t NumberType<T>::getUnsignedIntValue() const { return Convert<uint32_t>(value_); }
template <class T> int64_t NumberType<T>::getLongLongValue() const { return Convert<int64_t>(value_); }
template <class T> uint64_t NumberType<T>::getUnsignedLongLongValue() const { return Convert<uint64_t>(value_); }
template <class T> float NumberType<T>::getFloatValue() const { return Convert<float>(value_); }
template <class T> double NumberType<T>::getDoubleValue() const { return Convert<double>(value_); }
template <class T> bool NumberType<T>::isInteger() const { return std::is_integral_v<Storage>; }

template <class T> void NumberType<T>::writeDescription(Writer* theWriter) const {
  if constexpr (std::is_floating_point_v<Storage>) {
    theWriter->putFormat("%f", double(value_));
  } else {
    // The top bit gives the "-" for unsigned types too; their digits are
    // then those of the unsigned value. Callers rely on this exact text.
    using Unsigned = std::make_unsigned_t<Storage>;
    Unsigned bits = Unsigned(value_);
    bool negative = bits >> (sizeof(Storage) * 8 - 1);
    uint64_t magnitude = std::is_signed_v<Storage> && negative ? uint64_t(0) - uint64_t(int64_t(value_))
                                                                : uint64_t(bits);
    char digits[24];
    char* p = digits + sizeof digits;
    *--p = 0;
    do {
      *--p = char('0' + magnitude % 10);
      magnitude /= 10;
    } while (magnitude);
    if (negative)
      *--p = '-';
    theWriter->putBytes(p);
  }
}

template <class T> const char* NumberType<T>::className() const { return "NumberType<T>"; }
template <class T> const char* NumberType<T>::superclassName() const { return "Number"; }

template <class T> const char* NumberType<T>::getTypeName() const { return kTypeName<T>; }

template class NumberType<char>;
template class NumberType<unsigned char>;
template class NumberType<short>;
template class NumberType<unsigned short>;
template class NumberType<int>;
template class NumberType<unsigned int>;
template class NumberType<long>;
template class NumberType<long long>;
template class NumberType<unsigned long long>;
template class NumberType<float>;
template class NumberType<double>;

//===--- Boolean -------------------------------------------------------------===//

bool Boolean::isEqual(const Object* theOther) const {
  const Boolean* other = dynamic_cast<const Boolean*>(theOther);
  return other && other->value_ == value_;
}

void Boolean::writeDescription(Writer* theWriter) const { theWriter->putBytes(value_ ? "true" : "false"); }

const char* Boolean::className() const { return "Boolean"; }
const char* Boolean::superclassName() const { return "Number"; }
} // namespace Zn
