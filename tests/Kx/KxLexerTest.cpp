//===- KxLexerTest.cpp - Tokens of the linear syntax and of box notation ---===//
#include <vector>
#include "Kx/KxExprBuilders.h"
#include "Kx/KxExprParser.h"
#include "Kx/KxLexer.h"
#include "KxExprGrammar.hpp"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnReader.h"
#include "Zn/IO/ZnStream.h"

using namespace Zn;
using namespace Zn::Kx;

namespace {
using KxTest::FullForm;

class LexerTest : public ZnTest::LeakCheckedTest {
protected:
  void SetUp() override {
    LeakCheckedTest::SetUp();
    testing::internal::CaptureStderr(); // refusals log a line
  }
  void TearDown() override {
    testing::internal::GetCapturedStderr();
    LeakCheckedTest::TearDown();
  }
};

struct Lexed {
  std::vector<int32_t> codes;
  std::string values; // the values' full forms, "|" between them
};

/// Every token that theReader gives, up to the end or the first KxUnknown.
Lexed LexFrom(Reader* theReader) {
  auto reader = retained(theReader);
  auto parser = adopt(new ExprParser(reader.get()));
  Lexer lexer(parser.get(), reader.get(), 0);
  Lexed lexed;
  for (int32_t code = -1; code != 0 && code != KxUnknown && lexed.codes.size() < 64;) {
    ParseValue value;
    code = lexer.nextToken(&value);
    if (code == 0)
      break;
    lexed.codes.push_back(code);
    if (value.expr) {
      lexed.values += (lexed.values.empty() ? "" : "|") + FullForm(value.expr);
      value.expr->release();
    }
  }
  return lexed;
}

Lexed Lex(const std::string& theText) {
  return LexFrom(adopt<Reader>(new StringReader(adopt(new String(theText.c_str())).get())).get());
}

struct Case { const char* text; std::vector<int32_t> codes; const char* values; };

void Check(const Case* theCases, size_t theCount) {
  for (size_t i = 0; i < theCount; ++i) {
    SCOPED_TRACE(theCases[i].text);
    Lexed lexed = Lex(theCases[i].text);
    EXPECT_EQ(lexed.codes, theCases[i].codes);
    EXPECT_EQ(lexed.values, theCases[i].values);
  }
}
} // namespace

TEST_F(LexerTest, EveryOperatorIsOneToken) {
  const Case cases[] = {
      {"&&", {KxAnd}, ""},          {"@@", {KxApply}, ""},         {"@@@", {KxApply1}, ""},
      {"/;", {KxCondition}, ""},    {"--", {KxDecrement}, ""},     {"-=", {KxDecrementBy}, ""},
      {"/=", {KxDivideBy}, ""},     {"==", {KxEqual}, ""},         {"!!", {KxFactorial2}, ""},
      {"<<", {KxGet}, ""},          {">=", {KxGreaterEqual}, ""},  {"++", {KxIncrement}, ""},
      {"+=", {KxIncrementBy}, ""},  {"<=", {KxLessEqual}, ""},     {"/@", {KxMap}, ""},
      {"//@", {KxMapAll}, ""},      {"**", {KxNonCommutativeMultiply}, ""},
      {"||", {KxOr}, ""},           {">>", {KxPut}, ""},           {">>>", {KxPutAppend}, ""},
      {"..", {KxRepeated}, ""},     {"...", {KxRepeatedNull}, ""}, {"/.", {KxReplaceAll}, ""},
      {"//.", {KxReplaceRepeated}, ""}, {"->", {KxRule}, ""},      {":>", {KxRuleDelayed}, ""},
      {"===", {KxSameQ}, ""},       {":=", {KxSetDelayed}, ""},    {"//", {KxSlashSlash}, ""},
      {"<>", {KxStringJoin}, ""},   {"/:", {KxTag}, ""},           {"*=", {KxTimesBy}, ""},
      {"!=", {KxUnequal}, ""},      {"=!=", {KxUnsameQ}, ""},      {"^=", {KxUpSet}, ""},
      {"^:=", {KxUpSetDelayed}, ""},
      // Single characters are their own codes.
      {"! & ' ( ) * , . / : ; < = > ? @ [ ] ^ { | }",
       {'!', '&', '\'', '(', ')', '*', ',', '.', '/', ':', ';', '<', '=', '>', '?', '@', '[', ']', '^', '{', '|', '}'},
       ""},
      // Near misses give their characters back.
      {"=!a", {'=', '!', KxSymbol}, "a"},
      {"^:a", {'^', ':', KxSymbol}, "a"},
      {"a>>file;b", {KxSymbol, KxPut, ';', KxSymbol}, "a|b"},
      // An association reads as Association[...].
      {"<|a|>", {KxSymbol, '[', KxSymbol, ']'}, "Association|a"},
  };
  Check(cases, std::size(cases));
}

