//===- CorpusReadabilityTest.cpp - The corpus reads as its pages do -------===//
//
// Converts every notebook of the corpus with both renderers (each must
// convert) and counts, in both outputs, the faults that make real notebooks
// hard to read or search: words glued across a string's line break, cells
// nested in cells or left open, settings run into words, code debris in
// cells that are not code, names left as escapes, cells that start
// indented, form names after content, numbers reprinted, the debris of
// templates, runs of empty lines and lines that end in blanks. Each count
// must be zero; the table printed first tells where a count comes from.
//
//===----------------------------------------------------------------------===//
#include <gtest/gtest.h>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>
#include "NotebookHTMLIndexer.h"
#include "NotebookTextIndexer.h"
#include "Kx/KxExpr.h"
#include "Support/ZnTestSupport.h"
#include "Zn/Base/ZnData.h"
#include "Zn/IO/ZnFileStream.h"
#include "Zn/IO/ZnWriter.h"

namespace {
using Zn::adopt;

/// What one renderer wrote for one notebook: the whole output and, per
/// cell of the cell list, its style and its part of the output.
struct Rendering {
  std::string out;
  struct Cell {
    std::string style;
    std::string text;
    /// Whether the cell holds plain text, which shows as it stands.
    bool plain = false;
    /// The writer's indentation when the cell began (text only).
    int indent = 0;
  };
  std::vector<Cell> cells;
};

/// A renderer that notes, for each cell of the cell list, its style,
/// whether it holds plain text rather than boxes, the writer's indentation
/// when it began and, writing to a string, where in the output it began.
template <class Renderer> class CellNoting : public Renderer {
public:
  using Renderer::Renderer;
  struct Start {
    std::string style;
    bool plain;
    int indent;
    ZnIndex at;
  };
  void noteOutput(Zn::StringWriter* theWriter) { output_ = theWriter; }
  void beginCell(Zn::Kx::Expr* theCell, const IndexContext& theContext) override {
    Renderer::beginCell(theCell, theContext);
    starts_.push_back({theContext.cellStyle ? ZnTest::Utf8(theContext.cellStyle.get()) : "",
                       theCell->length() >= 1 && theCell->part(1)->asCharacterString() != nullptr,
                       theContext.writer->getIndentLevel(), output_ ? output_->getString()->length() : 0});
  }
  const std::vector<Start>& starts() const { return starts_; }

private:
  Zn::StringWriter* output_ = nullptr;
  std::vector<Start> starts_;
};

std::string TextOf(Zn::String* theString, ZnIndex theFrom, ZnIndex theTo) {
  return ZnTest::Utf8(adopt(theString->substringWithRange(Zn::Range{theFrom, theTo - theFrom})).get());
}

Rendering RenderText(const std::string& thePath) {
  Rendering result;
  auto writer = adopt(new Zn::StringWriter());
  auto indexer = adopt(new CellNoting<NotebookTextIndexer>(writer.get()));
  indexer->noteOutput(writer.get());
  auto input = adopt(Zn::FilePointerStream::createForReading(thePath.c_str()));
  EXPECT_TRUE(input && indexer->indexStream(input.get())) << thePath;
  Zn::String* out = writer->getString();
  result.out = ZnTest::Utf8(out);
  const auto& starts = indexer->starts();
  for (size_t i = 0; i < starts.size(); ++i) {
    ZnIndex end = i + 1 < starts.size() ? starts[i + 1].at : out->length();
    result.cells.push_back({starts[i].style, TextOf(out, starts[i].at, end), starts[i].plain, starts[i].indent});
  }
  return result;
}

/// The text as nbtext writes it, through the renderer's own stream writer.
std::string RenderTextStream(const std::string& thePath) {
  auto data = adopt(new Zn::MutableData());
  auto sink = adopt(Zn::Data::createWriteStream(data.get()));
  auto indexer = adopt(new NotebookTextIndexer(sink.get()));
  auto input = adopt(Zn::FilePointerStream::createForReading(thePath.c_str()));
  EXPECT_TRUE(input && indexer->indexStream(input.get())) << thePath;
  return ZnTest::Bytes(data.get());
}

Rendering RenderHTML(const std::string& thePath) {
  Rendering result;
  auto data = adopt(new Zn::MutableData());
  auto sink = adopt(Zn::Data::createWriteStream(data.get()));
  auto indexer = adopt(new CellNoting<NotebookHTMLIndexer>(sink.get()));
  auto input = adopt(Zn::FilePointerStream::createForReading(thePath.c_str()));
  EXPECT_TRUE(input && indexer->indexStream(input.get())) << thePath;
  result.out = ZnTest::Bytes(data.get());
  // Each cell is a div of its own whose class is its style.
  const std::string open = "<div class=\"";
  for (size_t at = result.out.find(open); at != std::string::npos;) {
    size_t classEnd = result.out.find('"', at + open.size());
    size_t next = result.out.find(open, at + 1);
    result.cells.push_back({result.out.substr(at + open.size(), classEnd - at - open.size()),
                            result.out.substr(at, (next == std::string::npos ? result.out.size() : next) - at)});
    at = next;
  }
  const auto& starts = indexer->starts();
  EXPECT_EQ(starts.size(), result.cells.size()) << thePath << ": one div per cell";
  for (size_t i = 0; i < starts.size() && i < result.cells.size(); ++i)
    result.cells[i].plain = starts[i].plain;
  return result;
}

//===--- The faults --------------------------------------------------------===//

bool IsLetter(char theCharacter) {
  return (theCharacter >= 'a' && theCharacter <= 'z') || (theCharacter >= 'A' && theCharacter <= 'Z');
}
bool IsDigit(char theCharacter) { return theCharacter >= '0' && theCharacter <= '9'; }
bool IsWordCharacter(char theCharacter) { return IsLetter(theCharacter) || IsDigit(theCharacter); }

/// The pairs of words on either side of a raw line break inside a string
/// literal of the source, written together ("copy" + "of" gives "copyof").
std::set<std::string> WordsAcrossStringLineBreaks(const std::string& theSource) {
  std::set<std::string> glued;
  bool inString = false;
  for (size_t i = 0; i < theSource.size(); ++i) {
    char c = theSource[i];
    if (!inString) {
      if (c == '(' && i + 1 < theSource.size() && theSource[i + 1] == '*') {
        size_t close = theSource.find("*)", i + 2);
        i = close == std::string::npos ? theSource.size() : close + 1;
      } else if (c == '"') {
        inString = true;
      }
      continue;
    }
    if (c == '\\') {
      ++i;
    } else if (c == '"') {
      inString = false;
    } else if (c == '\n') {
      size_t before = i > 0 && theSource[i - 1] == '\r' ? i - 1 : i;
      size_t start = before;
      while (start > 0 && IsLetter(theSource[start - 1]))
        --start;
      size_t end = i + 1;
      while (end < theSource.size() && IsLetter(theSource[end]))
        ++end;
      if (before - start >= 2 && end - i - 1 >= 2 && (start == 0 || theSource[start - 1] != '\\'))
        glued.insert(theSource.substr(start, before - start) + theSource.substr(i + 1, end - i - 1));
    }
  }
  return glued;
}

/// The maximal runs of letters and digits of a text.
std::unordered_set<std::string> Words(const std::string& theText) {
  std::unordered_set<std::string> words;
  for (size_t i = 0; i < theText.size();) {
    if (!IsWordCharacter(theText[i])) {
      ++i;
      continue;
    }
    size_t end = i;
    while (end < theText.size() && IsWordCharacter(theText[end]))
      ++end;
    words.insert(theText.substr(i, end - i));
    i = end;
  }
  return words;
}

/// The names of the settings of the source: capitalised names of six
/// letters or more in front of "->" or ":>".
std::set<std::string> SettingNames(const std::string& theSource) {
  std::set<std::string> names;
  for (size_t at = theSource.find('>'); at != std::string::npos; at = theSource.find('>', at + 1)) {
    if (at < 2 || (theSource[at - 1] != '-' && theSource[at - 1] != ':'))
      continue;
    size_t end = at - 1;
    while (end > 0 && (theSource[end - 1] == ' ' || theSource[end - 1] == '\n' || theSource[end - 1] == '\r'))
      --end;
    size_t start = end;
    while (start > 0 && IsWordCharacter(theSource[start - 1]))
      --start;
    if (end - start >= 6 && theSource[start] >= 'A' && theSource[start] <= 'Z')
      names.insert(theSource.substr(start, end - start));
  }
  return names;
}

/// How often one fault occurs in one output, and a few samples of it.
struct Found {
  int count = 0;
  std::vector<std::string> samples;
  void note(const std::string& theSample, int theCount = 1) {
    if (theCount > 0 && samples.size() < 3)
      samples.push_back(theSample);
    count += theCount;
  }
};

/// Code debris in a cell's output: the escapes \n, \t and \" inside a
/// quoted string (a string shown as code: "x\ny"), and numbers with a
/// precision mark (digits then a backquote, not part of a name such as
/// Package1`). A backslash of the text itself, as in a path C:\temp or a
/// log's \toks, is no escape; an escaped backslash "\\" is none either.
void CountDebris(const std::string& theText, Found* theFound) {
  auto note = [&](size_t theAt) { theFound->note(theText.substr(theAt < 20 ? 0 : theAt - 20, 40)); };
  bool quoted = false;
  for (size_t i = 0; i + 1 < theText.size(); ++i) {
    char c = theText[i];
    char next = theText[i + 1];
    if (c == '\n') {
      quoted = false;
    } else if (c == '"') {
      quoted = !quoted;
    } else if (c == '\\') {
      if (quoted && (next == 'n' || next == 't' || next == '"'))
        note(i);
      ++i;
    } else if (next == '`' && IsDigit(c)) {
      size_t start = i;
      while (start > 0 && (IsDigit(theText[start - 1]) || theText[start - 1] == '.'))
        --start;
      if (start == 0 || !(IsLetter(theText[start - 1]) || theText[start - 1] == '$' || theText[start - 1] == '`'))
        note(i);
    }
  }
}

/// theText with each "&quot;" of HTML as the quote it stands for.
std::string WithQuotes(std::string theText) {
  for (size_t at = theText.find("&quot;"); at != std::string::npos; at = theText.find("&quot;", at + 1))
    theText.replace(at, 6, "\"");
  return theText;
}

/// The names that recent notebooks use beyond the named table: operators,
/// and Latin letters with marks ("ZHacek", "CapitalRHacek").
bool IsLeftoverName(const std::string& theName) {
  static const std::set<std::string> operators = {"LeftAssociation", "RightAssociation", "TwoWayRule",
                                                  "UndirectedEdge",  "DirectedEdge",     "Function",
                                                  "TensorProduct",   "Equivalent"};
  static const std::set<std::string> marks = {"Grave", "Acute", "Hat", "Tilde", "DoubleDot", "Ring",
                                              "Cedilla", "Bar", "Cup", "Hacek", "DoubleAcute"};
  if (operators.count(theName))
    return true;
  size_t letter = theName.compare(0, 7, "Capital") == 0 ? 7 : 0;
  return theName.size() > letter + 1 && theName[letter] >= 'A' && theName[letter] <= 'Z' &&
         marks.count(theName.substr(letter + 1));
}

bool IsCodeStyle(const std::string& theStyle) {
  return theStyle == "Input" || theStyle == "InputOnly" || theStyle == "Code";
}

enum Fault {
  kGluedWords,
  kNestedCells,
  kSettingsInWords,
  kDebris,
  kLeftoverNames,
  kIndentedCells,
  kUnclosedCells,
  kFormNames,
  kReprintedNumbers,
  kTemplateDebris,
  kEmptyLineRuns,
  kTrailingBlanks,
  kInvisibleNames,
  kFaultCount
};
const char* const kFaultNames[kFaultCount] = {
    "words glued across a line break", "cells nested or badly named", "settings run into words",
    "code debris outside code",        "names left as escapes",       "cells starting indented",
    "cell divs nested or unclosed",    "form names after content",    "numbers reprinted",
    "template tags, None, paclet:",    "runs of empty lines",         "lines ending in blanks",
    "invisible or private-use names"};

/// Names that the page never shows as names: invisible and formatting
/// characters, private-use letters that Unicode has, and the operators
/// that only recent notebooks name.
bool IsInvisibleOrPrivateName(const std::string& theName) {
  static const std::set<std::string> names = {"Null",  "AlignmentMarker", "NoBreak",  "AutoSpace", "Continuation",
                                              "Minus", "Limit",           "MaxLimit", "MinLimit"};
  if (theName.compare(0, 9, "Invisible") == 0 || names.count(theName))
    return true;
  for (const char* family : {"DoubleStruck", "Script", "Gothic"}) {
    const std::string prefix = family;
    if (theName.compare(0, prefix.size(), prefix) != 0)
      continue;
    std::string rest = theName.substr(prefix.size());
    if (rest.compare(0, 7, "Capital") == 0)
      rest = rest.substr(7);
    if (rest.size() == 1 && IsLetter(rest[0]))
      return true;
    // Of the digits, Unicode has only the double-struck ones.
    static const std::set<std::string> digits = {"Zero", "One", "Two",   "Three", "Four",
                                                 "Five", "Six", "Seven", "Eight", "Nine"};
    if (prefix == "DoubleStruck" && digits.count(rest))
      return true;
  }
  return false;
}

/// The tags of the source's templates: the string after the first
/// argument of each TemplateBox.
std::set<std::string> TemplateTags(const std::string& theSource) {
  std::set<std::string> tags;
  const std::string head = "TemplateBox[";
  for (size_t at = theSource.find(head); at != std::string::npos; at = theSource.find(head, at + 1)) {
    int depth = 0;
    bool quoted = false;
    size_t i = at + head.size();
    for (; i < theSource.size(); ++i) {
      char c = theSource[i];
      if (quoted) {
        if (c == '\\')
          ++i;
        else if (c == '"')
          quoted = false;
      } else if (c == '"') {
        quoted = true;
      } else if (c == '[' || c == '{' || c == '(') {
        ++depth;
      } else if (c == ']' || c == '}' || c == ')') {
        if (depth-- == 0)
          break;
      } else if (c == ',' && depth == 0) {
        break;
      }
    }
    size_t open = theSource.find_first_not_of(" \t\r\n", i + 1);
    if (i >= theSource.size() || theSource[i] != ',' || open == std::string::npos || theSource[open] != '"')
      continue;
    size_t close = theSource.find('"', open + 1);
    if (close != std::string::npos && close - open > 2)
      tags.insert(theSource.substr(open + 1, close - open - 1));
  }
  return tags;
}

/// How often theWord stands in theText as a word of its own.
int CountWord(const std::string& theText, const std::string& theWord) {
  int count = 0;
  for (size_t at = theText.find(theWord); at != std::string::npos; at = theText.find(theWord, at + 1)) {
    const size_t end = at + theWord.size();
    if ((at == 0 || !IsWordCharacter(theText[at - 1])) && (end >= theText.size() || !IsWordCharacter(theText[end])))
      ++count;
  }
  return count;
}

int CountOccurrences(const std::string& theText, const std::string& thePart) {
  int count = 0;
  for (size_t at = theText.find(thePart); at != std::string::npos; at = theText.find(thePart, at + 1))
    ++count;
  return count;
}

/// A number in the output that the source does not hold: six fixed
/// decimals, or ten digits and more (a wrapped integer).
void CountReprintedNumbers(const std::string& theOut, const std::string& theSource, Found* theFound) {
  for (size_t i = 0; i < theOut.size(); ++i) {
    if (!IsDigit(theOut[i]) || (i > 0 && (IsWordCharacter(theOut[i - 1]) || theOut[i - 1] == '.')))
      continue;
    size_t end = i;
    while (end < theOut.size() && IsDigit(theOut[end]))
      ++end;
    size_t decimals = 0;
    if (end < theOut.size() && theOut[end] == '.') {
      size_t fraction = end + 1;
      while (fraction < theOut.size() && IsDigit(theOut[fraction]))
        ++fraction;
      decimals = fraction - end - 1;
      end = fraction;
    }
    const std::string number = theOut.substr(i, end - i);
    if ((decimals == 6 || (decimals == 0 && end - i >= 10)) && theSource.find(number) == std::string::npos)
      theFound->note(number);
    i = end;
  }
}

/// theSource without its line continuations: long numbers may be cut by
/// backslash-newline.
std::string WithoutContinuations(const std::string& theSource) {
  std::string joined;
  for (size_t i = 0; i < theSource.size(); ++i) {
    if (theSource[i] == '\\' && i + 1 < theSource.size() && (theSource[i + 1] == '\n' || theSource[i + 1] == '\r')) {
      i += theSource[i + 1] == '\r' && i + 2 < theSource.size() && theSource[i + 2] == '\n' ? 2 : 1;
      continue;
    }
    joined += theSource[i];
  }
  return joined;
}

/// Per fault, its total over the corpus and a line for each file that has it.
struct Tally {
  int counts[kFaultCount] = {};
  std::vector<std::string> where[kFaultCount];
  void add(const std::string& theFile, const Found (&theFound)[kFaultCount]) {
    for (int fault = 0; fault < kFaultCount; ++fault) {
      if (theFound[fault].count == 0)
        continue;
      counts[fault] += theFound[fault].count;
      std::string line = theFile + " (" + std::to_string(theFound[fault].count) + ")";
      for (const std::string& sample : theFound[fault].samples)
        line += " | " + sample;
      where[fault].push_back(line);
    }
  }
};

/// The faults of the whole output: divs left open, runs of empty lines,
/// lines ending in blanks.
void MeasureLayout(const std::string& theOut, bool theIsHTML, Found* theFound) {
  if (theIsHTML) {
    // Every div that opens inside another (a cell left open swallows the
    // ones after it), and every one never closed.
    int depth = 0;
    for (size_t at = theOut.find("<div"), end = theOut.find("</div>"); at != std::string::npos || end != std::string::npos;) {
      if (at != std::string::npos && (end == std::string::npos || at < end)) {
        if (depth++ > 0)
          theFound[kUnclosedCells].note(theOut.substr(at, 50));
        at = theOut.find("<div", at + 1);
      } else {
        --depth;
        end = theOut.find("</div>", end + 1);
      }
    }
    theFound[kUnclosedCells].note("never closed", depth > 0 ? depth : 0);
  }
  int emptyLines = 0;
  for (size_t start = 0; start < theOut.size();) {
    size_t end = theOut.find('\n', start);
    if (end == std::string::npos)
      end = theOut.size();
    const std::string line = theOut.substr(start, end - start);
    if (!line.empty() && (line.back() == ' ' || line.back() == '\t'))
      theFound[kTrailingBlanks].note(line.substr(line.size() < 40 ? 0 : line.size() - 40));
    if (line.find_first_not_of(" \t") != std::string::npos)
      emptyLines = 0;
    else if (++emptyLines == 2)
      theFound[kEmptyLineRuns].note(theOut.substr(start < 40 ? 0 : start - 40, 40));
    start = end + 1;
  }
}

void Measure(const std::string& theSource, const Rendering& theRendering, bool theIsHTML, Found* theFound) {
  const std::string& out = theRendering.out;
  const auto outWords = Words(out);
  const auto sourceWords = Words(theSource);

  for (const std::string& pair : WordsAcrossStringLineBreaks(theSource)) {
    if (outWords.count(pair) && theSource.find(pair) == std::string::npos)
      theFound[kGluedWords].note(pair);
  }

  const std::set<std::string> settings = SettingNames(theSource);
  for (const std::string& word : outWords) {
    if (word.size() <= 6 || sourceWords.count(word))
      continue;
    for (const std::string& name : settings) {
      if (word.size() > name.size() && word.find(name) != std::string::npos) {
        theFound[kSettingsInWords].note(word);
        break;
      }
    }
  }

  for (size_t at = out.find("\\["); at != std::string::npos; at = out.find("\\[", at + 1)) {
    size_t close = out.find(']', at);
    if (close == std::string::npos || close - at >= 40)
      continue;
    const std::string name = out.substr(at + 2, close - at - 2);
    if (IsLeftoverName(name))
      theFound[kLeftoverNames].note(out.substr(at, close + 1 - at));
    if (IsInvisibleOrPrivateName(name))
      theFound[kInvisibleNames].note(out.substr(at, close + 1 - at));
  }

  if (theIsHTML) {
    // The div of a cell is at the start of its line.
    for (size_t at = out.find("\n\t"); at != std::string::npos; at = out.find("\n\t", at + 1)) {
      size_t text = out.find_first_not_of('\t', at + 1);
      if (text != std::string::npos && out.compare(text, 12, "<div class=\"") == 0)
        theFound[kIndentedCells].note(out.substr(at + 1, 40));
    }
  }

  const std::set<std::string> tags = TemplateTags(theSource);
  const std::string joined = WithoutContinuations(theSource);
  for (const auto& cell : theRendering.cells) {
    if (theIsHTML) {
      // A cell's div closes before the next one opens, and its class is a
      // plain style name.
      bool plain = true;
      for (char c : cell.style)
        plain = plain && (IsWordCharacter(c) || c == '-' || c == '_');
      size_t firstClose = cell.text.find("</div>");
      size_t innerOpen = cell.text.find("<div", 4);
      if (!plain || (innerOpen != std::string::npos && (firstClose == std::string::npos || innerOpen < firstClose)))
        theFound[kNestedCells].note(cell.text.substr(0, 60));
    }
    // Tabs of the cell's own text are its own; brackets left open by an
    // earlier cell must not indent it.
    if (cell.indent > 0)
      theFound[kIndentedCells].note(cell.style + " at level " + std::to_string(cell.indent) + ": " +
                                    cell.text.substr(0, 40));
    // Outside code: code debris, form names, numbers reprinted through
    // machine types, and what templates leave behind when they are not
    // shown as the page does.
    if (IsCodeStyle(cell.style) || cell.plain)
      continue;
    CountDebris(theIsHTML ? WithQuotes(cell.text) : cell.text, &theFound[kDebris]);
    // The form of a cell's boxes, run into what they show ("x^2StandardForm").
    for (const char* form : {"StandardForm", "TraditionalForm"}) {
      for (size_t at = cell.text.find(form); at != std::string::npos; at = cell.text.find(form, at + 1)) {
        const char before = at > 0 ? cell.text[at - 1] : ' ';
        if (IsWordCharacter(before) || before == ')' || before == ']' || before == '}')
          theFound[kFormNames].note(cell.text.substr(at < 30 ? 0 : at - 30, 50));
      }
    }
    CountReprintedNumbers(cell.text, joined, &theFound[kReprintedNumbers]);
    Found& debris = theFound[kTemplateDebris];
    debris.note("paclet:", int(cell.text.find("paclet:") != std::string::npos));
    for (const char* word : {"None", "Automatic"}) {
      // A lone setting: a whole word between blanks or at a line's end.
      for (size_t at = cell.text.find(word); at != std::string::npos; at = cell.text.find(word, at + 1)) {
        const size_t end = at + std::string(word).size();
        const bool before = at == 0 || cell.text[at - 1] == ' ' || cell.text[at - 1] == '\n';
        const bool after = end >= cell.text.size() || cell.text[end] == ' ' || cell.text[end] == '\n';
        if (before && after && CountWord(theSource, word) == CountWord(theSource, std::string(word) + "]"))
          debris.note(word);
      }
    }
    for (const std::string& tag : tags) {
      // A tag that the source holds only as a tag.
      const int uses = CountWord(cell.text, tag);
      if (uses > 0 && CountWord(theSource, tag) == CountOccurrences(theSource, "\"" + tag + "\""))
        debris.note(tag, uses);
    }
  }
}

void Report(const char* theRenderer, const Tally& theTally) {
  std::printf("%s:\n", theRenderer);
  for (int fault = 0; fault < kFaultCount; ++fault) {
    std::printf("  %-34s %6d\n", kFaultNames[fault], theTally.counts[fault]);
    for (const std::string& line : theTally.where[fault])
      std::printf("      %s\n", line.c_str());
  }
}

TEST(CorpusReadabilityTest, RealNotebooksReadAsTheirPagesDo) {
  if (ZnTest::ReadCorpusManifest().empty())
    GTEST_SKIP() << "no corpus at " NBTEXT_CORPUS_DIR;
  Tally text;
  Tally html;
  int measured = 0;
  for (const ZnTest::CorpusFile& file : ZnTest::ReadCorpusManifest()) {
    if (file.era == "ancient")
      continue;
    ++measured;
    const std::string path = NBTEXT_CORPUS_DIR "/" + file.name;
    const std::string source = ZnTest::ReadFile(path);
    Found inText[kFaultCount], inHTML[kFaultCount];
    Measure(source, RenderText(path), false, inText);
    MeasureLayout(RenderTextStream(path), false, inText);
    const Rendering page = RenderHTML(path);
    Measure(source, page, true, inHTML);
    MeasureLayout(page.out, true, inHTML);
    text.add(file.name, inText);
    html.add(file.name, inHTML);
  }
  EXPECT_EQ(measured, 81);
  Report("text", text);
  Report("html", html);
  for (int fault = 0; fault < kFaultCount; ++fault) {
    EXPECT_EQ(text.counts[fault], 0) << "text: " << kFaultNames[fault];
    EXPECT_EQ(html.counts[fault], 0) << "html: " << kFaultNames[fault];
  }
}
} // namespace
