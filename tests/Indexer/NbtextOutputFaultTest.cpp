//===- NbtextOutputFaultTest.cpp - Output that cannot be written -----------===//
//
// When the text cannot be delivered (no standard output, a reader that
// closed the pipe early, a full device) the document is refused: the log
// line with the system's reason and status 255, never a death by signal.
// The next file is still attempted, and refused for the same reason.
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

// Runs nbtext with theMode on theFile, twice, inside theShape, a shell command in which "NBTEXT"
// stands for the converter's command and that leaves its exit status in the
// file "status" and its standard error in "err".
FaultRun RunShape(const TempDir& theDir, const char* theMode, const std::string& theFile, std::string theShape) {
  std::string nbtext = std::string(NBTEXT_EMULATOR) + " '" + NBTEXT_BINARY + "' " + theMode + " '" + theFile + "' '" +
                       theFile + "' 2>'" +
                       theDir.path() + "/err'; echo $? >'" + theDir.path() + "/status'";
  theShape.replace(theShape.find("NBTEXT"), 6, nbtext);
  int ignored = std::system(("unset ZNLOGFILE; " + theShape).c_str());
  (void)ignored;
  std::string status = theDir.read("status");
  return {status.substr(0, status.find('\n')), WithoutTimeStamps(theDir.read("err"))};
}

TEST(NbtextOutputFaultTest, EveryWriteFaultIsARefusal) {
  TempDir dir;
  // Far more text than a pipe holds, so that writing goes on after the
  // reader has gone.
  std::string file = dir.write("big.nb", "Notebook[{Cell[\"" + std::string(1 << 20, 'z') + "\", \"Text\"]}]");
  const struct { const char *shape, *reason; } faults[] = {
      // The input file takes the free descriptor 1, open for reading only.
      {"{ NBTEXT; } >&-", "Bad file descriptor"},
      {"{ NBTEXT; } | head -c 1 >/dev/null", "Broken pipe"},
      {"{ NBTEXT; } >/dev/full", "No space left on device"},
  };
  const std::string announced = "Converting " + file + "\n";
  // The page is held back in large pieces: a fault shows all the same.
  for (const char* mode : {"", "-html"}) {
    for (const auto& fault : faults) {
      FaultRun run = RunShape(dir, mode, file, fault.shape);
      EXPECT_EQ(run.status, "255") << mode << " " << fault.shape << ": " << run.err;
      const std::string refused = "could not index file " + file + ": writing the output failed: " + fault.reason + "\n";
      EXPECT_EQ(run.err, announced + refused + announced + refused) << mode << " " << fault.shape;
    }
    // A page smaller than what is held back goes out when it ends, in time
    // to be refused.
    std::string small = dir.write("small.nb", "Notebook[{Cell[\"z\", \"Text\"]}]");
    EXPECT_EQ(RunShape(dir, mode, small, "{ NBTEXT; } >/dev/full").status, "255") << mode;
  }
}
} // namespace