TEST_F(LexerTest, SignsAreUnaryUnlessAnOperandEndsBeforeThem) {
  const Case cases[] = {
      {"a-b", {KxSymbol, '-', KxSymbol}, "a|b"},
      {"-b", {KxUnaryMinus, KxSymbol}, "b"},
      {"+b", {KxUnaryPlus, KxSymbol}, "b"},
      {"2--3", {KxMachineInteger, KxDecrement, KxMachineInteger}, "2|3"},
      {"a*-b", {KxSymbol, '*', KxUnaryMinus, KxSymbol}, "a|b"},
      {"(a)-b", {'(', KxSymbol, ')', '-', KxSymbol}, "a|b"},
      {"f[x]+{}-\"s\"-1.5", {KxSymbol, '[', KxSymbol, ']', '+', '{', '}', '-', KxString, '-', KxMachineReal},
       "f|x|\"s\"|1.500000"},
      {"a!-a'-a++-a..-b", {KxSymbol, '!', '-', KxSymbol, '\'', '-', KxSymbol, KxIncrement, '-', KxSymbol,
                           KxRepeated, '-', KxSymbol}, "a|a|a|a|b"},
      {"\\(a\\)-b", {KxRowBoxBegin, KxString, KxRowBoxEnd, '-', KxSymbol}, "\"a\"|b"},
      // A ready-made expression does not end an operand: the sign is unary.
      {"#1+1", {KxFunction, KxUnaryPlus, KxMachineInteger}, "Slot[1]|1"},
      {"x_-1", {KxFunction, KxUnaryMinus, KxMachineInteger}, "Pattern[x, Blank[]]|1"},
  };
  Check(cases, std::size(cases));
}

TEST_F(LexerTest, SkipsCommentsTildesAndLineContinuations) {
  const Case cases[] = {
      {"(* a (* b *) c *) x", {KxSymbol}, "x"},
      {"(**)(*)*)x", {KxSymbol}, "x"},
      {"a~b", {KxSymbol, KxSymbol}, "a|b"},
      {"a \\\nb \\\r\nc", {KxSymbol, KxSymbol, KxSymbol}, "a|b|c"},
      {"x (* open", {KxSymbol, KxUnknown}, "x"},
  };
  Check(cases, std::size(cases));
}

TEST_F(LexerTest, NamesSlotsOutputsAndBlanks) {
  const Case cases[] = {
      {"$x`y1", {KxSymbol}, "$x`y1"},
      {"a\\[Alpha]\\:03b2", {KxSymbol}, "a\xCE\xB1\xCE\xB2"},
      {"a\\[NoSuch]", {KxSymbol, KxUnknown}, "a"},
      {"# #2 ## ##3", {KxFunction, KxFunction, KxFunction, KxFunction},
       "Slot[1]|Slot[2]|SlotSequence[1]|SlotSequence[3]"},
      {"% %% %%% %7", {KxFunction, KxFunction, KxFunction, KxFunction}, "Out[1]|Out[-2]|Out[-3]|Out[7]"},
      {"_ __ ___ _h", {KxFunction, KxFunction, KxFunction, KxFunction},
       "Blank[]|BlankSequence[]|BlankNullSequence[]|Blank[h]"},
      {"x_ y__h", {KxFunction, KxFunction}, "Pattern[x, Blank[]]|Pattern[y, BlankSequence[h]]"},
  };
  Check(cases, std::size(cases));
}

