//===- ZnParserTest.cpp - Error reports at the reader's position ----------===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/IO/ZnParser.h"
#include <cstdlib>

using namespace Zn;

namespace {
class ParserTest : public ZnTest::LeakCheckedTest {
protected:
  void SetUp() override {
    LeakCheckedTest::SetUp();
    unsetenv("ZNLOGFILE");
  }
};

class TestParser : public Parser {
public:
  explicit TestParser(Reader* theReader) : Parser(theReader) {}
};

uint32_t sLevel;
SourceRange sRange;
std::string sReport;
int Record(uint32_t theLevel, const String* theSource, const SourceRange* theRange, const String* theMessage) {
  sLevel = theLevel;
  sRange = *theRange;
  sReport = ZnTest::Utf8(theMessage) + " @ " + ZnTest::Utf8(theSource);
  return 7;
}
} // namespace

TEST_F(ParserTest, DefaultHandlerLogsOneBasedRange) {
  auto reader = adopt(new StringReader(adopt(new String("ab\ncd")).get()));
  auto parser = adopt(new TestParser(reader.get()));
  testing::internal::CaptureStderr();
  EXPECT_EQ(parser->reportError(kLogLevelError, "parse error %@", adopt(new String("x")).get()), 0);
  std::string logged = testing::internal::GetCapturedStderr();
  EXPECT_NE(logged.find(": parse error x from 1:1-1:1 in (Memory Buffer)\n"), std::string::npos) << logged;

  ZnUnichar c;
  for (int i = 0; i < 4; ++i)
    reader->readCharacter(&c);
  parser->setErrorHandler(Record);
  EXPECT_EQ(parser->reportError(kLogLevelNestedParseError, "bad"), 7);
  EXPECT_EQ(sLevel, kLogLevelNestedParseError);
  EXPECT_EQ(sRange.startLine, 1);
  EXPECT_EQ(sRange.endColumn, 2);
  EXPECT_EQ(sReport, "bad @ (Memory Buffer)");
  parser->setErrorHandler(nullptr);
  EXPECT_EQ(parser->reportError(kLogLevelError, "ignored"), 0);
}
