//===- ZnStringTest.cpp - Strings, the format routine and number parsing ---===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
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
  // A format built at run time has its backslash escapes resolved too.
  std::string escapes = "a\\tb\\n\\\\\\'\\101\\a";
  EXPECT_EQ(Format(escapes.c_str()), std::string("a\tb\n\\'A\a"));
  // %c appends one code unit, not its UTF-8 bytes.
  auto smile = adopt(new MutableString());
  smile->appendFormat("%c", 0x263A);
  ASSERT_EQ(smile->length(), 1);
  EXPECT_EQ(smile->characterAtIndex(0), 0x263A);
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

//===--- The one-byte and the 16-bit form ----------------------------------===//

namespace {
/// The same units in the 16-bit form, whatever they are.
Ref<MutableString> Wide(const std::u16string& theUnits) {
  auto s = adopt(new MutableString());
  s->widen();
  s->appendCharacters(reinterpret_cast<const ZnUnichar*>(theUnits.data()), ZnIndex(theUnits.size()));
  return s;
}
Ref<String> Compact(const std::u16string& theUnits) {
  return adopt(String::createWithCharacters(reinterpret_cast<const ZnUnichar*>(theUnits.data()), ZnIndex(theUnits.size())));
}
std::u16string Units(const String* theString) {
  std::u16string units(size_t(theString->length()), u'\0');
  theString->getCharacters(reinterpret_cast<ZnUnichar*>(units.data()), Range(0, theString->length()));
  return units;
}
} // namespace

TEST_F(StringTest, UnitsBelow256TakeOneByteAndOthersTwo) {
  struct Case { std::u16string units; bool wide; } cases[] = {
      {u"", false}, {u"plain ASCII", false}, {u"caf\u00e9 \u00ff", false},
      {u"\u0100", true}, {u"x \u263a y", true}, {u"\U0001D538", true},
  };
  for (const Case& c : cases) {
    auto compact = Compact(c.units);
    EXPECT_EQ(compact->isWide(), c.wide);
    EXPECT_EQ(Units(compact.get()), c.units);
    auto built = adopt(new String(reinterpret_cast<const ZnUnichar*>(c.units.data()), ZnIndex(c.units.size())));
    EXPECT_EQ(built->isWide(), c.wide);
    for (ZnIndex i = 0; i < compact->length(); ++i)
      EXPECT_EQ(compact->characterAtIndex(i), c.units[size_t(i)]);
  }
}

// A compact string of a parsed tree takes one byte a unit after the object.
TEST_F(StringTest, CompactStringsTakeOneByteAUnit) {
  const ZnUnichar text[] = {'a', 0xE9, 'b', 'c', 'd'}, wide[] = {'a', 0x263A, 'b'};
  uint64_t before = GetTotalAllocated();
  auto compact = adopt(String::createWithCharacters(text, 5));
  EXPECT_EQ(GetTotalAllocated() - before, sizeof(String) + 5);
  before = GetTotalAllocated();
  auto sixteen = adopt(String::createWithCharacters(wide, 3));
  EXPECT_EQ(GetTotalAllocated() - before, sizeof(String) + 6);
}

// Equal units make equal strings with equal hashes in either form; the
// order is the one of the 16-bit form (low byte first), also across forms.
TEST_F(StringTest, BothFormsOfOneTextAreEqualAndHashAlike) {
  for (std::u16string text : {u"", u"a", u"ab", u"abc", u"caf\u00e9", u"\u00ff\u00fe\u00fd", u"odd length"}) {
    auto compact = Compact(text);
    auto wide = Wide(text);
    ASSERT_FALSE(compact->isWide());
    ASSERT_TRUE(wide->isWide());
    EXPECT_TRUE(compact->isEqual(wide.get()));
    EXPECT_TRUE(wide->isEqual(compact.get()));
    EXPECT_EQ(compact->hash(), wide->hash());
    EXPECT_EQ(compact->compare(wide.get()), 0);
    EXPECT_TRUE(compact->isEqualToCharacters(reinterpret_cast<const ZnUnichar*>(text.data()), ZnIndex(text.size())));
    EXPECT_EQ(compact->hash(), HashCharacters(reinterpret_cast<const ZnUnichar*>(text.data()), ZnIndex(text.size())));
  }
  struct Order { std::u16string left, right; int sign; } orders[] = {
      {u"a\u00ff", u"a\u0100", 1},  // FF against 00: the low byte decides first
      {u"a\u0001", u"a\u0100", 1},  // 01 against 00
      {u"ab", u"ab\u0100", -1},     // the shorter first
      {u"b", u"a\u263a", 1},
  };
  for (const Order& o : orders) {
    auto sign = [](int32_t theResult) { return (theResult > 0) - (theResult < 0); };
    EXPECT_EQ(sign(Compact(o.left)->compare(Compact(o.right).get())), o.sign);
    EXPECT_EQ(sign(Wide(o.left)->compare(Compact(o.right).get())), o.sign);
    EXPECT_EQ(sign(Compact(o.right)->compare(Wide(o.left).get())), -o.sign);
  }
  EXPECT_EQ(Compact(u"find the \u00e9")->indexOfString(Wide(u"\u00e9").get(), true, 0), 9);
  EXPECT_EQ(Wide(u"\u263a THE end")->indexOfString(S("the").get(), false, 0), 2);
}

