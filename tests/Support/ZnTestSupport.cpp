//===- ZnTestSupport.cpp - Shared helpers for the test suite ---------------===//
#include "Support/ZnTestSupport.h"
#include <fstream>
#include <sstream>
#include <unistd.h>
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnRef.h"

namespace ZnTest {

std::string Utf8(const Zn::String* theString) {
  std::string out;
  if (!theString)
    return "(null)";
  Zn::WideCharacters units(theString);
  const ZnUnichar* u = units.data();
  for (ZnIndex i = 0; i < theString->length(); ++i) {
    uint32_t c = u[i];
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < theString->length() && u[i + 1] >= 0xDC00 && u[i + 1] < 0xE000)
      c = 0x10000 + ((c - 0xD800) << 10) + (u[++i] - 0xDC00);
    if (c < 0x80) {
      out += char(c);
    } else if (c < 0x800) {
      out += char(0xC0 | (c >> 6));
      out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += char(0xE0 | (c >> 12));
      out += char(0x80 | ((c >> 6) & 0x3F));
      out += char(0x80 | (c & 0x3F));
    } else {
      out += char(0xF0 | (c >> 18));
      out += char(0x80 | ((c >> 12) & 0x3F));
      out += char(0x80 | ((c >> 6) & 0x3F));
      out += char(0x80 | (c & 0x3F));
    }
  }
  return out;
}

std::string Describe(const Zn::Object* theObject) { return Utf8(Zn::adopt(theObject->description()).get()); }

std::string Bytes(const Zn::Data* theData) {
  return std::string(reinterpret_cast<const char*>(theData->getBytesPtr()), size_t(theData->getLength()));
}

std::string Repeat(const std::string& theText, int32_t theCount) {
  std::string out;
  out.reserve(theText.size() * size_t(theCount));
  for (int32_t i = 0; i < theCount; ++i)
    out += theText;
  return out;
}

std::string ReadFile(const std::string& thePath) {
  std::ifstream in(thePath, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<CorpusFile> ReadCorpusManifest() {
  std::vector<CorpusFile> files;
  // access rather than stat: a 32-bit stat fails on file systems whose
  // inode numbers need 64 bits.
  if (access(NBTEXT_CORPUS_DIR "/MANIFEST.tsv", R_OK) != 0)
    return files;
  std::ifstream manifest(NBTEXT_CORPUS_DIR "/MANIFEST.tsv");
  std::string line;
  std::getline(manifest, line); // the column names: file, bytes, era, features, note
  while (std::getline(manifest, line)) {
    std::istringstream fields(line);
    CorpusFile file;
    std::string bytes;
    std::getline(fields, file.name, '\t');
    std::getline(fields, bytes, '\t');
    std::getline(fields, file.era, '\t');
    if (!file.name.empty())
      files.push_back(file);
  }
  return files;
}
} // namespace ZnTest
