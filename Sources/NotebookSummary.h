//===- NotebookSummary.h - What a page's head says of a notebook ----------===//
#pragma once
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnTypes.h"

namespace Zn {
class MutableArray;
class String;
namespace Kx {
class Expr;
} // namespace Kx
} // namespace Zn
class SearchIndexer;

/// The outline levels, highest first: Title, Chapter, Section, Subsection,
/// Subsubsection, Subsubsubsection. The rank of a cell style among them,
/// from 0 for Title, or -1 for a style that is no outline level.
int32_t OutlineRank(const Zn::String* theStyle);
constexpr int32_t kOutlineLevels = 6;

/// What a page's head or front matter tells of a notebook before its cells:
/// its title, its authors and keywords, and the highest outline level its
/// cells use. The texts are what the page shows, each on one line.
struct NotebookSummary {
  /// The first Title cell, else the WindowTitle option; null when neither
  /// says anything.
  Zn::Ref<Zn::String> title;
  /// The Author and Keywords cells, in order, as strings; never null.
  Zn::Ref<Zn::MutableArray> authors;
  Zn::Ref<Zn::MutableArray> keywords;
  /// The OutlineRanks that the cells use, bit 0 for Title.
  uint32_t outlineRanks = 0;
};

/// Reads the summary of theNotebook, rendering cell texts with theRenderer's
/// stringForBox. Only the cell lists are walked, not the boxes.
NotebookSummary SummarizeNotebook(Zn::Kx::Expr* theNotebook, SearchIndexer& theRenderer);

/// +1. theText on one line: runs of blanks and line breaks become one
/// space, and none stands at either end.
Zn::String* CopySingleLine(const Zn::String* theText);
