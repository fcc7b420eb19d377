//===- CorpusTest.cpp - Every real notebook converts, old formats refused -===//
#include <gtest/gtest.h>
#include "Indexer/NbtextRunner.h"
#include "Kx/KxSymbol.h"
#include "NotebookHTMLIndexer.h"
#include "NotebookTextIndexer.h"
#include "Support/ZnTestSupport.h"
#include "Zn/IO/ZnFileStream.h"

namespace {
using Zn::adopt;
using ZnTest::CorpusFile;
using ZnTest::ReadCorpusManifest;

class CorpusTest : public ZnTest::LeakCheckedTest {
protected:
  // The mark-up of input code makes its shared pieces on first use; make
  // them before any test counts the live objects.
  static void SetUpTestSuite() {
    auto sink = adopt(Zn::FilePointerStream::createForWriting("/dev/null", false));
    auto indexer = adopt(new NotebookHTMLIndexer(sink.get()));
    adopt(indexer->decorateBox(adopt(new Zn::Kx::Symbol("x")).get(), true));
  }
};

// Every notebook that is not refused goes to each renderer, as the driver
// feeds a run's files: the parse, the walk and the output must all succeed.
TEST_F(CorpusTest, EveryNotebookConvertsWithBothRenderers) {
  if (ReadCorpusManifest().empty())
    GTEST_SKIP() << "no corpus at " NBTEXT_CORPUS_DIR;
  auto sink = adopt(Zn::FilePointerStream::createForWriting("/dev/null", false));
  for (auto indexer : {adopt<SearchIndexer>(new NotebookTextIndexer(sink.get())),
                       adopt<SearchIndexer>(new NotebookHTMLIndexer(sink.get()))}) {
    int converted = 0;
    for (const CorpusFile& file : ReadCorpusManifest()) {
      if (file.era == "ancient")
        continue;
      auto input = adopt(Zn::FilePointerStream::createForReading((NBTEXT_CORPUS_DIR "/" + file.name).c_str()));
      ASSERT_TRUE(input) << file.name;
      EXPECT_TRUE(convertStream(indexer.get(), input.get())) << file.name << " by " << indexer->className();
      ++converted;
    }
    EXPECT_EQ(converted, 81);
  }
}

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
    EXPECT_NE(err.find("could not index file " + path + "\n"), std::string::npos) << err;
    ++refused;
  }
  EXPECT_EQ(refused, 3);
}
} // namespace
