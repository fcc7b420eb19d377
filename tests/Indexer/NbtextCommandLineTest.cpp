//===- NbtextCommandLineTest.cpp - Options, files, refusals, exit status --===//
#include <gtest/gtest.h>
#include "Indexer/NbtextRunner.h"

namespace {
using NbtextTest::RunNbtext;
using NbtextTest::TempDir;
using NbtextTest::WithoutTimeStamps;

const char* const kNotebookA = R"nb(Notebook[{Cell["alpha", "Text"]}])nb";
const char* const kNotebookB = R"nb(Notebook[{Cell["beta", "Text"]}])nb";
const char* const kIndented =
    R"nb(Notebook[{Cell[BoxData[RowBox[{"f", "[", "\[IndentingNewLine]", "x", "\[IndentingNewLine]", "]"}]], "Input"]}])nb";

// With no file named, options or not, the notebook comes on standard input
// and a failure names "stdin".
TEST(NbtextCommandLineTest, StandardInputWhenNoFileIsNamed) {
  const struct {
    std::vector<std::string> arguments;
    const char* input;
    int status;
    const char *out, *err;
  } cases[] = {
      {{}, kNotebookA, 0, "alpha\n\n", ""},
      {{"-noindent"}, kIndented, 0, "f[\nx\n]\n\n", ""},
      {{}, "<html></html>", 255, "", "could not index file stdin\n"},
  };
  for (const auto& c : cases) {
    auto run = RunNbtext(c.arguments, c.input);
    EXPECT_EQ(run.status, c.status) << c.input;
    EXPECT_EQ(run.out, c.out) << c.input;
    EXPECT_EQ(WithoutTimeStamps(run.err), c.err) << c.input;
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

// Between two good files, one that cannot be opened is announced and
// skipped, while one that is no notebook is refused and ends the run.
TEST(NbtextCommandLineTest, UnopenableFilesAreSkippedAFailingFileEndsTheRun) {
  TempDir dir;
  std::string a = dir.write("a.nb", kNotebookA), b = dir.write("b.nb", kNotebookB);
  std::string missing = dir.path() + "/missing.nb", bad = dir.write("bad.nb", "List[1, 2]");
  auto run = RunNbtext({a, missing, "-x", b});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "alpha\n\nbeta\n\n");
  EXPECT_EQ(run.err, "Converting " + a + "\nConverting " + missing + "\nConverting -x\nConverting " + b + "\n");
  run = RunNbtext({a, bad, b});
  EXPECT_EQ(run.status, 255);
  EXPECT_EQ(run.out, "alpha\n\n");
  EXPECT_EQ(WithoutTimeStamps(run.err),
            "Converting " + a + "\nConverting " + bad + "\ncould not index file " + bad + "\n");
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
  EXPECT_EQ(WithoutTimeStamps(dir.read("nbtext.log")), "earlier line\ncould not index file " + bad + "\n");
}

// Input that is no notebook is refused without output, whatever it is.
TEST(NbtextCommandLineTest, RefusesWhatIsNoNotebook) {
  const std::vector<std::pair<const char*, std::string>> inputs = {
      {"empty", ""},
      {"markup", "<?xml version=\"1.0\"?><notebook/>"},
      {"percent", "%!PS-Adobe-3.0\nNotebook[{}]"},
      {"other head", "List[Cell[\"x\", \"Text\"]]"},
      {"a symbol", "Notebook"},
      {"unbalanced", "Notebook[{Cell[\"x\", \"Text\"]"},
      {"garbage", "Notebook[{Cell[\"x\"]}]]]"},
      {"only a comment", "(* Notebook[{Cell[\"x\"]}] *)"},
  };
  for (const auto& [what, input] : inputs) {
    TempDir dir;
    std::string file = dir.write("in.nb", input);
    auto run = RunNbtext({file});
    EXPECT_EQ(run.status, 255) << what;
    EXPECT_EQ(run.out, "") << what;
    std::string err = WithoutTimeStamps(run.err);
    EXPECT_NE(err.find("could not index file " + file + "\n"), std::string::npos) << what << ": " << err;
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
