//===- FuzzConvert.cpp - Fuzzing the whole conversion of one file ----------===//
//
// Input: the bytes of a notebook file. They go through the renderer exactly
// as nbtext converts a file (SearchIndexer::indexStream), by the plain-text
// or the HTML renderer, writing to a stream that forgets what it is given.
//
//===----------------------------------------------------------------------===//
#include "FuzzEntryPoints.h"
#include "FuzzSupport.h"
#include "NotebookHTMLIndexer.h"
#include "NotebookMarkdownIndexer.h"
#include "NotebookTextIndexer.h"
#include "Zn/Base/ZnData.h"
#include "Zn/IO/ZnStream.h"

using namespace Zn;

namespace NbtextFuzz {

namespace {
/// Accepts and forgets every byte, like /dev/null.
class DiscardStream : public Stream {
public:
  DiscardStream() : Stream(nullptr, false, true) {}
  ZnIndex write(const uint8_t*, ZnIndex theCount) override { return theCount; }
  const char* className() const override { return "DiscardStream"; }
};

int Convert(const uint8_t* theData, size_t theSize, SearchIndexer* (*theCreate)(Stream*)) {
  InstallFuzzAssertionHandler();
  auto output = adopt<Stream>(new DiscardStream());
  auto indexer = adopt(theCreate(output.get()));
  auto data = adopt(new Data(theData, ZnIndex(theSize)));
  auto input = adopt(Data::createReadStream(data.get()));
  indexer->indexStream(input.get());
  return 0;
}
} // namespace

int FuzzConvertText(const uint8_t* theData, size_t theSize) {
  return Convert(theData, theSize, [](Stream* theOutput) -> SearchIndexer* {
    return new NotebookTextIndexer(theOutput);
  });
}

int FuzzConvertHTML(const uint8_t* theData, size_t theSize) {
  return Convert(theData, theSize, [](Stream* theOutput) -> SearchIndexer* {
    return new NotebookHTMLIndexer(theOutput);
  });
}

int FuzzConvertMarkdown(const uint8_t* theData, size_t theSize) {
  return Convert(theData, theSize, [](Stream* theOutput) -> SearchIndexer* {
    return new NotebookMarkdownIndexer(theOutput);
  });
}
} // namespace NbtextFuzz
