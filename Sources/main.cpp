//===- main.cpp - nbtext: notebooks to plain text or HTML -----------------===//
//
// nbtext [-html] [-noindent] [file ...]
//
// Converts each named notebook, or standard input when none is named, to
// what a reader sees on the page, on standard output. Each file is announced
// on standard error; a file that does not open is skipped, and the first
// one that cannot be converted is logged and ends the run with status 255.
// Text that cannot be delivered (standard output closed, a reader that
// closed the pipe, a full disk) refuses the file in the same way.
//
//===----------------------------------------------------------------------===//
#include <csignal>
#include <cstdio>
#include <cstring>
#include "NotebookHTMLIndexer.h"
#include "NotebookTextIndexer.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/IO/ZnFileStream.h"
#include "Zn/Util/ZnUtil.h"

using Zn::adopt;

namespace {
/// Takes the argument at theIndex out of the list.
void removeArgument(char** theArguments, int& theCount, int theIndex) {
  Zn::MoveMemory(theArguments + theIndex + 1, theArguments + theIndex,
                 Sys::size_t(theCount - theIndex - 1) * sizeof(char*));
  --theCount;
}

/// Converts one input and pushes its text out of the buffer. A write that
/// failed on the way fails the conversion like bad input.
bool convertAndDeliver(SearchIndexer* theIndexer, Zn::Stream* theInput) {
  if (!convertStream(theIndexer, theInput))
    return false;
  if (std::fflush(stdout) == 0 && !std::ferror(stdout))
    return true;
  Zn::Log(Zn::kLogLevelError, "could not index file %@", theInput->getName());
  return false;
}
} // namespace

int main(int argc, char** argv) {
  // A reader that has seen enough may close the pipe: the write then fails
  // and the file is refused, rather than the process dying of the signal.
  std::signal(SIGPIPE, SIG_IGN);
  bool html = false;
  bool indent = true;
  // Options may stand anywhere and repeat. After a removal the scan looks
  // again at the place the next argument slid into (for "-html", at the one
  // before it, which the "-noindent" test then sees).
  if (argc > 1) {
    int i = 1;
    do {
      if (std::strncmp(argv[i], "-html", 5) == 0) {
        removeArgument(argv, argc, i);
        html = true;
        --i;
      }
      if (std::strncmp(argv[i], "-noindent", 9) == 0) {
        removeArgument(argv, argc, i);
        indent = false;
        --i;
      }
      ++i;
    } while (i < argc);
  }

  Zn::Ref<SearchIndexer> indexer;
  {
    auto output = adopt(Zn::FilePointerStream::createStandardOutput());
    if (html)
      indexer = adopt<SearchIndexer>(new NotebookHTMLIndexer(output.get()));
    else
      indexer = adopt<SearchIndexer>(new NotebookTextIndexer(output.get()));
  }
  indexer->setIndent(indent);

  if (argc < 2) {
    auto input = adopt(Zn::FilePointerStream::createStandardInput());
    return convertAndDeliver(indexer.get(), input.get()) ? 0 : -1;
  }
  for (int i = 1; i < argc; ++i) {
    std::fprintf(stderr, "Converting %s\n", argv[i]);
    auto input = adopt(Zn::FilePointerStream::createForReading(argv[i]));
    if (!input)
      continue;
    if (!convertAndDeliver(indexer.get(), input.get()))
      return -1;
  }
  return 0;
}
