//===- AtomTextTest.cpp - Escapes, literals and number marks of atoms -----===//
#include <gtest/gtest.h>
#include <cstring>
#include <string>
#include "AtomText.h"
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"

namespace {
std::u16string Units(const char* theText) { return std::u16string(theText, theText + strlen(theText)); }

TEST(AtomTextTest, TellsTextsMadeOfClosedStringLiterals) {
  const struct {
    const char* text;
    bool holds;
  } cases[] = {
      {R"("a")", true},         {R"("a" <> "b")", true}, {R"("size "2"X")", true}, {R"("q\"b")", true},
      {R"(x "" y)", true},      {"plain", false},        {R"(a"b)", false},        {R"("a" "b)", false},
      {R"("a\")", false},       {"", false},             {R"(a \"b\" c)", false},  {R"(\"a" "b")", false},
  };
  for (const auto& c : cases) {
    std::u16string text = Units(c.text);
    EXPECT_EQ(AtomText::holdsStringLiterals(reinterpret_cast<const ZnUnichar*>(text.data()), ZnIndex(text.size())),
              c.holds)
        << c.text;
  }
}

// One level of escapes is resolved; box groups stay for the walk to parse,
// and a backslash that starts no whole escape is text.
TEST(AtomTextTest, ResolvesEscapesButKeepsBoxGroups) {
  const struct {
    const char* text;
    const char* expected;
  } cases[] = {
      {R"(a\"b\\c\nd\te\rf)", "a\"b\\c\nd\te\nf"},
      {"\\<x\\>\\\ny\\\r\nz\\\rw", "xyzw"},
      {R"(\[Alpha]\.41\:00e9\[NoSuch])", "\xCE\xB1" "A\xC3\xA9\\[NoSuch]"},
      {R"(\[Al"pha] \.4 \:12g4 \q \)", R"(\[Al"pha] \.4 \:12g4 \q \)"},
      {R"(x \!\(a\^\[Alpha]\) \(b\) \(open)", R"(x \!\(a\^\[Alpha]\) \(b\) \(open)"},
  };
  for (const auto& c : cases) {
    std::u16string text = Units(c.text);
    auto result = Zn::adopt(new Zn::MutableString());
    AtomText::resolveEscapes(reinterpret_cast<const ZnUnichar*>(text.data()), ZnIndex(text.size()), result.get());
    EXPECT_EQ(ZnTest::Utf8(result.get()), c.expected) << c.text;
  }
}

// Inside a run of linear syntax every number loses its mark; names and
// tokens that merely hold a backquote keep theirs.
TEST(AtomTextTest, DropsTheMarksOfEveryNumberInARun) {
  const struct {
    const char* text;
    const char* expected; // null: nothing to drop
  } cases[] = {
      {"{15.17` Second,{2.5`,2},3``12}", "{15.17 Second,{2.5,2},3}"},
      {"x==70.8`||x== - 1.5`20.*^-10", "x==70.8||x== - 1.5*^-10"},
      {"8.`", "8."},
      {"Package1`Private` x1` 2`x $3` a.5`", nullptr},
      {"no marks here", nullptr},
  };
  for (const auto& c : cases) {
    std::u16string text = Units(c.text);
    auto result = Zn::adopt(new Zn::MutableString());
    bool dropped = AtomText::dropNumberMarks(reinterpret_cast<const ZnUnichar*>(text.data()), ZnIndex(text.size()),
                                             result.get());
    EXPECT_EQ(dropped, c.expected != nullptr) << c.text;
    EXPECT_EQ(ZnTest::Utf8(result.get()), c.expected ? c.expected : "") << c.text;
  }
}
} // namespace
