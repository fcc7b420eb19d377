//===- ZnDataTest.cpp - Byte buffers: growth, bit fields, files -----------===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnRef.h"
#include <cstdio>
#include <string>
#include <unistd.h>

using namespace Zn;

namespace {
class DataTest : public ZnTest::LeakCheckedTest {};
using DataDeathTest = DataTest;
} // namespace

TEST_F(DataTest, CapacityDoublesFromOneAndNeverShrinks) {
  EXPECT_EQ(adopt(new MutableData(0))->getCapacity(), 0);
  EXPECT_EQ(adopt(new MutableData(5))->getCapacity(), 8);
  auto data = adopt(new MutableData());
  const ZnIndex expected[][2] = {{1, 1}, {3, 4}, {1, 8}, {4, 16}};
  ZnIndex length = 0;
  for (const auto& step : expected) {
    data->appendBytes("abcd", step[0]);
    length += step[0];
    EXPECT_EQ(data->getLength(), length);
    EXPECT_EQ(data->getCapacity(), step[1]) << "after " << length << " bytes";
  }
  data->setLength(0);
  EXPECT_EQ(data->getCapacity(), 16);
  // Replacing beyond the end grows and lengthens; the gap is zeroed.
  data->replaceBytesInRange(Range(2, 2), "xy");
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(data->getBytesPtr()), 4), std::string("\0\0xy", 4));
  EXPECT_EQ(adopt(new MutableData(data.get()))->getCapacity(), 4);
}

TEST_F(DataTest, GetBitsReadsAlignedFieldsLittleEndianAndOthersBitwise) {
  struct Case { const char* bytes; ZnIndex location, length; bool bigEndian; uint32_t expected; } cases[] = {
      {"\x12\x34", 8, 8, false, 0x34},                  {"\x12\x34", 0, 16, false, 0x3412},
      {"\x12\x34", 0, 16, true, 0x1234},                {"\x01\x02\x03\x04", 0, 32, false, 0x04030201},
      {"\x01\x02\x03\x04", 0, 32, true, 0x01020304},  {"\xA5", 0, 4, true, 0xA},
      // little-endian of an unaligned field: moved up, then bytes reversed
      {"\xA5", 0, 4, false, 0xA0},
      {"\x12\x34", 4, 8, true, 0x23},
      {"\x12\x34", 4, 12, false, 0x4023},
      {"\x12", 3, 0, true, 0},
  };
  for (const Case& c : cases) {
    auto data = adopt(new Data(c.bytes, ZnIndex(std::char_traits<char>::length(c.bytes))));
    EXPECT_EQ(data->getBits(Range(c.location, c.length), c.bigEndian), c.expected)
        << c.location << "+" << c.length << (c.bigEndian ? " big" : " little");
  }
}

TEST_F(DataTest, WriteToFileReportsFailure) {
  std::string path = testing::TempDir() + "ZnDataTest.bin";
  auto data = adopt(new Data("\x00\x01\xFF", 3));
  ASSERT_TRUE(data->writeToFile(path.c_str()));
  FILE* file = std::fopen(path.c_str(), "rb");
  char back[8];
  EXPECT_EQ(std::fread(back, 1, sizeof back, file), 3u);
  std::fclose(file);
  unlink(path.c_str());
  EXPECT_FALSE(data->writeToFile("/nonexistent-dir/x.bin"));
}

TEST_F(DataDeathTest, RangesBeyondTheBytesAreAssertions) {
  auto data = adopt(new Data("ab", 2));
  char out[4];
  EXPECT_EXIT(data->getBytes(Range(1, 2), out), testing::ExitedWithCode(255), "theRange.getMaximum\\(\\) <= length_");
  EXPECT_EXIT(data->getBits(Range(0, 33), false), testing::ExitedWithCode(255),
              "\\(theBitRange.length >= 0\\) && \\(theBitRange.length <= 32\\)");
  EXPECT_EXIT(data->getBits(Range(9, 8), false), testing::ExitedWithCode(255), "theBitRange.getMaximum\\(\\) <= 8\\*length_");
}
