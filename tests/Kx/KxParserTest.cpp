//===- KxParserTest.cpp - Grammar, precedence, box notation, errors, limits ===//
#include <cstring>
#include <sstream>
#include <vector>
#include "Kx/KxExprBuilders.h"
#include "Kx/KxExprParser.h"
#include "Zn/IO/ZnReader.h"

using namespace Zn;
using namespace Zn::Kx;

namespace {
using KxTest::FullForm;
using ZnTest::Repeat;

class ExprParserTest : public ZnTest::LeakCheckedTest {};

struct Report {
  uint32_t level;
  std::string message;
  std::string where; // "line:column-line:column in source", 1-based like the log
};
std::vector<Report> sReports;
int Record(uint32_t theLevel, const String* theSource, const SourceRange* theRange, const String* theMessage) {
  std::ostringstream where;
  where << theRange->startLine + 1 << ":" << theRange->startColumn + 1 << "-" << theRange->endLine + 1 << ":"
        << theRange->endColumn + 1 << " in " << ZnTest::Utf8(theSource);
  sReports.push_back({theLevel, ZnTest::Utf8(theMessage), where.str()});
  return 0;
}

/// A parser of theText whose reports go to sReports, emptied for it.
Ref<ExprParser> ParserOf(const std::string& theText) {
  sReports.clear();
  auto parser = adopt(new ExprParser(adopt<Reader>(new StringReader(adopt(new String(theText.c_str())).get())).get()));
  parser->setErrorHandler(Record);
  return parser;
}

/// +1. The parse of theText, reports going to sReports.
Expr* ParseText(const std::string& theText) { return ParserOf(theText)->parse(); }

/// The full form of the parse, or "(null)".
std::string Parse(const std::string& theText) {
  auto e = adopt(ParseText(theText));
  return e ? FullForm(e.get()) : "(null)";
}

struct Case { const char* text; const char* fullForm; };

void Check(const Case* theCases, size_t theCount) {
  for (size_t i = 0; i < theCount; ++i) {
    SCOPED_TRACE(theCases[i].text);
    EXPECT_EQ(Parse(theCases[i].text), theCases[i].fullForm);
  }
}
} // namespace

TEST_F(ExprParserTest, EachBinaryLevelBindsTighterThanTheOneBefore) {
  const Case cases[] = {
      {"a = b // f", "Set[a, f[b]]"},
      {"a // f -= b", "SubtractFrom[f, b][a]"},
      {"a -= b /. c", "SubtractFrom[a, ReplaceAll[b, c]]"},
      {"a /. b -> c", "ReplaceAll[a, Rule[b, c]]"},
      {"a -> b /; c", "Rule[a, Condition[b, c]]"},
      {"a /; b ** c", "Condition[a, NonCommutativeMultiply[b, c]]"},
      {"a ** b : c", "NonCommutativeMultiply[a, Pattern[b, c]]"},
      {"a : b | c", "Pattern[a, Alternatives[b, c]]"},
      {"a | b || c", "Alternatives[a, Or[b, c]]"},
      {"a || b && c", "Or[a, And[b, c]]"},
      {"a && b === c", "And[a, SameQ[b, c]]"},
      {"a =!= b != c", "UnsameQ[a, Unequal[b, c]]"},
      {"a <= b + c", "LessEqual[a, Plus[b, c]]"},
      {"a - b / c", "Subtract[a, Divide[b, c]]"},
      {"a b . c", "Times[a, Dot[b, c]]"},
      {"a . b ^ c", "Dot[a, Power[b, c]]"},
      {"a ^ b <> c", "Power[a, StringJoin[b, c]]"},
      {"a <> b /@ c", "StringJoin[a, Map[b, c]]"},
      {"a //@ b @@@ c", "MapAll[a, Apply[b, c, List[1]]]"},
      {"a @@ b @ c", "Apply[a, b[c]]"},
      {"a @ b ? c", "a[PatternTest[b, c]]"},
      // Box operators: FormBox loosest, then fraction, superscript, subscript, over/under.
      {R"t(\(a\`b\/c\))t", R"t(RowBox[List[FormBox[FractionBox["b", "c"], "a"]]])t"},
      {R"t(\(a\/b\^c\))t", R"t(RowBox[List[FractionBox["a", SuperscriptBox["b", "c"]]]])t"},
      {R"t(\(a\^b\_c\))t", R"t(RowBox[List[SuperscriptBox["a", SubscriptBox["b", "c"]]]])t"},
      {R"t(\(a\_b\&c\))t", R"t(RowBox[List[SubscriptBox["a", OverscriptBox["b", "c"]]]])t"},
  };
  Check(cases, std::size(cases));
}

