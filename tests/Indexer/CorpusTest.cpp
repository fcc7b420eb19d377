//===- CorpusTest.cpp - Notebooks of older formats are refused -----------===//
#include <gtest/gtest.h>
#include "Indexer/NbtextRunner.h"
#include "Support/ZnTestSupport.h"

namespace {
using ZnTest::CorpusFile;
using ZnTest::ReadCorpusManifest;

TEST(CorpusRefusalTest, AncientNotebooksAreRefused) {
  if (ReadCorpusManifest().empty())
    GTEST_SKIP() << "no corpus at " NBTEXT_CORPUS_DIR;
  int refused = 0;
  for (const CorpusFile& file : ReadCorpusManifest()) {
    if (file.era != "ancient")
      continue;
    std::string path = NBTEXT_CORPUS_DIR "/" + file.name;
    auto run = NbtextTest::RunNbtext({path});
    EXPECT_EQ(run.status, 255) << file.name;
    EXPECT_EQ(run.out, "") << file.name;
    std::string err = NbtextTest::WithoutTimeStamps(run.err);
    EXPECT_EQ(err, "Converting " + path + "\ncould not index file " + path +
                       ": old plain-text notebook format, which is not read\n");
    ++refused;
  }
  EXPECT_EQ(refused, 3);
}
} // namespace
