//===- NbtextDriver.cpp - The nbtext command: arguments, files, status ----===//
//
// nbtext [-html | -markdown] [-noindent] [file ...]
//
// Converts each named notebook, or standard input when none is named ("-"
// names it among files), to what a reader sees on the page, on standard
// output. Each named file is announced on standard error. A file that does
// not open is logged and skipped; a document that cannot be converted is
// logged with the reason and refused; either way the next file is tried.
// Text that cannot be delivered (standard output closed, a reader that
// closed the pipe, a full disk) refuses the document in the same way.
//
//===----------------------------------------------------------------------===//
#include "NbtextDriver.h"
#include "NotebookHTMLIndexer.h"
#include "NotebookMarkdownIndexer.h"
#include "NotebookTextIndexer.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnFileStream.h"
#include "Zn/Util/ZnUtil.h"
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <vector>

using Zn::adopt;

#ifndef NBTEXT_VERSION
#error "the build passes NBTEXT_VERSION, the project's version"
#endif

namespace {

const char kUsage[] =
    "usage: nbtext [-html | -markdown] [-noindent] [file ...]\n"
    "       nbtext -h | --help | --version\n"
    "\n"
    "Writes what a reader sees on the pages of each notebook file to standard\n"
    "output, as plain text, HTML or Markdown. Without a file, or for \"-\", reads\n"
    "standard input.\n"
    "\n"
    "options:\n"
    "  -html        write an HTML page per notebook instead of plain text\n"
    "  -markdown    write Markdown (GitHub-flavoured) instead of plain text\n"
    "  -noindent    do not indent the lines inside brackets of a formula\n"
    "  -h, --help   print this summary and exit\n"
    "  --version    print the version and exit\n"
    "\n"
    "exit status:\n"
    "  0    every file was converted\n"
    "  1    a file could not be opened (the others were converted)\n"
    "  255  a document was refused (the others were converted)\n"
    "\n"
    "Each file is announced on standard error; failures are logged there, or\n"
    "to the file that ZNLOGFILE names. The manual: man nbtext\n";

/// What the command line asks for.
struct Arguments {
  enum Action { kConvert, kHelp, kVersion } action = kConvert;
  /// What the text is written as; the last of -html and -markdown wins.
  enum Format { kText, kHTML, kMarkdown } format = kText;
  bool indent = true;
  /// The file names, in order; none means standard input, unannounced.
  std::vector<const char*> files;
};

Arguments ScanArguments(int argc, char** argv) {
  Arguments arguments;
  for (int i = 1; i < argc; ++i) {
    const char* argument = argv[i];
    // Help and version are whole words; the first of them on the line wins.
    if (std::strcmp(argument, "-h") == 0 || std::strcmp(argument, "--help") == 0) {
      if (arguments.action == Arguments::kConvert)
        arguments.action = Arguments::kHelp;
    } else if (std::strcmp(argument, "--version") == 0) {
      if (arguments.action == Arguments::kConvert)
        arguments.action = Arguments::kVersion;
    } else if (std::strncmp(argument, "-html", 5) == 0) {
      // The options match as prefixes, as they always have.
      arguments.format = Arguments::kHTML;
    } else if (std::strncmp(argument, "-markdown", 9) == 0) {
      arguments.format = Arguments::kMarkdown;
    } else if (std::strncmp(argument, "-noindent", 9) == 0) {
      arguments.indent = false;
    } else {
      arguments.files.push_back(argument);
    }
  }
  return arguments;
}

/// +1. The file at thePath opened for reading; null with *theError set to
/// the errno otherwise. A directory opens with the C library but reads as
/// nothing, so it is turned away here, with the system's own reason.
Zn::FilePointerStream* OpenForReading(const char* thePath, int* theError) {
  FILE* file = std::fopen(thePath, "rb");
  if (!file) {
    *theError = errno;
    return nullptr;
  }
  struct stat info;
  if (fstat(fileno(file), &info) == 0 && S_ISDIR(info.st_mode)) {
    std::fclose(file);
    *theError = EISDIR;
    return nullptr;
  }
  auto name = adopt(Zn::String::createWithBytes(thePath, -1, Zn::kStringEncodingUTF8));
  return Zn::FilePointerStream::createWithFile(name.get(), true, false, file, true);
}

/// Converts one document and pushes its text out of the buffer. A refusal
/// and a write that failed on the way are each logged, with the reason, as
/// "could not index file NAME: REASON", and give false.
bool ConvertStream(SearchIndexer* theIndexer, Zn::FilePointerStream* theOutput, Zn::Stream* theInput) {
  // The failure of an earlier document's writes is not this one's.
  theOutput->clearError();
  Zn::Ref<Zn::String> reason;
  if (!theIndexer->indexStream(theInput))
    reason = Zn::retained(theIndexer->getRefusalReason());
  // A write that failed on the way shows only now; a refusal says more.
  const bool delivered = theOutput->flush() && theOutput->getError() == 0;
  if (!delivered && !reason)
    reason = adopt(Zn::StringWithFormat("writing the output failed: %s", std::strerror(theOutput->getError())));
  if (!reason)
    return true;
  Zn::Log(Zn::kLogLevelError, "could not index file %@: %@", theInput->getName(), reason.get());
  return false;
}
} // namespace

int RunNbtext(int argc, char** argv) {
  // A reader that has seen enough may close the pipe: the write then fails
  // and the document is refused, rather than the process dying of the signal.
  std::signal(SIGPIPE, SIG_IGN);
  const Arguments arguments = ScanArguments(argc, argv);
  if (arguments.action == Arguments::kHelp) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  if (arguments.action == Arguments::kVersion) {
    std::fputs("nbtext " NBTEXT_VERSION "\n", stdout);
    return 0;
  }

  auto output = adopt(Zn::FilePointerStream::createStandardOutput());
  Zn::Ref<SearchIndexer> indexer;
  switch (arguments.format) {
  case Arguments::kHTML: indexer = adopt<SearchIndexer>(new NotebookHTMLIndexer(output.get())); break;
  case Arguments::kMarkdown: indexer = adopt<SearchIndexer>(new NotebookMarkdownIndexer(output.get())); break;
  case Arguments::kText: indexer = adopt<SearchIndexer>(new NotebookTextIndexer(output.get())); break;
  }
  indexer->setIndent(arguments.indent);

  if (arguments.files.empty()) {
    auto input = adopt(Zn::FilePointerStream::createStandardInput());
    return ConvertStream(indexer.get(), output.get(), input.get()) ? 0 : 255;
  }
  bool refused = false;
  bool unopened = false;
  for (const char* file : arguments.files) {
    std::fprintf(stderr, "Converting %s\n", file);
    Zn::Ref<Zn::FilePointerStream> input;
    if (std::strcmp(file, "-") == 0) {
      input = adopt(Zn::FilePointerStream::createStandardInput());
    } else {
      int error = 0;
      input = adopt(OpenForReading(file, &error));
      if (!input) {
        Zn::Log(Zn::kLogLevelError, "could not open file %s: %s", file, std::strerror(error));
        unopened = true;
        continue;
      }
    }
    if (!ConvertStream(indexer.get(), output.get(), input.get()))
      refused = true;
  }
  if (refused)
    return 255;
  return unopened ? 1 : 0;
}