TEST_F(ExprParserTest, OperatorsGroupAsDeclared) {
  const Case cases[] = {
      // Right.
      {"a = b := c", "Set[a, SetDelayed[b, c]]"},
      {"a -> b :> c", "Rule[a, RuleDelayed[b, c]]"},
      {"a ^ b ^ c", "Power[a, Power[b, c]]"},
      {"a @ b @ c", "a[b[c]]"},
      {"a : b : c", "Pattern[a, Pattern[b, c]]"},
      {"a += b *= c", "AddTo[a, TimesBy[b, c]]"},
      {R"t(\(a\^b\^c\))t", R"t(RowBox[List[SuperscriptBox["a", SuperscriptBox["b", "c"]]]])t"},
      // Left, and n-ary operators flat.
      {"a // f // g", "g[f[a]]"},
      {"a /. b //. c", "ReplaceRepeated[ReplaceAll[a, b], c]"},
      {"a - b - c", "Subtract[Subtract[a, b], c]"},
      {"a + (b + c) + d", "Plus[a, b, c, d]"},
      {"a * b c", "Times[a, b, c]"},
      {"a | b | c", "Alternatives[a, b, c]"},
      {"a < b < c", "Less[a, b, c]"},
      {R"t(\(a\/b\/c\))t", R"t(RowBox[List[FractionBox[FractionBox["a", "b"], "c"]]])t"},
      // Non-associative.
      {"a ? b ? c", "(null)"},
  };
  Check(cases, std::size(cases));
}

TEST_F(ExprParserTest, PrefixAndPostfixOperatorsSitWhereRequired) {
  const Case cases[] = {
      {"-a ^ b", "Minus[Power[a, b]]"},
      {"-a . b", "Minus[Dot[a, b]]"},
      {"-a * b", "Times[Minus[a], b]"},
      {"-a b", "Times[Minus[a], b]"},
      {"a ^ b !", "Power[a, Factorial[b]]"},
      {"a @ b !!", "Factorial2[a[b]]"},
      {"a @ b '", "Derivative[1][a[b]]"},
      {"f'[x]", "Derivative[1][f][x]"},
      {"++a ^ b", "Power[PreIncrement[a], b]"},
      {"--a @ b", "PreDecrement[a][b]"},
      {"a ^ b ++", "Power[a, Increment[b]]"},
      {"a = b &", "Set[a, Function[b]]"},
      {"a + b &", "Function[Plus[a, b]]"},
      {"a -> b &", "Function[Rule[a, b]]"},
      {"a // f &", "Function[f][a]"},
      {"a = b; c", "CompoundExpression[Set[a, b], c]"},
      {"a = b >>", "Put[Set[a, b]]"},
      {"a; b >>> file", "CompoundExpression[a, PutAppend[b]]"},
      {"<< a + b", "Plus[Get[a], b]"},
      {"a | b ..", "Alternatives[a, Repeated[b]]"},
      {"a -> b ...", "Rule[a, RepeatedNull[b]]"},
      {R"t(\(\@a\^b\))t", R"t(RowBox[List[SqrtBox[SuperscriptBox["a", "b"]]]])t"},
      {R"t(\(\@a\/b\))t", R"t(RowBox[List[FractionBox[SqrtBox["a"], "b"]]])t"},
      // After a ready-made expression a sign is unary: juxtaposition follows.
      {"#1 - 1", "Times[Slot[1], -1]"},
  };
  Check(cases, std::size(cases));
}

