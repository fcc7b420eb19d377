//===- NbtextRunner.h - Runs the built converter for black-box tests ------===//
#pragma once
#include <string>
#include <vector>

namespace NbtextTest {

/// What one run of the converter left behind.
struct Run {
  int status = -1;
  std::string out;
  std::string err;
};

/// A fresh directory that is removed with everything in it at the end.
class TempDir {
public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return path_; }
  /// Writes theContents to a file of that name here; returns its path.
  std::string write(const std::string& theName, const std::string& theContents) const;
  /// The contents of a file here, or "" when it does not exist.
  std::string read(const std::string& theName) const;

private:
  std::string path_;
};

/// Runs nbtext (through the emulator in a cross build) with theArguments,
/// theInput on its standard input, and ZNLOGFILE set to theLogFile when that
/// is not empty (unset otherwise).
Run RunNbtext(const std::vector<std::string>& theArguments, const std::string& theInput = "",
              const std::string& theLogFile = "");

/// Converts one notebook given as text, with the options before it.
Run ConvertNotebook(const std::string& theNotebook, const std::vector<std::string>& theOptions = {});

/// The page that nbtext -html writes for a notebook whose cells wrote
/// theBody: the head with theHead (its title and meta elements, one per
/// line) before the style sheet, theBody, the fixed tail. The style sheet
/// holds its fixed rules only: compare it with WithoutCellStyles(output).
std::string HtmlPage(const std::string& theBody, const std::string& theHead = "");

/// thePages of nbtext -html without the cell styles' rules in their style
/// sheets, which goldens of cells need not repeat.
std::string WithoutCellStyles(const std::string& thePages);

/// The part of a log line after its time stamp "YYYY-MM-DD hh:mm:ss: ".
std::string WithoutTimeStamps(const std::string& theLog);
} // namespace NbtextTest
