//===- ZnValueTest.cpp - Values and numbers: equality, hash, text ----------===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnNumber.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/IO/ZnWriter.h"
#include <cmath>

using namespace Zn;

namespace {
using ZnTest::Describe;
class ValueTest : public ZnTest::LeakCheckedTest {};

template <class T> Ref<Number> Num(typename NumberType<T>::Storage theValue) {
  return adopt(static_cast<Number*>(new NumberType<T>(theValue)));
}
} // namespace

TEST_F(ValueTest, NumbersCompareAcrossTypes) {
  struct Case { Ref<Number> a, b; bool equal; const char* why; };
  const Case cases[] = {
      {Num<int>(3), Num<long long>(3), true, "sizes 4 and 8: 64-bit conversion"},
      {Num<int>(3), Num<short>(3), true, "both at most 4 bytes"},
      {Num<int>(-1), Num<long long>(-1), true, "sign kept by the 64-bit conversion"},
      {Num<short>(-1), Num<int>(-1), true, "sign extension before the 32-bit compare"},
      {Num<unsigned char>(255), Num<short>(-1), false, "zero against sign extension"},
      {Num<unsigned short>(65535), Num<short>(-1), true, "same size: bytes"},
      {Num<int>(1), Num<unsigned int>(1), true, "same size: bytes"},
      {Num<long>(7), Num<int>(7), true, "long is 4 bytes"},
      {Num<int>(3), Num<double>(3.0), false, "integer against non-integer"},
      {Num<double>(0.1 + 0.2), Num<double>(0.3), true, "same %f text"},
      {Num<double>(0.1), Num<float>(0.1f), true, "same %f text across widths"},
      {Num<double>(0.1234564), Num<double>(0.1234566), false, "sixth decimal differs"},
      {Num<double>(-0.0), Num<double>(0.0), true, "equal as doubles"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.a->isEqual(c.b.get()), c.equal) << c.why;
    EXPECT_EQ(c.b->isEqual(c.a.get()), c.equal) << c.why << " (reversed)";
  }
}

TEST_F(ValueTest, BooleansEqualOnlyBooleans) {
  auto yes = adopt(new Boolean(true));
  EXPECT_TRUE(yes->isEqual(adopt(new Boolean(true)).get()));
  EXPECT_FALSE(yes->isEqual(adopt(new Boolean(false)).get()));
  EXPECT_FALSE(yes->isEqual(Num<int>(1).get()));
  EXPECT_EQ(Describe(yes.get()), "true");
}

TEST_F(ValueTest, DescriptionsKeepTheTopBitMinus) {
  struct Case { Ref<Number> number; const char* text; };
  const Case cases[] = {
      {Num<unsigned short>(65535), "-65535"},    {Num<unsigned short>(32767), "32767"},
      {Num<unsigned char>(255), "-255"},         {Num<char>(255), "-255"},
      {Num<unsigned int>(0x80000000u), "-2147483648"}, {Num<unsigned long long>(~0ull), "-18446744073709551615"},
      {Num<int>(INT32_MIN), "-2147483648"},      {Num<long long>(INT64_MIN), "-9223372036854775808"},
      {Num<double>(1.5), "1.500000"},            {Num<float>(-0.25f), "-0.250000"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(Describe(c.number.get()), c.text) << c.number->getTypeName();
}

TEST_F(ValueTest, ConversionsFollowTheTarget) {
  auto big = Num<double>(1e10);
  EXPECT_EQ(big->getIntValue(), INT32_MAX);
  EXPECT_EQ(big->getUnsignedIntValue(), UINT32_MAX);
  EXPECT_EQ(big->getUnsignedCharValue(), 0xFF); // through 32 bits, low byte kept
  EXPECT_EQ(big->getLongLongValue(), 10000000000LL);
  auto negative = Num<double>(-2.7);
  EXPECT_EQ(negative->getIntValue(), -2);
  EXPECT_EQ(negative->getShortValue(), -2);
  EXPECT_EQ(negative->getUnsignedIntValue(), 0u);
  EXPECT_EQ(Num<double>(NAN)->getIntValue(), 0);
  EXPECT_EQ(Num<int>(0x12345)->getUnsignedShortValue(), 0x2345);
  EXPECT_EQ(Num<int>(-1)->getUnsignedCharValue(), 0xFF);
  EXPECT_EQ(Num<char>(200)->getIntValue(), 200); // char is unsigned
  EXPECT_TRUE(std::isinf(Num<double>(1e300)->getFloatValue()));
}

TEST_F(ValueTest, PlainValuesCompareBytesThenTypeNames) {
  auto unit = adopt(new ValueType<unsigned short>(0x41));
  auto sameUnit = adopt(new ValueType<unsigned short>(0x41));
  auto number = Num<unsigned short>(0x41);
  EXPECT_TRUE(unit->isEqual(sameUnit.get()));
  EXPECT_EQ(unit->hash(), 0x41u);
  EXPECT_FALSE(unit->isEqual(number.get())); // same bytes, other type name
  EXPECT_NE(unit->compare(number.get()), 0);
  EXPECT_LT(unit->compare(adopt(new ValueType<unsigned short>(0x42)).get()), 0);
  EXPECT_EQ(Describe(unit.get()), "Value (ValueType<unsigned short>) { 4100 }");
  auto null = adopt(new Null());
  EXPECT_TRUE(null->isEqual(adopt(new Null()).get()));
  EXPECT_EQ(Describe(null.get()), "Null");
}

TEST_F(ValueTest, GenericDescriptionGroupsBytesByFour) {
  auto wide = Num<long long>(0x0102030405060708LL);
  auto text = adopt(new MutableString());
  auto writer = adopt(new StringWriter(text.get()));
  wide->Value::writeDescription(writer.get());
  EXPECT_EQ(ZnTest::Utf8(text.get()), "Value (long long) { 08070605 04030201 }");
}
