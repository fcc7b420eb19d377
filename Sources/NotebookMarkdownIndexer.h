//===- NotebookMarkdownIndexer.h - Renders a notebook as Markdown ---------===//
#pragma once
#include "NotebookTextIndexer.h"

/// The renderer behind "-markdown": the notebook as GitHub-flavoured
/// Markdown (CommonMark with tables), for readers and for pipelines that
/// split a text at its headings.
class NotebookMarkdownIndexer : public NotebookTextIndexer {
public:
  explicit NotebookMarkdownIndexer(Zn::Stream* theStream);

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~NotebookMarkdownIndexer() override;
};
