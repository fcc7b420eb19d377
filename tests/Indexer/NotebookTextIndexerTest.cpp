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
    {"StyledCellsAreSeparatedByAnEmptyLine", R"nb(Cell["First", "Title"], Cell["Second", "Text"])nb",
     "First\n\nSecond\n\n"},
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
    {"PopupMenuSkipsPlainValues",
     R"nb(Cell[BoxData[PopupMenuBox[Dynamic[m], {"x", "y" -> "Y"}]], "Output"])nb", "\t  Y\n\n"},
    // Buttons and hyperlinks.
    {"PlainButtonShowsItsLabel", R"nb(Cell[BoxData[ButtonBox["Press", ButtonFunction :> f[]]], "Output"])nb",
     "Press\n\n"},
    {"LinkToANotebookIsAButton",
     R"nb(Cell[TextData[{ButtonBox["ref", BaseStyle->"Link", ButtonData->"paclet:ref/Plot"]}], "Text"])nb",
     "ref\n\n"},
    // Graphics.
    {"GraphicsWithoutLabelsShowNothing",
     R"nb(Cell[BoxData[Graphics3DBox[{PolygonBox[{{0, 0, 0}}]}, ImageSize->Small]], "Output"])nb", ""},
    // Strings: escapes, named characters, quotes.
    {"EscapesShowAsTheCharacters", R"nb(Cell["say \"hi\"\nback\\slash\ttab", "Text"])nb",
     "say \"hi\"\nback\\slash\ttab\n\n"},
    {"StringMarkersAndContinuationsVanish", "Cell[\"\\<one \\\ntwo\\>\", \"Text\"]", "one two\n\n"},
    // Bytes that are no UTF-8, from a notebook saved as Latin-1.
    {"Latin1BytesReadAsTheirCharacters", "Cell[\"na\xefve and caf\xe9s here\", \"Text\"]",
     "na\xC3\xAFve and caf\xC3\xA9s here\n\n"},
    {"QuotesShowInInputCode", R"nb(Cell[BoxData[RowBox[{"Print", "[", "\"\<hello\>\"", "]"}]], "Input"])nb",
     "Print[\"hello\"]\n\n"},
    {"SymbolsLoseTheirContext", R"nb(Cell[TextData[{Global`alpha, " ", beta}], "Text"])nb", "alpha beta\n\n"},
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