TEST_F(ExprParserTest, SequencesCompoundsPatternsAndTags) {
  const Case cases[] = {
      {"", "Null"},
      {"  (* nothing *)  ", "Null"},
      {"a;", "CompoundExpression[a, Null]"},
      {"a;b;", "CompoundExpression[a, b, Null]"},
      {"(a;b);c", "CompoundExpression[CompoundExpression[a, b], c]"},
      {"f[a,]", "f[a, Null]"},
      {"f[,]", "f[Null]"},
      {"f[]", "f[]"},
      {"f[a][b, c]", "f[a][b, c]"},
      {"{}", "List[]"},
      {"a[[1,2]]", "Part[a, 1, 2]"},
      {"a[[1]][[2]]", "Part[Part[a, 1], 2]"},
      {"x:1", "Pattern[x, 1]"},
      {"x:_:1", "Optional[Pattern[x, Blank[]], 1]"},
      {"x_h:1", "Optional[Pattern[x, Blank[h]], 1]"},
      {"f /: g[x_] = v", "TagSet[f, g[Pattern[x, Blank[]]], v]"},
      {"f /: g := a; b", "CompoundExpression[TagSetDelayed[f, g, a], b]"},
      {"f /: g =.", "TagUnset[f, g]"},
      {"x =.", "Unset[x]"},
      {"f@@@x", "Apply[f, x, List[1]]"},
      {"2 x", "Times[2, x]"},
      {"-3", "-3"},
      {"-x", "Minus[x]"},
      {"- 1.5", "-1.500000"},
      {"+x", "x"},
      {"<|a -> 1, b :> 2|>", "Association[Rule[a, 1], RuleDelayed[b, 2]]"},
      // A negative literal is a number, not Minus applied to one.
      {"-3 a", "Times[-3, a]"},
  };
  Check(cases, std::size(cases));
}

TEST_F(ExprParserTest, BoxNotationBuildsRowsAndBoxes) {
  const Case cases[] = {
      {R"t(\(a\^b\))t", R"t(RowBox[List[SuperscriptBox["a", "b"]]])t"},
      {R"t(\(\))t", R"t(RowBox[List[""]])t"},
      {R"t(\(a\^\))t", R"t(RowBox[List[SuperscriptBox["a", ""]]])t"},
      {R"t(\(a + b\))t", R"t(RowBox[List["a", "+", "b"]])t"},
      {R"t(\(a\`b\))t", R"t(RowBox[List[FormBox["b", "a"]]])t"},
      {R"t(\(x \(a\/b\) y\))t", R"t(RowBox[List["x", RowBox[List[FractionBox["a", "b"]]], "y"]])t"},
      {R"t(\!\(a\_b\%c\))t", R"t(RowBox[List[SubsuperscriptBox["a", "b", "c"]]])t"},
      {R"t(\(a\+b\%c\))t", R"t(RowBox[List[UnderoverscriptBox["a", "b", "c"]]])t"},
      {R"t(\(\@a\%3\))t", R"t(RowBox[List[RadicalBox["a", "3"]]])t"},
      {R"t(\(\*Sub[\(x\)]\^2\))t", R"t(RowBox[List[SuperscriptBox[RowBox["Sub[\(x\)]"], "2"]]])t"},
      {R"t(BoxData[\(x\), "s"])t", R"t(BoxData[RowBox[List["x"]], "s"])t"},
  };
  Check(cases, std::size(cases));
}

