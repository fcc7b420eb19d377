//===- NbtextRunner.cpp - Runs the built converter for black-box tests ----===//
#include "Indexer/NbtextRunner.h"
#include "Support/ZnTestSupport.h"
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace NbtextTest {
namespace {
std::string ShellQuoted(const std::string& theText) {
  std::string out = "'";
  for (char c : theText)
    out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}
} // namespace

TempDir::TempDir() {
  const char* base = std::getenv("TMPDIR");
  std::string pattern = std::string(base && *base ? base : "/tmp") + "/nbtext-test-XXXXXX";
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  if (mkdtemp(buffer.data()))
    path_ = buffer.data();
}

TempDir::~TempDir() {
  if (!path_.empty())
    (void)std::system(("rm -rf " + ShellQuoted(path_)).c_str());
}

std::string TempDir::write(const std::string& theName, const std::string& theContents) const {
  std::string file = path_ + "/" + theName;
  std::ofstream(file, std::ios::binary) << theContents;
  return file;
}

std::string TempDir::read(const std::string& theName) const { return ZnTest::ReadFile(path_ + "/" + theName); }

Run RunNbtext(const std::vector<std::string>& theArguments, const std::string& theInput,
              const std::string& theLogFile) {
  TempDir dir;
  std::string command = theLogFile.empty() ? "unset ZNLOGFILE; " : "ZNLOGFILE=" + ShellQuoted(theLogFile) + " ";
  command += std::string(NBTEXT_EMULATOR) + " " + ShellQuoted(NBTEXT_BINARY);
  for (const std::string& argument : theArguments)
    command += " " + ShellQuoted(argument);
  command += " < " + ShellQuoted(dir.write("stdin", theInput));
  command += " > " + ShellQuoted(dir.path() + "/stdout") + " 2> " + ShellQuoted(dir.path() + "/stderr");
  Run run;
  int status = std::system(command.c_str());
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  run.out = dir.read("stdout");
  run.err = dir.read("stderr");
  return run;
}

Run ConvertNotebook(const std::string& theNotebook, const std::vector<std::string>& theOptions) {
  TempDir dir;
  std::vector<std::string> arguments = theOptions;
  arguments.push_back(dir.write("test.nb", theNotebook));
  return RunNbtext(arguments);
}

namespace {
// The fixed rules that open the page's style sheet; the cell styles' rules
// follow them up to the style element's end.
const char kPageRules[] = "<style type=\"text/css\">\n"
                          "body { font-family: Times, serif; font-size: 12px; }\n"
                          "div { padding: 4px; }\n"
                          "form { display: inline; }\n"
                          "table { display: inline; }\n";
const char kStyleEnd[] = "\n</style>\n";
} // namespace

std::string HtmlPage(const std::string& theBody, const std::string& theHead) {
  return "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n" + theHead + kPageRules + kStyleEnd +
         "</head>\n<body>\n<form action=\"javascript:null\">\n" + theBody + "\n</form>\n</body>\n</html>\n";
}

std::string WithoutCellStyles(const std::string& thePages) {
  std::string pages = thePages;
  for (size_t at = pages.find(kPageRules); at != std::string::npos; at = pages.find(kPageRules, at + 1)) {
    const size_t rules = at + sizeof kPageRules - 1;
    const size_t end = pages.find(kStyleEnd, rules);
    if (end != std::string::npos)
      pages.erase(rules, end - rules);
  }
  return pages;
}

std::string WithoutTimeStamps(const std::string& theLog) {
  // "YYYY-MM-DD hh:mm:ss: " is 21 characters at the start of every line.
  std::string out;
  std::istringstream lines(theLog);
  for (std::string line; std::getline(lines, line);)
    out += (line.size() >= 21 && line[4] == '-' && line[19] == ':' ? line.substr(21) : line) + "\n";
  return out;
}
} // namespace NbtextTest
