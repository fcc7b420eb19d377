//===- KxExprTest.cpp - Expression tree: parts, equality, hashing, counts --===//
#include "Kx/KxExprBuilders.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Collection/ZnArray.h"

using namespace Zn;
using namespace Zn::Kx;

namespace {
using namespace KxTest;
class ExprTest : public ZnTest::LeakCheckedTest {};
using ExprDeathTest = ExprTest;
} // namespace

TEST_F(ExprTest, AtomsAnswerTheirTypeAsPartZeroAndNothingBeyond) {
  struct Case { Ref<Expr> atom; Head type; } cases[] = {
      {Sym("x"), Head::Symbol},
      {Str("s"), Head::String},
      {adopt<Expr>(new ByteString(nullptr)), Head::String},
      {Int(3), Head::Integer},
      {Big("123456789012", 123456789012.0), Head::Integer},
      {Float(0.5), Head::Real},
      {adopt<Expr>(new BigReal(nullptr, 0.0)), Head::Real},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.atom->className());
    EXPECT_EQ(c.atom->part(0), HeadSymbol(c.type));
    EXPECT_EQ(c.atom->part(1), nullptr);
    EXPECT_EQ(c.atom->length(), 0);
    EXPECT_TRUE(c.atom->isAtom() && c.atom->isAtomic());
  }
}

