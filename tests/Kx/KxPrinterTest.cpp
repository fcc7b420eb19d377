//===- KxPrinterTest.cpp - Input form and full form of expressions ---------===//
#include "Kx/KxExprBuilders.h"

using namespace Zn;
using namespace Zn::Kx;
using namespace KxTest;

namespace {
class PrinterTest : public ZnTest::LeakCheckedTest {};

struct Case { Ref<Expr> expr; const char* input; };
} // namespace

TEST_F(PrinterTest, InputFormUsesTheFewestParentheses) {
  auto a = Sym("a"), b = Sym("b"), c = Sym("c"), x = Sym("x");
  Case cases[] = {
      // Precedence decides the parentheses; equal precedence never adds any.
      {F("Plus", a, F("Times", b, c)), "a + b c"},
      {F("Times", F("Plus", a, b), c), "(a + b) c"},
      {F("Subtract", a, F("Subtract", b, c)), "a - b - c"},
      {F("Power", a, F("Power", b, c)), "a^b^c"},
      {F("Minus", F("Plus", a, b)), "-(a + b)"},
      {F("Plus", a, F("Minus", b)), "a + -b"},
      {F("Times", F("Minus", a), b, c), "-a b c"},
      {F("CompoundExpression", F("Set", a, Int(1)), F("Rule", b, F("Alternatives", c, x))), "a = 1; b -> c | x"},
      // Braces and brackets reset the precedence for what is inside.
      {F("List", F("Plus", a, b)), "{a + b}"},
      {F("f", F("Plus", a, b)), "f[a + b]"},
      {F("f"), "f[]"},
      {F("Part", a, Int(1), Int(2)), "a[[1, 2]]"},
      // Prefix, postfix and the odd separators.
      {F("TagSet", Sym("f"), Sym("g"), Sym("v")), "f /: g = v"},
      {F("Blank"), "_"},
      {F("Blank", x), "_x"},
      {F("Pattern", x, F("Blank")), "x:_"},
      {F("Optional", F("Pattern", x, F("Blank")), Int(1)), "x:_:1"},
      {F("Unset", x), "x =."},
      {F("Decrement", x), "x--"},
      {F("PreIncrement", x), "++x"},
      {F("Factorial2", x), "x!!"},
      {F("Rational", Int(1), Int(2)), "1/2"},
      // A row applies only within its argument counts.
      {F("Get", a), "Get[a]"},
      {F("Get", a, b), "a << b"},
      {F("Rule", a, b, c), "Rule[a, b, c]"},
      {F("Minus", a, b), "Minus[a, b]"},
      // Heads that are not operator symbols print in full form.
      {adopt<Expr>(new Function(nullptr, a.get(), b.get())), "Sequence[a, b]"},
      {F(F("f", a), b), "f[a][b]"},
      {F(F("Plus", a, b), c), "Plus[a, b][c]"},
      {F(Int(1), a, b), "1[a, b]"},
      {F(retained<Expr>(HeadSymbol(Head::Dot)), a, b, c), "a.b.c"},
      // Atoms inside operators.
      {F("StringJoin", Str("s"), F("f", Str("t"))), "\"s\" <> f[\"t\"]"},
      {F("Plus", Float(0.5), Int(-3), Big("123456789012345678901", 1.2e20)),
       "0.500000 + -3 + 123456789012345678901"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(InputForm(c.expr.get()), c.input);
}

TEST_F(PrinterTest, ContextControlsParenthesesQuotesAndContexts) {
  auto sum = F("Plus", Sym("a"), Sym("b"));
  EXPECT_EQ(InputForm(sum.get(), {400, 0, 1}), "(a + b)");
  EXPECT_EQ(InputForm(sum.get(), {310, 0, 1}), "a + b");

  auto call = F("f", Sym("Global`x"), Sym("a`"), Str("s"));
  EXPECT_EQ(InputForm(call.get()), "f[Global`x, a`, \"s\"]");
  EXPECT_EQ(InputForm(call.get(), {0, 1, 0}), "f[x, a`, s]");
  EXPECT_EQ(FullForm(call.get()), "f[Global`x, a`, \"s\"]");

  // stringValue is a string's own text, anything else its input form.
  EXPECT_EQ(ZnTest::Utf8(adopt(Str("s")->stringValue()).get()), "s");
  EXPECT_EQ(ZnTest::Utf8(adopt(call->stringValue()).get()), "f[Global`x, a`, \"s\"]");
  EXPECT_EQ(ZnTest::Describe(sum.get()), "a + b");
}

TEST_F(PrinterTest, DeepInputFormPrints) {
  const ZnIndex depth = 100000;
  auto chain = Sym("x");
  for (ZnIndex i = 0; i < depth; ++i)
    chain = F("Minus", F("Plus", chain, Int(1)));
  std::string text = InputForm(chain.get());
  EXPECT_EQ(text.size(), size_t(depth) * 7 + 1);
  EXPECT_EQ(text.substr(0, 6), "-(-(-(");
  EXPECT_EQ(text.substr(text.size() - 6), ") + 1)");
}
