//===- KxPrinter.cpp - Full form and input form of compound expressions ----===//
#include "Kx/KxPrinter.h"
#include "Kx/KxExprStack.h"
#include "Kx/KxFunction.h"
#include "Kx/KxOperatorTable.h"

namespace Zn::Kx {

namespace {
/// One function being printed: which of its parts comes next.
struct Frame {
  const Function* function;
  const OperatorRow* row;
  FormatContext operandContext;
  /// 0 is the head (printed only when the row says so), then the arguments.
  ZnIndex next;
  bool fullForm;
  bool parenthesised;
};

void WriteText(Writer* theWriter, const char* theText) {
  if (theText)
    WriteASCII(theWriter, theText);
}

// Full form is the catch-all row, head[arguments], applied at every level.
const OperatorRow* const kFullFormRow = &kOperatorTable[kOperatorCount - 1];

void Enter(ExprStack<Frame>& theFrames, Writer* theWriter, const Function* theFunction,
           const FormatContext* theContext, bool theFullForm) {
  Frame frame;
  frame.function = theFunction;
  frame.fullForm = theFullForm;
  frame.row = theFullForm ? kFullFormRow : FindOperator(theFunction->head(), theFunction->length());
  frame.parenthesised = !theFullForm && frame.row->precedence < theContext->precedence;
  frame.operandContext = theFullForm ? FormatContext()
                                     : FormatContext{frame.row->operandPrecedence, theContext->stripContexts,
                                                     theContext->quoteStrings};
  frame.next = frame.row->printHead ? 0 : 1;
  if (frame.parenthesised)
    WriteASCII(theWriter, "(");
  theFrames.push(frame);
}
} // namespace

void PrintFunction(const Function* theFunction, Writer* theWriter, const FormatContext* theContext,
                   bool theFullForm) {
  ExprStack<Frame> frames;
  Enter(frames, theWriter, theFunction, theContext, theFullForm);
  while (!frames.isEmpty()) {
    Frame& frame = frames.top();
    const OperatorRow* row = frame.row;
    ZnIndex i = frame.next++;
    // The prefix follows the head, or opens the call when no head is shown.
    if (i == 1)
      WriteText(theWriter, row->prefix);
    if (i > frame.function->length()) {
      WriteText(theWriter, row->suffix);
      if (frame.parenthesised)
        WriteASCII(theWriter, ")");
      frames.pop();
      continue;
    }
    if (i >= 2)
      WriteText(theWriter, i == 2 && row->firstSeparator ? row->firstSeparator : row->separator);
    const Expr* item = frame.function->part(i);
    if (!item)
      continue;
    // A shown head is always in full form.
    bool fullForm = frame.fullForm || i == 0;
    FormatContext context = frame.operandContext;
    if (const Function* inner = item->asFunction())
      Enter(frames, theWriter, inner, &context, fullForm); // frame is stale from here on
    else if (fullForm)
      item->writeFullForm(theWriter);
    else
      item->writeInputForm(theWriter, &context);
  }
}
} // namespace Zn::Kx
