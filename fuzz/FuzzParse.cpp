//===- FuzzParse.cpp - Fuzzing the expression parser -----------------------===//
//
// Input: the bytes of a notebook file. They are parsed as the notebook walk
// parses them (UTF-8 through a stream reader); a tree that comes back must
// keep the depth bound the parser promises, and must print in full form and
// in input form.
//
//===----------------------------------------------------------------------===//
#include <vector>
#include "FuzzEntryPoints.h"
#include "FuzzSupport.h"
#include "Kx/KxExprParser.h"
#include "Kx/KxFunction.h"
#include "Zn/Base/ZnData.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/IO/ZnReader.h"
#include "Zn/IO/ZnStream.h"

using namespace Zn;

namespace NbtextFuzz {

namespace {
// The height of theRoot, an atom counting 0, walked without recursion.
int32_t TreeDepth(const Kx::Expr* theRoot) {
  struct Pending {
    const Kx::Expr* expr;
    int32_t depth;
  };
  std::vector<Pending> pending = {{theRoot, 0}};
  int32_t deepest = 0;
  while (!pending.empty()) {
    Pending p = pending.back();
    pending.pop_back();
    if (p.expr->isAtom())
      continue;
    deepest = p.depth + 1 > deepest ? p.depth + 1 : deepest;
    for (ZnIndex i = 0; i <= p.expr->length(); ++i)
      pending.push_back({p.expr->part(i), p.depth + 1});
  }
  return deepest;
}
} // namespace

int FuzzParse(const uint8_t* theData, size_t theSize) {
  InstallFuzzAssertionHandler();
  auto data = adopt(new Data(theData, ZnIndex(theSize)));
  auto stream = adopt(Data::createReadStream(data.get()));
  auto encoding = adopt(StringEncodingWithID(kStringEncodingUTF8));
  auto reader = adopt<Reader>(new StreamReader(stream.get(), encoding.get()));
  auto expr = adopt(Kx::ParseExpression(reader.get()));
  if (!expr)
    return 0;
  FuzzCheck(TreeDepth(expr.get()) <= Kx::kMaxExpressionDepth);
  auto fullForm = adopt(expr->fullFormString());
  Kx::FormatContext context;
  auto inputForm = adopt(expr->inputFormString(&context));
  FuzzCheck(fullForm && inputForm);
  (void)expr->hash();
  return 0;
}
} // namespace NbtextFuzz
