//===- MalformedBoxTest.cpp - A box without its parts writes nothing ------===//
//
// Hand-edited and damaged notebooks hold boxes that lack a part the walk
// needs, or have one of the wrong kind. Such a box writes nothing of itself;
// the cells around it convert, the run ends with status 0, and the page
// stays well-formed.
//
//===----------------------------------------------------------------------===//
#include <gtest/gtest.h>
#include <algorithm>
#include <cstdlib>
#include "Indexer/NbtextRunner.h"

namespace {
using NbtextTest::ConvertNotebook;
using NbtextTest::TempDir;

struct Malformed {
  const char* what;
  /// The element of the cell list between the two good cells.
  const char* element;
};

#define OUTPUT(box) "Cell[BoxData[" box "], \"Output\"]"
const Malformed kMalformed[] = {
    // Tab views without a tab, or whose tabs are no rules.
    {"TabViewWithoutTabs", OUTPUT("TabViewBox[{}]")},
    {"TabViewOfNoRules", OUTPUT("TabViewBox[{a}, 3]")},
    {"TabViewSelectingNoTab", OUTPUT("TabViewBox[{{1, \"x\" -> \"y\"}}, 7]")},
    {"TabViewOfAtom", OUTPUT("TabViewBox[x]")},
    // Rules with one side.
    {"RuleAlone", "Rule[a]"},
    {"RuleInBoxes", OUTPUT("RowBox[{Rule[a], \"b\"}]")},
    {"RuleAsCellOption", "Cell[\"x\", \"Text\", Rule[a], RuleDelayed[]]"},
    // Grids whose spans reach past the grid, or that are no grid at all.
    {"GridOfSpanFromAbove", OUTPUT("GridBox[{{\"\\[SpanFromAbove]\"}}]")},
    {"GridOfSpanSymbol", OUTPUT("GridBox[{{SpanFromAbove}}]")},
    {"GridSpansPastTheGrid",
     OUTPUT("GridBox[{{\"a\", \"\\[SpanFromLeft]\"}, {\"\\[SpanFromAbove]\", \"\\[SpanFromBoth]\", \"\\[SpanFromAbove]\"}}]")},
    {"GridOfAtom", OUTPUT("GridBox[x]")},
    {"GridOfRaggedRows", OUTPUT("GridBox[{x, {}, {\"a\"}, {{}}}]")},
    {"GridEmpty", OUTPUT("GridBox[]")},
    // Controls without their parts.
    {"PopupMenuWithoutItems", OUTPUT("PopupMenuBox[x]")},
    {"PopupMenuOfNoRules", OUTPUT("PopupMenuBox[x, {a, Rule[b]}]")},
    {"ActionMenuWithoutItems", OUTPUT("ActionMenuBox[]")},
    {"ButtonEmpty", OUTPUT("ButtonBox[]")},
    {"ButtonWithEmptyURL", OUTPUT("ButtonBox[\"go\", ButtonData -> URL[], BaseStyle -> \"Hyperlink\"]")},
    {"ButtonWithEmptyData", OUTPUT("ButtonBox[\"go\", ButtonData -> {}, BaseStyle -> \"Hyperlink\"]")},
    {"CheckboxEmpty", OUTPUT("CheckboxBox[]")},
    {"RadioButtonEmpty", OUTPUT("RadioButtonBox[]")},
    {"SetterEmpty", OUTPUT("SetterBox[]")},
    {"InputFieldEmpty", OUTPUT("InputFieldBox[]")},
    {"PaneSelectorEmpty", OUTPUT("PaneSelectorBox[{}]")},
    {"PaneSelectorOfEmptyRule", OUTPUT("PaneSelectorBox[{Rule[]}, 1]")},
    {"PanelEmpty", OUTPUT("PanelBox[]")},
    {"DynamicModuleEmpty", OUTPUT("DynamicModuleBox[]")},
    // Layout boxes without their parts.
    {"TemplateEmpty", OUTPUT("TemplateBox[]")},
    {"TemplateWithEmptyFunction", OUTPUT("TemplateBox[{\"a\"}, \"T\", DisplayFunction -> Function[]]")},
    {"TemplateSlotsPastItsArguments",
     OUTPUT("TemplateBox[{\"a\"}, \"T\", DisplayFunction -> (RowBox[{#3, #0, Slot[\"x\"], ##5}] &)]")},
    {"TemplateOfAtom", OUTPUT("TemplateBox[x, \"RowDefault\"]")},
    {"MessageWithoutText", OUTPUT("TemplateBox[{\"a\"}, \"MessageTemplate\"]")},
    {"MessageSlotPastItsValues", OUTPUT("TemplateBox[{\"a\", \"b\", \"\\\"`9` `\\\"\", 1}, \"MessageTemplate\"]")},
    {"LinkWithoutLabel", OUTPUT("TemplateBox[{}, \"RefLink\"]")},
    {"ScriptTemplateWithoutScript", OUTPUT("TemplateBox[{\"x\"}, \"Subsuperscript\"]")},
    {"StyleEmpty", OUTPUT("StyleBox[]")},
    {"StyleWithBrokenColours", OUTPUT("StyleBox[\"x\", FontColor -> RGBColor[1], FontColor -> GrayLevel[]]")},
    {"StyleWithEmptyOptions", OUTPUT("StyleBox[\"x\", FontSize -> {}, FontFamily -> List[], Rule[]]")},
    {"SubscriptWithoutScript", OUTPUT("SubscriptBox[x]")},
    {"SuperscriptEmpty", OUTPUT("SuperscriptBox[]")},
    {"FractionWithoutDenominator", OUTPUT("FractionBox[x]")},
    {"RadicalEmpty", OUTPUT("RadicalBox[]")},
    {"SqrtEmpty", OUTPUT("SqrtBox[]")},
    {"RowEmpty", OUTPUT("RowBox[]")},
    {"CounterEmpty", OUTPUT("CounterBox[]")},
    {"GraphicsWithBrokenSize", OUTPUT("GraphicsBox[x, ImageSize -> {1}, PlotLabel -> None]")},
    {"GraphicsDataEmpty", OUTPUT("GraphicsData[]")},
    // Cells and containers without their parts.
    {"CellEmpty", "Cell[]"},
    {"CellOfEmptyGroup", "Cell[CellGroupData[]]"},
    {"GroupWithoutCells", "Cell[CellGroupData[{}, Open]]"},
    {"InlineCellEmpty", "Cell[TextData[{Cell[], \"x\"}], \"Text\"]"},
    {"BoxDataEmpty", "Cell[BoxData[], \"Input\"]"},
    {"StyleDataEmpty", "Cell[StyleData[]]"},
};
#undef OUTPUT

/// "" when thePage is well-formed (every element that opens closes, in
/// order), else what the checker found.
std::string BalanceProblems(const TempDir& theDir, const std::string& thePage) {
  const std::string page = theDir.write("page.html", thePage);
  const std::string report = theDir.path() + "/report.txt";
  const std::string command = "python3 " NBTEXT_SOURCE_DIR "/tests/Support/html_balanced.py < '" + page + "' > '" +
                              report + "' 2>&1";
  const int status = std::system(command.c_str());
  return status == 0 ? "" : "status " + std::to_string(status) + ": " + theDir.read("report.txt");
}

class MalformedBoxTest : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedBoxTest, WritesNothingAndTheWalkGoesOn) {
  const std::string notebook = std::string("Notebook[{Cell[\"before words\", \"Text\"], ") + GetParam().element +
                               ", Cell[\"after words\", \"Text\"]}]";
  for (bool html : {false, true}) {
    SCOPED_TRACE(html ? "-html" : "text");
    auto run = ConvertNotebook(notebook, html ? std::vector<std::string>{"-html"} : std::vector<std::string>{});
    EXPECT_EQ(run.status, 0) << run.err;
    // Nothing is logged: the file's announcement is the only line.
    EXPECT_EQ(run.err.rfind("Converting ", 0), 0u) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_NE(run.out.find("before words"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("after words"), std::string::npos) << run.out;
    if (html) {
      TempDir dir;
      EXPECT_EQ(BalanceProblems(dir, run.out), "") << run.out;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Boxes, MalformedBoxTest, testing::ValuesIn(kMalformed),
                         [](const testing::TestParamInfo<Malformed>& theInfo) { return theInfo.param.what; });

TEST(MalformedBoxTest, TheBalanceCheckFindsAnUnclosedElement) {
  TempDir dir;
  EXPECT_EQ(BalanceProblems(dir, "<html><body><div>a</div></body></html>"), "");
  EXPECT_NE(BalanceProblems(dir, "<html><body><div>a</body></html>"), "");
  EXPECT_NE(BalanceProblems(dir, "<table><tr><td>a</td></tr>"), "");
}

TEST(MalformedBoxTest, EachDocumentStartsAfresh) {
  // Numbered sections, style sheet entries and open brackets of one
  // notebook leave nothing behind for the next one in the same run.
  TempDir dir;
  const std::string notebook = R"nb(Notebook[{Cell["Intro", "Section"],
      Cell[TextData[{"Part ", CounterBox["Section"]}], "Text"],
      Cell[BoxData[RowBox[{"f", "[", RowBox[{"x", ","}]}]], "Input"],
      Cell[StyleData["Text"]]}])nb";
  const std::string first = dir.write("first.nb", notebook);
  const std::string second = dir.write("second.nb", notebook);
  for (const char* option : {"-noindent", "-html"}) {
    auto one = NbtextTest::RunNbtext({option, first});
    auto two = NbtextTest::RunNbtext({option, first, second});
    EXPECT_EQ(two.status, 0) << two.err;
    EXPECT_EQ(two.out, one.out + one.out) << option;
    EXPECT_NE(one.out.find("Part 1"), std::string::npos) << one.out;
  }
}
} // namespace