TEST_F(ExprTest, EqualityFollowsTheFamilies) {
  struct Case { const char* what; Ref<Expr> a, b; bool equal; } cases[] = {
      {"machine and big integer of the same text", Int(7), Big("7", 7.0), true},
      {"big integer with another text", Int(7), Big("07", 7.0), false},
      {"integer against real", Int(7), Float(7.0), false},
      {"reals equal to six decimals", Float(0.1 + 0.2), Float(0.3), true},
      {"big real against its machine value", adopt<Expr>(new BigReal(adopt(new String("1.5")).get(), 1.5)),
       Float(1.5), false},
      {"symbols by name", Sym("x"), Sym("x"), true},
      {"symbol against string", Sym("x"), Str("x"), false},
      {"strings by text", Str("x"), Str("x"), true},
      {"byte strings without data", adopt<Expr>(new ByteString(nullptr)), adopt<Expr>(new ByteString(nullptr)), true},
      {"functions only by identity", F(Sym("f"), Int(1)), F(Sym("f"), Int(1)), false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(c.a->isEqual(c.b.get()), c.equal);
    EXPECT_EQ(c.b->isEqual(c.a.get()), c.equal);
    EXPECT_FALSE(c.a->isEqual(nullptr));
    if (c.equal) {
      EXPECT_EQ(c.a->hash(), c.b->hash());
    }
  }
}

TEST_F(ExprTest, FunctionHashIsTheXorOfItsAtomsAtAnyDepth) {
  auto f = Sym("f"), g = Sym("g"), x = Sym("x"), y = Int(2);
  auto nested = F(f, F(g, x), y);
  EXPECT_EQ(nested->hash(), f->hash() ^ g->hash() ^ x->hash() ^ y->hash());
  EXPECT_EQ(nested->hash(), F(Sym("f"), F(Sym("g"), Sym("x")), Int(2))->hash());
  auto headless = adopt<Expr>(new Function(nullptr, x.get()));
  EXPECT_EQ(headless->part(0), HeadSymbol(Head::Sequence));
  EXPECT_EQ(headless->hash(), HeadSymbol(Head::Sequence)->hash() ^ x->hash());
}

// The parser's functions keep their parts in the object's own block; they
// read, hash and release like any other (the fixture checks the release).
TEST_F(ExprTest, FunctionsInOneBlockReadLikeAnyOther) {
  auto f = Sym("f"), x = Sym("x"), y = Int(2);
  auto made = adopt<Expr>(Function::create(f.get(), x.get(), y.get()));
  EXPECT_EQ(FullForm(made.get()), "f[x, 2]");
  EXPECT_EQ(made->part(0), f.get());
  EXPECT_EQ(made->hash(), F(f, x, y)->hash());
  Expr* arguments[] = {retained(x.get()).leak(), retained(made.get()).leak()};
  auto adopted = adopt<Expr>(Function::createAdopting(retained(f.get()).leak(), arguments, 2));
  EXPECT_EQ(FullForm(adopted.get()), "f[x, f[x, 2]]");
  EXPECT_EQ(FullForm(adopt<Expr>(Function::createAdopting(nullptr, nullptr, 0)).get()), "Sequence[]");
  EXPECT_EQ(made->getRetainCount(), 2);
  adopted = nullptr;
  EXPECT_EQ(made->getRetainCount(), 1);
  auto bare = adopt<Expr>(Function::create(f.get()));
  EXPECT_EQ(FullForm(bare.get()), "f[]");
  EXPECT_EQ(bare->part(1), nullptr);
}

// The parts start where the pointer to a separate block would lie: a node
// of n arguments takes the header and n + 1 pointers, nothing more.
TEST_F(ExprTest, FunctionsInOneBlockTakeNoPointerToTheirParts) {
  auto f = Sym("f"), x = Sym("x");
  for (int arguments = 0; arguments <= 2; ++arguments) {
    uint64_t before = GetTotalAllocated();
    auto made = adopt<Expr>(arguments == 0   ? Function::create(f.get())
                            : arguments == 1 ? Function::create(f.get(), x.get())
                                             : Function::create(f.get(), x.get(), x.get()));
    EXPECT_EQ(GetTotalAllocated() - before, sizeof(Function) + arguments * sizeof(Expr*)) << arguments;
  }
  // A long chain of such nodes dies without one C++ frame per level.
  auto minus = retained<Expr>(HeadSymbol(Head::Minus));
  auto chain = Sym("x");
  for (ZnIndex i = 0; i < 200000; ++i)
    chain = adopt<Expr>(Function::create(minus.get(), chain.get()));
  EXPECT_EQ(chain->part(1)->part(1)->getRetainCount(), 1);
}

TEST_F(ExprTest, NegatedFlipsSignsAndWrapsOtherExpressionsInMinus) {
  struct Case { Ref<Expr> value; const char* text; int32_t integer; } cases[] = {
      {Big("-12", -12.0), "12", 12},
      {Big("12", 12.0), "-12", -12},
      {adopt<Expr>(new BigReal(adopt(new String("2.5`30")).get(), 2.5)), "-2.5`30", -2},
      {Int(5), "-5", -5},
      {Int(INT32_MIN), "-2147483648", INT32_MIN},
      {Float(-0.5), "0.500000", 0},
  };
  for (const Case& c : cases) {
    auto negated = adopt(c.value->negated());
    EXPECT_EQ(FullForm(negated.get()), c.text);
    EXPECT_STREQ(negated->className(), c.value->className()) << c.text;
    EXPECT_EQ(negated->integerValue(), c.integer) << c.text;
  }
  auto x = Sym("x");
  auto minus = adopt(x->negated());
  EXPECT_EQ(FullForm(minus.get()), "Minus[x]");
  EXPECT_EQ(minus->part(1), x.get());
}

TEST_F(ExprTest, NumericAccessorsTruncateAndSaturate) {
  EXPECT_EQ(adopt(new MachineReal(-2.7))->integerValue(), -2);
  EXPECT_EQ(Big("100000000000000000000", 1e20)->integerValue(), INT32_MAX);
  EXPECT_EQ(Big("-100000000000000000000", -1e20)->integerValue(), INT32_MIN);
  EXPECT_EQ(Sym("x")->integerValue(), 0);
}

TEST_F(ExprTest, FlatteningSplicesOneLevelOfTheSameHead) {
  auto plus = retained<Expr>(HeadSymbol(Head::Plus));
  auto inner = F(Sym("Plus"), Sym("a"), F(plus, Sym("b"), Sym("c")));
  auto flat = adopt<Expr>(Function::createFlattened(plus.get(), plus.get(), inner.get(), Sym("d").get(),
                                                    F(Sym("Times"), Sym("e"), Sym("f")).get()));
  EXPECT_EQ(FullForm(flat.get()), "Plus[a, Plus[b, c], d, Times[e, f]]");
}

TEST_F(ExprTest, ConstructorsRetainTheirPartsAndReleaseThem) {
  auto x = Sym("x");
  {
    auto f = F(Sym("f"), x, x);
    EXPECT_EQ(x->getRetainCount(), 3);
    auto array = adopt(new Array(x.get(), x.get(), nullptr));
    auto g = adopt<Expr>(new Function(x.get(), array.get()));
    EXPECT_EQ(FullForm(g.get()), "x[x, x]");
    EXPECT_EQ(x->getRetainCount(), 8);
  }
  EXPECT_EQ(x->getRetainCount(), 1);
  Expr** parts = static_cast<Expr**>(Allocate(2 * sizeof(Expr*)));
  parts[0] = x.get();
  parts[1] = x.get();
  auto adopted = adopt<Expr>(new Function(parts, 1, true, false));
  EXPECT_EQ(x->getRetainCount(), 3);
  EXPECT_EQ(FullForm(adopted.get()), "x[x]");
}

TEST_F(ExprTest, MutableFunctionGrowsInsertsAndReplacesTheHead) {
  auto m = adopt(new MutableFunction(5, nullptr));
  EXPECT_EQ(m->capacity(), 2);
  auto x = Sym("x");
  m->appendArgument(Int(1).get(), true);
  m->appendArgument(Int(2).get(), true);
  EXPECT_EQ(m->capacity(), 4);
  m->insertArgument(x.get(), 0, true);
  m->insertArgument(Sym("z").get(), 3, true);
  EXPECT_EQ(m->capacity(), 8);
  EXPECT_EQ(FullForm(m.get()), "Sequence[x, 1, 2, z]");
  m->setHead(x.get(), true);
  EXPECT_EQ(x->getRetainCount(), 3);
  m->setHead(Sym("List").leak(), false);
  EXPECT_EQ(x->getRetainCount(), 2);
  auto frozen = adopt(static_cast<Expr*>(m->copy()));
  auto thawed = adopt(static_cast<MutableFunction*>(frozen->mutableCopy()));
  thawed->appendArgument(x.get(), true);
  EXPECT_EQ(FullForm(frozen.get()), "List[x, 1, 2, z]");
  EXPECT_EQ(FullForm(thawed.get()), "List[x, 1, 2, z, x]");
}

TEST_F(ExprTest, DeepChainsHashPrintAndDieWithoutRecursion) {
  // Far deeper than the C++ stack could follow one frame per level.
  const ZnIndex depth = 200000;
  auto minus = retained<Expr>(HeadSymbol(Head::Minus));
  auto chain = Sym("x");
  for (ZnIndex i = 0; i < depth; ++i)
    chain = F(minus, chain);
  EXPECT_EQ(chain->hash(), (depth % 2 ? minus->hash() : 0) ^ Sym("x")->hash());
  auto text = adopt(chain->fullFormString());
  EXPECT_EQ(text->length(), depth * 7 + 1);
  auto shared = retained(chain->part(1)->part(1));
  chain = Ref<Expr>();
  EXPECT_EQ(shared->getRetainCount(), 1);
}

TEST_F(ExprTest, APartThatIsNotThereReadsAsNothing) {
  // Boxes of a hand-edited notebook may lack any part: the walk asks for it
  // and gets null, an empty text or 0, never a report.
  auto f = F(Sym("f"), F(Sym("g"), Int(7)));
  EXPECT_EQ(f->part(2), nullptr);
  EXPECT_EQ(f->part(-1), nullptr);
  EXPECT_EQ(f->partOfPart(2, 1), nullptr);
  EXPECT_EQ(f->partOfPart(1, 2), nullptr);
  EXPECT_EQ(f->lengthOfPart(3), 0);
  EXPECT_EQ(f->doubleValueOfPart(5), 0.0);
  EXPECT_EQ(ZnTest::Utf8(adopt(f->stringValueOfPart(2)).get()), "");
  EXPECT_EQ(f->partOfPart(1, 1)->integerValue(), 7);
  EXPECT_EQ(Int(1)->doubleValueOfPart(1), 0.0);
}

TEST_F(ExprDeathTest, BrokenPreconditionsAreReported) {
  EXPECT_EXIT(adopt(new MutableFunction())->insertArgument(nullptr, 1, true), testing::ExitedWithCode(255),
              "theIndex <= length_");
  EXPECT_EXIT(new Symbol(static_cast<String*>(nullptr)), testing::ExitedWithCode(255), "theName != NULL");
  EXPECT_EXIT(new Symbol(static_cast<const char*>(nullptr)), testing::ExitedWithCode(255), "theASCIIName != NULL");
  EXPECT_EXIT(new CharacterString(nullptr, true), testing::ExitedWithCode(255), "theValue != NULL");
}

TEST_F(ExprTest, RealsWriteTheirShortestText) {
  const struct {
    double value;
    const char* text;
  } cases[] = {{2.0, "2."},          {0.4, "0.4"},        {-3.14159265, "-3.14159265"}, {6.02e23, "6.02*^23"},
               {1.5e-10, "1.5*^-10"}, {1e100, "1.*^100"}, {0.262745, "0.262745"},     {0.0, "0."}};
  for (const auto& c : cases) {
    auto real = adopt(new MachineReal(c.value));
    EXPECT_EQ(ZnTest::Utf8(adopt(real->shortestText()).get()), c.text);
  }
}
