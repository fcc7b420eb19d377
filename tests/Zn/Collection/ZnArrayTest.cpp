//===- ZnArrayTest.cpp - Arrays: growth, counts, removal, text -------------===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/Collection/ZnIndexSet.h"

using namespace Zn;

namespace {
class ArrayTest : public ZnTest::LeakCheckedTest {};

Ref<String> Str(const char* theText) { return adopt(new String(theText)); }

// The elements' texts joined by spaces.
std::string Texts(const Array* theArray) {
  std::string out;
  for (ZnIndex i = 0; i < theArray->getCount(); ++i)
    out += (i ? " " : "") + ZnTest::Utf8(static_cast<String*>(theArray->objectAtIndex(i)));
  return out;
}

Ref<MutableArray> Letters(const char* theLetters) {
  auto array = adopt(new MutableArray());
  for (const char* p = theLetters; *p; ++p)
    array->addObject(Str(std::string(1, *p).c_str()).get());
  return array;
}
} // namespace

TEST_F(ArrayTest, ContainersCountTheirReferences) {
  auto a = Str("a");
  auto b = Str("b");
  auto array = adopt(new MutableArray());
  array->addObject(a.get());
  array->insertObjectAtIndex(0, a.get());
  EXPECT_EQ(a->getRetainCount(), 3);
  array->setObjectAtIndex(0, b.get());
  EXPECT_EQ(a->getRetainCount(), 2);
  EXPECT_EQ(b->getRetainCount(), 2);
  array->setObjectAtIndex(0, b.get()); // replacing an element with itself
  EXPECT_EQ(b->getRetainCount(), 2);
  {
    auto frozen = adopt(static_cast<Array*>(array->copy()));
    EXPECT_EQ(a->getRetainCount(), 3);
    EXPECT_EQ(frozen->copy(), frozen.get());
    frozen->release();
  }
  array->removeObjectAtIndex(0);
  EXPECT_EQ(b->getRetainCount(), 1);
  array->moveObject(0, 0);
  EXPECT_EQ(a->getRetainCount(), 2);
  array = nullptr;
  EXPECT_EQ(a->getRetainCount(), 1);
}

TEST_F(ArrayTest, InsertAndRemoveKeepOrder) {
  struct Case { const char* start; void (*edit)(MutableArray*); const char* result; };
  static const Case cases[] = {
      {"abc", [](MutableArray* a) { a->setObjectAtIndex(3, Str("d").get()); }, "a b c d"},
      {"abc", [](MutableArray* a) { a->insertObjectAtIndex(1, Str("x").get()); }, "a x b c"},
      {"abc", [](MutableArray* a) { a->removeObjectAtIndex(0); }, "b c"},
      {"abcde", [](MutableArray* a) { a->removeObjectsInRange(Range(1, 3)); }, "a e"},
      {"abcde", [](MutableArray* a) { a->removeObjectsAtIndexes(adopt(new IndexSet(2, 3, 1)).get()); }, "a c e"},
      {"abcd", [](MutableArray* a) { a->moveObject(0, 3); }, "b c d a"},
      {"abcd", [](MutableArray* a) { a->moveObject(3, 1); }, "a d b c"},
      {"abab", [](MutableArray* a) { a->removeObject(Str("b").get()); }, "a a b"},
      {"abcab", [](MutableArray* a) { a->removeObjectsInArray(Letters("bbz").get()); }, "a c a"},
      {"abc", [](MutableArray* a) { a->removeObjectsInArray(a); }, ""},
      {"ab", [](MutableArray* a) { a->addObjectsFromArray(a); }, "a b a b"},
      {"cab", [](MutableArray* a) { a->sort(); }, "a b c"},
      {"ad", [](MutableArray* a) {
         auto b = Str("b"), c = Str("c");
         Object* both[] = {b.get(), c.get()};
         a->insertObjects(1, both, 2);
       }, "a b c d"},
      {"ab", [](MutableArray* a) {
         auto e = adopt(Letters("xy")->getObjectEnumerator());
         a->addObjectsFromEnumerator(e.get());
       }, "a b x y"},
  };
  for (const Case& c : cases) {
    auto array = Letters(c.start);
    c.edit(array.get());
    EXPECT_EQ(Texts(array.get()), c.result) << c.start;
  }
}

TEST_F(ArrayTest, EqualityIsOrderedAndHashFollowsIt) {
  auto ab = Letters("ab");
  auto frozen = adopt(new Array(Str("a").get(), Str("b").get(), nullptr));
  EXPECT_TRUE(frozen->isEqual(ab.get()));
  EXPECT_EQ(ab->hash(), frozen->hash());
  EXPECT_FALSE(ab->isEqual(Letters("ba").get()));
  EXPECT_FALSE(ab->isEqual(Letters("abc").get()));
  EXPECT_FALSE(ab->isEqual(Str("ab").get()));
  // A mutable copy is equal but independent.
  auto changing = adopt(static_cast<MutableArray*>(frozen->mutableCopy()));
  changing->addObject(Str("c").get());
  EXPECT_EQ(frozen->getCount(), 2);
}

TEST_F(ArrayTest, EnumeratorProtocolDoesNotMoveIt) {
  auto array = Letters("abc");
  auto e = adopt(array->getObjectEnumerator());
  EXPECT_EQ(e->nextObject(), array->objectAtIndex(0));
  EXPECT_TRUE(e->isEqual(adopt(Letters("bc")->getObjectEnumerator()).get()));
  EXPECT_EQ(ZnTest::Describe(e.get()), "{\n\tb,\n\tc\n}");
  EXPECT_EQ(e->nextObject(), array->objectAtIndex(1));
}

TEST_F(ArrayTest, DescriptionIndentsNestedArrays) {
  auto inner = Letters("xy");
  auto outer = adopt(new Array(Str("a").get(), inner.get(), nullptr));
  EXPECT_EQ(ZnTest::Describe(outer.get()), "{\n\ta,\n\t{\n\t\tx,\n\t\ty\n\t}\n}");
  EXPECT_EQ(ZnTest::Describe(adopt(new Array()).get()), "{\n}");
}

using ArrayDeathTest = ArrayTest;

TEST_F(ArrayDeathTest, MisuseIsReported) {
  auto array = Letters("ab");
  EXPECT_EXIT(array->objectAtIndex(2), testing::ExitedWithCode(255), "theIndex < count_");
  EXPECT_EXIT(array->objectAtIndex(-1), testing::ExitedWithCode(255), "theIndex >= 0");
  EXPECT_EXIT(array->setObjectAtIndex(3, array.get()), testing::ExitedWithCode(255), "theIndex <= count_");
  EXPECT_EXIT(array->addObject(nullptr), testing::ExitedWithCode(255), "theObject != NULL");
  EXPECT_EXIT(array->removeObjectsInRange(Range(1, 2)), testing::ExitedWithCode(255),
              "theRange.getMaximum\\(\\) <= count_");
  EXPECT_EXIT(array->moveObject(0, 2), testing::ExitedWithCode(255), "\\(newIndex >= 0\\) && \\(newIndex < count_\\)");
  Object* holes[] = {array.get(), nullptr};
  EXPECT_EXIT(adopt(new Array(holes, 2)), testing::ExitedWithCode(255), "theArray\\[i\\] != NULL");
  EXPECT_EXIT(array->insertObjects(0, holes, 2), testing::ExitedWithCode(255), "theObjects\\[i\\]");
}
