//===- ReadableTextTest.cpp - Real notebooks' text reads as the page does -===//
// Small notebooks in both renderers, byte for byte: line breaks inside
// strings, inline cells, words kept apart, strings and numbers as the page
// shows them, cells flush left, outline counters, links to places, and the
// boxes and controls common to both.
#include <gtest/gtest.h>
#include "Indexer/NbtextRunner.h"

namespace {
using NbtextTest::ConvertNotebook;

struct Golden {
  const char* name;
  const char* notebook; // the cells, inside Notebook[{...}]
  const char* text;     // nbtext's output
  const char* html;     // the page's body, between its fixed head and tail
  const char* head = ""; // the page's title and meta elements
};

void PrintTo(const Golden& theCase, std::ostream* theStream) { *theStream << theCase.name; }

const Golden kGoldens[] = {
    // A line end inside a string is a line break of the text; a backslash
    // before it joins the lines.
    {"LineBreakInAMarkedStringIsKept", "Cell[\"\\<a copy\nof this\\>\", \"Text\"]", "a copy\nof this\n\n",
     "\n<div class=\"Text\">a copy<br/>\nof this</div>"},
    {"LineBreakOfACrLfFileCountsOnce", "Cell[\"\\<one\r\ntwo \\\r\nthree\\>\", \"Text\"]", "one\ntwo three\n\n",
     "\n<div class=\"Text\">one<br/>\ntwo three</div>"},
    {"LineBreakInCodeIsIndented", "Cell[BoxData[RowBox[{\"f\", \"[\", \"\\\"\\<x\ny\\>\\\"\", \",\", \"z\", \"]\"}]], \"Input\"]",
     "f[\"x\n\ty\", z]\n\n",
     "\n<div class=\"Input\">f[<span style=\"color: #666666;\">&quot;x<br/>\n&#160;&#160;&#160;&#160;y&quot;</span>, z]</div>"},
    // A cell inside another cell's text is part of that text: no separator,
    // no div, no style, no count of its own.
    {"InlineCellsStayInTheirSentence",
     R"nb(Cell[TextData[{"Use ", Cell[BoxData["f"], "InlineFormula", ExpressionUUID -> "37f5"], " and ", Cell["g"], "."}], "Text"])nb",
     "Use f and g.\n\n", "\n<div class=\"Text\">Use f and g.</div>"},
    {"InlineCellWithAnOptionOnly", R"nb(Cell[TextData[{"a ", Cell[BoxData["b"], FormatType->StandardForm], " c"}], "Text"])nb",
     "a b c\n\n", "\n<div class=\"Text\">a b c</div>"},
    {"InlineInputCellIsNotMarkedUp",
     R"nb(Cell[TextData[{"Type ", Cell[BoxData[RowBox[{"f", "[", "x", "]", "(*", "c", "*)"}]], "Input"]}], "Text"])nb",
     "Type f[x](*c*)\n\n", "\n<div class=\"Text\">Type f[x](*c*)</div>"},
    {"InlineCellsAreNotCounted",
     R"nb(Cell[TextData[{CounterBox["Section"], ". ", Cell["in", "Section"]}], "Section"], Cell[TextData[{CounterBox["Section"], "."}], "Section"])nb",
     "1. in\n\n2.\n\n", "\n<div class=\"Section\">1. in</div>\n<div class=\"Section\">2.</div>"},
    {"CellWithoutAStyleNameIsStillACell", R"nb(Cell["x", CellTags -> "t"], Cell["y", "Text"])nb", "x\n\ny\n\n",
     "\n<div class=\"\">x</div>\n<div class=\"Text\">y</div>"},
    // The expressions of a cell go on lines of their own; pieces of other
    // boxes are kept apart by a space; settings write nothing.
    {"ExpressionsOfACellEachOnTheirLine",
     R"nb(Cell[BoxData[{RowBox[{"a", "=", "1"}], RowBox[{"b", "=", "2"}]}], "Input"], Cell[BoxData[{RowBox[{"c", ";"}], "\n", RowBox[{"d", ";"}], "\[IndentingNewLine]", "e"}], "Input"])nb",
     "a = 1\nb = 2\n\nc;\nd;\ne\n\n",
     "\n<div class=\"Input\">a = 1<br/>\nb = 2</div>\n<div class=\"Input\">c;<br/>\nd;<br/>\ne</div>"},
    {"TooltipAndTemplateArgumentsAreSeparateWords",
     R"nb(Cell[BoxData[RowBox[{TooltipBox["shown", "tip", TooltipStyle -> "TextStyling"], "+", TemplateBox[{"With", "doc:ref/With"}, "RefLink", BaseStyle -> "Documentation"]}]], "Output"])nb",
     "shown tip + With\n\n", "\n<div class=\"Output\">shown tip + With</div>"},
    {"SettingsWriteNothingInTheGeneralWalk",
     R"nb(Cell[BoxData[LabelBox["image.", LabelStyle -> {FontFamily -> "Verdana", FontSize -> 10}, "end", x :> y]], "Output"])nb",
     "image. end\n\n", "\n<div class=\"Output\">image. end</div>"},
    {"OnlyPiecesThatWriteAreSeparated",
     R"nb(Cell[BoxData[RowBox[{LabelBox[{}, "a", {Null, "b"}, Null], "+", LabelBox["c", "\n", "d"]}]], "Output"])nb",
     "a b + c\nd\n\n", "\n<div class=\"Output\">a b + c<br/>\nd</div>"},
    {"SpaceBeforeMarkupIsText",
     R"nb(Cell[BoxData[LabelBox["a", StyleBox["b", FontWeight -> "Bold"]]], "Output"])nb", "a b\n\n",
     "\n<div class=\"Output\">a <span style=\"font-weight:bold;\">b</span></div>"},
    // Outside code, strings show as the page shows them.
    {"OutputAndPrintStringsShowAsText",
     R"nb(Cell[BoxData["\"x\\ny \\\"q\\\"\""], "Output"], Cell[BoxData[RowBox[{"\"Done: \"", "\[InvisibleSpace]", "3"}]], "Print"], Cell[BoxData[\("size "\[InvisibleSpace]2\[InvisibleSpace]"X \"y\""\)], "Print"])nb",
     "x\ny \"q\"\n\nDone: 3\n\nsize 2X \"y\"\n\n",
     "\n<div class=\"Output\">x<br/>\ny &quot;q&quot;</div>\n<div class=\"Print\">Done: 3</div>\n<div class=\"Print\">size 2X &quot;y&quot;</div>"},
    {"CodeStylesKeepQuotesAndEscapes",
     R"nb(Cell[BoxData[RowBox[{"f", "[", "\"a\\tb\"", "]"}]], "Code"], Cell[BoxData["\"s\""], "InputOnly"])nb",
     "f[\"a\\tb\"]\n\n\"s\"\n\n",
     "\n<div class=\"Code\">f[<span style=\"color: #666666;\">&quot;a\\tb&quot;</span>]</div>"
     "\n<div class=\"InputOnly\">&quot;s&quot;</div>"},
    {"QuotesOfTextCellsAreText", R"nb(Cell[TextData[{"say \"hi\"", StyleBox["\"there\"", FontSlant->"Italic"]}], "Text"])nb",
     "say \"hi\"\"there\"\n\n",
     "\n<div class=\"Text\">say &quot;hi&quot;<span style=\"font-style:italic;\">&quot;there&quot;</span></div>"},
    {"FieldForAnExpressionShowsCode",
     R"nb(Cell[BoxData[RowBox[{InputFieldBox["\"abc\""], InputFieldBox["\"abc\"", String], StyleBox["\"on\"", ShowStringCharacters->True]}]], "Output"])nb",
     "|__\"abc\"__||__abc__|\"on\"\n\n",
     "\n<div class=\"Output\"><input type=\"text\" value=\"&quot;abc&quot;\"/><input type=\"text\" value=\"abc\"/>"
     "<span style=\"\">&quot;on&quot;</span></div>"},
    // Outside code, numbers lose their precision marks.
    {"NumberMarksAreDroppedOutsideCode",
     R"nb(Cell[BoxData[RowBox[{"70.82400862821649`", ",", "8.`", ",", "1.5`20.*^-10", ",", "3``12", ",", "2`x"}]], "Output"], Cell[BoxData["8.`"], "Input"], Cell["8.`", "Text"], Cell[BoxData[\({1.5`, 2`}\)], "Output"])nb",
     "70.82400862821649, 8., 1.5*^-10, 3, 2`x\n\n8.`\n\n8.`\n\n{1.5,2}\n\n",
     "\n<div class=\"Output\">70.82400862821649, 8., 1.5*^-10, 3, 2`x</div>\n<div class=\"Input\">8.`</div>"
     "\n<div class=\"Text\">8.`</div>\n<div class=\"Output\">{1.5,2}</div>"},
    // Every cell starts flush left; the outline's counts nest.
    {"CellsStartFlushLeft",
     R"nb(Cell[BoxData[RowBox[{"f", "[", "x", "\n", "y"}]], "Input"], Cell["Next", "Section"], Cell[TextData[{"g", Cell[BoxData[RowBox[{"[", "\n"}]]]}], "Text"], Cell["Last", "Text"])nb",
     "f[x\n\ty\n\nNext\n\ng[\n\nLast\n\n",
     "\n<div class=\"Input\">f[x<br/>\n&#160;&#160;&#160;&#160;y</div>\n<div class=\"Section\">Next</div>"
     "\n<div class=\"Text\">g[<br/>\n&#160;&#160;&#160;&#160;</div>\n<div class=\"Text\">Last</div>"},
    {"OutlineCountsNest",
     R"nb(Cell[CellGroupData[{Cell[TextData[{CounterBox["Chapter"], " A"}], "Chapter"], Cell[TextData[{CounterBox["Chapter"], ".", CounterBox["Section"], " a"}], "Section"], Cell[TextData[{CounterBox["Section"], ".", CounterBox["Subsection"], " i"}], "Subsection"], Cell[TextData[{CounterBox["Section"], " b ", CounterBox["Figure"]}], "Section"]}, Open]], Cell[TextData[{CounterBox["Chapter"], " B"}], "Chapter"], Cell[TextData[{CounterBox["Chapter"], ".", CounterBox["Section"], ".", CounterBox["Subsection"], " c"}], "Section"], Cell[TextData[{"T", CounterBox["Chapter"], CounterBox["Figure"]}], "Title"])nb",
     "1 A\n\n1.1 a\n\n1.1 i\n\n2 b 0\n\n2 B\n\n2.1.0 c\n\nT00\n\n",
     "\n<div class=\"Chapter\">1 A</div>\n<div class=\"Section\">1.1 a</div>\n<div class=\"Subsection\">1.1 i</div>"
     "\n<div class=\"Section\">2 b 0</div>\n<div class=\"Chapter\">2 B</div>\n<div class=\"Section\">2.1.0 c</div>"
     "\n<div class=\"Title\">T00</div>", "<title>T00</title>\n"},
    // Only a URL makes a link; a cell tag, or a notebook and a tag, a button.
    {"OnlyURLsAreLinks",
     R"nb(Cell[TextData[{"see ", ButtonBox["label", BaseStyle->"Hyperlink", ButtonData->"0000381F"], ", ", ButtonBox["notes", BaseStyle->"Hyperlink", ButtonData->{"Notes.nb", "sec2"}], ", ", ButtonBox["mail", BaseStyle->"Hyperlink", ButtonData->"mailto:a@b.example"], " and ", ButtonBox["web", ButtonStyle->"Hyperlink", ButtonData->"https://c.example/x?a&b"]}], "Text"])nb",
     "see label, notes, mail <mailto:a@b.example> and web <https://c.example/x?a&b>\n\n",
     "\n<div class=\"Text\">see <input type=\"button\" value=\"label\"/>, <input type=\"button\" value=\"notes\"/>, "
     "<a href=\"mailto:a@b.example\">mail</a> and <a href=\"https://c.example/x?a&amp;b\">web</a></div>"},
    // Accented letters and operators that only recent notebooks name.
    {"ReadOnlyNamesAreTheirCharacters",
     R"nb(Cell["mno\[ZHacek]ica \[URing] \[CapitalRHacek] \[NoSuchName]", "Text"], Cell[BoxData[RowBox[{"\[LeftAssociation]", RowBox[{"a", "->", "1"}], "\[RightAssociation]", " ", "x", "\[Function]", "y", "\[DirectedEdge]", "\[UndirectedEdge]", "\[TwoWayRule]", "\[TensorProduct]", "\[Equivalent]"}]], "Output"])nb",
     "mno\u017Eica \u016F \u0158 \\[NoSuchName]\n\n<|a->1|> x|->y-><-><->\u2297\u29E6\n\n",
     "\n<div class=\"Text\">mno\u017Eica \u016F \u0158 \\[NoSuchName]</div>"
     "\n<div class=\"Output\">&lt;|a-&gt;1|&gt; x|-&gt;y-&gt;&lt;-&gt;&lt;-&gt;\u2297\u29E6</div>"},
    // A group writes no cell of its own, whatever it carries; a graphics
    // cell of the old kind ends like any other.
    {"EveryCellIsClosed",
     R"nb(Cell[CellGroupData[{Cell["a", "Section"], Cell[GraphicsData["PostScript", "%!"], "Graphics"], Cell["b", "Text"]}, Open], ExpressionUUID -> "9c1f"], Cell["c", "Text"])nb",
     "a\n\nb\n\nc\n\n",
     "\n<div class=\"Section\">a</div>\n<div class=\"Graphics\"><table width=\"320\" height=\"240\" bgcolor=\"#EEEEEE\" "
     "border=\"1\"><tr><td align=\"center\">-Graphics-</td></tr></table></div>\n<div class=\"Text\">b</div>"
     "\n<div class=\"Text\">c</div>"},
    // What follows the boxes of a cell is their form, no text.
    {"FormOfTheBoxesWritesNothing",
     R"nb(Cell[BoxData[RowBox[{"x", "+", "1"}], StandardForm], "Output"], Cell[TextData[{"t"}, TraditionalForm], "Text"])nb",
     "x + 1\n\nt\n\n", "\n<div class=\"Output\">x + 1</div>\n<div class=\"Text\">t</div>"},
    // No blanks end a line, no more than one empty line stands in a row,
    // and a picture between two words keeps them apart.
    {"TextIsTidy",
     R"nb(Cell[BoxData[GridBox[{{"a", "b"}}]], "Output"], Cell[BoxData[GraphicsBox[{}]], "Output"], Cell["x  \n\n\n\ny", "Text"], Cell[TextData[{"click the", Cell[GraphicsData["Bitmap", "00"]], "button or the", Cell[BoxData[GraphicsBox[{}]]], " menu"}], "Text"])nb",
     "a\tb\n\nx\n\ny\n\nclick the button or the menu\n\n",
     "\n<div class=\"Output\"><table border=\"1\">\n<tr><td>a</td><td>b</td></tr></table>\n</div>"
     "\n<div class=\"Output\"><table width=\"320\" height=\"240\" bgcolor=\"#EEEEEE\" border=\"1\"><tr><td align=\"center\">-Graphics-</td></tr></table></div>"
     "\n<div class=\"Text\">x  <br/>\n<br/>\n<br/>\n<br/>\ny</div>"
     "\n<div class=\"Text\">click the<table width=\"320\" height=\"240\" bgcolor=\"#EEEEEE\" border=\"1\"><tr><td align=\"center\">-Graphics-</td></tr></table>button or the<table width=\"320\" height=\"240\" bgcolor=\"#EEEEEE\" border=\"1\"><tr><td align=\"center\">-Graphics-</td></tr></table> menu</div>"},
    // Compound parts of fractions and scripts keep their grouping in the
    // linear notation; a script stays apart from a word right after it.
    {"GroupingIsKept",
     R"nb(Cell[BoxData[RowBox[{FractionBox["192", RowBox[{"1", "+", "n"}]], ",", FractionBox[RowBox[{"(", RowBox[{"a", "+", "b"}], ")"}], FractionBox["1", "2"]], ",", SuperscriptBox["x", RowBox[{"n", "+", "1"}]], ",", SubscriptBox["x", RowBox[{"i", "+", "1"}]], ",", SubscriptBox["x", "1"], ",", RowBox[{SuperscriptBox["TX", "2"], "2", "AX"}]}]], "Output"])nb",
     "192/(1 + n), (a + b)/(1/2), x^(n + 1), x_(i + 1), x1, TX^2 2AX\n\n",
     "\n<div class=\"Output\">192/(1 + n), (a + b)/(1/2), x<sup>n + 1</sup>, x<sub>i + 1</sub>, x<sub>1</sub>, "
     "TX<sup>2</sup>2AX</div>"},
    {"ScriptsBelowAndAbove",
     R"nb(Cell[BoxData[RowBox[{SubsuperscriptBox["x", "i", "2"], ",", UnderoverscriptBox["\[Sum]", RowBox[{"i", "=", "1"}], "n"], ",", UnderscriptBox["lim", RowBox[{"x", "\[Rule]", "0"}]], ",", OverscriptBox["v", "\[RightVector]"]}]], "Output"])nb",
     "xi^2, \u2211_(i = 1)^n, lim_(x->0), v^\u21C0\n\n",
     "\n<div class=\"Output\">x<sub>i</sub><sup>2</sup>, \u2211<sub>i = 1</sub><sup>n</sup>, lim<sub>x-&gt;0</sub>, "
     "v<sup>\u21C0</sup></div>"},
    // Numbers that are no strings are written as the file writes them.
    {"NumbersAsWritten",
     R"nb(Cell[BoxData[RowBox[{17597065061419045402, ",", 123456789012345678901234567890, ",", 6.02*^23, ",", 1.5*^-10, ",", 3.14159265, ",", 2., ",", -7}]], "Output"])nb",
     "17597065061419045402, 123456789012345678901234567890, 6.02*^23, 1.5*^-10, 3.14159265, 2., -7\n\n",
     "\n<div class=\"Output\">17597065061419045402, 123456789012345678901234567890, 6.02*^23, 1.5*^-10, 3.14159265, "
     "2., -7</div>"},
    // Invisible characters write nothing; private-use letters are their
    // standard ones; Greek stays named in text only.
    {"CharactersAsThePageShowsThem",
     R"nb(Cell["x\[InvisibleComma]y \[DoubleStruckCapitalR] \[ScriptCapitalP] \[GothicG] \[DoubleStruckOne] \[Minus]1 \[Limit] \[MaxLimit] a\[InvisibleTimes]b \[Null]c\[AlignmentMarker] \[Alpha]", "Text"])nb",
     "xy \u211D \U0001D4AB \U0001D524 \U0001D7D9 \u22121 lim max ab c \\[Alpha]\n\n",
     "\n<div class=\"Text\">xy \u211D \U0001D4AB \U0001D524 \U0001D7D9 \u22121 lim max ab c \u03B1</div>"},
    // Templates: by the display function the box or the style sheet gives,
    // else in the page form of their tag; never their settings.
    {"TemplatesShowAsThePageDoes",
     R"nb(Cell[BoxData[TemplateBox[{"f", "x"}, "Call", DisplayFunction -> (RowBox[{#1, "[", #2, "]"}] &)]], "Output"], Cell[BoxData[TemplateBox[{"a", "b", "c"}, "Seq", DisplayFunction -> (RowBox[{"{", ##, "}"}] &)]], "Output"], Cell[BoxData[RowBox[{TemplateBox[{"q"}, "Boxed"], TemplateBox[{"r"}, "Loop"]}]], "Output"], Cell[BoxData[TemplateBox[{"General", "ivar", "\"`1` is not a valid variable; see `2`.\"", "5", "\"\\\"y\\\"\"", 2, 7, 1, 17597065061419045402, "Local"}, "MessageTemplate"]], "Message"], Cell[BoxData[RowBox[{TemplateBox[{"\"Local \[RightGuillemet]\"", "paclet:ref/BesselJ", "paclet:ref/BesselJ", "Link"}, "HyperlinkTemplate"], TemplateBox[{8}, "Spacer1"], TemplateBox[{"\"Web\"", {URL["https://example.org/J.html"], None}, "https://example.org/J.html", "Hyperlink"}, "HyperlinkTemplate"]}]], "Output"], Cell[BoxData[RowBox[{TemplateBox[{"\"12\"", "\" kB\""}, "RowDefault"], ",", TemplateBox[{"T1"}, "C"], ",", TemplateBox[{"75.", "31."}, "Around"], ",", TemplateBox[{"242"}, "OutputSizeLimit`Skeleton"], ",", TemplateBox[{"shown", None, Automatic, "paclet:guide/X", "Odd", True}, "Odd"]}]], "Output"]}, StyleDefinitions -> Notebook[{Cell[StyleData["Boxed"], TemplateBoxOptions -> {DisplayFunction -> (FrameBox[RowBox[{"<", #, ">"}]] &)}], Cell[StyleData["Loop"], TemplateBoxOptions -> {DisplayFunction -> (TemplateBox[{#}, "Loop"] &)}]}], TaggingRules -> {"k")nb",
     "f[x]\n\n{abc}\n\n<q>r\n\nGeneral::ivar: 5 is not a valid variable; see \"y\".\n\n"
     "Local \u00BB Web <https://example.org/J.html>\n\n12 kB, CT1, 75. \u00B1 31., <<242>>, shown\n\n",
     "\n<div class=\"Output\">f[x]</div>\n<div class=\"Output\">{abc}</div>\n<div class=\"Output\">&lt;q&gt;r</div>"
     "\n<div class=\"Message\">General::ivar: 5 is not a valid variable; see &quot;y&quot;.</div>"
     "\n<div class=\"Output\">Local \u00BB <a href=\"https://example.org/J.html\">Web</a></div>"
     "\n<div class=\"Output\">12 kB, C<sub>T1</sub>, 75. \u00B1 31., &lt;&lt;242&gt;&gt;, shown</div>"},
    // Cells, controls, links and characters, as each renderer shows them.
    {"EmptyNotebook", "", "", ""},
    {"CellWithoutStyleHasNoSeparatorAndNoDiv", R"nb(Cell["bare"])nb", "bare", "bare"},
    {"CellGroupWritesItsCellsNotItsState",
     R"nb(Cell[CellGroupData[{Cell["A", "Section"], Cell["b", "Text"]}, Closed]])nb", "A\n\nb\n\n",
     "\n<div class=\"Section\">A</div>\n<div class=\"Text\">b</div>"},
    {"BoxGroupInsideAString", R"nb(Cell["x \!\(a\^2\) y", "Text"])nb", "x a^2 y\n\n",
     "\n<div class=\"Text\">x a<sup>2</sup> y</div>"},
    {"Scripts", R"nb(Cell[BoxData[RowBox[{SuperscriptBox["x", "2"], "+", SubscriptBox["y", "i"]}]], "Output"])nb",
     "x^2 + yi\n\n", "\n<div class=\"Output\">x<sup>2</sup> + y<sub>i</sub></div>"},
    {"NamedCharacters",
     R"nb(Cell["\[Alpha] \[Rule] \[Pi] \[Infinity] caf\[EAcute] \:4e2d x\[InvisibleSpace]y", "Text"])nb",
     "\\[Alpha] -> Pi \u221E caf\u00E9 \u4E2D xy\n\n",
     "\n<div class=\"Text\">\u03B1 -&gt; Pi \u221E caf\u00E9 \u4E2D xy</div>"},
    {"QuotesOnlyWhereStringCharactersShow",
     R"nb(Cell[BoxData[RowBox[{StyleBox["\"q\"", ShowStringCharacters->False], StyleBox["\"r\"", ShowStringCharacters->True], CheckboxBox[True], "\"s\""}]], "Output"])nb",
     "q\"r\" [X] s\n\n",
     "\n<div class=\"Output\"><span style=\"\">q</span><span style=\"\">&quot;r&quot;</span>"
     "<input type=\"checkbox\" checked=\"1\"/>s</div>"},
    {"CheckboxStates",
     R"nb(Cell[BoxData[RowBox[{CheckboxBox[True], CheckboxBox[False], CheckboxBox[Dynamic[x]], CheckboxBox[]}]], "Output"])nb",
     " [X]  [ ]  [-]  [-]\n\n",
     "\n<div class=\"Output\"><input type=\"checkbox\" checked=\"1\"/><input type=\"checkbox\"/>"
     "<input type=\"checkbox\" checked=\"1\"/><input type=\"checkbox\" checked=\"1\"/></div>"},
    {"RadioButtonsCompareValueAndCurrent",
     R"nb(Cell[BoxData[RowBox[{RadioButtonBox[1, {1}], "one", RadioButtonBox[1, {2}], "two"}]], "Output"])nb",
     " (*) one ( ) two\n\n",
     "\n<div class=\"Output\"><input type=\"radio\" checked=\"1\"/>one<input type=\"radio\"/>two</div>"},
    {"PopupMenuMarksTheChosenItem",
     R"nb(Cell[BoxData[PopupMenuBox["b", {"a" -> "\"A\"", "b" -> "\"B\"", "c" -> "\"C&D\""}]], "Output"])nb",
     "\t  A\n\t* B\n\t  C&D\n\n",
     "\n<div class=\"Output\"><select><option>A</option><option selected=\"selected\">B</option>"
     "<option>C&amp;D</option></select></div>"},
    {"ActionMenuShowsLabelAndItems",
     R"nb(Cell[BoxData[ActionMenuBox["\"T\"", {"\"A\"" :> f[], "\"B\"" :> g[], h}]], "Output"])nb", "T\n\tA\n\tB\n\n",
     "\n<div class=\"Output\"><select><option selected=\"selected\">T</option><option>A</option><option>B</option>"
     "</select></div>"},
    {"SetterLabelIsRenderedThenEscaped",
     R"nb(Cell[BoxData[RowBox[{SetterBox[Dynamic[x], {1}, StyleBox["\"one\"", FontWeight->"Bold"]], SetterBox[Dynamic[x], "\"a<b\""], SetterBox[Dynamic[x]]}]], "Output"])nb",
     "onea<b\n\n",
     "\n<div class=\"Output\"><input type=\"button\" value=\"&lt;span style=&quot;font-weight:bold;&quot;&gt;one"
     "&lt;/span&gt;\"/><input type=\"button\" value=\"a&lt;b\"/><input type=\"button\" value=\"\"/></div>"},
    {"TabViewShowsTheSelectedPane",
     R"nb(Cell[BoxData[TabViewBox[{{1, "\"P\"" -> "pages"}, {2, "\"Q\"" -> "quires"}}, 2]], "Output"])nb",
     "P\npages\nQ\nquires\n\n",
     "\n<div class=\"Output\">\n<table bgcolor=\"#EEEEEE\" style=\"border:1px solid;\"><tr>\n"
     "<td style=\"border:1px solid;\">P</td>\n<td style=\"border:1px solid;\" bgcolor=\"#7799FF\">Q</td>\n"
     "</tr><tr><td style=\"border:1px solid;\" colspan=\"2\">\nquires\n</td></tr></table>\n</div>"},
    {"PanelShowsItsContents", R"nb(Cell[BoxData[RowBox[{PanelBox["in"], PanelBox[]}]], "Output"])nb", "in\n\n",
     "\n<div class=\"Output\"><table bgcolor=\"#EEEEEE\" style=\"display:inline;border:1px solid;margin:2px;"
     "padding:4px;\"><tr><td>in</td></tr></table></div>"},
    {"InputFieldsWithTextEmptyAndDynamic",
     R"nb(Cell[BoxData[RowBox[{InputFieldBox["\"a<b\"", String], InputFieldBox["\"\"", String], InputFieldBox[Dynamic[n]], InputFieldBox[Dynamic[name], String]}]], "Output"])nb",
     "|__a<b__||________||__n__||__name__|\n\n",
     "\n<div class=\"Output\"><input type=\"text\" value=\"a&lt;b\"/><input type=\"text\" value=\"\"/>"
     "<input type=\"text\" value=\"n\"/><input type=\"text\" value=\"name\"/></div>"},
    // Graphics show only their labels in the text, a placeholder of the
    // default size on the page.
    {"GraphicsShowOnlyTheirLabels",
     R"nb(Cell[BoxData[GraphicsBox[{LineBox[{{0, 0}, {1, 1}}], Text["hidden"]}, AxesLabel->{"t", None}, PlotLabel->FormBox["Orbit", TraditionalForm], FrameLabel->{{None, None}, {None, None}}]], "Output"])nb",
     "t\nOrbit\n\n",
     "\n<div class=\"Output\"><table width=\"320\" height=\"240\" bgcolor=\"#EEEEEE\" border=\"1\"><tr>"
     "<td align=\"center\">-Graphics-</td></tr></table></div>"},
    {"HyperlinkEscapesURLAndLabel",
     R"nb(Cell[TextData[ButtonBox["Q&A", BaseStyle->"Hyperlink", ButtonData->{URL["http://x.example/?a=1&b='2'"], None}]], "Text"])nb",
     "Q&A <http://x.example/?a=1&b='2'>\n\n",
     "\n<div class=\"Text\"><a href=\"http://x.example/?a=1&amp;b=&apos;2&apos;\">Q&amp;A</a></div>"},
    {"HyperlinkFromStyleAndStringData",
     R"nb(Cell[TextData[{ButtonBox["doc", ButtonStyle->"Hyperlink", ButtonData->"http://d.example/"], ButtonBox["none", BaseStyle->"Hyperlink"], ButtonBox[StyleBox["ref", FontWeight->"Bold"], BaseStyle->"Link"]}], "Text"])nb",
     "doc <http://d.example/>none <>ref\n\n",
     "\n<div class=\"Text\"><a href=\"http://d.example/\">doc</a><a href=\"\">none</a>"
     "<input type=\"button\" value=\"ref\"/></div>"},
};

class ReadableTextTest : public testing::TestWithParam<Golden> {};

TEST_P(ReadableTextTest, InBothRenderers) {
  const Golden& golden = GetParam();
  const std::string notebook = std::string("Notebook[{") + golden.notebook + "}]";
  auto text = ConvertNotebook(notebook);
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_EQ(text.out, golden.text);
  auto html = ConvertNotebook(notebook, {"-html"});
  EXPECT_EQ(html.status, 0) << html.err;
  EXPECT_EQ(NbtextTest::WithoutCellStyles(html.out), NbtextTest::HtmlPage(golden.html, golden.head));
}

INSTANTIATE_TEST_SUITE_P(Goldens, ReadableTextTest, testing::ValuesIn(kGoldens),
                         [](const testing::TestParamInfo<Golden>& theInfo) { return theInfo.param.name; });
} // namespace
