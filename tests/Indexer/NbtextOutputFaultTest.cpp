//===- NbtextOutputFaultTest.cpp - Output that cannot be written -----------===//
//
// When the text cannot be delivered (no standard output, a reader that
// closed the pipe early, a full device) the file is refused: the log line
// and status 255, never a death by signal.
//
//===----------------------------------------------------------------------===//
#include <gtest/gtest.h>
#include <cstdlib>
#include <string>
#include "Indexer/NbtextRunner.h"

namespace {
using NbtextTest::TempDir;
using NbtextTest::WithoutTimeStamps;

struct FaultRun {
  std::string status; // as the shell printed it
  std::string err;
};

// Runs nbtext on theFile inside theShape, a shell command in which "NBTEXT"
// stands for the converter's command and that leaves its exit status in the
// file "status" and its standard error in "err".
FaultRun RunShape(const TempDir& theDir, const std::string& theFile, std::string theShape) {
  std::string nbtext = std::string(NBTEXT_EMULATOR) + " '" + NBTEXT_BINARY + "' '" + theFile + "' 2>'" +
                       theDir.path() + "/err'; echo $? >'" + theDir.path() + "/status'";
  theShape.replace(theShape.find("NBTEXT"), 6, nbtext);
  int ignored = std::system(("unset ZNLOGFILE; " + theShape).c_str());
  (void)ignored;
  std::string status = theDir.read("status");
  return {status.substr(0, status.find('\n')), WithoutTimeStamps(theDir.read("err"))};
}

class NbtextOutputFaultTest : public testing::Test {
protected:
  void SetUp() override {
    // Far more text than a pipe holds, so that writing goes on after the
    // reader has gone.
    file_ = dir_.write("big.nb", "Notebook[{Cell[\"" + std::string(1 << 20, 'z') + "\", \"Text\"]}]");
  }
  void ExpectRefused(const FaultRun& theRun, const char* theWhat) {
    EXPECT_EQ(theRun.status, "255") << theWhat << ": " << theRun.err;
    EXPECT_NE(theRun.err.find("could not index file " + file_ + "\n"), std::string::npos) << theWhat;
  }
  TempDir dir_;
  std::string file_;
};

TEST_F(NbtextOutputFaultTest, ClosedStandardOutputIsARefusal) {
  ExpectRefused(RunShape(dir_, file_, "{ NBTEXT; } >&-"), "closed standard output");
}

TEST_F(NbtextOutputFaultTest, PipeClosedByTheReaderIsARefusal) {
  ExpectRefused(RunShape(dir_, file_, "{ NBTEXT; } | head -c 1 >/dev/null"), "pipe closed early");
}

TEST_F(NbtextOutputFaultTest, FullDeviceIsARefusal) {
  ExpectRefused(RunShape(dir_, file_, "{ NBTEXT; } >/dev/full"), "/dev/full");
}
} // namespace
