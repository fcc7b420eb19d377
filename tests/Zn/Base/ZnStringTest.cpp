//===- ZnStringTest.cpp - Strings, the format routine and number parsing ---===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"

using namespace Zn;

namespace {
class StringTest : public ZnTest::LeakCheckedTest {};

Ref<String> S(const char* theText) { return adopt(new String(theText)); }

std::string Format(const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  auto s = adopt(new MutableString());
  s->appendFormatV(theFormat, args);
  va_end(args);
  return ZnTest::Utf8(s.get());
}
} // namespace

// A string whose units live in its own block is like any other string.
TEST_F(StringTest, StringsInOneBlockCompareAndCopyLikeAnyOther) {
  const ZnUnichar units[] = {'n', 0x00E9, 'b'};
  auto inline3 = adopt(String::createWithCharacters(units, 3));
  auto usual = adopt(new String(units, 3));
  EXPECT_TRUE(inline3->isEqual(usual.get()));
  EXPECT_TRUE(usual->isEqual(inline3.get()));
  EXPECT_EQ(inline3->hash(), usual->hash());
  EXPECT_EQ(inline3->compare(adopt(new MutableString(usual.get())).get()), 0);
  EXPECT_EQ(adopt(String::createWithCharacters(nullptr, 0))->length(), 0);
  auto thawed = adopt(static_cast<MutableString*>(inline3->mutableCopy()));
  thawed->appendCharacter('!');
  EXPECT_EQ(ZnTest::Utf8(inline3.get()), "n\u00e9b");
  EXPECT_EQ(ZnTest::Utf8(thawed.get()), "n\u00e9b!");
}

TEST_F(StringTest, FormatConversions) {
  auto object = S("obj");
  EXPECT_EQ(Format("%@|%@", object.get(), nullptr), "obj|(NULL)");
  EXPECT_EQ(Format("%ld%%", 42L), "42%");
  EXPECT_EQ(Format("[%5.2f]", 3.14159), "[ 3.14]");
  EXPECT_EQ(Format("%s-%d-%x-%X-%o-%u", "ab", -7, 255, 255, 8, 3u), "ab--7-ff-FF-10-3");
  EXPECT_EQ(Format("%lld %zu %*d", 1LL << 40, size_t(9), 4, 7), "1099511627776 9    7");
  EXPECT_EQ(Format("%e", 12500.0), "1.250000e+04");
  // %c appends one code unit, not its UTF-8 bytes.
  auto smile = adopt(new MutableString());
  smile->appendFormat("%c", 0x263A);
  ASSERT_EQ(smile->length(), 1);
  EXPECT_EQ(smile->characterAtIndex(0), 0x263A);
}

TEST_F(StringTest, FormatResolvesBackslashEscapesInTheFormatItself) {
  // The format text is built at run time: the escapes are still resolved.
  std::string format = "a\\tb\\n\\\\\\'\\101\\a";
  EXPECT_EQ(Format(format.c_str()), std::string("a\tb\n\\'A\a"));
}

TEST_F(StringTest, CompareIsLowByteFirstAndLengthBreaksTies) {
  EXPECT_EQ(S("a")->compare(S("ab").get()), -1);
  EXPECT_EQ(S("ab")->compare(S("a").get()), 1);
  const ZnUnichar high[] = {0x0100}, low[] = {0x00FF};
  EXPECT_LT(adopt(new String(high, 1))->compare(adopt(new String(low, 1)).get()), 0);
  EXPECT_EQ(S("Plain")->compareToCString("plain", false), 0);
  EXPECT_NE(S("Plain")->compareToCString("plain", true), 0);
  EXPECT_LT(S("ab")->compareToCString("abc", true), 0);
}

