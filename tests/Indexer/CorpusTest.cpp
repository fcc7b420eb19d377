//===- CorpusTest.cpp - Every real notebook converts, old formats refused -===//
#include <gtest/gtest.h>
#include <fstream>
#include <sstream>
#include <unistd.h>
#include "Indexer/NbtextRunner.h"
#include "Kx/KxSymbol.h"
#include "NotebookHTMLIndexer.h"
#include "NotebookTextIndexer.h"
#include "Support/ZnTestSupport.h"
#include "Zn/IO/ZnFileStream.h"

namespace {
using Zn::adopt;

struct CorpusFile {
  std::string name;
  std::string era;
};

/// The rows of MANIFEST.tsv: file, bytes, era, features, note.
std::vector<CorpusFile> ReadManifest() {
  std::vector<CorpusFile> files;
  std::ifstream manifest(NBTEXT_CORPUS_DIR "/MANIFEST.tsv");
  std::string line;
  std::getline(manifest, line); // the header
  while (std::getline(manifest, line)) {
    std::istringstream fields(line);
    CorpusFile file;
    std::string bytes;
    std::getline(fields, file.name, '\t');
    std::getline(fields, bytes, '\t');
    std::getline(fields, file.era, '\t');
    if (!file.name.empty())
      files.push_back(file);
  }
  return files;
}

bool CorpusIsPresent() {
  // access rather than stat: a 32-bit stat fails on file systems whose
  // inode numbers need 64 bits.
  return access(NBTEXT_CORPUS_DIR "/MANIFEST.tsv", R_OK) == 0;
}

class CorpusTest : public ZnTest::LeakCheckedTest {};

/// Feeds every notebook that is not refused to one renderer, as the driver
/// feeds a run's files.
void ConvertEveryNotebook(SearchIndexer* theIndexer) {
  int converted = 0;
  for (const CorpusFile& file : ReadManifest()) {
    if (file.era == "ancient")
      continue;
    std::string path = NBTEXT_CORPUS_DIR "/" + file.name;
    auto input = adopt(Zn::FilePointerStream::createForReading(path.c_str()));
    ASSERT_TRUE(input) << path;
    EXPECT_TRUE(convertStream(theIndexer, input.get())) << file.name;
    ++converted;
  }
  EXPECT_EQ(converted, 81);
}

TEST_F(CorpusTest, EveryNotebookConverts) {
  if (!CorpusIsPresent())
    GTEST_SKIP() << "no corpus at " NBTEXT_CORPUS_DIR;
  auto sink = adopt(Zn::FilePointerStream::createForWriting("/dev/null", false));
  ConvertEveryNotebook(adopt<SearchIndexer>(new NotebookTextIndexer(sink.get())).get());
}

class HTMLCorpusTest : public CorpusTest {
protected:
  // The mark-up of input code makes its shared pieces on first use; make
  // them before any test counts the live objects.
  static void SetUpTestSuite() {
    auto sink = adopt(Zn::FilePointerStream::createForWriting("/dev/null", false));
    auto indexer = adopt(new NotebookHTMLIndexer(sink.get()));
    adopt(indexer->decorateBox(adopt(new Zn::Kx::Symbol("x")).get(), true));
  }
};

TEST_F(HTMLCorpusTest, EveryNotebookConvertsToHTML) {
  if (!CorpusIsPresent())
    GTEST_SKIP() << "no corpus at " NBTEXT_CORPUS_DIR;
  auto sink = adopt(Zn::FilePointerStream::createForWriting("/dev/null", false));
  ConvertEveryNotebook(adopt<SearchIndexer>(new NotebookHTMLIndexer(sink.get())).get());
}

TEST(CorpusRefusalTest, AncientNotebooksAreRefused) {
  if (!CorpusIsPresent())
    GTEST_SKIP() << "no corpus at " NBTEXT_CORPUS_DIR;
  int refused = 0;
  for (const CorpusFile& file : ReadManifest()) {
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
