//===- NotebookMarkdownIndexerTest.cpp - Markdown of nbtext -markdown, byte for byte ===//
#include <gtest/gtest.h>
#include "Indexer/NbtextRunner.h"

namespace {
using NbtextTest::ConvertNotebook;

struct Golden {
  const char* name;
  const char* notebook; // the cells, inside Notebook[{...}]
  const char* markdown;
};

void PrintTo(const Golden& theCase, std::ostream* theStream) { *theStream << theCase.name; }

const Golden kGoldens[] = {
    // Front matter: a title, authors, or nothing.
    {"TitleAndAuthorMakeFrontMatter", R"nb(Cell["A \"quoted\" \\ title", "Title"], Cell["Ann Lee", "Author"])nb",
     "---\ntitle: \"A \\\"quoted\\\" \\\\ title\"\nauthor: \"Ann Lee\"\n---\n\n"
     "# A \"quoted\" \\\\ title\n\nAnn Lee\n"},
    {"AnAuthorsLinkShowsItsLabelInTheFrontMatter",
     R"nb(Cell[TextData[{"By ", ButtonBox["Ann", BaseStyle->"Hyperlink", ButtonData->{URL["http://ann.org"], None}]}], "Author"])nb",
     "---\nauthor: \"By Ann\"\n---\n\nBy [Ann](http://ann.org)\n"},
    {"SeveralAuthorsAreAList", R"nb(Cell["Ann", "Author"], Cell["Bo", "Author"])nb",
     "---\nauthor:\n  - \"Ann\"\n  - \"Bo\"\n---\n\nAnn\n\nBo\n"},
    {"WindowTitleWhenNoTitleCell", R"nb(Cell["text", "Text"]}, WindowTitle->"Window name", Dummy->{)nb",
     "---\ntitle: \"Window name\"\n---\n\ntext\n"},
    {"NoFrontMatterWithoutTitleOrAuthor", R"nb(Cell["just text", "Text"])nb",
     "just text\n"},
    // Headings.
    {"OutlineLevelsInUseNumberFromOne",
     R"nb(Cell["T", "Title"], Cell["S", "Section"], Cell["U", "Subsection"], Cell["V", "Subsubsubsection"])nb",
     "---\ntitle: \"T\"\n---\n\n# T\n\n## S\n\n### U\n\n#### V\n"},
    {"HeadingIsOneLine", R"nb(Cell["two\nlines # x", "Section"], Cell["", "Section"])nb",
     "# two lines \\# x\n\n#\n"},
    {"SectionNumbersStayInTheHeading",
     R"nb(Cell[TextData[{CounterBox["Section"], ". Intro"}], "Section"], Cell[TextData[{CounterBox["Section"], ". More"}], "Section"])nb",
     "# 1\\. Intro\n\n# 2\\. More\n"},
    // Paragraphs and escaping.
    {"LineBreaksAreHardBreaks", R"nb(Cell["one\ntwo\n\nthree", "Text"])nb",
     "one\\\ntwo\n\nthree\n"},
    {"MarkupCharactersAreEscaped", R"nb(Cell["a*b_c [d] <e> #f |g| ~h~ &i; \\j `k`", "Text"])nb",
     "a\\*b\\_c \\[d\\] &lt;e&gt; \\#f \\|g\\| \\~h\\~ \\&i; \\\\j \\`k\\`\n"},
    {"LineStartsThatMakeBlocksAreEscaped", R"nb(Cell["- a\n+ b\n= c\n12. d\n3) e\n    f\n> g", "Text"])nb",
     "\\- a\\\n\\+ b\\\n\\= c\\\n12\\. d\\\n3\\) e\\\nf\\\n&gt; g\n"},
    {"WebAddressesAreWrittenAsTheyStand",
     R"nb(Cell["see http://x.org/a_b*c and www.y.org/p_q, not a_b", "Text"])nb",
     "see http://x.org/a_b*c and www.y.org/p_q, not a\\_b\n"},
    {"AHardBreakStaysOutOfAWebAddress", R"nb(Cell["see http://x.org/a\nnext www.y.org\nlast", "Text"])nb",
     "see http://x.org/a \\\nnext www.y.org \\\nlast\n"},
    {"GreekLettersAreCharacters", R"nb(Cell["\[Alpha] + \[CapitalOmega] \[Rule] caf\[EAcute]", "Text"])nb",
     "α + Ω -&gt; café\n"},
    // Emphasis.
    {"BoldAndItalicStyleBoxes",
     R"nb(Cell[TextData[{"a ", StyleBox["bold", FontWeight->"Bold"], " b ", StyleBox["it", FontSlant->"Italic"], " c ", StyleBox["both", FontWeight->"Bold", FontSlant->"Italic"], " d ", StyleBox["sym", Bold]}], "Text"])nb",
     "a **bold** b *it* c ***both*** d **sym**\n"},
    {"BlanksStayOutsideEmphasis",
     R"nb(Cell[TextData[{"a", StyleBox[" bold ", FontWeight->"Bold"], "b"}], "Text"])nb",
     "a **bold** b\n"},
    {"EmphasisThatCouldNotOpenIsPlain",
     R"nb(Cell[TextData[{"word", StyleBox["(x)", FontWeight->"Bold"], " end"}], "Text"])nb",
     "word(x) end\n"},
    {"EmphasisEndingInPunctuationNeedsABreakAfter",
     R"nb(Cell[TextData[{StyleBox["Note:", FontWeight->"Bold"], " ok, ", StyleBox["x.", FontWeight->"Bold"], "y"}], "Text"])nb",
     "**Note:** ok, x.y\n"},
    {"EmphasisNeverSpansLines", R"nb(Cell[TextData[{StyleBox["a\nb", FontWeight->"Bold"]}], "Text"])nb",
     "a\\\nb\n"},
    {"NoEmphasisInCode", R"nb(Cell[BoxData[StyleBox["x", FontWeight->"Bold"]], "Input"])nb",
     "```\nx\n```\n"},
    // Links.
    {"HyperlinksAreLinks",
     R"nb(Cell[TextData[{"See ", ButtonBox["the site", BaseStyle->"Hyperlink", ButtonData->{URL["http://x.org/a"], None}], "."}], "Text"])nb",
     "See [the site](http://x.org/a).\n"},
    {"AddressesWithBlanksOrParenthesesAreAngled",
     R"nb(Cell[TextData[{ButtonBox["x", BaseStyle->"Hyperlink", ButtonData->{URL["http://x.org/a b(c)"], None}]}], "Text"])nb",
     "[x](<http://x.org/a b(c)>)\n"},
    {"ALinkThatShowsItsAddressIsAnAutolink",
     R"nb(Cell[TextData[{ButtonBox["http://x.org", BaseStyle->"Hyperlink", ButtonData->{URL["http://x.org"], None}]}], "Text"])nb",
     "<http://x.org>\n"},
    {"LinksInCodeAreText",
     R"nb(Cell[BoxData[ButtonBox["x", BaseStyle->"Hyperlink", ButtonData->{URL["http://x.org"], None}]], "Output"])nb",
     "```output\nx <http://x.org>\n```\n"},
    // Inline cells.
    {"InlineCellsAreCodeSpans",
     R"nb(Cell[TextData[{"Let ", Cell[BoxData[RowBox[{"x", "+", SuperscriptBox["y", "2"]}]]], " be."}], "Text"])nb",
     "Let `x + y^2` be.\n"},
    {"BackticksInACodeSpanLengthenItsFence",
     R"nb(Cell[TextData[{"a ", Cell[BoxData["\"`q`\""]], " b ", Cell[BoxData["\"x``y\""]]}], "Text"])nb",
     "a `` `q` `` b ```x``y```\n"},
    {"CodeSpansSideBySideStayApart", R"nb(Cell[TextData[{Cell[BoxData["x"]], Cell[BoxData["y"]]}], "Text"])nb",
     "`x` `y`\n"},
    // Lists.
    {"ItemsNestAsLists",
     R"nb(Cell["a", "Item"], Cell["b", "Item"], Cell["b1", "Subitem"], Cell["b2", "SubitemNumbered"], Cell["more of b", "ItemParagraph"], Cell["n", "ItemNumbered"], Cell["after", "Text"])nb",
     "- a\n- b\n  - b1\n  1. b2\n\n  more of b\n\n1. n\n\nafter\n"},
    {"ASubitemWithoutItemIsAnItem", R"nb(Cell["s", "Subsubitem"], Cell["p", "SubitemParagraph"])nb",
     "- s\n\n  p\n"},
    {"ListItemLinesStandUnderTheFirst", R"nb(Cell["first\nsecond", "Item"])nb",
     "- first\\\n  second\n"},
    // Fences.
    {"CodeAndOutputAreFenced",
     R"nb(Cell[BoxData[RowBox[{"f", "[", "x", "]"}]], "Input"], Cell[BoxData["x"], "Output"], Cell["printed", "Print"], Cell["msg", "Message"])nb",
     "```\nf[x]\n```\n\n```output\nx\n```\n\n```output\nprinted\n```\n\n```output\nmsg\n```\n"},
    {"BackticksInCodeLengthenTheFence", R"nb(Cell["a ```b``` c", "Code"])nb",
     "````\na ```b``` c\n````\n"},
    {"CodeKeepsItsIndentation",
     R"nb(Cell[BoxData[RowBox[{"f", "[", "\[IndentingNewLine]", "x", "\[IndentingNewLine]", "]"}]], "Input"])nb",
     "```\nf[\n\tx\n]\n```\n"},
    // Grids.
    {"RectangularGridIsATable", R"nb(Cell[BoxData[GridBox[{{"a", "b|c"}, {"1", "*2*"}}]], "Output"])nb",
     "| a | b\\|c |\n| --- | --- |\n| 1 | \\*2\\* |\n"},
    {"GridInTextIsATableBetweenParagraphs",
     R"nb(Cell[TextData[{"before ", Cell[BoxData[GridBox[{{"x", "y"}}]]], " after"}], "Text"], Cell[TextData[{"before ", GridBox[{{"x", "y"}}], " after"}], "Text"])nb",
     "before `x y` after\n\nbefore\n\n| x | y |\n| --- | --- |\n\nafter\n"},
    {"MatrixInOutputKeepsItsLayout",
     R"nb(Cell[BoxData[RowBox[{"(", GridBox[{{"a", "b"}, {"c", "d"}}], ")"}]], "Output"])nb",
     "```output\n(a\tb\nc\td\t)\n```\n"},
    {"OutputAfterATableIsFencedAgain", R"nb(Cell[BoxData[RowBox[{GridBox[{{"a", "b"}}], "rest"}]], "Output"])nb",
     "| a | b |\n| --- | --- |\n\n```output\nrest\n```\n"},
    {"RaggedGridIsFenced", R"nb(Cell[TextData[{GridBox[{{"a", "b"}, {"c"}}]}], "Text"])nb",
     "```\na\tb\nc\n```\n"},
    {"GridWithABrokenEntryIsLaidOutInItsFence", R"nb(Cell[BoxData[GridBox[{{"a", "two\nlines"}}]], "Output"])nb",
     "```output\na\ttwo\nlines\n```\n"},
    // Graphics and controls.
    {"GraphicsAndControlsAsTheTextShowsThem",
     R"nb(Cell[BoxData[RowBox[{CheckboxBox[True], " ", RadioButtonBox[1, {1}], " ", GraphicsBox[{}, PlotLabel->"Plot"]}]], "Output"], Cell[TextData[{"x ", Cell[BoxData[CheckboxBox[False]]]}], "Text"])nb",
     "```output\n [X]   (*)  Plot\n```\n\nx `[ ]`\n"},
};

