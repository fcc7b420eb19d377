//===- KxNamedCharacterTableTest.cpp - Lookups of the named tables ---------===//
#include "Kx/KxEncoding.h"
#include "Kx/KxNamedCharacterTable.h"
#include "Support/ZnTestSupport.h"
#include <string>

using namespace Zn;
using namespace Zn::Kx;

// Every name finds its own code point and every code point its own name,
// which also proves that no two rows share either; near misses find nothing.
TEST(NamedCharacterTableTest, EveryRowIsFoundBothWaysAndNothingElse) {
  ZnIndex count = 0;
  const NamedCharacter* rows = GetNamedCharacterRows(&count);
  ASSERT_EQ(count, 882);
  NamedCharacterTable table;
  ZnUnichar code = 0x1234;
  EXPECT_FALSE(table.codeForName("Alpha", 5, &code)) << "an empty table knows no names";
  ZnIndex length = 0;
  EXPECT_EQ(table.nameForCode(0x03B1, &length), nullptr);
  table.load(rows, count);
  for (ZnIndex i = 0; i < count; ++i) {
    std::string name = rows[i].name;
    std::u16string units(name.begin(), name.end());
    ZnUnichar byBytes = 0, byUnits = 0;
    EXPECT_TRUE(table.codeForName(name.data(), ZnIndex(name.size()), &byBytes)) << name;
    EXPECT_TRUE(table.codeForName(reinterpret_cast<const ZnUnichar*>(units.data()), ZnIndex(units.size()), &byUnits))
        << name;
    EXPECT_EQ(byBytes, rows[i].code) << name;
    EXPECT_EQ(byUnits, rows[i].code) << name;
    const char* back = table.nameForCode(rows[i].code, &length);
    ASSERT_NE(back, nullptr) << name;
    EXPECT_EQ(std::string(back, size_t(length)), name);
  }
  const char* const kMisses[] = {"", "alpha", "Alph", "Alphaa", "ALPHA", "Alpha ", "NoSuchName",
                                 "CounterClockwiseContourIntegralX"};
  for (const char* miss : kMisses)
    EXPECT_FALSE(table.codeForName(miss, ZnIndex(std::string(miss).size()), &code)) << miss;
  EXPECT_EQ(code, 0x1234) << "a failed lookup must not touch the result";
  // A unit above 255 whose low byte spells the name is not the name.
  const ZnUnichar kWide[] = {0x141, 'l', 'p', 'h', 'a'};
  EXPECT_FALSE(table.codeForName(kWide, 5, &code));
}

// The names that are only read: none of them is a written name, each one is
// read (as code units, through the encoding) as its own code point, and the
// written table gives no name back for a code point that only they name.
TEST(NamedCharacterTableTest, ReadOnlyNamesAreReadButNeverWritten) {
  ZnIndex writtenCount = 0, readOnlyCount = 0;
  const NamedCharacter* written = GetNamedCharacterRows(&writtenCount);
  const NamedCharacter* readOnly = GetReadOnlyNameRows(&readOnlyCount);
  NamedCharacterTable table;
  table.load(written, writtenCount);
  ZnIndex accented = 0;
  for (ZnIndex i = 0; i < readOnlyCount; ++i) {
    const std::string name = readOnly[i].name;
    ZnUnichar code = 0;
    EXPECT_FALSE(table.codeForName(name.data(), ZnIndex(name.size()), &code)) << name;
    const std::u16string units(name.begin(), name.end());
    EXPECT_TRUE(Encoding::lookupNamedCharacter(reinterpret_cast<const ZnUnichar*>(units.data()),
                                               ZnIndex(units.size()), &code))
        << name;
    EXPECT_EQ(code, readOnly[i].code) << name;
    if (code >= 0x00C0 && code < 0x0180)
      ++accented;
  }
  // Latin Extended-A's letters with the eleven marks, less those the
  // written table already names, eight operators, and Minus and the three
  // limits.
  EXPECT_EQ(accented, 71);
  EXPECT_EQ(readOnlyCount, accented + 12);
  ZnIndex length = 0;
  EXPECT_EQ(table.nameForCode(0x017E, &length), nullptr) << "ZHacek is read only";
  EXPECT_EQ(table.nameForCode(0xF113, &length), nullptr) << "LeftAssociation is read only";
}
