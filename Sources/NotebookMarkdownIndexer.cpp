//===- NotebookMarkdownIndexer.cpp - Renders a notebook as Markdown -------===//
#include "NotebookMarkdownIndexer.h"

NotebookMarkdownIndexer::NotebookMarkdownIndexer(Zn::Stream* theStream) : NotebookTextIndexer(theStream) {}

NotebookMarkdownIndexer::~NotebookMarkdownIndexer() = default;

const char* NotebookMarkdownIndexer::className() const { return "NotebookMarkdownIndexer"; }
const char* NotebookMarkdownIndexer::superclassName() const { return "NotebookTextIndexer"; }