// Every change that brings a unit of 256 or more widens the string once,
// keeping what it held; narrow units keep it narrow.
TEST_F(StringTest, MutableStringWidensOnTheFirstWideUnit) {
  const ZnUnichar smile[] = {0x263A}, plain[] = {'x', 'y'};
  struct Case {
    const char* name;
    void (*change)(MutableString*, const ZnUnichar*, ZnIndex);
    ZnIndex narrowCount;
    std::u16string narrowResult, wideResult;
  } cases[] = {
      {"append", [](MutableString* s, const ZnUnichar* u, ZnIndex n) { s->appendCharacters(u, n); },
       2, u"caf\u00e9xy", u"caf\u00e9\u263a"},
      {"append one", [](MutableString* s, const ZnUnichar* u, ZnIndex) { s->appendCharacter(u[0]); },
       1, u"caf\u00e9x", u"caf\u00e9\u263a"},
      {"insert", [](MutableString* s, const ZnUnichar* u, ZnIndex n) { s->insertCharacters(2, u, n); },
       2, u"caxyf\u00e9", u"ca\u263af\u00e9"},
      {"replace", [](MutableString* s, const ZnUnichar* u, ZnIndex n) { s->replaceCharactersInRange(Range(1, 2), u, n); },
       2, u"cxy\u00e9", u"c\u263a\u00e9"},
  };
  for (const Case& c : cases) {
    auto narrow = adopt(new MutableString(adopt(new String("caf\xE9")).get()));
    c.change(narrow.get(), plain, c.narrowCount);
    EXPECT_FALSE(narrow->isWide()) << c.name;
    EXPECT_EQ(Units(narrow.get()), c.narrowResult) << c.name;
    auto widened = adopt(new MutableString(adopt(new String("caf\xE9")).get()));
    c.change(widened.get(), smile, 1);
    EXPECT_TRUE(widened->isWide()) << c.name;
    EXPECT_EQ(Units(widened.get()), c.wideResult) << c.name;
    // Wide units stay where they are after later narrow changes.
    widened->appendCString("!");
    widened->deleteCharactersInRange(Range(0, 1));
    EXPECT_EQ(Units(widened.get()), c.wideResult.substr(1) + u"!") << c.name;
  }
}

// A run appended to one-byte text is narrowed as it is checked; one with a
// wide unit anywhere, the last included, comes out whole and wide, whether
// the string had room for it or grew.
TEST_F(StringTest, RunsAppendWhereverTheirWideUnitIs) {
  for (ZnIndex room : {0, 2000}) {
    for (size_t length : {size_t(3), size_t(17), size_t(40), size_t(1000)}) {
      for (size_t wideAt : {size_t(0), length / 2, length - 1, length}) {
        std::u16string run;
        for (size_t i = 0; i < length; ++i)
          run += char16_t(i == wideAt ? 0x263A : 0xE0 + i % 31);
        auto s = adopt(new MutableString(adopt(new String("caf\xE9")).get()));
        s->ensureCapacity(room);
        s->appendCharacters(reinterpret_cast<const ZnUnichar*>(run.data()), ZnIndex(run.size()));
        EXPECT_EQ(s->isWide(), wideAt < length) << room << " " << length << " " << wideAt;
        EXPECT_EQ(Units(s.get()), u"caf\u00e9" + run) << room << " " << length << " " << wideAt;
      }
    }
  }
}

