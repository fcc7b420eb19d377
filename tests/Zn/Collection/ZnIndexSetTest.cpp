//===- ZnIndexSetTest.cpp - Index sets: the library's own self-test cases --===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/Collection/ZnIndexSet.h"
#include <vector>

using namespace Zn;

namespace {
class IndexSetTest : public ZnTest::LeakCheckedTest {};

std::string Text(const Object* theObject) { return ZnTest::Utf8(adopt(theObject->description()).get()); }

struct Expectation {
  const char* name;
  ZnIndex count, first, last;
  std::vector<ZnIndex> members, nonMembers;
  std::vector<Range> ranges, nonRanges;
};

void Check(const IndexSet* theSet, const Expectation& theWant) {
  SCOPED_TRACE(theWant.name);
  EXPECT_EQ(theSet->getCount(), theWant.count);
  EXPECT_EQ(theSet->getFirstValue(), theWant.first);
  EXPECT_EQ(theSet->getLastValue(), theWant.last);
  for (ZnIndex i : theWant.members)
    EXPECT_TRUE(theSet->containsIndex(i)) << i;
  for (ZnIndex i : theWant.nonMembers)
    EXPECT_FALSE(theSet->containsIndex(i)) << i;
  for (Range r : theWant.ranges)
    EXPECT_TRUE(theSet->containsIndices(r)) << r.location << "+" << r.length;
  for (Range r : theWant.nonRanges)
    EXPECT_FALSE(theSet->containsIndices(r)) << r.location << "+" << r.length;
}
} // namespace

TEST_F(IndexSetTest, BuiltInSelfTestHolds) {
  auto single = adopt(new IndexSet(Range(10, 1)));
  auto range = adopt(new IndexSet(Range(10, 4)));
  const int32_t raw[] = {15, 10, 14, 12};
  auto values = adopt(new IndexValueArray(raw, 4));
  auto array = adopt(new IndexSet(values.get()));
  auto var = adopt(new IndexSet(4, 10, 12, 14, 15));
  auto test = adopt(new IndexSet(2, 12, 10));

  Check(single.get(), {"single", 1, 10, 10, {10}, {9, 11}, {Range(10, 1)},
                       {Range(9, 1), Range(11, 1), Range(9, 2), Range(10, 2), Range(11, 2)}});
  EXPECT_FALSE(single->containsIndices(test.get()));
  EXPECT_TRUE(single->isEqual(adopt(new IndexSet(1, 10)).get()));
  EXPECT_TRUE(adopt(new IndexSet(1, 10))->isEqual(single.get()));

  Check(range.get(), {"range", 4, 10, 13, {10, 11, 12, 13}, {9, 14}, {Range(10, 2), Range(11, 2), Range(12, 2)},
                      {Range(9, 2), Range(13, 2), Range(14, 2)}});
  EXPECT_TRUE(range->containsIndices(test.get()));
  EXPECT_TRUE(range->containsIndices(single.get()));

  for (const IndexSet* set : {array.get(), var.get()}) {
    Check(set, {"array and var", 4, 10, 15, {10, 12, 14, 15}, {9, 11, 13, 16}, {Range(14, 2)},
                {Range(9, 2), Range(10, 2), Range(11, 2), Range(12, 2), Range(13, 2), Range(15, 2), Range(16, 2)}});
    EXPECT_TRUE(set->containsIndices(test.get()));
    EXPECT_TRUE(set->containsIndices(single.get()));
  }
  EXPECT_FALSE(array->containsIndices(range.get()));
  EXPECT_TRUE(array->isEqual(var.get()));
  EXPECT_EQ(array->hash(), var->hash());
  EXPECT_FALSE(array->isEqual(range.get()));
  EXPECT_EQ(Text(test.get()), "{ 10, 12 }");
}

TEST_F(IndexSetTest, CopiesKeepTheFormButShareNothing) {
  auto array = adopt(new IndexSet(3, 7, 3, 5));
  auto copy = adopt(new MutableIndexSet(*array));
  copy->addIndex(4);
  EXPECT_EQ(Text(array.get()), "{ 3, 5, 7 }");
  EXPECT_EQ(Text(copy.get()), "{ 3, 4, 5, 7 }");
  auto frozen = adopt(static_cast<IndexSet*>(copy->copy()));
  copy->removeIndex(7);
  EXPECT_EQ(Text(frozen.get()), "{ 3, 4, 5, 7 }");
  EXPECT_TRUE(copy->isEqual(adopt(new IndexSet(Range(3, 3))).get()));
}

TEST_F(IndexSetTest, MutableSetsAddAndRemove) {
  struct Case { void (*edit)(MutableIndexSet*); const char* result; };
  static const Case cases[] = {
      {[](MutableIndexSet* s) { s->addIndicesInRange(Range(12, 4)); }, "{ 10, 11, 12, 13, 14, 15 }"},
      {[](MutableIndexSet* s) { s->addIndex(20); }, "{ 10, 11, 12, 20 }"},
      {[](MutableIndexSet* s) { s->removeIndex(10); }, "{ 11, 12 }"},
      {[](MutableIndexSet* s) { s->removeIndex(11); }, "{ 10, 12 }"},
      {[](MutableIndexSet* s) { s->removeIndicesInRange(Range(0, 100)); }, "{ }"},
      {[](MutableIndexSet* s) { s->removeIndicesInRange(Range(0, 5)); }, "{ 10, 11, 12 }"},
      {[](MutableIndexSet* s) { s->addIndex(14), s->addIndex(13); }, "{ 10, 11, 12, 13, 14 }"},
      {[](MutableIndexSet* s) { s->removeIndex(11), s->addIndex(11); }, "{ 10, 11, 12 }"},
  };
  for (const Case& c : cases) {
    auto set = adopt(new MutableIndexSet(Range(10, 3)));
    c.edit(set.get());
    EXPECT_EQ(Text(set.get()), c.result);
  }
}

TEST_F(IndexSetTest, ArrayRemovesTheMembers) {
  auto array = adopt(new MutableArray());
  for (const char* text : {"a", "b", "c", "d", "e"})
    array->addObject(adopt(new String(text)).get());
  array->removeObjectsAtIndexes(adopt(new IndexSet(2, 3, 1)).get());
  EXPECT_EQ(Text(array.get()), "{\n\ta,\n\tc,\n\te\n}");
}

using IndexSetDeathTest = IndexSetTest;

TEST_F(IndexSetDeathTest, MisuseIsReported) {
  auto empty = adopt(new IndexSet());
  auto range = adopt(new IndexSet(Range(10, 2)));
  auto array = adopt(new IndexSet(2, 1, 2));
  EXPECT_EXIT(empty->getFirstValue(), testing::ExitedWithCode(255), "\"set_\"");
  EXPECT_EXIT(range->getValueAtIndex(-1), testing::ExitedWithCode(255), "n >= 0");
  EXPECT_EXIT(range->getValueAtIndex(2), testing::ExitedWithCode(255), "n < theRange->length");
  EXPECT_EXIT(array->getValueAtIndex(2), testing::ExitedWithCode(255), "n < theArray->getCount\\(\\)");
}
