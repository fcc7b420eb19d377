//===- NbtextCommandLineTest.cpp - Options, files, refusals, exit status --===//
#include <gtest/gtest.h>
#include "Indexer/NbtextRunner.h"
#include "Kx/KxExprParser.h"
#include "Support/ZnTestSupport.h"

namespace {
using NbtextTest::RunNbtext;
using NbtextTest::TempDir;
using NbtextTest::WithoutTimeStamps;

const char* const kNotebookA = R"nb(Notebook[{Cell["alpha", "Text"]}])nb";
const char* const kNotebookB = R"nb(Notebook[{Cell["beta", "Text"]}])nb";
const char* const kIndented =
    R"nb(Notebook[{Cell[BoxData[RowBox[{"f", "[", "\[IndentingNewLine]", "x", "\[IndentingNewLine]", "]"}]], "Input"]}])nb";

// Help and version are whole arguments that convert nothing, wherever they
// stand; near misses are file names.
TEST(NbtextCommandLineTest, HelpAndVersionConvertNothing) {
  TempDir dir;
  std::string a = dir.write("a.nb", kNotebookA);
  const std::string version = "nbtext " NBTEXT_VERSION "\n";
  const struct {
    std::vector<std::string> arguments;
    bool help; // else the version
  } cases[] = {
      {{"-h"}, true},
      {{"--help"}, true},
      {{a, "-html", "--help"}, true},
      {{"-h", "--version"}, true},
      {{"--version"}, false},
      {{a, "--version", "-h"}, false},
  };
  for (const auto& c : cases) {
    auto run = RunNbtext(c.arguments, kNotebookA);
    const std::string& what = c.arguments.back();
    EXPECT_EQ(run.status, 0) << what;
    EXPECT_EQ(run.err, "") << what;
    if (!c.help) {
      EXPECT_EQ(run.out, version) << what;
      continue;
    }
    EXPECT_TRUE(run.out.starts_with("usage: nbtext [-html | -markdown] [-noindent] [file ...]\n")) << run.out;
    for (const char* part : {"-noindent", "--version", "255", "man nbtext"})
      EXPECT_NE(run.out.find(part), std::string::npos) << part;
  }
  for (const char* nearMiss : {"-help", "--h", "--versions", "-version"}) {
    auto run = RunNbtext({nearMiss});
    EXPECT_EQ(run.status, 1) << nearMiss;
    EXPECT_EQ(run.out, "") << nearMiss;
  }
}

// Standard input is read when no file is named (unannounced, named "stdin"
// in the log) and where "-" stands among the files (announced as "-").
TEST(NbtextCommandLineTest, StandardInputWhenNoFileIsNamedOrForADash) {
  TempDir dir;
  std::string b = dir.write("b.nb", kNotebookB);
  const struct {
    std::vector<std::string> arguments;
    const char* input;
    int status;
    std::string out, err;
  } cases[] = {
      {{}, kNotebookA, 0, "alpha\n\n", ""},
      {{"-noindent"}, kIndented, 0, "f[\nx\n]\n\n", ""},
      {{}, "<html></html>", 255, "", "could not index file stdin: not a notebook: it begins with \"<\"\n"},
      {{"-"}, kNotebookA, 0, "alpha\n\n", "Converting -\n"},
      {{b, "-", b}, kNotebookA, 0, "beta\n\nalpha\n\nbeta\n\n",
       "Converting " + b + "\nConverting -\nConverting " + b + "\n"},
      // Standard input is used up by the first dash.
      {{"-", "-"}, kNotebookA, 255, "alpha\n\n",
       "Converting -\nConverting -\ncould not index file stdin: empty input\n"},
  };
  for (const auto& c : cases) {
    auto run = RunNbtext(c.arguments, c.input);
    EXPECT_EQ(run.status, c.status) << c.err;
    EXPECT_EQ(run.out, c.out) << c.err;
    EXPECT_EQ(WithoutTimeStamps(run.err), c.err);
  }
}

TEST(NbtextCommandLineTest, OptionsMayStandAnywhereAndMatchAsPrefixes) {
  TempDir dir;
  std::string file = dir.write("f.nb", kIndented);
  const std::vector<std::vector<std::string>> orders = {
      {"-noindent", file},
      {file, "-noindent"},
      {"-noindentation", file},
      {"-htmlfoo", "-noindent", file},
      {"-html", "-noindent", file},
      {"-noindent", "-noindent", file, "-htmlx"},
  };
  // The HTML page of the same notebook, flush left as well.
  const std::string page = RunNbtext({"-html", "-noindent", file}).out;
  EXPECT_NE(page.find("<div class=\"Input\">f[<br/>\nx<br/>\n]</div>"), std::string::npos) << page;
  for (const auto& arguments : orders) {
    auto run = RunNbtext(arguments);
    EXPECT_EQ(run.status, 0);
    // The options are no files: one file announced, nothing else.
    EXPECT_EQ(run.err, "Converting " + file + "\n") << arguments[0];
    const bool html = arguments[0].starts_with("-html") || arguments.back().starts_with("-html");
    EXPECT_EQ(run.out, html ? page : "f[\nx\n]\n\n") << arguments[0];
  }
  EXPECT_EQ(RunNbtext({file}).out, "f[\n\tx\n]\n\n");
}

// Every file named is attempted. One that does not open gives status 1, a
// refused document 255, whatever the order; the good files convert.
TEST(NbtextCommandLineTest, EveryFileIsAttemptedAndTheWorstFailureSetsTheStatus) {
  TempDir dir;
  std::string a = dir.write("a.nb", kNotebookA), b = dir.write("b.nb", kNotebookB);
  std::string missing = dir.path() + "/missing.nb", bad = dir.write("bad.nb", "List[1, 2]");
  std::string folder = dir.path() + "/folder.nb";
  ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
  const std::string notOpened = "could not open file " + missing + ": No such file or directory\n";
  const std::string refused = "could not index file " + bad + ": the top expression is List[...], not Notebook[...]\n";
  const struct {
    std::vector<std::string> arguments;
    int status;
    std::string out;
    std::string log; // after the "Converting" lines, in order
  } cases[] = {
      {{a, missing, "-x", b}, 1, "alpha\n\nbeta\n\n",
       notOpened + "could not open file -x: No such file or directory\n"},
      {{a, folder, b}, 1, "alpha\n\nbeta\n\n", "could not open file " + folder + ": Is a directory\n"},
      {{a + "/a.nb", b}, 1, "beta\n\n", "could not open file " + a + "/a.nb: Not a directory\n"},
      {{a, bad, b}, 255, "alpha\n\nbeta\n\n", refused},
      {{bad, a, bad}, 255, "alpha\n\n", refused + refused},
      {{missing, bad, a}, 255, "alpha\n\n", notOpened + refused},
      {{bad, missing}, 255, "", refused + notOpened},
  };
  for (const auto& c : cases) {
    auto run = RunNbtext(c.arguments);
    EXPECT_EQ(run.status, c.status) << c.log;
    EXPECT_EQ(run.out, c.out) << c.log;
    // Each file's log line follows its own announcement.
    std::string err = WithoutTimeStamps(run.err), log;
    size_t announced = 0;
    for (size_t at = 0, end; (end = err.find('\n', at)) != std::string::npos; at = end + 1) {
      std::string line = err.substr(at, end + 1 - at);
      if (line.starts_with("Converting ")) {
        EXPECT_EQ(line, "Converting " + c.arguments[announced++] + "\n");
      } else {
        EXPECT_NE(line.find(c.arguments[announced - 1] + ": "), std::string::npos) << line;
        log += line;
      }
    }
    EXPECT_EQ(announced, c.arguments.size()) << err;
    EXPECT_EQ(log, c.log);
  }
}

TEST(NbtextCommandLineTest, LogGoesToTheFileNamedByZNLOGFILE) {
  TempDir dir;
  std::string bad = dir.write("bad.nb", "%!PS-Adobe");
  std::string log = dir.path() + "/nbtext.log";
  dir.write("nbtext.log", "earlier line\n");
  auto run = RunNbtext({bad}, "", log);
  EXPECT_EQ(run.status, 255);
  EXPECT_EQ(run.err, "Converting " + bad + "\n");
  // The log is appended to.
  EXPECT_EQ(WithoutTimeStamps(dir.read("nbtext.log")),
            "earlier line\ncould not index file " + bad + ": not a notebook: it begins with \"%\"\n");
}

// Each refusal is one log line that says why, and nothing is written.
TEST(NbtextCommandLineTest, ARefusalSaysWhyOnOneLine) {
  const std::string deep = "Notebook[{" + ZnTest::Repeat("{", Zn::Kx::kMaxNestingDepth) + "}]";
  const std::string depth = std::to_string(Zn::Kx::kMaxNestingDepth);
  const struct {
    std::string input;
    std::string reason;
  } cases[] = {
      {"", "empty input"},
      {" \r\n\t\n", "empty input"},
      {"(* Notebook[{Cell[\"x\"]}] *)\n", "empty input"},
      {"<?xml version=\"1.0\"?><notebook/>", "not a notebook: it begins with \"<\""},
      {"%!PS-Adobe-3.0\nNotebook[{}]", "not a notebook: it begins with \"%\""},
      {"(*^\n::[paletteColors = 128]\n^*)", "old plain-text notebook format, which is not read"},
      {"(*^\r\n^*)\r\nOff[General::spell];\r\n(*^\r\n^*)", "old plain-text notebook format, which is not read"},
      // Not that format: an ordinary comment before the notebook.
      {"(* ^ *)Notebook[{}]]", "syntax error, unexpected ']', expecting end of file at line 1, column 20"},
      {"Notebook[{Cell[\"x\", \"Text\"]",
       "syntax error, unexpected end of file, expecting '}' or ',' at line 1, column 28"},
      {"Notebook[{Cell[\"x\"]}]]]", "syntax error, unexpected ']', expecting end of file at line 1, column 22"},
      {"Notebook[{}\r\n]]", "syntax error, unexpected ']', expecting end of file at line 2, column 2"},
      {"Notebook[{Cell[\"x\n", "syntax error, unterminated string at line 1, column 16"},
      {"Notebook[{}] (* open", "syntax error, unterminated comment at line 1, column 14"},
      // At the bracket one level too deep ("Notebook[{" is two levels).
      {deep, "nested deeper than " + depth + " levels at line 1, column " +
                 std::to_string(10 + Zn::Kx::kMaxNestingDepth - 1)},
      // Operators that build a tree too deep without any bracket, refused
      // where the tree passes its own limit.
      {"Notebook[{}" + ZnTest::Repeat(" + a^", 2 * Zn::Kx::kMaxNestingDepth + 64) + "x]",
       "nested deeper than " + depth + " levels at line 1, column 25333"},
      {"List[Cell[\"x\", \"Text\"]]", "the top expression is List[...], not Notebook[...]"},
      {"Notebook", "the top expression is Notebook, not Notebook[...]"},
      {"\"Notebook[{}]\"", "the top expression is a string, not Notebook[...]"},
      {"3.5", "the top expression is a number, not Notebook[...]"},
      {"f[x][Notebook[{}]]", "the top expression is a compound expression, not Notebook[...]"},
      {"Null", "the top expression is Null, not Notebook[...]"},
  };
  TempDir dir;
  for (const auto& c : cases) {
    std::string file = dir.write("in.nb", c.input);
    auto run = RunNbtext({file});
    EXPECT_EQ(run.status, 255) << c.reason;
    EXPECT_EQ(run.out, "") << c.reason;
    EXPECT_EQ(WithoutTimeStamps(run.err), "Converting " + file + "\ncould not index file " + file + ": " + c.reason + "\n");
  }
}

TEST(NbtextCommandLineTest, SampleNotebookConverts) {
  auto run = RunNbtext({NBTEXT_SOURCE_DIR "/samples/sample.nb"});
  EXPECT_EQ(run.status, 0) << run.err;
  for (const char* text : {"Orbits of a Damped Pendulum", "course notes <http://example.org/pendulum.html>",
                           " [X]", "* Runge-Kutta", "|__0.75__|", "Angle against time"})
    EXPECT_NE(run.out.find(text), std::string::npos) << text;
}
} // namespace
