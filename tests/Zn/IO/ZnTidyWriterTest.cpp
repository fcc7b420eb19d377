//===- ZnTidyWriterTest.cpp - Trailing blanks and empty-line runs dropped -===//
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnTidyWriter.h"
#include "Zn/IO/ZnWriter.h"
#include <string>
#include <vector>

using namespace Zn;

namespace {
class TidyWriterTest : public ZnTest::LeakCheckedTest {};

/// Puts each piece in turn (as 8-bit text or as units), ends the document
/// and returns what reached the inner writer.
std::string Tidied(const std::vector<const char*>& thePieces, bool theAsBytes, int theIndent = 0) {
  auto inner = adopt(new StringWriter());
  auto tidy = adopt(new TidyWriter(inner.get()));
  tidy->setIndentLevel(theIndent);
  for (const char* piece : thePieces) {
    if (theAsBytes) {
      EXPECT_TRUE(tidy->putBytes(piece));
    } else {
      auto text = adopt(new String(piece));
      EXPECT_TRUE(tidy->putString(text.get()));
    }
  }
  EXPECT_TRUE(tidy->finishDocument());
  return ZnTest::Utf8(inner->getString());
}
} // namespace

TEST_F(TidyWriterTest, DropsTrailingBlanksAndRunsOfEmptyLines) {
  struct Case {
    std::vector<const char*> pieces;
    int indent;
    const char* expected;
  } cases[] = {
      {{"a \t\nb  "}, 0, "a\nb"},
      {{"a", " ", "\n", "\t", "b"}, 0, "a\n\tb"},
      // Blanks inside a line stay, however many.
      {{"a  b", "\t c"}, 0, "a  b\t c"},
      {{"a ", " b \t", "\n c"}, 0, "a  b\n c"},
      // At most one empty line in a row, also across pieces.
      {{"a\n\n\n\nb"}, 0, "a\n\nb"},
      {{"a\n", "\n", "\n", "b\n\n\n"}, 0, "a\n\nb\n\n"},
      // The document starts at its first character that is no break.
      {{"\n\n  \n", "x"}, 0, "x"},
      {{"\n\n"}, 0, ""},
      // Indentation is blanks: it stays before text and goes on empty lines.
      {{"f[\n\n", "x\n]"}, 1, "f[\n\n\tx\n\t]"},
  };
  for (const Case& c : cases) {
    for (bool asBytes : {false, true})
      EXPECT_EQ(Tidied(c.pieces, asBytes, c.indent), c.expected) << c.pieces[0] << (asBytes ? " as bytes" : "");
  }
}

TEST_F(TidyWriterTest, EachDocumentStartsAfreshAndLongTextGoesOutWhole) {
  auto inner = adopt(new StringWriter());
  auto tidy = adopt(new TidyWriter(inner.get()));
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    tidy->putBytes("word \n");
    expected += "word\n";
  }
  EXPECT_TRUE(tidy->finishDocument());
  tidy->putBytes("\n\nnext  \n\n\n");
  EXPECT_TRUE(tidy->finishDocument());
  EXPECT_EQ(ZnTest::Utf8(inner->getString()), expected + "next\n\n");
}