TEST_F(LexerTest, NumbersOfEveryForm) {
  const Case cases[] = {
      {"0 42 007", {KxMachineInteger, KxMachineInteger, KxMachineInteger}, "0|42|7"},
      // Too long for a machine integer: kept as written.
      {"2147483647", {KxMachineInteger}, "2147483647"},
      {"2147483648", {KxMachineInteger}, "2147483648"},
      {"17597065061419045402", {KxMachineInteger}, "17597065061419045402"},
      {"16^^FFFFFFFFF", {KxMachineInteger}, "16^^FFFFFFFFF"},
      {"600. .5 0.1", {KxMachineReal, KxMachineReal, KxMachineReal}, "600.000000|0.500000|0.100000"},
      {"16^^ff 2^^101 36^^z 40^^10 1^^11", {KxMachineInteger, KxMachineInteger, KxMachineInteger,
                                            KxMachineInteger, KxMachineInteger}, "255|5|35|36|3"},
      {"16^^f.8", {KxMachineReal}, "15.500000"},
      {"1.5*^3 2*^-2 1*^+1", {KxMachineReal, KxMachineReal, KxMachineReal}, "1500.000000|0.020000|10.000000"},
      {"3.87`*^9 1`20 2``10.5", {KxMachineReal, KxMachineReal, KxMachineReal},
       "3870000000.000000|1.000000|2.000000"},
      {"123456789012345678901234.5", {KxMachineReal}, "123456789012345685803008.000000"},
      {"1000000000000000000000000000000000000000000000000000000000000.0*^-42", {KxMachineReal},
       "1000000000000000000.000000"},
      {"12\\\n34", {KxMachineInteger}, "1234"},
      // Characters that do not continue the number are given back.
      {"2^3", {KxMachineInteger, '^', KxMachineInteger}, "2|3"},
      {"2*x 2*^x", {KxMachineInteger, '*', KxSymbol, KxMachineInteger, '*', '^', KxSymbol}, "2|x|2|x"},
      {"1..2", {KxMachineInteger, KxRepeated, KxMachineInteger}, "1|2"},
      {"1.2.3", {KxMachineReal, KxMachineReal}, "1.200000|0.300000"},
  };
  Check(cases, std::size(cases));
}

