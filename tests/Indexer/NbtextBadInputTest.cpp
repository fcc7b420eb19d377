//===- NbtextBadInputTest.cpp - Damaged and extreme input ends cleanly -----===//
//
// Indexers hand nbtext whatever they find. Each run here must end with the
// text (status 0) or with the refusal in the log (status 255): never a
// signal, a sanitizer's report or any other status. Under the sanitizers
// and the emulator the sizes and counts are scaled down (kReduced).
//
//===----------------------------------------------------------------------===//
#include <gtest/gtest.h>
#include <chrono>
#include <random>
#include <sys/stat.h>
#include "Indexer/NbtextRunner.h"
#include "Kx/KxExprParser.h"
#include "Support/ZnTestSupport.h"

namespace {
using NbtextTest::ConvertNotebook;
using NbtextTest::Run;
using NbtextTest::RunNbtext;
using NbtextTest::TempDir;
using ZnTest::Repeat;

const bool kReduced = NBTEXT_SANITIZED || NBTEXT_EMULATOR[0] != '\0';

// A refusal is logged; an assertion reached from input is a fault, whatever
// its status.
bool IsRefusal(const std::string& theErr) {
  return theErr.find("could not index file") != std::string::npos &&
         theErr.find("Assertion") == std::string::npos;
}

void ExpectCleanEnd(const Run& theRun, const std::string& theWhat) {
  if (theRun.status == 0)
    return;
  EXPECT_EQ(theRun.status, 255) << theWhat << ": " << theRun.err.substr(0, 800);
  EXPECT_TRUE(IsRefusal(theRun.err)) << theWhat << ": " << theRun.err.substr(0, 800);
}

Run ConvertBytes(const TempDir& theDir, const std::string& theBytes) {
  return RunNbtext({theDir.write("input.nb", theBytes)});
}

// The options of the two renderers: none for the text, then the page.
const std::vector<std::string> kRenderers[] = {{}, {"-html"}};

//===--- Damaged copies of real notebooks ----------------------------------===//

// Our sample and a few small real notebooks with controls, tab views and
// named characters; the real ones are skipped when the corpus is absent.
const char* const kDamagedNotebooks[] = {
    NBTEXT_SOURCE_DIR "/samples/sample.nb",
    NBTEXT_CORPUS_DIR "/016-french-recursive-sequence-named-chars.nb",
    NBTEXT_CORPUS_DIR "/030-gas-equilibrium-radio-buttons.nb",
    NBTEXT_CORPUS_DIR "/076-nbf-tabview-orbitals.nb",
};

class DamagedNotebookTest : public testing::TestWithParam<const char*> {
protected:
  void SetUp() override {
    struct stat info;
    if (stat(GetParam(), &info) != 0)
      GTEST_SKIP() << "no notebook at " << GetParam() << " (the corpus is absent)";
    original_ = ZnTest::ReadFile(GetParam());
    ASSERT_FALSE(original_.empty());
  }
  std::string original_;
};

TEST_P(DamagedNotebookTest, EveryTruncationEndsCleanly) {
  TempDir dir;
  const int step = kReduced ? 5 : 1;
  for (int percent = 0; percent <= 100; percent += step) {
    size_t length = original_.size() * size_t(percent) / 100;
    ExpectCleanEnd(ConvertBytes(dir, original_.substr(0, length)), "cut at " + std::to_string(length));
  }
}

TEST_P(DamagedNotebookTest, SingleByteCorruptionsEndCleanly) {
  TempDir dir;
  std::mt19937 random(20261122);
  const int count = kReduced ? 15 : 75;
  // Bytes that change the structure most: brackets, quotes, escapes, NUL.
  const char kReplacements[] = {'[', ']', '{', '}', '"', '\\', ',', '\0', '\xff', '>', '(', '*'};
  for (int i = 0; i < count; ++i) {
    std::string damaged = original_;
    size_t position = random() % damaged.size();
    damaged[position] = i % 2 ? kReplacements[random() % sizeof kReplacements] : char(random());
    ExpectCleanEnd(ConvertBytes(dir, damaged), "byte " + std::to_string(position) + " changed");
  }
}

INSTANTIATE_TEST_SUITE_P(Notebooks, DamagedNotebookTest, testing::ValuesIn(kDamagedNotebooks),
                         [](const testing::TestParamInfo<const char*>& theInfo) {
                           std::string name = theInfo.param;
                           name = name.substr(name.rfind('/') + 1, 3);
                           return name == "sam" ? std::string("sample") : "corpus" + name;
                         });

//===--- Bytes that are no text ---------------------------------------------===//

TEST(NbtextBadInputTest, InvalidUTF8NulAndRandomBytesEndCleanly) {
  std::vector<std::pair<const char*, std::string>> inputs = {
      {"stray continuation bytes", "Notebook[{Cell[\"a\x80\xbf b\", \"Text\"]}]"},
      {"overlong and truncated sequences", "Notebook[{Cell[\"\xc0\x80\xe2\x82\", \"Text\"]}]"},
      {"five- and six-byte leads", "Notebook[{Cell[\"\xf8\x88\x80\x80\x80\xfc\x84\x80\x80\x80\x80\", \"Text\"]}]"},
      {"encoded surrogates", "Notebook[{Cell[\"\xed\xa0\x80\xed\xb0\x80\", \"Text\"]}]"},
      {"lead byte at the very end", "Notebook[{Cell[\"x\", \"Text\"]}]\xf0"},
      {"lead byte in a symbol", "Notebook[{Cell[\"x\", Te\xe2xt]}]"},
      {"NUL in a string", std::string("Notebook[{Cell[\"a\0b\", \"Text\"]}]", 32)},
      {"NUL between tokens", std::string("Notebook[{Cell[\"ab\",\0\"Text\"]}]", 31)},
      {"NUL first", std::string("\0Notebook[{}]", 13)},
      {"only NULs", std::string(4096, '\0')},
      {"byte-order mark", "\xef\xbb\xbfNotebook[{Cell[\"x\", \"Text\"]}]"},
      {"UTF-16 text", std::string("\xff\xfeN\0o\0t\0e\0b\0o\0o\0k\0[\0{\0}\0]\0", 22)},
  };
  std::mt19937 random(7);
  for (size_t size : {size_t(1), size_t(100), size_t(65536)}) {
    std::string bytes(size, '\0');
    for (char& c : bytes)
      c = char(random());
    inputs.emplace_back("random bytes", bytes);
    inputs.emplace_back("a notebook ending in random bytes", "Notebook[{Cell[" + bytes);
  }
  TempDir dir;
  for (const auto& [what, input] : inputs)
    ExpectCleanEnd(ConvertBytes(dir, input), what + (" (" + std::to_string(input.size()) + " bytes)"));
}

//===--- Sizes and depths at the edge ---------------------------------------===//

TEST(NbtextBadInputTest, HugeSingleStringConverts) {
  const size_t size = kReduced ? 5u << 20 : 50u << 20;
  NbtextTest::Run run = ConvertNotebook("Notebook[{Cell[\"" + std::string(size, 'w') + "\"]}]");
  EXPECT_EQ(run.status, 0) << run.err.substr(0, 800);
  EXPECT_EQ(run.out.size(), size);
  EXPECT_EQ(run.out.find_first_not_of('w'), std::string::npos);
}

TEST(NbtextBadInputTest, AMillionTinyCellsConvert) {
  const int32_t count = kReduced ? 100000 : 1000000;
  // A cell without a style writes its text alone, without a separator.
  NbtextTest::Run run = ConvertNotebook("Notebook[{" + Repeat("Cell[\"x\"],", count - 1) + "Cell[\"x\"]}]");
  EXPECT_EQ(run.status, 0) << run.err.substr(0, 800);
  EXPECT_EQ(run.out, std::string(size_t(count), 'x'));
}

// Nesting in each way up to the parser's limit converts with its text
// intact: the walks must take all that the parser accepts. One level more
// is refused, never a stack overflow.
TEST(NbtextBadInputTest, NestingUpToTheParsersLimitConvertsAndDeeperIsRefused) {
  const int32_t levels = Zn::Kx::kMaxNestingDepth - 4; // inside Notebook[ { Cell[ BoxData[
  const struct {
    const char* what;
    const char *open, *inner, *close;
    int32_t perLevel;
    std::string text; // the text at the limit; "-" when not checked
  } shapes[] = {
      {"lists", "{", "x", "}", 1, "x"},
      {"rows", "RowBox[{\"a\", ", "\"x\"", "}]", 2, Repeat("a", levels / 2) + "x"},
      {"applications", "f[", "x", "]", 1, "-"},
      {"parentheses", "(", "x", ")", 1, "-"},
      {"box groups", "\\(", "x", "\\)", 1, "x"},
  };
  TempDir dir;
  for (const auto& shape : shapes) {
    for (int32_t count : {levels / shape.perLevel, levels / shape.perLevel + 1}) {
      std::string boxes = Repeat(shape.open, count) + shape.inner + Repeat(shape.close, count);
      std::string file = dir.write("deep.nb", "Notebook[{Cell[BoxData[" + boxes + "]]}]");
      NbtextTest::Run run = RunNbtext({file});
      if (count * shape.perLevel <= levels) {
        EXPECT_EQ(run.status, 0) << shape.what << ": " << run.err.substr(0, 800);
        if (shape.text != "-") {
          EXPECT_EQ(run.out, shape.text) << shape.what;
        }
      } else {
        EXPECT_EQ(run.status, 255) << shape.what << ": " << run.err.substr(0, 800);
        EXPECT_NE(run.err.find("could not index file " + file + ": nested deeper than "), std::string::npos)
            << shape.what << ": " << run.err.substr(0, 800);
      }
    }
  }
}

// Every kind of box nested as deep as the parser lets it (menus and cells in
// TowersOfMenusAndCellsConvertQuickly), and the deepest trees that chains of
// operators build, convert with both renderers: the renderers' walks recurse
// once per level, and must not run out of stack in any build, the
// sanitizers' included.
TEST(NbtextBadInputTest, EveryBoxNestedToTheLimitConverts) {
  const int32_t outer = 4; // Notebook[ { Cell[ BoxData[
  const int32_t budget = Zn::Kx::kMaxNestingDepth - outer - 2;
  const struct {
    const char* open;
    const char* close;
    int32_t levels; // nesting that one repetition adds
  } shapes[] = {
      {"StyleBox[", ", ShowStringCharacters->False]", 1},
      {"InputFieldBox[", ", String]", 1},
      {"TabViewBox[{{1, \"a\" -> ", "}}]", 3},
      {"GridBox[{{", ", \"b\"}}]", 3},
      {"ButtonBox[", ", BaseStyle->\"Hyperlink\", ButtonData->{URL[\"u\"], None}]", 1},
      {"TooltipBox[", ", \"t\"]", 1},
      {"SuperscriptBox[", ", 2]", 1},
      {"FractionBox[", ", 2]", 1},
      {"PaneSelectorBox[{True -> ", "}, True]", 2},
      {"DynamicModuleBox[{}, ", "]", 1},
      {"RowBox[{\"(\", ", ", \")\"}]", 2},
  };
  std::vector<std::pair<std::string, std::string>> notebooks;
  for (const auto& shape : shapes) {
    int32_t count = budget / shape.levels;
    notebooks.emplace_back(shape.open, Repeat(shape.open, count) + "\"x\"" + Repeat(shape.close, count));
  }
  // Operators build two levels of tree for each level of nesting allowed.
  const int32_t chain = 2 * Zn::Kx::kMaxNestingDepth;
  notebooks.emplace_back("f@", Repeat("f@", chain) + "x");
  notebooks.emplace_back("^", Repeat("a^", chain) + "x");
  notebooks.emplace_back("!!", "x" + Repeat("!!", chain));
  notebooks.emplace_back("->", Repeat("a->", chain) + "x");
  for (const auto& [what, boxes] : notebooks) {
    for (const auto& renderer : kRenderers) {
      NbtextTest::Run run = ConvertNotebook("Notebook[{Cell[BoxData[" + boxes + "], \"Input\"]}]", renderer);
      EXPECT_EQ(run.status, 0) << what << (renderer.empty() ? " text: " : " html: ") << run.err.substr(0, 800);
    }
  }
}

// Controls whose labels hold controls, and input cells inside input cells,
// as deep as the parser allows and many of them: each must cost time in
// proportion to its size, not to the square or the cube of its depth.
TEST(NbtextBadInputTest, TowersOfMenusAndCellsConvertQuickly) {
  const int32_t towers = kReduced ? 4 : 16;
  const int32_t height = (Zn::Kx::kMaxNestingDepth - 8) / 2;
  const struct {
    const char* what;
    std::string boxes;
    int32_t count; // the cheaper a tower, the more of them
  } shapes[] = {
      {"popup menus", Repeat("PopupMenuBox[x, {a -> ", height) + "\"x\"" + Repeat("}]", height), towers},
      {"action menus", Repeat("ActionMenuBox[\"m\", {", height) + "\"x\"" + Repeat(" :> f}]", height), towers},
      {"input cells", Repeat("Cell[", 2 * height) + "\"x\"" + Repeat(", \"Input\"]", 2 * height), 4 * towers},
  };
  for (const auto& [what, boxes, count] : shapes) {
    std::string cells = Repeat("Cell[BoxData[" + boxes + "], \"Input\"], ", count - 1);
    std::string notebook = "Notebook[{" + cells + "Cell[BoxData[" + boxes + "], \"Input\"]}]";
    for (const auto& renderer : kRenderers) {
      auto start = std::chrono::steady_clock::now();
      NbtextTest::Run run = ConvertNotebook(notebook, renderer);
      std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
      EXPECT_EQ(run.status, 0) << what << (renderer.empty() ? " text: " : " html: ") << run.err.substr(0, 800);
      EXPECT_LT(seconds.count(), 5.0) << what << (renderer.empty() ? " text" : " html");
    }
  }
}

// A string's box groups count with the nesting around the string. Beyond
// the limit the group does not parse, and a string whose group does not
// parse stays text: the file converts all the same.
TEST(NbtextBadInputTest, BoxGroupsInAStringAtTheLimitConvert) {
  const int32_t outer = 4 + 1; // Notebook[ { Cell[ BoxData[ and the string's own group
  const int32_t levels = Zn::Kx::kMaxNestingDepth - outer;
  TempDir dir;
  for (int32_t extra : {0, 1}) {
    std::string group = Repeat("\\(", levels + extra) + "x" + Repeat("\\)", levels + extra);
    NbtextTest::Run run = ConvertBytes(dir, "Notebook[{Cell[BoxData[\"\\!\\(" + group + "\\)\"]]}]");
    EXPECT_EQ(run.status, 0) << extra << " over: " << run.err.substr(0, 800);
    if (extra == 0)
      EXPECT_EQ(run.out, "x");
    else
      EXPECT_NE(run.out.find("x"), std::string::npos);
  }
}
} // namespace
