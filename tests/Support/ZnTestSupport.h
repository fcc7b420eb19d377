//===- ZnTestSupport.h - Shared helpers for the test suite -----------------===//
#pragma once
#include <gtest/gtest.h>
#include <string>
#include <vector>
#include "Zn/Base/ZnObject.h"
#include "Zn/Base/ZnString.h"

namespace Zn {
class Data;
}

/// The assertion handler the test main installs: ends the process with 255.
int EndAfterAssertionForTests(Zn::String* theMessage);

namespace ZnTest {

/// The string's units as UTF-8 (enough for test comparisons).
std::string Utf8(const Zn::String* theString);
/// The object's description as UTF-8.
std::string Describe(const Zn::Object* theObject);
/// The bytes that theData holds.
std::string Bytes(const Zn::Data* theData);
/// theText theCount times over.
std::string Repeat(const std::string& theText, int32_t theCount);
/// The bytes of a file, or "" when it cannot be read.
std::string ReadFile(const std::string& thePath);

/// A row of the shared corpus's MANIFEST.tsv; the era "ancient" marks the
/// plain-text files from before notebooks were expressions.
struct CorpusFile {
  std::string name;
  std::string era;
};
/// The corpus's rows, or none when the corpus is absent.
std::vector<CorpusFile> ReadCorpusManifest();

/// Fixture that fails a test which leaves objects alive that it created.
class LeakCheckedTest : public testing::Test {
protected:
  void SetUp() override { liveAtStart_ = Zn::Object::getLiveObjectCount(); }
  void TearDown() override { EXPECT_EQ(Zn::Object::getLiveObjectCount(), liveAtStart_) << "objects leaked"; }

private:
  ZnIndex liveAtStart_ = 0;
};
} // namespace ZnTest
