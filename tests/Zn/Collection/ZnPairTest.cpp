//===- ZnPairTest.cpp - Pairs: look-through, ordering, text ----------------===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnValue.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/Collection/ZnPair.h"

using namespace Zn;

namespace {
using ZnTest::Describe;
class PairTest : public ZnTest::LeakCheckedTest {};
} // namespace

TEST_F(PairTest, BoxedPointersAreLookedThroughUnlessFlagged) {
  auto a = adopt(new String("a"));
  auto b = adopt(new String("b"));
  auto boxedA = adopt(new ValueType<Object*>(a.get()));
  auto plain = adopt(new PairObject(a.get(), b.get()));
  auto boxed = adopt(new PairObject(boxedA.get(), b.get()));
  auto asIs = adopt(new PairObject(boxedA.get(), b.get(), Pair::kFirstAsIs));
  EXPECT_TRUE(boxed->isEqual(plain.get()));
  EXPECT_EQ(plain->hash(), boxed->hash());
  EXPECT_EQ(plain->compare(boxed.get()), 0);
  EXPECT_FALSE(plain->isEqual(asIs.get()));
}

TEST_F(PairTest, OrdersByFirstThenSecondWithNullsFirst) {
  auto a = adopt(new String("a"));
  auto b = adopt(new String("b"));
  auto ab = adopt(new PairObject(a.get(), b.get()));
  auto ba = adopt(new PairObject(b.get(), a.get()));
  auto nullB = adopt(new PairObject(nullptr, b.get()));
  EXPECT_LT(ab->compare(ba.get()), 0);
  EXPECT_GT(ab->compare(adopt(new PairObject(a.get(), a.get())).get()), 0);
  EXPECT_LT(nullB->compare(ab.get()), 0);
  EXPECT_TRUE(nullB->isEqual(adopt(new PairObject(nullptr, b.get())).get()));
}

TEST_F(PairTest, DescriptionAndEnumeration) {
  auto a = adopt(new String("a"));
  auto pair = adopt(new PairObject(a.get(), nullptr));
  EXPECT_EQ(Describe(pair.get()), "Pair { a , (NULL) }");
  auto both = adopt(new PairObject(a.get(), a.get()));
  auto elements = adopt(new Array(adopt(both->getObjectEnumerator()).get()));
  EXPECT_EQ(elements->getCount(), 2);
  EXPECT_EQ(a->getRetainCount(), 6); // three pair slots, two array slots
}
