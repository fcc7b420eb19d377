//===- SearchIndexerTest.cpp - The walk's hooks and the code mark-up ------===//
#include <gtest/gtest.h>
#include <string>
#include <vector>
#include "Kx/KxExpr.h"
#include "Kx/KxExprParser.h"
#include "Kx/KxSymbol.h"
#include "NotebookTextIndexer.h"
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnDataStream.h"

namespace {
using Zn::adopt;

/// +1. The expression that theText parses to.
Zn::Kx::Expr* Parse(const char* theText) {
  auto text = adopt(new Zn::String(theText));
  return Zn::Kx::ParseExpressionFromString(text.get());
}

using ZnTest::Describe; // an expression's description is its input form

/// Records the hooks that the walk calls, over the text renderer.
class RecordingIndexer : public NotebookTextIndexer {
public:
  explicit RecordingIndexer(Zn::Stream* theStream) : NotebookTextIndexer(theStream) {}
  std::vector<std::string> calls;

  void setTitle(Zn::Kx::Expr* theTitle, const IndexContext& theContext) override {
    calls.push_back("title " + ZnTest::Utf8(adopt(stringForBox(theTitle, theContext)).get()));
  }
  void setNotebookKind(Zn::Kx::Symbol* theKind) override { calls.push_back("kind " + Describe(theKind)); }
  void setEvaluator(Zn::String* theName) override { calls.push_back("evaluator " + ZnTest::Utf8(theName)); }
  void noteCellOption(Zn::String* theText) override { calls.push_back("option " + ZnTest::Utf8(theText)); }
  void setWindowSize(double theWidth, double theHeight) override {
    calls.push_back("size " + std::to_string(int(theWidth)) + "x" + std::to_string(int(theHeight)));
  }
  void setStyleDefinitions(Zn::Kx::Expr* theValue) override { calls.push_back("styles " + Describe(theValue)); }
  void beginCell(Zn::Kx::Expr*, const IndexContext& theContext) override {
    calls.push_back("cell " + ZnTest::Utf8(theContext.cellStyle.get()));
  }

protected:
  ~RecordingIndexer() override = default;
};

/// Runs theIndexer over theNotebook held in memory.
bool Index(SearchIndexer* theIndexer, const char* theNotebook) {
  auto data = adopt(new Zn::Data(reinterpret_cast<const uint8_t*>(theNotebook), ZnIndex(strlen(theNotebook))));
  auto stream = adopt(new Zn::DataStream(data.get(), true, false));
  return theIndexer->indexStream(stream.get());
}

class SearchIndexerTest : public ZnTest::LeakCheckedTest {
protected:
  // The code mark-up makes its shared pieces on first use; make them before
  // any test counts the live objects.
  static void SetUpTestSuite() {
    auto indexer = adopt(new SearchIndexer());
    auto box = adopt(Parse("RowBox[{\"x\"}]"));
    adopt(indexer->decorateBox(box.get(), true));
  }
};

TEST_F(SearchIndexerTest, CallsTheHooksARendererOverrides) {
  auto output = adopt(new Zn::DataStream(adopt(new Zn::MutableData()).get(), false, true));
  auto indexer = adopt(new RecordingIndexer(output.get()));
  ASSERT_TRUE(Index(indexer.get(), R"nb(Notebook[{
      Cell["Report", "Title"],
      Cell[TextData[{"body ", Cell[BoxData["inline"], "Title"]}], "Text", CellTags->"intro", Author->Automatic,
        Evaluator->"Local"],
      Cell[StyleData["Text"], FontSize->12]},
    WindowSize->{640, 480}, WindowTitle->"Window", WindowClickSelect->False,
    StyleDefinitions->"Default.nb", Evaluator->"Remote"])nb"));
  const std::vector<std::string> expected = {
      "size 640x480", "title Window", "kind Palette", "styles \"Default.nb\"", "evaluator Remote",
      "cell Title",   "title Report", "cell Text",    "option intro",      "evaluator Local",
      // A cell inside another's text is no cell of its own; a cell whose
      // second argument is no string has no style name.
      "cell ",
      // After the walk: the notebook holds style sheet entries.
      "kind Style"};
  EXPECT_EQ(indexer->calls, expected);