TEST_F(ExprParserTest, SyntaxErrorsAreReportedAtTheOffendingToken) {
  struct ErrorCase { const char* text; const char* message; const char* where; } cases[] = {
      {"a ]", "syntax error, unexpected ']'", "1:3-1:4 in (Memory Buffer)"},
      {"f[x,\n  y]]", "syntax error, unexpected ']'", "2:6-2:7 in (Memory Buffer)"},
      {"f[x", "syntax error, unexpected end of file", "1:4-1:4 in (Memory Buffer)"},
      {"{\"abc", "unterminated string", "1:2-1:6 in (Memory Buffer)"},
      // A token that spans lines starts where it started, CR LF counting once.
      {"{\"ab\r\ncd", "unterminated string", "1:2-2:4 in (Memory Buffer)"},
      {"{\"\\(a\r\n\r\nb", "unterminated string", "1:2-3:3 in (Memory Buffer)"},
      {"x (* y", "unterminated comment", "1:3-1:7 in (Memory Buffer)"},
  };
  for (const ErrorCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Parse(c.text), "(null)");
    ASSERT_EQ(sReports.size(), 1u);
    EXPECT_EQ(sReports[0].level, kLogLevelError);
    EXPECT_EQ(sReports[0].message.substr(0, strlen(c.message)), c.message);
    EXPECT_EQ(sReports[0].where, c.where);
  }
}

TEST_F(ExprParserTest, FailedBoxGroupInAStringIsAWarningAndStaysText) {
  auto e = adopt(ParseText("f[\"ok \\(\\%\\) end\"]"));
  ASSERT_TRUE(e);
  EXPECT_EQ(FullForm(e.get()), R"t(f["ok \(\%\) end"])t");
  ASSERT_EQ(sReports.size(), 2u);
  // The inner report is relative to the group's own text...
  EXPECT_EQ(sReports[0].level, kLogLevelNestedParseError);
  EXPECT_EQ(sReports[0].message, R"t(syntax error, unexpected \% (\(\%\)))t");
  EXPECT_EQ(sReports[0].where, "1:3-1:5 in (Memory Buffer)");
  // ...the summary gives where the group lies in the input.
  EXPECT_EQ(sReports[1].level, kLogLevelNestedParseError);
  EXPECT_EQ(sReports[1].message, R"t(linear syntax parse error (\(\%\)))t");
  EXPECT_EQ(sReports[1].where, "1:7-1:13 in (Memory Buffer)");
}

TEST_F(ExprParserTest, SubExpressionWithoutSourceTextGivesSyntaxErrorSymbol) {
  auto parser = ParserOf("");
  SourceRange range;
  ParseValue value;
  EXPECT_FALSE(parser->parseSubExpression(adopt(new String("\\(a\\")).get(), range, false, &value));
  EXPECT_EQ(FullForm(value.expr), "$SyntaxError");
  value.expr->release();
  ASSERT_FALSE(sReports.empty());
  EXPECT_EQ(sReports.back().message, "parse error (\\(a\\)");
  EXPECT_TRUE(parser->parseSubExpression(adopt(new String("\\(a\\)")).get(), range, false, &value));
  EXPECT_EQ(FullForm(value.expr), "RowBox[List[\"a\"]]");
  value.expr->release();
  EXPECT_FALSE(parser->isInSubParse());
}

TEST_F(ExprParserTest, NestingUpToTheLimitParsesAndDeeperIsRefused) {
  // Linear brackets outside, box groups inside (within a group brackets are text).
  auto nest = [](int theLinear, const char* theOpen, const char* theClose, int theGroups) {
    return Repeat(theOpen, theLinear) + Repeat("\\(", theGroups) + "x" + Repeat("\\)", theGroups) +
           Repeat(theClose, theLinear);
  };
  const int limit = kMaxNestingDepth;
  struct Nest { std::string atLimit, beyond, far; } nests[] = {
      {nest(limit, "f[", "]", 0), nest(limit + 1, "f[", "]", 0), nest(100000, "f[", "]", 0)},
      {nest(limit, "{", "}", 0), nest(limit + 1, "{", "}", 0), nest(100000, "{", "}", 0)},
      {nest(limit, "(", ")", 0), nest(limit + 1, "(", ")", 0), nest(100000, "(", ")", 0)},
      {nest(0, "", "", limit), nest(0, "", "", limit + 1), nest(0, "", "", 100000)},
      {nest(limit / 4, "f[{(", ")}]", limit / 4), nest(limit / 4, "f[{(", ")}]", limit / 4 + 1),
       nest(25000, "f[{(", ")}]", 25000)},
  };
  for (const Nest& n : nests) {
    SCOPED_TRACE(n.atLimit.substr(0, 8));
    EXPECT_TRUE(adopt(ParseText(n.atLimit)));
    EXPECT_TRUE(sReports.empty());
    for (const std::string* text : {&n.beyond, &n.far}) {
      EXPECT_FALSE(adopt(ParseText(*text)));
      ASSERT_EQ(sReports.size(), 1u);
      EXPECT_EQ(sReports[0].message, "expression nested too deeply");
    }
  }
  // Inside a string the deep group only fails as a group: the string stays text.
  auto text = adopt(ParseText("\"" + Repeat("\\(", 100000) + Repeat("\\)", 100000) + "\""));
  ASSERT_TRUE(text);
  EXPECT_STREQ(text->className(), "CharacterString");
}

