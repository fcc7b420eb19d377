//===- ZnLogTest.cpp - Time-stamped log lines, standard error or ZNLOGFILE -===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Util/ZnUtil.h"
#include <cstdio>
#include <cstdlib>
#include <regex>
#include <unistd.h>

using namespace Zn;

namespace {
const char* kPrefix = "[0-9]{4}-[0-1][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9]: ";

class LogTest : public ZnTest::LeakCheckedTest {
protected:
  void TearDown() override {
    unsetenv("ZNLOGFILE");
    ZnTest::LeakCheckedTest::TearDown();
  }
};
} // namespace

TEST_F(LogTest, WritesOneTimeStampedLineToStandardError) {
  auto name = adopt(new String("caf\xE9.nb"));
  testing::internal::CaptureStderr();
  Log(kLogLevelError, "could not index file %@", name.get());
  Log(kLogLevelError, "already ends\n");
  std::string out = testing::internal::GetCapturedStderr();
  // Latin-1 units become UTF-8 and each call is exactly one line.
  EXPECT_TRUE(std::regex_match(out, std::regex(std::string("^") + kPrefix + "could not index file caf\xC3\xA9\\.nb\n" +
                                               kPrefix + "already ends\n$")))
      << out;
}

TEST_F(LogTest, AppendsToTheFileNamedByZnLogFile) {
  char path[] = "/tmp/znlogXXXXXX";
  int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(write(fd, "earlier\n", 8), 8);
  close(fd);
  setenv("ZNLOGFILE", path, 1);
  testing::internal::CaptureStderr();
  Log(kLogLevelError, "first %d", 1);
  SourceRange range{0, 4, 1, 0};
  auto message = adopt(new String("parse error"));
  auto source = adopt(new String("in.nb"));
  EXPECT_EQ(LogMessage(kLogLevelError, source.get(), &range, message.get()), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  std::string text = ZnTest::ReadFile(path);
  unlink(path);
  EXPECT_TRUE(std::regex_match(
      text, std::regex(std::string("^earlier\n") + kPrefix + "first 1\n" + kPrefix + "parse error from 1:5-2:1 in in\\.nb\n$")))
      << text;
}

TEST_F(LogTest, AnUnopenableLogFileLosesTheLineQuietly) {
  setenv("ZNLOGFILE", "/nonexistent-dir/log.txt", 1);
  testing::internal::CaptureStderr();
  Log(kLogLevelError, "lost");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
