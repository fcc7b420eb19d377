//===- NbtextRunner.cpp - Runs the built converter for black-box tests ----===//
#include "Indexer/NbtextRunner.h"
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace NbtextTest {
namespace {
std::string quoted(const std::string& theText) {
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
    (void)std::system(("rm -rf " + quoted(path_)).c_str());
}

std::string TempDir::write(const std::string& theName, const std::string& theContents) const {
  std::string file = path_ + "/" + theName;
  std::ofstream(file, std::ios::binary) << theContents;
  return file;
}

std::string TempDir::read(const std::string& theName) const { return ReadFile(path_ + "/" + theName); }

std::string ReadFile(const std::string& thePath) {
  std::ifstream in(thePath, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

Run RunNbtext(const std::vector<std::string>& theArguments, const std::string& theInput,
              const std::string& theLogFile) {
  TempDir dir;
  std::string command = theLogFile.empty() ? "unset ZNLOGFILE; " : "ZNLOGFILE=" + quoted(theLogFile) + " ";
  command += std::string(NBTEXT_EMULATOR) + " " + quoted(NBTEXT_BINARY);
  for (const std::string& argument : theArguments)
    command += " " + quoted(argument);
  command += " < " + quoted(dir.write("stdin", theInput));
  command += " > " + quoted(dir.path() + "/stdout") + " 2> " + quoted(dir.path() + "/stderr");
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
  Run run = RunNbtext(arguments);
  return run;
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
