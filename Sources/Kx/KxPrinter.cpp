//===- KxPrinter.cpp - Full form of compound expressions -------------------===//
#include "Kx/KxPrinter.h"
#include "Kx/KxExprStack.h"
#include "Kx/KxFunction.h"

namespace Zn::Kx {

namespace {
/// One function being printed: which of its parts comes next.
struct Frame {
  const Function* function;
  /// 0 is the head, then the arguments.
  ZnIndex next;
};
} // namespace

void PrintFullForm(const Function* theFunction, Writer* theWriter) {
  ExprStack<Frame> frames;
  frames.push(Frame{theFunction, 0});
  while (!frames.isEmpty()) {
    Frame& frame = frames.top();
    ZnIndex i = frame.next++;
    if (i == 1)
      WriteASCII(theWriter, "[");
    if (i > frame.function->length()) {
      WriteASCII(theWriter, "]");
      frames.pop();
      continue;
    }
    if (i >= 2)
      WriteASCII(theWriter, ", ");
    const Expr* item = frame.function->part(i);
    if (!item)
      continue;
    if (const Function* inner = item->asFunction())
      frames.push(Frame{inner, 0}); // frame is stale from here on
    else
      item->writeFullForm(theWriter);
  }
}
} // namespace Zn::Kx
