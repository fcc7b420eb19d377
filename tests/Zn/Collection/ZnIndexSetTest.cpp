//===- ZnIndexSetTest.cpp - Index sets: both forms, membership, edits -----===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Collection/ZnIndexSet.h"
#include <algorithm>
#include <vector>

using namespace Zn;

namespace {
using ZnTest::Describe;
class IndexSetTest : public ZnTest::LeakCheckedTest {};
} // namespace

// Whichever form holds the members (one range, or a sorted array built from
// a list or from values), each set answers from its members alone.
TEST_F(IndexSetTest, EveryFormAnswersFromItsMembers) {
  const int32_t raw[] = {15, 10, 14, 12};
  auto values = adopt(new IndexValueArray(raw, 4));
  const struct { Ref<IndexSet> set; std::vector<ZnIndex> members; } cases[] = {
      {adopt(new IndexSet(Range(10, 1))), {10}},
      {adopt(new IndexSet(1, 10)), {10}},
      {adopt(new IndexSet(Range(10, 4))), {10, 11, 12, 13}},
      {adopt(new IndexSet(values.get())), {10, 12, 14, 15}},
      {adopt(new IndexSet(4, 10, 12, 14, 15)), {10, 12, 14, 15}},
      {adopt(new IndexSet(2, 12, 10)), {10, 12}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(Describe(c.set.get()));
    auto member = [&c](ZnIndex i) { return std::find(c.members.begin(), c.members.end(), i) != c.members.end(); };
    EXPECT_EQ(c.set->getCount(), ZnIndex(c.members.size()));
    EXPECT_EQ(c.set->getFirstValue(), c.members.front());
    EXPECT_EQ(c.set->getLastValue(), c.members.back());
    for (ZnIndex i = 8; i < 18; ++i) {
      EXPECT_EQ(c.set->containsIndex(i), member(i)) << i;
      EXPECT_EQ(c.set->containsIndices(Range(i, 1)), member(i)) << i;
      EXPECT_EQ(c.set->containsIndices(Range(i, 2)), member(i) && member(i + 1)) << i;
    }
    for (const auto& other : cases) {
      SCOPED_TRACE(Describe(other.set.get()));
      bool includes = std::all_of(other.members.begin(), other.members.end(), member);
      EXPECT_EQ(c.set->containsIndices(other.set.get()), includes);
      EXPECT_EQ(c.set->isEqual(other.set.get()), c.members == other.members);
      if (c.members == other.members) {
        EXPECT_EQ(c.set->hash(), other.set->hash());
      }
    }
  }
}

TEST_F(IndexSetTest, CopiesKeepTheFormButShareNothing) {
  auto array = adopt(new IndexSet(3, 7, 3, 5));
  auto copy = adopt(new MutableIndexSet(*array));
  copy->addIndex(4);
  EXPECT_EQ(Describe(array.get()), "{ 3, 5, 7 }");
  EXPECT_EQ(Describe(copy.get()), "{ 3, 4, 5, 7 }");
  auto frozen = adopt(static_cast<IndexSet*>(copy->copy()));
  copy->removeIndex(7);
  EXPECT_EQ(Describe(frozen.get()), "{ 3, 4, 5, 7 }");
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
    EXPECT_EQ(Describe(set.get()), c.result);
  }
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