  // Nothing of a document carries over to the next.
  indexer->calls.clear();
  ASSERT_TRUE(Index(indexer.get(), "Notebook[{}]"));
  EXPECT_EQ(indexer->calls, std::vector<std::string>{});
}

TEST_F(SearchIndexerTest, MarksUpCommentsStringsAndLocalVariablesOfInputCells) {
  auto indexer = adopt(new SearchIndexer());
#define COMMENT "FontSlant -> \"Italic\", FontColor -> RGBColor[0.262745, 0.537255, 0.345098]"
  const struct {
    const char* box;
    const char* decorated;
  } cases[] = {
      // Other cells are left alone.
      {R"nb(Cell[BoxData[RowBox[{"x", "(*", "c", "*)"}]], "Output"])nb",
       R"nb(Cell[BoxData[RowBox[{"x", "(*", "c", "*)"}]], "Output"])nb"},
      {R"nb(Cell[BoxData[RowBox[{"x", "=", "\"s\""}]], "Input", CellTags -> "t"])nb",
       R"nb(Cell[BoxData[RowBox[{"x", "=", StyleBox["\"s\"", FontColor -> GrayLevel[0.400000]]}]], "Input", CellTags -> "t"])nb"},
      {R"nb(Cell[BoxData[RowBox[{"x", RowBox[{"(*", " ", "note", " ", "*)"}]}]], "Code"])nb",
       R"nb(Cell[BoxData[RowBox[{"x", StyleBox[RowBox[{"(*", " ", "note", " ", "*)"}], )nb" COMMENT "]}]], \"Code\"]"},
      {R"nb(Cell[BoxData[RowBox[{"a", "(*", "b", "*)", "c"}]], "Input"])nb",
       R"nb(Cell[BoxData[RowBox[{"a", StyleBox[RowBox[{"(*", "b", "*)"}], )nb" COMMENT "], \"c\"}]], \"Input\"]"},
      {R"nb(Cell[BoxData[RowBox[{"Module", "[", RowBox[{RowBox[{"{", RowBox[{"x", ",", RowBox[{"y", "=", "1"}]}], "}"}], ",", "x"}], "]"}]], "Input"])nb",
       R"nb(Cell[BoxData[RowBox[{"Module", "[", RowBox[{RowBox[{"{", RowBox[{StyleBox["x", FontColor -> GrayLevel[0.600000]], ",", RowBox[{StyleBox["y", FontColor -> GrayLevel[0.600000]], "=", "1"}]}], "}"}], ",", "x"}], "]"}]], "Input"])nb"},
      {R"nb(Cell[BoxData[RowBox[{"Table", "[", RowBox[{"i", ",", RowBox[{"{", RowBox[{"i", ",", "3"}], "}"}]}], "]"}]], "Input"])nb",
       R"nb(Cell[BoxData[RowBox[{"Table", "[", RowBox[{"i", ",", RowBox[{"{", RowBox[{StyleBox["i", FontColor -> GrayLevel[0.600000]], ",", "3"}], "}"}]}], "]"}]], "Input"])nb"},
      // Dynamic content and graphics stay as they are.
      {R"nb(Cell[BoxData[DynamicBox[RowBox[{"\"s\""}]]], "Input"])nb",
       R"nb(Cell[BoxData[DynamicBox[RowBox[{"\"s\""}]]], "Input"])nb"},
  };
#undef COMMENT
  for (const auto& test : cases) {
    auto box = adopt(Parse(test.box));
    ASSERT_TRUE(box) << test.box;
    auto decorated = adopt(indexer->decorateBox(box.get(), false));
    EXPECT_EQ(Describe(decorated.get()), test.decorated);
  }
}

TEST_F(SearchIndexerTest, DecoratingSharesWhatItDoesNotChange) {
  auto indexer = adopt(new SearchIndexer());
  auto box = adopt(Parse(R"nb(Cell[BoxData[RowBox[{"a", "+", "b"}]], "Text"])nb"));
  auto same = adopt(indexer->decorateBox(box.get(), false));
  EXPECT_EQ(same.get(), box.get());
  auto row = adopt(Parse(R"nb(RowBox[{"a", "+", "b"}])nb"));
  auto code = adopt(indexer->decorateBox(row.get(), true));
  EXPECT_EQ(code.get(), row.get());
}
} // namespace