TEST_F(ExprParserTest, OperatorChainsThatWouldBuildTooDeepATreeAreRefused) {
  const std::string chains[] = {
      Repeat("a^", 30000) + "a",       // right: pending on the parse stack
      Repeat("a=", 100000) + "a",      // right, beyond the parse stack
      Repeat("a-", 30000) + "a",       // left: one level per operator
      "a" + Repeat("!", 50000),        // postfix
      Repeat("- ", 30000) + "a",       // prefix
      // A list whose element is just within the limit: refused while the list is built.
      "f[a" + Repeat(" !", kMaxExpressionDepth) + ", b]",
      "{a" + Repeat(" !", kMaxExpressionDepth) + "}",
      "a" + Repeat(" !", kMaxExpressionDepth) + "; b",
  };
  for (const std::string& chain : chains) {
    SCOPED_TRACE(chain.substr(0, 4));
    EXPECT_FALSE(adopt(ParseText(chain)));
    EXPECT_EQ(sReports.size(), 1u);
  }
  auto sum = adopt(ParseText(Repeat("a+", 100000) + "a")); // flat: one level
  ASSERT_TRUE(sum);
  EXPECT_EQ(sum->length(), 100001);
  auto list = adopt(ParseText("{" + Repeat("1.5,", 100000) + "2}"));
  ASSERT_TRUE(list);
  EXPECT_EQ(list->length(), 100001);
}

// A caller that states a failure itself gets the first error of the parse,
// its kind and place, and nothing is reported but the warnings of strings
// whose box groups do not parse.
TEST_F(ExprParserTest, TheFirstErrorIsKeptAndOnlySubParseWarningsAreReported) {
  using Failure = ExprParser::Failure;
  const struct {
    std::string text;
    Failure failure;
    const char* message; // the first error's
    std::string at;      // its start, line:column, 1-based; "" unchecked
    size_t warnings;
  } cases[] = {
      {"f[a, b]", Failure::kNone, "", "1:1", 0},
      {"f[a, b]]", Failure::kSyntax, "syntax error, unexpected ']', expecting end of file", "1:8", 0},
      {"\"x", Failure::kSyntax, "unterminated string", "1:1", 0},
      {"a (* b", Failure::kSyntax, "unterminated comment", "1:3", 0},
      {Repeat("{", kMaxNestingDepth + 1), Failure::kTooDeep, "expression nested too deeply",
       "1:" + std::to_string(kMaxNestingDepth + 1), 0},
      {Repeat("a^", kMaxExpressionDepth + 1) + "a", Failure::kTooDeep, "expression nested too deeply", "", 0},
      // A group that does not parse stays text with a warning; the failure
      // is the parse's own, after it.
      {R"t({"\!\(\%\)", ]})t", Failure::kSyntax, "syntax error, unexpected ']'", "1:14", 2},
      {R"t({"\!\(\%\)"})t", Failure::kNone, "", "1:1", 2},
  };
  // Only white space and comments give Null, as "Null" itself does.
  for (const char* text : {"", " \n(* a *)\t", "Null"}) {
    auto parser = ParserOf(text);
    EXPECT_EQ(FullForm(adopt(parser->parse()).get()), "Null");
    EXPECT_EQ(parser->wasBlank(), text[0] != 'N') << text;
  }
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.substr(0, 16));
    auto parser = ParserOf(c.text);
    parser->setReportsErrors(false);
    auto e = adopt(parser->parse());
    EXPECT_EQ(e.get() != nullptr, c.failure == Failure::kNone);
    EXPECT_EQ(parser->getFailure(), c.failure);
    EXPECT_FALSE(parser->wasBlank());
    EXPECT_EQ(sReports.size(), c.warnings);
    for (const Report& report : sReports)
      EXPECT_EQ(report.level, kLogLevelNestedParseError);
    if (c.failure == Failure::kNone) {
      EXPECT_EQ(parser->getFailureMessage(), nullptr);
      continue;
    }
    ASSERT_NE(parser->getFailureMessage(), nullptr);
    EXPECT_TRUE(ZnTest::Utf8(parser->getFailureMessage()).starts_with(c.message));
    const SourceRange& range = parser->getFailureRange();
    if (!c.at.empty()) {
      EXPECT_EQ(std::to_string(range.startLine + 1) + ":" + std::to_string(range.startColumn + 1), c.at);
    }
  }
}

