//===- ZnDictionaryTest.cpp - Dictionaries: growth, keys, equality, text --===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnValue.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/Collection/ZnDictionary.h"

using namespace Zn;

namespace {
using ZnTest::Describe;
class DictionaryTest : public ZnTest::LeakCheckedTest {};

Ref<String> Str(const char* theText) { return adopt(new String(theText)); }

// Keys "k0".."k<n-1>" with values "v0"..; inserted in order, or backwards.
Ref<MutableDictionary> Numbered(int theCount, bool theBackwards = false) {
  auto d = adopt(new MutableDictionary());
  for (int j = 0; j < theCount; ++j) {
    int i = theBackwards ? theCount - 1 - j : j;
    d->setObjectForKey(Str(("k" + std::to_string(i)).c_str()).get(), Str(("v" + std::to_string(i)).c_str()).get());
  }
  return d;
}
} // namespace

TEST_F(DictionaryTest, BucketsGrowByOnePointSevenToOddSizes) {
  auto d = adopt(new MutableDictionary());
  EXPECT_EQ(d->getBucketCount(), 0);
  // entries after the insertion -> buckets: 7 until 1.7 * n exceeds it.
  const ZnIndex expected[] = {7, 7, 7, 7, 11, 11, 19, 19, 19, 19, 19, 33};
  for (int i = 0; i < 12; ++i) {
    d->setObjectForKey(Str(std::to_string(i).c_str()).get(), nullptr);
    EXPECT_EQ(d->getBucketCount(), expected[i]) << "after insertion " << i + 1;
  }
  for (int i = 0; i < 12; ++i)
    EXPECT_TRUE(d->containsKey(Str(std::to_string(i).c_str()).get())) << i;
}

TEST_F(DictionaryTest, SettingAPresentKeyReplacesTheValue) {
  auto d = Numbered(3);
  auto v = Str("new");
  d->setObjectForKey(Str("k1").get(), v.get());
  EXPECT_EQ(d->getCount(), 3);
  EXPECT_EQ(d->objectForKey(Str("k1").get()), v.get());
  EXPECT_EQ(v->getRetainCount(), 2);
  d->setObjectForKey(Str("k1").get(), nullptr);
  EXPECT_EQ(v->getRetainCount(), 1);
  EXPECT_TRUE(d->containsKey(Str("k1").get()));
  d->removeObjectForKey(Str("k1").get());
  d->removeObjectForKey(Str("absent").get());
  EXPECT_EQ(d->getCount(), 2);
  EXPECT_FALSE(d->containsKey(Str("k1").get()));
}

TEST_F(DictionaryTest, KeysAreCopiedSoLaterChangesDoNotMatter) {
  auto key = adopt(new MutableString());
  key->appendCString("name");
  auto d = adopt(new MutableDictionary());
  d->setObjectForKey(key.get(), Str("value").get());
  key->appendCString("changed");
  EXPECT_NE(d->objectForKey(Str("name").get()), nullptr);
  EXPECT_EQ(d->objectForKey(key.get()), nullptr);
  const ZnUnichar name[] = {'n', 'a', 'm', 'e'};
  EXPECT_EQ(d->objectForCharacters(name, 4), d->objectForKey(Str("name").get()));
  EXPECT_EQ(d->objectForCharacters(name, 3), nullptr);
}

TEST_F(DictionaryTest, EqualityAndHashIgnoreInsertionOrder) {
  auto forwards = Numbered(9);
  auto backwards = Numbered(9, true);
  EXPECT_TRUE(forwards->isEqual(backwards.get()));
  EXPECT_EQ(forwards->hash(), backwards->hash());
  auto frozen = adopt(static_cast<Dictionary*>(backwards->copy()));
  backwards->setObjectForKey(Str("k3").get(), Str("other").get());
  EXPECT_FALSE(forwards->isEqual(backwards.get()));
  EXPECT_TRUE(frozen->isEqual(forwards.get())); // the copy is independent
  backwards->setObjectForKey(Str("k3").get(), nullptr);
  EXPECT_FALSE(forwards->isEqual(backwards.get()));
  EXPECT_FALSE(forwards->isEqual(Numbered(8).get()));
}

TEST_F(DictionaryTest, KeysAndValuesStayAligned) {
  auto d = Numbered(12, true);
  d->setObjectForKey(Str("k5").get(), nullptr);
  for (bool sorted : {false, true}) {
    auto keys = adopt(new MutableArray());
    auto values = adopt(new MutableArray());
    d->getKeysAndValues(keys.get(), values.get(), sorted);
    ASSERT_EQ(values->getCount(), 12);
    for (ZnIndex i = 0; i < 12; ++i) {
      std::string key = ZnTest::Utf8(static_cast<String*>(keys->objectAtIndex(i)));
      std::string value = Describe(values->objectAtIndex(i));
      EXPECT_EQ(value, key == "k5" ? "Null" : "v" + key.substr(1)) << key;
      if (sorted && i > 0) {
        EXPECT_LT(keys->objectAtIndex(i - 1)->compare(keys->objectAtIndex(i)), 0);
      }
    }
    if (!sorted) { // the enumerators walk in table order too
      auto drainedKeys = adopt(new Array(adopt(d->getKeyEnumerator()).get()));
      auto drainedValues = adopt(new Array(adopt(d->getObjectEnumerator()).get()));
      EXPECT_TRUE(drainedKeys->isEqual(keys.get()));
      EXPECT_TRUE(drainedValues->isEqual(values.get()));
    }
  }
}

TEST_F(DictionaryTest, DescriptionListsEntriesAndNullValues) {
  auto d = adopt(new MutableDictionary());
  d->setObjectForKey(Str("a").get(), nullptr);
  auto outer = adopt(new MutableDictionary());
  outer->setObjectForKey(Str("inner").get(), d.get());
  EXPECT_EQ(Describe(outer.get()), "{\n\tinner = {\n\t\ta = (NULL)\n\t}\n}");
  EXPECT_EQ(Describe(adopt(new Dictionary()).get()), "{\n}");
}

using DictionaryDeathTest = DictionaryTest;

TEST_F(DictionaryDeathTest, NullKeyIsReported) {
  auto d = adopt(new MutableDictionary());
  EXPECT_EXIT(d->setObjectForKey(nullptr, nullptr), testing::ExitedWithCode(255), "\"theKey\"");
}