// Emptied with removeAll, a buffer that went wide is narrow again for the
// next text, and widens again in the block it has: a buffer that takes wide
// and narrow texts in turn stops allocating once it is large enough.
TEST_F(StringTest, RemoveAllReturnsABufferToOneByteAUnit) {
  auto buffer = adopt(new MutableString(4));
  const ZnUnichar smile[] = {'a', 0x263A};
  auto wideText = Wide(u"a\u263a"), narrowText = Wide(u"caf\u00e9 long enough to grow the block");
  uint64_t allocated = 0;
  for (int round = 0; round < 3; ++round) {
    buffer->appendCharacters(smile, 2);
    ASSERT_TRUE(buffer->isWide());
    EXPECT_TRUE(buffer->hasSameUnits(wideText.get()));
    buffer->removeAll();
    EXPECT_FALSE(buffer->isWide());
    EXPECT_EQ(buffer->length(), 0);
    buffer->appendCString("caf\xE9 long enough to grow the block");
    EXPECT_FALSE(buffer->isWide());
    EXPECT_TRUE(buffer->hasSameUnits(narrowText.get()));
    buffer->removeAll();
    if (round == 1)
      allocated = GetTotalAllocated();
  }
  EXPECT_EQ(GetTotalAllocated(), allocated);
}

// A buffer gives its block to the string made of it, in the form it has,
// and is left empty and usable.
TEST_F(StringTest, CreateStringTakingCharactersLeavesTheBufferEmpty) {
  for (std::u16string text : {u"", u"plain text", u"caf\u00e9", u"wide \u263a"}) {
    auto buffer = adopt(new MutableString(64));
    buffer->appendCharacters(reinterpret_cast<const ZnUnichar*>(text.data()), ZnIndex(text.size()));
    auto taken = adopt(buffer->createStringTakingCharacters());
    EXPECT_EQ(Units(taken.get()), text);
    EXPECT_EQ(taken->isWide(), text.find(u'\u263a') != std::u16string::npos);
    EXPECT_EQ(buffer->length(), 0);
    buffer->appendCString("again");
    EXPECT_EQ(Units(buffer.get()), u"again");
  }
}

// A piece of a wide string that holds no wide unit is compact again, and
// equal to the same text built directly.
TEST_F(StringTest, SubstringsAcrossTheWideUnitTakeTheFormTheyNeed) {
  auto mixed = Compact(u"ab\u263acd");
  struct Case { Range range; std::u16string units; bool wide; } cases[] = {
      {Range(0, 2), u"ab", false}, {Range(3, 2), u"cd", false}, {Range(1, 3), u"b\u263ac", true},
      {Range(2, 1), u"\u263a", true}, {Range(5, 0), u"", false},
  };
  for (const Case& c : cases) {
    auto piece = adopt(mixed->substringWithRange(c.range));
    EXPECT_EQ(piece->isWide(), c.wide);
    EXPECT_EQ(Units(piece.get()), c.units);
    EXPECT_TRUE(piece->isEqual(Compact(c.units).get()));
    EXPECT_EQ(piece->hash(), Wide(c.units)->hash());
  }
  EXPECT_EQ(Units(adopt(mixed->substringFromIndex(3)).get()), u"cd");
  EXPECT_EQ(Units(adopt(mixed->substringToIndex(2)).get()), u"ab\u263a");
  auto frozen = adopt(String::createWithString(Wide(u"only narrow").get()));
  EXPECT_FALSE(frozen->isWide());
  EXPECT_EQ(ZnTest::Utf8(adopt(Wide(u"\u263a ABC")->lowercaseString()).get()), "\u263a abc");
}

// Code that reads units through a pointer gets a compact string's units
// widened, short ones and long ones alike.
TEST_F(StringTest, WideCharactersGivesSixteenBitUnitsOfEitherForm) {
  for (ZnIndex length : {0, 1, 256, 257, 5000}) {
    std::u16string text;
    for (ZnIndex i = 0; i < length; ++i)
      text += char16_t(0x20 + i % 0xDF);
    for (const Ref<String>& s : {Compact(text), Ref<String>(Wide(text))}) {
      WideCharacters units(s.get());
      ASSERT_EQ(units.length(), length);
      EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t*>(units.data()), size_t(length)), text);
    }
  }
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
