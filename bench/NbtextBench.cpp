//===- NbtextBench.cpp - Micro-benchmarks of the conversion's layers -------===//
//
// Each benchmark runs one layer over every notebook of the corpus, held in
// memory, and reports bytes per second of notebook text:
//   ReadCharacters  the stream reader decoding UTF-8, one character a call;
//   Lex             the lexer's tokens (with their values), no grammar;
//   Parse           lexer and parser: the expression tree;
//   WalkText        the walk of parsed trees with the text writer;
//   ConvertText     indexStream as nbtext runs it: parse, walk, write;
//   EncodeHTML      the HTML encoding of the text that the walk wrote.
// The corpus is the one the tests use; NBTEXT_CORPUS names another folder.
//
//===----------------------------------------------------------------------===//
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>
#include "Kx/KxExpr.h"
#include "Kx/KxExprParser.h"
#include "Kx/KxFunction.h"
#include "Kx/KxLexer.h"
#include "NotebookTextIndexer.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnReader.h"
#include "Zn/IO/ZnStream.h"
#include "Zn/IO/ZnWriter.h"

using namespace Zn;

namespace {

struct Notebook {
  std::string name;
  Ref<Data> bytes;
};

/// +1. A reader decoding theData as nbtext reads a file.
Reader* createReader(Data* theData) {
  auto stream = adopt(Data::createReadStream(theData));
  auto encoding = adopt(StringEncodingWithID(kStringEncodingUTF8));
  return new StreamReader(stream.get(), encoding.get());
}

/// +1. The tree of theData, or null when it does not parse.
Kx::Expr* parse(Data* theData) {
  auto reader = adopt(createReader(theData));
  return Kx::ParseExpression(reader.get());
}

/// The corpus notebooks that parse to an expression with a cell list (the
/// ancient format does not parse), sorted by name.
const std::vector<Notebook>& corpus() {
  static std::vector<Notebook> notebooks = [] {
    const char* folder = std::getenv("NBTEXT_CORPUS");
    std::string dir = folder ? folder : NBTEXT_CORPUS_DIR;
    std::vector<std::string> names;
    if (DIR* d = opendir(dir.c_str())) {
      while (dirent* entry = readdir(d)) {
        std::string name = entry->d_name;
        if (name.size() > 3 && name.compare(name.size() - 3, 3, ".nb") == 0)
          names.push_back(name);
      }
      closedir(d);
    }
    std::sort(names.begin(), names.end());
    std::vector<Notebook> result;
    for (const std::string& name : names) {
      std::ifstream file(dir + "/" + name, std::ios::binary);
      std::stringstream text;
      text << file.rdbuf();
      std::string bytes = text.str();
      auto data = adopt(new Data(bytes.data(), ZnIndex(bytes.size())));
      auto tree = adopt(parse(data.get()));
      if (tree && tree->length() >= 1)
        result.push_back({name, data});
    }
    if (result.empty())
      std::fprintf(stderr, "no notebooks in %s (set NBTEXT_CORPUS)\n", dir.c_str());
    return result;
  }();
  return notebooks;
}

int64_t corpusBytes() {
  int64_t total = 0;
  for (const Notebook& notebook : corpus())
    total += notebook.bytes->getLength();
  return total;
}

/// Keeps the log lines (a box group that stays text is a warning) out of
/// the figures' output.
void quietLog() { setenv("ZNLOGFILE", "/dev/null", 1); }

void ReadCharacters(benchmark::State& theState) {
  for (auto _ : theState) {
    for (const Notebook& notebook : corpus()) {
      auto reader = adopt(createReader(notebook.bytes.get()));
      ZnUnichar c;
      uint32_t sum = 0;
      while (reader->readCharacter(&c))
        sum += c;
      benchmark::DoNotOptimize(sum);
    }
  }
  theState.SetBytesProcessed(theState.iterations() * corpusBytes());
}
BENCHMARK(ReadCharacters)->Unit(benchmark::kMillisecond);

void Lex(benchmark::State& theState) {
  for (auto _ : theState) {
    for (const Notebook& notebook : corpus()) {
      auto reader = adopt(createReader(notebook.bytes.get()));
      auto parser = adopt(new Kx::ExprParser(reader.get()));
      Kx::Lexer lexer(parser.get(), reader.get(), 0);
      Kx::ParseValue value;
      while (lexer.nextToken(&value) != 0)
        parser->discard(value);
    }
  }
  theState.SetBytesProcessed(theState.iterations() * corpusBytes());
}
BENCHMARK(Lex)->Unit(benchmark::kMillisecond);

void Parse(benchmark::State& theState) {
  for (auto _ : theState)
    for (const Notebook& notebook : corpus())
      benchmark::DoNotOptimize(adopt(parse(notebook.bytes.get())));
  theState.SetBytesProcessed(theState.iterations() * corpusBytes());
}
BENCHMARK(Parse)->Unit(benchmark::kMillisecond);

/// Writes into memory; the output is emptied before each notebook.
struct MemoryOutput {
  Ref<MutableData> data = adopt(new MutableData());
  Ref<Stream> stream = adopt(Data::createWriteStream(data.get()));
  void rewind() {
    stream->setPosition(0);
    data->setLength(0);
  }
};

void WalkText(benchmark::State& theState) {
  std::vector<Ref<Kx::Expr>> trees;
  for (const Notebook& notebook : corpus())
    trees.push_back(adopt(parse(notebook.bytes.get())));
  MemoryOutput output;
  auto indexer = adopt<SearchIndexer>(new NotebookTextIndexer(output.stream.get()));
  for (auto _ : theState) {
    for (const Ref<Kx::Expr>& tree : trees) {
      output.rewind();
      IndexContext context;
      context.writer = retained(indexer->getWriter());
      indexer->indexBox(tree->part(1), context);
    }
  }
  theState.SetBytesProcessed(theState.iterations() * corpusBytes());
}
BENCHMARK(WalkText)->Unit(benchmark::kMillisecond);

void ConvertText(benchmark::State& theState) {
  MemoryOutput output;
  auto indexer = adopt<SearchIndexer>(new NotebookTextIndexer(output.stream.get()));
  for (auto _ : theState) {
    for (const Notebook& notebook : corpus()) {
      output.rewind();
      auto input = adopt(Data::createReadStream(notebook.bytes.get()));
      benchmark::DoNotOptimize(indexer->indexStream(input.get()));
    }
  }
  theState.SetBytesProcessed(theState.iterations() * corpusBytes());
}
BENCHMARK(ConvertText)->Unit(benchmark::kMillisecond);

void EncodeHTML(benchmark::State& theState) {
  // The text of every notebook as the walk writes it, decoded back to units.
  MemoryOutput output;
  auto indexer = adopt<SearchIndexer>(new NotebookTextIndexer(output.stream.get()));
  for (const Notebook& notebook : corpus()) {
    auto input = adopt(Data::createReadStream(notebook.bytes.get()));
    indexer->indexStream(input.get());
  }
  auto text = adopt(String::createWithData(output.data.get(), kStringEncodingUTF8));
  auto encoding = adopt(new HTMLEncoding());
  auto html = adopt(new MutableData());
  WideCharacters units(text.get());
  for (auto _ : theState) {
    html->setLength(0);
    encoding->encodeCharacters(units.data(), units.length(), html.get(), true);
    benchmark::DoNotOptimize(html->getBytesPtr());
  }
  theState.SetBytesProcessed(theState.iterations() * int64_t(text->length()));
}
BENCHMARK(EncodeHTML)->Unit(benchmark::kMillisecond);
} // namespace

int main(int theCount, char** theArguments) {
  quietLog();
  corpus(); // loaded before the clock runs
  benchmark::Initialize(&theCount, theArguments);
  if (benchmark::ReportUnrecognizedArguments(theCount, theArguments))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
