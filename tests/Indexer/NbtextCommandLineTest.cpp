//===- NbtextCommandLineTest.cpp - Options, files, refusals, exit status --===//
#include <gtest/gtest.h>
#include "Indexer/NbtextRunner.h"
#include "Kx/KxExprParser.h"

namespace {
using NbtextTest::RunNbtext;
using NbtextTest::TempDir;
using NbtextTest::WithoutTimeStamps;

const char* const kNotebookA = R"nb(Notebook[{Cell["alpha", "Text"]}])nb";
const char* const kNotebookB = R"nb(Notebook[{Cell["beta", "Text"]}])nb";
const char* const kIndented =
    R"nb(Notebook[{Cell[BoxData[RowBox[{"f", "[", "\[IndentingNewLine]", "x", "\[IndentingNewLine]", "]"}]], "Input"]}])nb";

TEST(NbtextCommandLineTest, StandardInputWhenNoFileIsNamed) {
  auto run = RunNbtext({}, kNotebookA);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "alpha\n\n");
  EXPECT_EQ(run.err, "");
}

TEST(NbtextCommandLineTest, OptionsAloneStillReadStandardInput) {
  auto run = RunNbtext({"-noindent"}, kIndented);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "f[\nx\n]\n\n");
  EXPECT_EQ(run.err, "");
}

TEST(NbtextCommandLineTest, StandardInputThatFailsIsLoggedAsStdin) {
  auto run = RunNbtext({}, "<html></html>");
  EXPECT_EQ(run.status, 255);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(WithoutTimeStamps(run.err), "could not index file stdin\n");
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

TEST(NbtextCommandLineTest, UnopenableFilesAreAnnouncedAndSkipped) {
  TempDir dir;
  std::string a = dir.write("a.nb", kNotebookA);
  std::string b = dir.write("b.nb", kNotebookB);
  auto run = RunNbtext({a, dir.path() + "/missing.nb", "-x", b});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "alpha\n\nbeta\n\n");
  EXPECT_EQ(run.err, "Converting " + a + "\nConverting " + dir.path() + "/missing.nb\nConverting -x\nConverting " +
                         b + "\n");
}

TEST(NbtextCommandLineTest, AFailingFileEndsTheRun) {
  TempDir dir;
  std::string a = dir.write("a.nb", kNotebookA);
  std::string bad = dir.write("bad.nb", "List[1, 2]");
  std::string b = dir.write("b.nb", kNotebookB);
  auto run = RunNbtext({a, bad, b});
  EXPECT_EQ(run.status, 255);
  EXPECT_EQ(run.out, "alpha\n\n");
  EXPECT_EQ(WithoutTimeStamps(run.err), "Converting " + a + "\nConverting " + bad + "\ncould not index file " + bad +
                                            "\n");
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

// The parser refuses nesting beyond its limit; everything it accepts the
// walk must take without running out of stack, in each way of nesting.
TEST(NbtextCommandLineTest, NestingJustUnderTheParsersLimitConverts) {
  const int32_t outer = 4; // Notebook[ { Cell[ BoxData[
  const int32_t levels = Zn::Kx::kMaxNestingDepth - outer - 2;
  auto repeat = [](const std::string& theText, int32_t theCount) {
    std::string out;
    for (int32_t i = 0; i < theCount; ++i)
      out += theText;
    return out;
  };
  const struct {
    const char* what;
    std::string boxes;
    std::string expected;
  } shapes[] = {
      {"rows", repeat("RowBox[{\"a\", ", levels / 2) + "\"x\"" + repeat("}]", levels / 2), repeat("a", levels / 2) + "x"},
      {"lists", repeat("{", levels) + "x" + repeat("}", levels), "x"},
      {"box groups", repeat("\\(", levels) + "x" + repeat("\\)", levels), "x"},
  };
  for (const auto& shape : shapes) {
    auto run = NbtextTest::ConvertNotebook("Notebook[{Cell[BoxData[" + shape.boxes + "]]}]");
    EXPECT_EQ(run.status, 0) << shape.what << ": " << run.err.substr(0, 300);
    EXPECT_EQ(run.out, shape.expected) << shape.what;
  }
}

TEST(NbtextCommandLineTest, SampleNotebookConverts) {
  auto run = RunNbtext({NBTEXT_SOURCE_DIR "/samples/sample.nb"});
  EXPECT_EQ(run.status, 0) << run.err;
  for (const char* text : {"Orbits of a Damped Pendulum", "course notes <http://example.org/pendulum.html>",
                           " [X] ", "* Runge-Kutta", "|__0.75__|", "Angle against time"})
    EXPECT_NE(run.out.find(text), std::string::npos) << text;
}
} // namespace
