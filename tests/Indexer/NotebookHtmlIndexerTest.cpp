//===- NotebookHtmlIndexerTest.cpp - HTML output of nbtext -html, byte for byte ===//
#include <gtest/gtest.h>
#include "Indexer/NbtextRunner.h"

namespace {
using NbtextTest::ConvertNotebook;
using NbtextTest::HtmlPage;
using NbtextTest::WithoutCellStyles;

struct Golden {
  const char* name;
  const char* notebook;  // the cells, inside Notebook[{...}], or a whole notebook
  const char* body;      // the page between its fixed head and tail
  const char* head = ""; // the title and meta elements
};

void PrintTo(const Golden& theCase, std::ostream* theStream) { *theStream << theCase.name; }

// The placeholder that stands for graphics of theWidth by theHeight pixels.
#define GRAPHICS(theWidth, theHeight) \
  "<table width=\"" theWidth "\" height=\"" theHeight "\" bgcolor=\"#EEEEEE\" border=\"1\"><tr><td align=\"center\">-Graphics-</td></tr></table>"

const Golden kGoldens[] = {
    // Cells and their margins.
    {"CellWithoutMarginsHasNoStyle", R"nb(Cell["text", "Text"], Cell["more", "Text"])nb",
     "\n<div class=\"Text\">text</div>\n<div class=\"Text\">more</div>"},
    {"OneMarginForAllSides", R"nb(Cell["m", "Text", CellMargins->10])nb",
     "\n<div class=\"Text\" style=\"margin: 10px;\">m</div>"},
    {"FourMargins", R"nb(Cell["m", "Text", CellMargins->{{10, 20}, {5, 5}}])nb",
     "\n<div class=\"Text\" style=\"margin-left: 10px; margin-right: 20px; margin-bottom: 5px; margin-top: 5px;\">m</div>"},
    {"MarginPairFromOneNumber", R"nb(Cell["m", "Text", CellMargins->{4, {1, 2}}])nb",
     "\n<div class=\"Text\" style=\"margin-left: 4px; margin-right: 4px; margin-bottom: 1px; margin-top: 2px;\">m</div>"},
    {"MarginsRoundHalfAwayFromZero",
     R"nb(Cell["a", "Text", CellMargins->2.5], Cell["b", "Text", CellMargins->-2.5], Cell["c", "Text", CellMargins->{{0.4, -0.5}, {1.5, 2.49}}])nb",
     "\n<div class=\"Text\" style=\"margin: 3px;\">a</div>\n<div class=\"Text\" style=\"margin: -3px;\">b</div>"
     "\n<div class=\"Text\" style=\"margin-left: 0px; margin-right: -1px; margin-bottom: 2px; margin-top: 2px;\">c</div>"},
    {"BothMarginOptionsFollowEachOther",
     R"nb(Cell["m", "Text", ImageMargins->1, FontSize->9, CellMargins->{{1, 2}, {3, 4}}])nb",
     "\n<div class=\"Text\" style=\"margin: 1px;margin-left: 1px; margin-right: 2px; margin-bottom: 3px; margin-top: 4px;\">m</div>"},
    {"UnreadableMarginsAreZero",
     R"nb(Cell["a", "Text", CellMargins->Automatic], Cell["b", "Text", CellMargins->{{Inherited, 4}, {1, 1}}])nb",
     "\n<div class=\"Text\" style=\"margin: 0px;\">a</div>"
     "\n<div class=\"Text\" style=\"margin-left: 0px; margin-right: 0px; margin-bottom: 1px; margin-top: 1px;\">b</div>"},
    // Content is escaped, markup is not.
    {"MarkupCharactersInTextAreEscaped", "Cell[\"a & b < c > \\\"q\\\" 'x'\tt\", \"Text\"]",
     "\n<div class=\"Text\">a &amp; b &lt; c &gt; &quot;q&quot; &apos;x&apos;&#160;&#160;&#160;&#160;t</div>"},
    {"LineBreaksInTextBecomeBreaks", R"nb(Cell["one\ntwo", "Text"])nb", "\n<div class=\"Text\">one<br/>\ntwo</div>"},
    {"IndentationAfterABreakIsEscaped",
     R"nb(Cell[BoxData[RowBox[{"f", "[", "\[IndentingNewLine]", "x", "\[IndentingNewLine]", "]"}]], "Output"])nb",
     "\n<div class=\"Output\">f[<br/>\n&#160;&#160;&#160;&#160;x<br/>\n]</div>"},
    {"ControlCharactersAndNoncharactersAreLeftOut", R"nb(Cell["a\.7fb\.85c\:fdd0d\:ffffe", "Text"])nb",
     "\n<div class=\"Text\">abcde</div>"},
    // Graphics.
    {"NamedImageSizes",
     R"nb(Cell[BoxData[RowBox[{GraphicsBox[{}, ImageSize->Tiny], GraphicsBox[{}, ImageSize->Small], Graphics3DBox[{}, ImageSize->Medium], GraphicsBox[{}, ImageSize->Large], GraphicsBox[{}, ImageSize->Huge]}]]])nb",
     GRAPHICS("100", "58") GRAPHICS("180", "106") GRAPHICS("360", "215") GRAPHICS("576", "349") GRAPHICS("320", "240")},
    {"NumericImageSizesAndTheLastOneWins",
     R"nb(Cell[BoxData[RowBox[{GraphicsBox[{}, ImageSize->{400, 300}], GraphicsBox[{}, ImageSize->Small, ImageSize->200.7], GraphicsData["PostScript", "%!", ImageSize->{50, 60}]}]]])nb",
     GRAPHICS("400", "300") GRAPHICS("200", "200") GRAPHICS("50", "60")},
    // Style boxes.
    {"UprightSlantKeepsItsSpelling", R"nb(Cell[BoxData[StyleBox["x", FontSlant->"Plain"]]])nb",
     "<span style=\"font-stlye:normal;\">x</span>"},
    {"NumberAndBareWords", R"nb(Cell[BoxData[StyleBox["x", 14, Bold, "ITALIC", "Section"]]])nb",
     "<span style=\"font-size:14px;font-weight:bold;font-style:italic;\">x</span>"},
    {"FontColors",
     R"nb(Cell[BoxData[RowBox[{StyleBox["r", FontColor->RGBColor[1, 0, 0.5]], StyleBox["g", FontColor->GrayLevel[0.5]], StyleBox["h", FontColor->Hue[0.5]]}]]])nb",
     "<span style=\"color: #FF007F;\">r</span><span style=\"color: #7F7F7F;\">g</span><span style=\"\">h</span>"},
    {"FontSizeOptionHasNoUnit",
     R"nb(Cell[BoxData[RowBox[{StyleBox["a", FontSize->Large], StyleBox["b", FontSize->12.5]}]]])nb",
     "<span style=\"font-size:large;\">a</span><span style=\"font-size:13;\">b</span>"},
    {"FontFamilyWeightAndSlant",
     R"nb(Cell[BoxData[StyleBox["x", FontFamily->"Courier", FontWeight->"Plain", FontWeight->"bold", FontSlant->"Italic", Background->GrayLevel[0.9]]]])nb",
     "<span style=\"font-family: 'Courier';font-weight:normal;font-weight:bold;font-style:italic;\">x</span>"},
    // The declarations are part of the span's markup, written as they are.
    {"FontFamilyIsMarkup", R"nb(Cell[BoxData[StyleBox["x", FontFamily->"A&B", FontSize->Large]]])nb",
     "<span style=\"font-family: 'A&B';font-size:large;\">x</span>"},
    {"StyleBoxContentIsEscaped", R"nb(Cell[BoxData[RowBox[{StyleBox["<b>"], StyleBox["&", "Text"]}]]])nb",
     "&lt;b&gt;<span style=\"\">&amp;</span>"},
    {"CommentsInInputAreItalic", R"nb(Cell[BoxData[RowBox[{"x", RowBox[{"(*", "note", "*)"}]}]], "Input"])nb",
     "\n<div class=\"Input\">x<span style=\"font-style:italic;color: #438958;\">(*note*)</span></div>"},
    // Controls.
    {"ButtonLabelIsEscapedInItsAttribute", "Cell[TextData[ButtonBox[\"say \\\"hi\\\" & <go>\tnow\"]]]",
     "<input type=\"button\" value=\"say &quot;hi&quot; &amp; &lt;go&gt;&#160;&#160;&#160;&#160;now\"/>"},
    {"PopupMenuSelectionOutsideTheItems",
     R"nb(Cell[BoxData[RowBox[{PopupMenuBox["z", {"a" -> "\"A\"", "b"}], PopupMenuBox[Dynamic[m]]}]]])nb",
     "<select><option>A</option></select><select></select>"},
    // Tab views.
    {"TabViewWithoutAMatchShowsTheFirst", R"nb(Cell[BoxData[TabViewBox[{"\"P\"" -> "pages"}, 7]]])nb",
     "\n<table bgcolor=\"#EEEEEE\" style=\"border:1px solid;\"><tr>\n"
     "<td style=\"border:1px solid;\" bgcolor=\"#7799FF\">P</td>\n"
     "</tr><tr><td style=\"border:1px solid;\" colspan=\"1\">\npages\n</td></tr></table>\n"},
    // Grids and their spans.
    {"GridSpanFromLeft", R"nb(Cell[BoxData[GridBox[{{"a", "\[SpanFromLeft]"}, {"b", "c"}}]]])nb",
     "<table border=\"1\">\n<tr><td colSpan=\"2\">a</td></tr><tr><td>b</td><td>c</td></tr></table>\n"},
    {"GridSpanFromAbove", R"nb(Cell[BoxData[GridBox[{{"a", "b"}, {"\[SpanFromAbove]", "c"}}]]])nb",
     "<table border=\"1\">\n<tr><td rowSpan=\"2\">a</td><td>b</td></tr><tr><td>c</td></tr></table>\n"},
    {"GridSpanBothWays",
     R"nb(Cell[BoxData[GridBox[{{"a", "\[SpanFromLeft]"}, {"\[SpanFromAbove]", "\[SpanFromBoth]"}}]]])nb",
     "<table border=\"1\">\n<tr><td rowSpan=\"2\" colSpan=\"2\">a</td></tr><tr></tr></table>\n"},
    {"GridRaggedRowsAndNonListRows",
     R"nb(Cell[BoxData[GridBox[{{"a", "b"}, {"c"}, x, {"\[SpanFromAbove]\[SpanFromAbove]", "<"}}]]])nb",
     "<table border=\"1\">\n<tr><td>a</td><td>b</td></tr><tr><td>c</td></tr><tr></tr>"
     "<tr><td></td><td>&lt;</td></tr></table>\n"},
    // The head: the title and the author and keywords meta elements, read
    // from the notebook before its cells are written.
    {"NoTitleNoElement", R"nb(Notebook[{Cell["x", "Text"]}])nb", "\n<div class=\"Text\">x</div>"},
    {"TitleFromTheFirstTitleCellOnOneLine", R"nb(Notebook[{Cell["x", "Text"], Cell[CellGroupData[{Cell["", "Title"], Cell["The  title\nhere", "Title"], Cell["Second", "Title"]}, Open]]}, WindowTitle->"Window"])nb",
     "\n<div class=\"Text\">x</div>\n<div class=\"Title\"></div>\n<div class=\"Title\">The  title<br/>\nhere</div>"
     "\n<div class=\"Title\">Second</div>",
     "<title>The title here</title>\n"},
    {"TitleFromTheWindowTitle", R"nb(Notebook[{Cell["x", "Section"]}, WindowTitle->"Orbits \[Alpha]"])nb",
     "\n<div class=\"Section\">x</div>",
     "<title>Orbits \xCE\xB1</title>\n"},
    {"TitleHoldsNoMarkup", R"nb(Notebook[{Cell[TextData[{"Big ", StyleBox["bold", FontWeight->"Bold"], Cell[BoxData[SuperscriptBox["x", "2"]]]}], "Title"]}])nb",
     "\n<div class=\"Title\">Big <span style=\"font-weight:bold;\">bold</span>x<sup>2</sup></div>",
     "<title>Big boldx^2</title>\n"},
    {"AuthorsAndKeywordsAreJoined", R"nb(Notebook[{Cell["Ann", "Author"], Cell["Bob\nLee", "Author"], Cell["graphs, trees", "Keywords"]}])nb",
     "\n<div class=\"Author\">Ann</div>\n<div class=\"Author\">Bob<br/>\nLee</div>"
     "\n<div class=\"Keywords\">graphs, trees</div>",
     "<meta name=\"author\" content=\"Ann, Bob Lee\">\n<meta name=\"keywords\" content=\"graphs, trees\">\n"},
    {"HeadTextsAreEscaped", R"nb(Notebook[{Cell["a<b & \"c\"", "Title"], Cell["O'Neil <x>", "Author"], Cell["\"q\" & r\.7f", "Keywords"]}])nb",
     "\n<div class=\"Title\">a&lt;b &amp; &quot;c&quot;</div>\n<div class=\"Author\">O&apos;Neil &lt;x&gt;</div>"
     "\n<div class=\"Keywords\">&quot;q&quot; &amp; r</div>",
     "<title>a&lt;b &amp; &quot;c&quot;</title>\n<meta name=\"author\" content=\"O&apos;Neil &lt;x&gt;\">\n"
     "<meta name=\"keywords\" content=\"&quot;q&quot; &amp; r\">\n"},
};
#undef GRAPHICS

