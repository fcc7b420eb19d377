//===- FuzzRegressionTest.cpp - Inputs the fuzzers found, replayed ---------===//
//
// Every file in tests/fuzz-regressions/TARGET/ once made the fuzz target
// TARGET fail. Each runs again through the same entry point; a fault aborts
// or trips a sanitizer, as it did under the fuzzer.
//
//===----------------------------------------------------------------------===//
#include <dirent.h>
#include <algorithm>
#include <string>
#include <vector>
#include "FuzzEntryPoints.h"
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnAssert.h"

namespace {

std::vector<std::string> FilesIn(const std::string& theDirectory) {
  std::vector<std::string> files;
  if (DIR* directory = opendir(theDirectory.c_str())) {
    while (dirent* entry = readdir(directory))
      if (entry->d_name[0] != '.')
        files.push_back(theDirectory + "/" + entry->d_name);
    closedir(directory);
  }
  std::sort(files.begin(), files.end());
  return files;
}

struct Target {
  const char* name;
  int (*entry)(const uint8_t*, size_t);
};

class FuzzRegressionTest : public ZnTest::LeakCheckedTest, public testing::WithParamInterface<Target> {
protected:
  // Some tables are built on first use and kept (the marks of input code,
  // for one): a first run builds them before the objects are counted.
  void SetUp() override {
    static const char kWarmUp[] = "Notebook[{Cell[BoxData[RowBox[{\"f\", \"[\", \"\\\"s\\\"\", \"]\"}]], \"Input\"]}]";
    GetParam().entry(reinterpret_cast<const uint8_t*>(kWarmUp), sizeof kWarmUp - 1);
    ZnTest::LeakCheckedTest::SetUp();
  }
  // The entry points install their own assertion handler.
  void TearDown() override {
    Zn::SetAssertionHandler(EndAfterAssertionForTests);
    ZnTest::LeakCheckedTest::TearDown();
  }
};

TEST_P(FuzzRegressionTest, KeptInputsRunCleanly) {
  std::string directory = NBTEXT_SOURCE_DIR "/tests/fuzz-regressions/" + std::string(GetParam().name);
  for (const std::string& file : FilesIn(directory)) {
    SCOPED_TRACE(file);
    std::string bytes = ZnTest::ReadFile(file);
    EXPECT_EQ(GetParam().entry(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzRegressionTest,
                         testing::Values(Target{"escapes", NbtextFuzz::FuzzEscapes},
                                         Target{"reader", NbtextFuzz::FuzzReader},
                                         Target{"parse", NbtextFuzz::FuzzParse},
                                         Target{"convert_text", NbtextFuzz::FuzzConvertText},
                                         Target{"convert_html", NbtextFuzz::FuzzConvertHTML},
                                         Target{"convert_markdown", NbtextFuzz::FuzzConvertMarkdown}),
                         [](const testing::TestParamInfo<Target>& theInfo) { return theInfo.param.name; });
} // namespace
