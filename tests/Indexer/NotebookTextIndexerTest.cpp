//===- NotebookTextIndexerTest.cpp - Plain-text output, byte for byte -----===//
#include <gtest/gtest.h>
#include "Indexer/NbtextRunner.h"

namespace {
using NbtextTest::ConvertNotebook;

struct Golden {
  const char* name;
  const char* notebook; // the cells, inside Notebook[{...}]
  const char* expected;
};

void PrintTo(const Golden& theCase, std::ostream* theStream) { *theStream << theCase.name; }

const Golden kGoldens[] = {
    // Cells and their separation.
    {"EmptyNotebook", "", ""},
    {"CellWithoutStyleHasNoSeparator", R"nb(Cell["just text"])nb", "just text"},
    {"StyledCellsAreSeparatedByAnEmptyLine", R"nb(Cell["First", "Title"], Cell["Second", "Text"])nb",
     "First\n\nSecond\n\n"},
    {"CellGroupShowsItsCellsNotItsState",
     R"nb(Cell[CellGroupData[{Cell["A", "Section"], Cell["b", "Text"]}, Closed]])nb", "A\n\nb\n\n"},
    {"TextDataJoinsItsPieces",
     R"nb(Cell[TextData[{"plain ", StyleBox["bold", FontWeight->"Bold"], " end"}], "Text"])nb",
     "plain bold end\n\n"},
    // The style entry itself writes nothing; its cell still ends with the separator.
    {"StyleDataProducesNothing", R"nb(Cell[StyleData["Text"], FontSize->12], Cell["x", "Text"])nb", "x\n\n"},
    // Rows: operators, commas, brackets.
    {"SpacesAroundBinaryOperators", R"nb(Cell[BoxData[RowBox[{"a", "+", "b", "*", "c"}]], "Input"])nb",
     "a + b * c\n\n"},
    {"SpaceAfterCommaOnly", R"nb(Cell[BoxData[RowBox[{"f", "[", RowBox[{"x", ",", "y"}], "]"}]], "Input"])nb",
     "f[x, y]\n\n"},
    {"SpacesAroundComparisons",
     R"nb(Cell[BoxData[RowBox[{RowBox[{"x", "==", "y"}], ",", RowBox[{"x", "=!=", "y"}], ",", RowBox[{"x", ">=", "y"}]}]], "Input"])nb",
     "x == y, x =!= y, x>=y\n\n"},
    {"IndentingNewLineIndentsInsideBrackets",
     R"nb(Cell[BoxData[RowBox[{"Module", "[", RowBox[{RowBox[{"{", "x", "}"}], ",", "\[IndentingNewLine]", RowBox[{"x", "=", "1"}]}], "\[IndentingNewLine]", "]"}]], "Input"])nb",
     "Module[{x},\n\tx = 1\n]\n\n"},
    {"NestedBracketsIndentTwice",
     R"nb(Cell[BoxData[RowBox[{"f", "[", "\[IndentingNewLine]", RowBox[{"g", "[", "\[IndentingNewLine]", "x", "\[IndentingNewLine]", "]"}], "\[IndentingNewLine]", "]"}]], "Input"])nb",
     "f[\n\tg[\n\t\tx\n\t]\n]\n\n"},
    {"ItemBeforeAClosingBracketIsOutside",
     R"nb(Cell[BoxData[RowBox[{"f", "[", RowBox[{"\[IndentingNewLine]", "x"}], "]"}]], "Input"])nb",
     "f[\nx]\n\n"},
    // Two-dimensional boxes.
    {"FractionGroupsACompoundNumerator", R"nb(Cell[BoxData[FractionBox[RowBox[{"a", "+", "b"}], "2"]], "Output"])nb",
     "(a + b)/2\n\n"},
    {"SquareRootSign", R"nb(Cell[BoxData[SqrtBox["x"]], "Output"])nb", "\xE2\x88\x9Ax\n\n"},
    {"RadicalWithIndex", R"nb(Cell[BoxData[RadicalBox["x", "3"]], "Output"])nb", "(x)^(1/3)\n\n"},
    {"SuperscriptAndSubscript",
     R"nb(Cell[BoxData[RowBox[{SuperscriptBox["x", "2"], "+", SubscriptBox["y", "i"]}]], "Output"])nb",
     "x^2 + yi\n\n"},
    {"GridIsTabSeparated", R"nb(Cell[BoxData[GridBox[{{"a", "b"}, {"c", "d"}}]], "Output"])nb",
     "a\tb\nc\td\n\n"},
    {"WrappersShowTheirDisplayedForm",
     R"nb(Cell[BoxData[RowBox[{TagBox["t", "tag"], InterpretationBox["shown", hidden], FormBox["f", TraditionalForm]}]], "Output"])nb",
     "tshownf\n\n"},
    {"PaneSelectorShowsTheFirstPane",
     R"nb(Cell[BoxData[PaneSelectorBox[{False -> "closed", True -> "open"}, Dynamic[x]]], "Output"])nb",
     "closed\n\n"},
    {"CountersNumberTheCellsOfAStyle",
     R"nb(Cell[TextData[{CounterBox["Section"], ". One"}], "Section"], Cell[TextData[{CounterBox["Section"], ". Two ", CounterBox["Figure"]}], "Section"])nb",
     "1. One\n\n2. Two 0\n\n"},
    // Dynamic content.
    {"DynamicIsAPlaceholder", R"nb(Cell[BoxData[DynamicBox[ToBoxes[x, StandardForm]]]])nb", "-Dynamic-"},
    {"DynamicModuleShowsItsBody",
     R"nb(Cell[BoxData[DynamicModuleBox[{x = 1}, RowBox[{"body", " ", DynamicBox[x]}]]], "Output"])nb",
     "body -Dynamic-\n\n"},
    // Controls.
    {"CheckboxStates",
     R"nb(Cell[BoxData[RowBox[{CheckboxBox[True], CheckboxBox[False], CheckboxBox[Dynamic[x]], CheckboxBox[]}]], "Output"])nb",
     " [X]  [ ]  [-]  [-]\n\n"},
    {"RadioButtonsCompareValueAndCurrent",
     R"nb(Cell[BoxData[RowBox[{RadioButtonBox[1, {1}], "one", RadioButtonBox[1, {2}], "two"}]], "Output"])nb",
     " (*) one ( ) two\n\n"},
    {"InputFieldsWithTextEmptyAndDynamic",
     R"nb(Cell[BoxData[RowBox[{InputFieldBox["\"abc\"", String], InputFieldBox["\"\"", String], InputFieldBox[Dynamic[name], String]}]], "Output"])nb",
     "|__abc__||________||__name__|\n\n"},
    {"PopupMenuMarksTheChosenItem",
     R"nb(Cell[BoxData[PopupMenuBox["b", {"a" -> "\"A\"", "b" -> "\"B\"", "c" -> "\"C\""}]], "Output"])nb",
     "\t  A\n\t* B\n\t  C\n\n"},
    {"PopupMenuSkipsPlainValues",
     R"nb(Cell[BoxData[PopupMenuBox[Dynamic[m], {"x", "y" -> "Y"}]], "Output"])nb", "\t  Y\n\n"},
    {"ActionMenuShowsLabelAndItems",
     R"nb(Cell[BoxData[ActionMenuBox["\"Go\"", {"\"One\"" :> f[], "\"Two\"" :> g[]}]], "Output"])nb",
     "Go\n\tOne\n\tTwo\n\n"},
    {"SetterShowsLabelOrValue",
     R"nb(Cell[BoxData[RowBox[{SetterBox[Dynamic[x], {1}, "\"one\""], SetterBox[Dynamic[x], "\"two\""]}]], "Output"])nb",
     "onetwo\n\n"},
    {"TabViewShowsEveryTab",
     R"nb(Cell[BoxData[TabViewBox[{{1, "\"P\"" -> "pages"}, {2, "\"Q\"" -> "quires"}}, 2]], "Output"])nb",
     "P\npages\nQ\nquires\n\n"},
    {"PanelShowsItsContents", R"nb(Cell[BoxData[PanelBox["inside"]], "Output"])nb", "inside\n\n"},
    // Buttons and hyperlinks.
    {"PlainButtonShowsItsLabel", R"nb(Cell[BoxData[ButtonBox["Press", ButtonFunction :> f[]]], "Output"])nb",
     "Press\n\n"},
    {"HyperlinkFromURLData",
     R"nb(Cell[TextData[{"see ", ButtonBox["site", BaseStyle->"Hyperlink", ButtonData->{URL["http://a.example/"], None}]}], "Text"])nb",
     "see site <http://a.example/>\n\n"},
    {"HyperlinkFromStyleAndStringData",
     R"nb(Cell[TextData[{ButtonBox["doc", ButtonStyle->"Hyperlink", ButtonData->"http://d.example/"], ButtonBox["none", BaseStyle->"Hyperlink"]}], "Text"])nb",
     "doc <http://d.example/>none <>\n\n"},
    {"LinkToANotebookIsAButton",
     R"nb(Cell[TextData[{ButtonBox["ref", BaseStyle->"Link", ButtonData->"paclet:ref/Plot"]}], "Text"])nb",
     "ref\n\n"},
    // Graphics.
    {"GraphicsShowOnlyTheirLabels",
     R"nb(Cell[BoxData[GraphicsBox[{LineBox[{{0, 0}, {1, 1}}], Text["hidden"]}, AxesLabel->{"t", None}, PlotLabel->FormBox["Orbit", TraditionalForm], FrameLabel->{{None, None}, {None, None}}]], "Output"])nb",
     "t\nOrbit\n\n"},
    {"GraphicsWithoutLabelsShowNothing",
     R"nb(Cell[BoxData[Graphics3DBox[{PolygonBox[{{0, 0, 0}}]}, ImageSize->Small]], "Output"])nb", ""},
    // Strings: escapes, named characters, quotes.
    {"EscapesShowAsTheCharacters", R"nb(Cell["say \"hi\"\nback\\slash\ttab", "Text"])nb",
     "say \"hi\"\nback\\slash\ttab\n\n"},
    {"StringMarkersAndContinuationsVanish", "Cell[\"\\<one \\\ntwo\\>\", \"Text\"]", "one two\n\n"},
    {"NamedCharacters", R"nb(Cell["\[Alpha] \[Rule] \[Pi] \[Infinity] caf\[EAcute] \:4e2d x\[InvisibleSpace]y", "Text"])nb",
     "\\[Alpha] -> Pi \xE2\x88\x9E caf\xC3\xA9 \xE4\xB8\xAD xy\n\n"},
    // Bytes that are no UTF-8, from a notebook saved as Latin-1.
    {"Latin1BytesReadAsTheirCharacters", "Cell[\"na\xefve and caf\xe9s here\", \"Text\"]",
     "na\xC3\xAFve and caf\xC3\xA9s here\n\n"},
    {"QuotesShowInInputCode", R"nb(Cell[BoxData[RowBox[{"Print", "[", "\"\<hello\>\"", "]"}]], "Input"])nb",
     "Print[\"hello\"]\n\n"},
    {"StyleBoxCanHideQuotes",
     R"nb(Cell[BoxData[RowBox[{StyleBox["\"q\"", ShowStringCharacters->False], StyleBox["\"r\"", ShowStringCharacters->True]}]], "Output"])nb",
     "q\"r\"\n\n"},
    {"SymbolsLoseTheirContext", R"nb(Cell[TextData[{Global`alpha, " ", beta}], "Text"])nb", "alpha beta\n\n"},
    {"BoxGroupInsideAString", R"nb(Cell["x \!\(a\^2\) y", "Text"])nb", "x a^2 y\n\n"},
    {"EmbeddedBoxInsideAString",
     R"nb(Cell["\!\(\*SubscriptBox[\(\[Omega]\), \(b\)]\) and \!\(\*SuperscriptBox[\(]\), \(2\)]\)", "Text"])nb",
     "\\[Omega]b and ]^2\n\n"},
    // A string literal of code holding a group: the element's quotes are escaped twice.
    {"EmbeddedBoxInsideAStringLiteralOfCode",
     R"nb(Cell[BoxData[RowBox[{"\"\<|\!\(\*StyleBox[\\\"DREPE\\\", Background->RGBColor[1, 1, 0]]\)| = \>\"", "<>", "s"}]], "Input"])nb",
     "\"|DREPE| = \"<>s\n\n"},
    {"EmbeddedBoxAfterAnEscapedLineEnd",
     R"nb(Cell["Angle \!\(\*\nStyleBox[\"\[Alpha]\",\tFontSlant->\"Italic\"]\): x", "Text"])nb", "Angle \\[Alpha]: x\n\n"},
};

class NotebookTextGoldenTest : public testing::TestWithParam<Golden> {};

TEST_P(NotebookTextGoldenTest, WritesExactly) {
  const Golden& golden = GetParam();
  auto run = ConvertNotebook(std::string("Notebook[{") + golden.notebook + "}]");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, golden.expected);
}

INSTANTIATE_TEST_SUITE_P(Boxes, NotebookTextGoldenTest, testing::ValuesIn(kGoldens),
                         [](const testing::TestParamInfo<Golden>& theInfo) { return theInfo.param.name; });

TEST(NotebookTextIndexerTest, NoIndentKeepsLinesFlushButMenusIndented) {
  const char* notebook = R"nb(Notebook[{Cell[BoxData[RowBox[{"f", "[", "\[IndentingNewLine]", "x", ",", PopupMenuBox[1, {1 -> "\"a\""}], "\[IndentingNewLine]", "]"}]], "Input"]}])nb";
  EXPECT_EQ(ConvertNotebook(notebook, {"-noindent"}).out, "f[\nx,\n\t* a\n\n]\n\n");
  EXPECT_EQ(ConvertNotebook(notebook).out, "f[\n\tx,\n\t\t* a\n\n]\n\n");
}
} // namespace