class NotebookMarkdownGoldenTest : public testing::TestWithParam<Golden> {};

TEST_P(NotebookMarkdownGoldenTest, WritesExactly) {
  const Golden& golden = GetParam();
  auto run = ConvertNotebook(std::string("Notebook[{") + golden.notebook + "}]", {"-markdown"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, golden.markdown);
}

INSTANTIATE_TEST_SUITE_P(Constructs, NotebookMarkdownGoldenTest, testing::ValuesIn(kGoldens),
                         [](const testing::TestParamInfo<Golden>& theInfo) { return theInfo.param.name; });

// A run converts each document afresh: the front matter, the outline levels
// and the open lists of one are nothing to the next.
TEST(NotebookMarkdownTest, EachDocumentStartsAfresh) {
  NbtextTest::TempDir dir;
  auto first = dir.write("a.nb", R"nb(Notebook[{Cell["T", "Title"], Cell["S", "Section"], Cell["i", "Item"]}])nb");
  auto second = dir.write("b.nb", R"nb(Notebook[{Cell["i2", "Subitem"], Cell["S2", "Section"]}])nb");
  auto run = NbtextTest::RunNbtext({"-markdown", first, second});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "---\ntitle: \"T\"\n---\n\n# T\n\n## S\n\n- i\n"
                     "- i2\n\n# S2\n");
}

// The last of -html and -markdown on the command line chooses the output.
TEST(NotebookMarkdownTest, TheLastFormatOptionWins) {
  const std::string notebook = R"nb(Notebook[{Cell["S", "Section"]}])nb";
  EXPECT_EQ(ConvertNotebook(notebook, {"-html", "-markdownx"}).out, "# S\n");
  EXPECT_NE(ConvertNotebook(notebook, {"-markdown", "-html"}).out.find("<div class=\"Section\">S</div>"),
            std::string::npos);
}
} // namespace