class NotebookHtmlGoldenTest : public testing::TestWithParam<Golden> {};

TEST_P(NotebookHtmlGoldenTest, WritesExactly) {
  const Golden& golden = GetParam();
  const std::string notebook = golden.notebook;
  auto run = ConvertNotebook(notebook.starts_with("Notebook[") ? notebook : "Notebook[{" + notebook + "}]", {"-html"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(WithoutCellStyles(run.out), HtmlPage(golden.body, golden.head));
}

INSTANTIATE_TEST_SUITE_P(Boxes, NotebookHtmlGoldenTest, testing::ValuesIn(kGoldens),
                         [](const testing::TestParamInfo<Golden>& theInfo) { return theInfo.param.name; });

// The style sheet shows the common cell styles as what they are: each rule
// named here holds the declaration.
TEST(NotebookHtmlIndexerTest, CellStylesShowWhatTheCellsAre) {
  auto run = ConvertNotebook("Notebook[{}]", {"-html"});
  const std::string sheet = run.out.substr(0, run.out.find("</style>"));
  // The declarations of the rules whose selectors name theClass.
  auto declarations = [&](const std::string& theClass) {
    std::string found;
    for (size_t at = sheet.find("." + theClass); at != std::string::npos; at = sheet.find("." + theClass, at + 1)) {
      const char after = sheet[at + theClass.size() + 1];
      const size_t open = sheet.find('{', at);
      if ((after == ',' || after == ' ') && open < sheet.find('}', at))
        found += sheet.substr(open, sheet.find('}', open) - open);
    }
    return found;
  };
  const struct {
    const char* style;
    const char* declaration;
  } kRules[] = {
      // The outline styles as headings.
      {"Title", "font-weight: bold"}, {"Subtitle", "font-size"}, {"Section", "font-weight: bold"},
      {"Subsubsection", "font-size"},
      // Code, and what it printed, in a fixed-width font.
      {"Input", "monospace"}, {"InputOnly", "monospace"}, {"Code", "monospace"},
      {"Output", "monospace"}, {"Print", "monospace"}, {"Message", "monospace"}, {"Echo", "monospace"},
      // Items as list items.
      {"Item", "display: list-item"}, {"Subitem", "list-style-type: circle"},
      {"ItemNumbered", "list-style-type: decimal"},
  };
  for (const auto& rule : kRules)
    EXPECT_NE(declarations(rule.style).find(rule.declaration), std::string::npos) << rule.style;
  EXPECT_EQ(declarations("Text"), "");
  // The outline levels get smaller from the title down, and stay above the text.
  double above = 100;
  for (const char* style : {"Title", "Chapter", "Section", "Subsection", "Subsubsection", "Subsubsubsection"}) {
    const std::string text = declarations(style);
    const size_t size = text.find("font-size: ");
    ASSERT_NE(size, std::string::npos) << style;
    const double em = std::stod(text.substr(size + 11));
    EXPECT_LT(em, above) << style;
    EXPECT_GT(em, 1.0) << style;
    above = em;
  }
}

TEST(NotebookHtmlIndexerTest, SeveralNotebooksEachGetTheirOwnPage) {
  NbtextTest::TempDir dir;
  std::string first = dir.write("first.nb", R"nb(Notebook[{Cell["one", "Title"]}, WindowSize->{500, 600}])nb");
  std::string refused = dir.write("refused.html", "<html></html>");
  std::string second = dir.write("second.nb", R"nb(Notebook[{Cell["two", "Text"]}, StyleDefinitions->"Book.nb"])nb");
  const std::string pages = HtmlPage("\n<div class=\"Title\">one</div>", "<title>one</title>\n") +
                            HtmlPage("\n<div class=\"Text\">two</div>");
  auto run = NbtextTest::RunNbtext({first, "-html", second});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(WithoutCellStyles(run.out), pages);
  // A refused file writes no page at all, not even a head.
  run = NbtextTest::RunNbtext({"-html", first, refused, second});
  EXPECT_EQ(run.status, 255);
  EXPECT_EQ(WithoutCellStyles(run.out), pages);
}
} // namespace