// Equal reals of one parse are one atom, as names and short strings are;
// values that differ in any bit stay apart, and each prints as written.
TEST_F(ExprParserTest, EqualRealsOfAParseAreOneAtom) {
  auto e = adopt(ParseText("{0.5, 1.25, 0.5, 0.50, 5.*^-1, 0.25, 0., -0.5}"));
  ASSERT_TRUE(e.get());
  EXPECT_EQ(e->part(1), e->part(3));
  EXPECT_EQ(e->part(1), e->part(4));
  EXPECT_EQ(e->part(1), e->part(5));
  EXPECT_NE(e->part(1), e->part(2));
  EXPECT_NE(e->part(1), e->part(6));
  EXPECT_NE(e->part(7), e->part(8));
  EXPECT_EQ(e->part(1)->getRetainCount(), 4);  // the table went with its parser
  EXPECT_EQ(FullForm(e.get()), Parse("{0.5, 1.25, 0.5, 0.5, 0.5, 0.25, 0., -0.5}"));
}

// Names and short strings of a parse are one atom a text, whether the table
// compares them in its entries (up to 16 one-byte units) or through the
// atom's string (longer or wide texts); a name and a string of the same
// text, and texts that differ only in their last unit, stay apart.
TEST_F(ExprParserTest, EqualTextsOfAParseAreOneAtom) {
  auto e = adopt(ParseText("{\"abcdefghijklmnop\", \"abcdefghijklmnop\", \"abcdefghijklmnoq\", "
                           "\"abcdefghijklmnopq\", \"abcdefghijklmnopq\", \"abcdefghijklmnopr\", "
                           "\"a\\[Alpha]\", \"a\\[Alpha]\", \"a\\[Beta]\", "
                           "abcdefghijklmnopqrst, abcdefghijklmnopqrst, abcdefghijklmnopqrsu, "
                           "x, x, \"x\", \"\", \"\"}"));
  ASSERT_TRUE(e.get());
  struct Case {
    ZnIndex a, b;
    bool same;
  };
  const Case cases[] = {{1, 2, true},   {1, 3, false},  {4, 5, true},   {4, 6, false}, {1, 4, false},
                        {7, 8, true},   {7, 9, false},  {10, 11, true}, {10, 12, false},
                        {13, 14, true}, {13, 15, false}, {16, 17, true}};
  for (const Case& c : cases)
    EXPECT_EQ(e->part(c.a) == e->part(c.b), c.same) << c.a << " and " << c.b;
}

// A name used more often than the table's stock of references for it holds
// is counted exactly, and goes when its last user does.
TEST_F(ExprParserTest, AnAtomUsedMoreOftenThanTheStockIsCountedExactly) {
  constexpr int kUses = 70000;
  std::string text = "{";
  for (int i = 0; i < kUses; ++i)
    text += i ? ", x" : "x";
  auto e = adopt(ParseText(text + "}"));
  ASSERT_TRUE(e.get());
  EXPECT_EQ(e->part(1), e->part(kUses));
  EXPECT_EQ(e->part(1)->getRetainCount(), kUses);
}