TEST_F(StringTest, DoubleValueReadsTheLeadingNumber) {
  struct Case { const char* text; bool found; double value; } cases[] = {
      {"12", true, 12},      {"px12", true, 12},     {"12.5pt", true, 12.5}, {"-0.25", true, -0.25},
      {"2.5e2", true, 250},  {"2e2", true, 2},       {"1.e5", true, 100000}, {"Yes", true, 1},
      {"FALSE", true, 0},    {"Large", false, 0},    {"", false, 0},         {"+x", true, 0},
      {"-", false, 0},       {"1.0e-2", true, 0.01}, {".5", true, 0.5},      {"1.0e+5", true, 1},
  };
  for (const Case& c : cases) {
    double value = -99;
    EXPECT_EQ(S(c.text)->doubleValue(&value, 10), c.found) << c.text;
    if (c.found) {
      EXPECT_DOUBLE_EQ(value, c.value) << c.text;
    }
  }
  double hex = 0;
  EXPECT_TRUE(S("ff")->doubleValue(&hex, 16));
  EXPECT_EQ(hex, 255);
}

TEST_F(StringTest, SearchAndCaseFolding) {
  auto text = S("Hello World hello");
  EXPECT_EQ(text->indexOfCString("hello", true, 0), 12);
  EXPECT_EQ(text->indexOfCString("hello", false, 0), 0);
  EXPECT_EQ(text->indexOfCString("hello", false, 1), 12);
  EXPECT_EQ(text->indexOfCString("hello", false, 13), -1);
  EXPECT_EQ(text->indexOfCString("", true, 5), 5);
  EXPECT_EQ(ZnTest::Utf8(adopt(text->lowercaseString()).get()), "hello world hello");
}

TEST_F(StringTest, SubstringsAndMutation) {
  auto text = S("abcdef");
  EXPECT_EQ(ZnTest::Utf8(adopt(text->substringToIndex(2)).get()), "abc");
  EXPECT_EQ(ZnTest::Utf8(adopt(text->substringFromIndex(4)).get()), "ef");
  EXPECT_EQ(ZnTest::Utf8(adopt(text->substringWithRange(Range(1, 3))).get()), "bcd");
  auto m = adopt(new MutableString(text.get()));
  const ZnUnichar xy[] = {'X', 'Y'};
  m->insertCharacters(1, xy, 2);
  m->insertCharacters(-1, xy, 1);
  EXPECT_EQ(ZnTest::Utf8(m.get()), "aXYbcdefX");
  m->replaceCharactersInRange(Range(0, 3), xy + 1, 1);
  m->deleteCharactersInRange(Range(5, 2));
  EXPECT_EQ(ZnTest::Utf8(m.get()), "Ybcde");
}

TEST_F(StringTest, PrintToStandardErrorEscapesControlsAndNonAscii) {
  const ZnUnichar units[] = {'a', 7, 8, 13, 9, 0xE9, 0x01, 'z'};
  auto s = adopt(new String(units, 8));
  testing::internal::CaptureStderr();
  PrintToStandardError(s.get());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "a\\a\\b\\r\t\\u00e9\\u0001z\n");
}

using StringDeathTest = StringTest;

TEST_F(StringDeathTest, BrokenPreconditionsAreReported) {
  EXPECT_EXIT(S("abc")->substringToIndex(2), testing::ExitedWithCode(255), "\"\\(theIndex \\+ 1\\) < length_\"");
  EXPECT_EXIT(S("abc")->substringWithRange(Range(2, 2)), testing::ExitedWithCode(255),
              "\\(theRange.location \\+ theRange.length\\) <= length_");
  double d;
  EXPECT_EXIT(S("1")->doubleValue(&d, 37), testing::ExitedWithCode(255), "theBase <= 36");
  EXPECT_EXIT(S("1")->doubleValue(&d, 1), testing::ExitedWithCode(255), "theBase >= 2");
  EXPECT_EXIT(Format("%s", static_cast<const char*>(nullptr)), testing::ExitedWithCode(255), "theString != NULL");
  EXPECT_EXIT(Format("50%"), testing::ExitedWithCode(255),
              "\\(i < len\\) && \\(subLen < \\(sizeof\\(subFormat\\) - 1\\)\\)");
  EXPECT_EXIT(Format("\\q"), testing::ExitedWithCode(255), "!\"unknown backslash escape sequence\"");
}