TEST_F(LexerTest, StringsKeepLineBreaksAndDecodeCharacterEscapes) {
  const Case cases[] = {
      {R"t("a\nb\t")t", {KxString}, R"t("a\nb\t")t"},
      // A line end is a line break of the text (CR LF counts as one); a
      // backslash before it joins the lines.
      {"\"a\nb\r\nc\\\nd\\\r\ne\"", {KxString}, "\"a\nb\ncde\""},
      {R"t("q\"b\\")t", {KxString}, R"t("q\"b\\")t"},
      {R"t("\[Alpha]\.41\:00e9")t", {KxString}, "\"\xCE\xB1" "A\xC3\xA9\""},
      {R"t("\[EHacek]\[Function]")t", {KxString}, "\"\xC4\x9B\xEF\x92\xA1\""},
      {R"t("\[NoSuch] \[Alpha \.4 \:12g4")t", {KxString}, R"t("\[NoSuch] \[Alpha \.4 \:12g4")t"},
      {R"t("unterminated)t", {KxUnknown}, ""},
      {R"t("x\)t", {KxUnknown}, ""},
  };
  Check(cases, std::size(cases));
}

// A stream reader's block holds most escapes whole, and the lexer decodes
// them there; one that runs past the block's end is read a character at a
// time, as over a string reader. Both ways read the same.
TEST_F(LexerTest, EscapesReadTheSameWhereverTheReadersBlockEnds) {
  const std::string escapes = R"t("\[Alpha]\.41\:00e9\[NoSuch]\[Alpha \.4 \:12g4" a\[Beta]\.62)t";
  const Lexed expected = {{KxString, KxSymbol}, "\"\xCE\xB1" "A\xC3\xA9\\[NoSuch]\\[Alpha \\.4 \\:12g4\"|a\xCE\xB2" "b"};
  for (size_t pad = 200; pad <= 250; ++pad) {
    const std::string text = std::string(pad, ' ') + escapes;
    auto data = adopt(new Data(text.data(), ZnIndex(text.size())));
    auto stream = adopt(Data::createReadStream(data.get()));
    auto encoding = adopt(StringEncodingWithID(kStringEncodingUTF8));
    for (const Lexed& lexed : {Lex(text), LexFrom(adopt<Reader>(new StreamReader(stream.get(), encoding.get())).get())}) {
      EXPECT_EQ(lexed.codes, expected.codes) << pad;
      EXPECT_EQ(lexed.values, expected.values) << pad;
    }
  }
}

// Strings too long for the tree's heap take the lexer's buffer, shorter
// ones are copied out of it; in any order, each reads as written, and a
// buffer taken or grown leaves nothing behind for the next string.
TEST_F(LexerTest, LongStringsReadWhetherTheirBufferIsTakenOrCopied) {
  const std::vector<std::string> texts = {std::string(300000, 'a'), "b", std::string(200000, 'c'),
                                          std::string(299999, 'd') + "\\[Alpha]", std::string(70000, 'e'), ""};
  std::string source, expected;
  for (const std::string& text : texts) {
    source += "\"" + text + "\" ";
    expected += (expected.empty() ? "\"" : "|\"") + text + "\"";
  }
  const std::string alpha = "\\[Alpha]";
  expected.replace(expected.find(alpha), alpha.size(), "\xCE\xB1");
  const Lexed lexed = Lex(source);
  EXPECT_EQ(lexed.codes, std::vector<int32_t>(texts.size(), KxString));
  EXPECT_TRUE(lexed.values == expected);
}

TEST_F(LexerTest, BoxGroupsInsideStringsAreParsedWithTheirText) {
  const Case cases[] = {
      {R"t("a\!\(x\^2\)b")t", {KxString},
       R"t(RowBox[List["a", RowBox[List[SuperscriptBox["x", "2"]]], "b"]])t"},
      {R"t("\(x\)")t", {KxString}, R"t(RowBox[List["x"]])t"},
      // A group that does not parse stays text; so does a group cut off by the end of the string.
      {R"t("a\(\%\)b")t", {KxString}, R"t("a\(\%\)b")t"},
      {R"t("a\(x")t", {KxString}, R"t("a\(x")t"},
      // Escaped backslashes are not groups.
      {R"t("\\(x\\)")t", {KxString}, R"t("\\(x\\)")t"},
  };
  Check(cases, std::size(cases));
}

TEST_F(LexerTest, BoxModeSplitsRunsAndBoxOperators) {
  const Case cases[] = {
      {R"t(\(a + bc\))t", {KxRowBoxBegin, KxString, KxString, KxString, KxRowBoxEnd}, R"t("a"|"+"|"bc")t"},
      {R"t(\(\(x\)\))t", {KxRowBoxBegin, KxRowBoxBegin, KxString, KxRowBoxEnd, KxRowBoxEnd}, R"t("x")t"},
      {R"t(\!\(a\/b\^c\_d\&e\+f\%g\`h\@i\))t",
       {KxRowBoxEval, KxRowBoxBegin, KxString, KxFractionBox, KxString, KxSuperscriptBox, KxString,
        KxSubscriptBox, KxString, KxOverscriptBox, KxString, KxUnderscriptBox, KxString, KxBothBox,
        KxString, KxFormBox, KxString, KxSqrtBox, KxString, KxRowBoxEnd},
       R"t("a"|"b"|"c"|"d"|"e"|"f"|"g"|"h"|"i")t"},
      // Quoted strings join the run with their quotes; escapes in runs are decoded.
      {R"t(\(f["x y"]\ \[Alpha]\"q\" z\))t", {KxRowBoxBegin, KxString, KxString, KxRowBoxEnd},
       "\"f[\"x y\"] \xCE\xB1\"q\"\"|\"z\""},
      // Empty operands are supplied after "\(" and after box operators.
      {R"t(\(\))t", {KxRowBoxBegin, KxString, KxRowBoxEnd}, R"t("")t"},
      {R"t(\(a\^\))t", {KxRowBoxBegin, KxString, KxSuperscriptBox, KxString, KxRowBoxEnd}, R"t("a"|"")t"},
      {R"t(\(\%b\))t", {KxRowBoxBegin, KxString, KxBothBox, KxString, KxRowBoxEnd}, R"t(""|"b")t"},
      {R"t(\(a\_\^b\))t",
       {KxRowBoxBegin, KxString, KxSubscriptBox, KxString, KxSuperscriptBox, KxString, KxRowBoxEnd},
       R"t("a"|""|"b")t"},
      // "\*" takes one element: brackets, quotes and groups keep it together.
      {R"t(\(\*F[\(x\), "a b"]\^2\))t",
       {KxRowBoxBegin, KxInterpretBox, KxString, KxSuperscriptBox, KxString, KxRowBoxEnd},
       R"t("F[\(x\), "a b"]"|"2")t"},
      {R"t(\(\*G[\"]\"] y\))t", {KxRowBoxBegin, KxInterpretBox, KxString, KxString, KxRowBoxEnd},
       R"t("G[\"]\"]"|"y")t"},
      // Brackets inside its groups are text, and so are those of named characters.
      {R"t(\(\*S[\(]\), \(N - 1\)] y\))t", {KxRowBoxBegin, KxInterpretBox, KxString, KxString, KxRowBoxEnd},
       R"t("S[\(]\), \(N - 1\)]"|"y")t"},
      {R"t(\(\*S[\(\[Omega]\), \(b\)]\))t", {KxRowBoxBegin, KxInterpretBox, KxString, KxRowBoxEnd},
       R"t("S[\(\[Omega]\), \(b\)]")t"},
  };
  Check(cases, std::size(cases));
}

