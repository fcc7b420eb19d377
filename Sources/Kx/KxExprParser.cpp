//===- KxExprParser.cpp - Parser of notebook expressions -------------------===//
#include "Kx/KxExprParser.h"
#include "Kx/KxFunction.h"
#include "Kx/KxNumber.h"
#include "Kx/KxString.h"
#include "KxExprGrammar.hpp"
#include "Zn/Base/ZnObjectHeap.h"
#include "Zn/IO/ZnReader.h"

namespace Zn::Kx {

namespace {

/// The compound expressions and tagged assignments being built are the only
/// MutableFunctions on the parser's stack (argument lists wait on arguments_).
MutableFunction* AsMutable(Expr* theExpr) { return static_cast<MutableFunction*>(theExpr); }

int32_t Deeper(int32_t theA, int32_t theB) { return theA > theB ? theA : theB; }

bool HasHead(const Expr* theExpr, Head theHead) {
  return !theExpr->isAtom() && theExpr->head()->isEqual(HeadSymbol(theHead));
}

bool IsBlank(const Expr* theExpr) {
  return HasHead(theExpr, Head::Blank) || HasHead(theExpr, Head::BlankSequence) ||
         HasHead(theExpr, Head::BlankNullSequence);
}
} // namespace

ExprParser::ExprParser(Reader* theReader) : Parser(theReader) {}

ExprParser::~ExprParser() {
  while (!arguments_.isEmpty())
    discard({arguments_.pop(), 0});
}

//===--- Running the grammar ----------------------------------------------------===//

int ExprParser::run(Lexer* theLexer) {
  lexer_ = theLexer;
  result_ = {nullptr, 0};
  refused_ = false;
  // A parse that fails leaves its open lists behind; a sub-parse runs on top
  // of the lists of the parse around it.
  ZnIndex arguments = arguments_.getCount();
  ZnIndex openLists = openLists_.getCount();
  int status = kxparse(this);
  while (arguments_.getCount() > arguments)
    discard({arguments_.pop(), 0});
  openLists_.truncate(openLists);
  lexer_ = nullptr;
  if (status != 0 || refused_) {
    discard(result_);
    result_ = {nullptr, 0};
    return 1;
  }
  return 0;
}

Expr* ExprParser::parse() {
  // The tree's many small objects come from large blocks while it is built.
  ObjectHeap::Scope scope;
  failure_ = Failure::kNone;
  failureMessage_ = nullptr;
  failureRange_ = SourceRange();
  sawToken_ = false;
  Lexer lexer(this, reader_.get(), 0);
  if (run(&lexer) != 0)
    return nullptr;
  return result_.expr;
}

bool ExprParser::parseSubExpression(const String* theText, const SourceRange& theRange, bool theKeepText,
                                    ParseValue* theResult) {
  // Everything a parse changes is saved here and put back on every path.
  Ref<Reader> savedReader = reader_;
  SourceRange savedRange = range_;
  Lexer* savedLexer = lexer_;
  ParseValue savedResult = result_;
  bool savedRefused = refused_;
  const String* savedText = subParseText_;

  auto reader = adopt<Reader>(new StringReader(theText));
  setReader(reader.get());
  subParseText_ = theText;
  Lexer lexer(this, reader.get(), savedLexer ? savedLexer->getNesting() : 0);
  bool parsed = run(&lexer) == 0 && result_.expr != nullptr &&
                !result_.expr->isEqual(HeadSymbol(Head::SyntaxError));
  ParseValue value = result_;

  setReader(savedReader.get());
  range_ = savedRange;
  lexer_ = savedLexer;
  result_ = savedResult;
  refused_ = savedRefused;
  if (parsed) {
    subParseText_ = savedText;
    *theResult = value;
    return true;
  }
  discard(value);
  // Still marked as a sub-parse, so the report is a warning that names the text.
  handleError(kLogLevelError,
              adopt(new String(theKeepText ? "linear syntax parse error" : "parse error")).get(), &theRange);
  subParseText_ = savedText;
  if (theKeepText)
    *theResult = {new CharacterString(const_cast<String*>(theText), true), 0};
  else
    *theResult = {retained<Expr>(HeadSymbol(Head::SyntaxError)).leak(), 0};
  return false;
}

void ExprParser::setTracing(bool theOn) { kxdebug = theOn ? 1 : 0; }

int ExprParser::handleError(uint32_t theLevel, const String* theMessage, const SourceRange* theRange) {
  if (!isInSubParse())
    return Parser::handleError(theLevel, theMessage, theRange);
  if (theMessage->isEqual(subParseText_))
    return Parser::handleError(kLogLevelNestedParseError, theMessage, theRange);
  auto message = adopt(StringWithFormat("%@ (%@)", theMessage, subParseText_));
  return Parser::handleError(kLogLevelNestedParseError, message.get(), theRange);
}

void ExprParser::refuse(const char* theMessage) {
  // The lexer refuses for its nesting count as well as for cut-short text.
  bool tooDeep = lexer_ && lexer_->getNesting() > kMaxNestingDepth;
  refuse(tooDeep ? Failure::kTooDeep : Failure::kSyntax, theMessage);
}

void ExprParser::refuse(Failure theKind, const char* theMessage) {
  if (refused_)
    return;
  refused_ = true;
  reportFailure(theKind, theMessage);
}

void ExprParser::reportFailure(Failure theKind, const char* theMessage) {
  SourceRange range;
  if (lexer_)
    lexer_->getTokenRange(&range);
  auto message = adopt(new String(theMessage));
  // A sub-parse's failures are warnings about text that stays text, not
  // failures of this parse.
  if (!isInSubParse() && failure_ == Failure::kNone) {
    failure_ = theKind;
    failureMessage_ = message;
    failureRange_ = range;
  }
  if (reportsErrors_ || isInSubParse())
    handleError(kLogLevelError, message.get(), &range);
}

int ExprParser::nextToken(ParseValue* theValue) {
  if (refused_) {
    // Ends the parse through the error rule; the reason is already reported.
    *theValue = {nullptr, 0};
    return KxUnknown;
  }
  int token = lexer_->nextToken(theValue);
  // 0 is the end of the input.
  if (token != 0 && !isInSubParse())
    sawToken_ = true;
  return token;
}

void ExprParser::reportSyntaxError(const char* theMessage) {
  if (refused_)
    return;
  reportFailure(Failure::kSyntax, theMessage);
}

void ExprParser::setResult(ParseValue theValue) {
  discard(result_);
  result_ = theValue;
}

void ExprParser::setNoResult() {
  discard(result_);
  result_ = {nullptr, 0};
}

void ExprParser::discard(ParseValue theValue) {
  if (theValue.expr)
    theValue.expr->release();
}

//===--- Actions ------------------------------------------------------------------===//

ParseValue ExprParser::checked(Expr* theNode, int32_t theDepth) {
  if (theDepth <= kMaxExpressionDepth)
    return {theNode, theDepth};
  // The node stays on the stack (actions that follow still find the list
  // they expect) but the parse ends at the next token and keeps nothing.
  refuse(Failure::kTooDeep, "expression nested too deeply");
  return {theNode, kMaxExpressionDepth};
}

ParseValue ExprParser::makeNull() { return {retained<Expr>(HeadSymbol(Head::Null)).leak(), 0}; }

ParseValue ExprParser::makeUnary(Head theHead, ParseValue theArgument) {
  auto argument = adopt(theArgument.expr);
  return checked(Function::create(HeadSymbol(theHead), argument.get()), theArgument.depth + 1);
}

ParseValue ExprParser::makeBinary(Head theHead, ParseValue theLeft, ParseValue theRight) {
  auto left = adopt(theLeft.expr);
  auto right = adopt(theRight.expr);
  return checked(Function::create(HeadSymbol(theHead), left.get(), right.get()),
                 Deeper(theLeft.depth, theRight.depth) + 1);
}

ParseValue ExprParser::makeTernary(Head theHead, ParseValue theFirst, ParseValue theSecond,
                                   ParseValue theThird) {
  auto first = adopt(theFirst.expr);
  auto second = adopt(theSecond.expr);
  auto third = adopt(theThird.expr);
  return checked(Function::create(HeadSymbol(theHead), first.get(), second.get(), third.get()),
                 Deeper(Deeper(theFirst.depth, theSecond.depth), theThird.depth) + 1);
}

ParseValue ExprParser::makeFlat(Head theHead, ParseValue theLeft, ParseValue theRight) {
  // A chain a + b + c + ... grows one list in place: the left operand is the
  // list this action built a moment ago, held only by the parse stack.
  Symbol* head = HeadSymbol(theHead);
  auto right = adopt(theRight.expr);
  Ref<MutableFunction> flat;
  int32_t depth = theLeft.depth;
  auto* left = ObjectCast<MutableFunction>(theLeft.expr);
  if (left && left->getRetainCount() == 1 && HasHead(left, theHead)) {
    flat = adopt(left);
  } else {
    auto leftRef = adopt(theLeft.expr);
    flat = adopt(new MutableFunction(2, head));
    if (HasHead(leftRef.get(), theHead)) {
      for (ZnIndex i = 1; i <= leftRef->length(); ++i)
        flat->appendArgument(leftRef->part(i), true);
    } else {
      flat->appendArgument(leftRef.get(), true);
      ++depth;
    }
  }
  if (HasHead(right.get(), theHead)) {
    for (ZnIndex i = 1; i <= right->length(); ++i)
      flat->appendArgument(right->part(i), true);
    depth = Deeper(depth, theRight.depth);
  } else {
    flat->appendArgument(right.get(), true);
    depth = Deeper(depth, theRight.depth + 1);
  }
  return checked(flat.leak(), depth);
}

ParseValue ExprParser::makeApplication(ParseValue theFunction, ParseValue theArgument) {
  auto function = adopt(theFunction.expr);
  auto argument = adopt(theArgument.expr);
  return checked(Function::create(function.get(), argument.get()), Deeper(theFunction.depth, theArgument.depth) + 1);
}

ParseValue ExprParser::makeDerivative(ParseValue theFunction) {
  auto function = adopt(theFunction.expr);
  auto derivative = adopt(Function::create(HeadSymbol(Head::Derivative), SharedOne()));
  return checked(Function::create(derivative.get(), function.get()), Deeper(1, theFunction.depth) + 1);
}

ParseValue ExprParser::makeApplyAtLevelOne(ParseValue theLeft, ParseValue theRight) {
  auto left = adopt(theLeft.expr);
  auto right = adopt(theRight.expr);
  auto levels = adopt(Function::create(HeadSymbol(Head::List), SharedOne()));
  return checked(Function::create(HeadSymbol(Head::Apply), left.get(), right.get(), levels.get()),
                 Deeper(Deeper(theLeft.depth, theRight.depth), 1) + 1);
}

ParseValue ExprParser::makeNegation(ParseValue theArgument) {
  auto argument = adopt(theArgument.expr);
  Expr* negated = argument->negated();
  return checked(negated, negated->isAtom() ? 0 : theArgument.depth + 1);
}

ParseValue ExprParser::makePattern(ParseValue theLeft, ParseValue theRight) {
  if (HasHead(theLeft.expr, Head::Pattern))
    return makeBinary(Head::Optional, theLeft, theRight);
  // ":" groups to the right, so x:_:1 arrives as x : (_ : 1). A pattern
  // named by a blank is really a blank with a default.
  Expr* right = theRight.expr;
  if (HasHead(right, Head::Pattern) && right->length() == 2 && IsBlank(right->part(1))) {
    auto inner = adopt(theRight.expr);
    ParseValue blank = {retained(right->part(1)).leak(), 1};
    ParseValue fallback = {retained(right->part(2)).leak(), theRight.depth - 1};
    return makeBinary(Head::Optional, makeBinary(Head::Pattern, theLeft, blank), fallback);
  }
  return makeBinary(Head::Pattern, theLeft, theRight);
}

ParseValue ExprParser::makeSequence() {
  openLists_.push({arguments_.getCount(), 1});
  return {nullptr, int32_t(openLists_.getCount() - 1)};
}

ParseValue ExprParser::makeMutableList() { return {new MutableFunction(2, nullptr), 1}; }

ParseValue ExprParser::appendArgument(ParseValue theList, ParseValue theArgument) {
  if (theList.expr) {
    AsMutable(theList.expr)->appendArgument(theArgument.expr, false);
    return checked(theList.expr, Deeper(theList.depth, theArgument.depth + 1));
  }
  OpenList& list = openLists_.at(theList.depth);
  arguments_.push(theArgument.expr);
  list.depth = Deeper(list.depth, theArgument.depth + 1);
  if (list.depth > kMaxExpressionDepth) {
    refuse(Failure::kTooDeep, "expression nested too deeply");
    list.depth = kMaxExpressionDepth;
  }
  return theList;
}

ParseValue ExprParser::closeSequence(ParseValue theSequence, Expr* theHead, ParseValue theFirst) {
  ZnAssert(theSequence.expr == nullptr && theSequence.depth == openLists_.getCount() - 1, theSequence.depth);
  OpenList list = openLists_.pop();
  ZnIndex count = arguments_.getCount() - list.start;
  int32_t depth = list.depth;
  if (theFirst.expr) {
    // Part[e, ...]: e goes in front of the list's arguments.
    arguments_.push(nullptr);
    Expr** slots = &arguments_.at(list.start);
    MoveMemory(slots, slots + 1, Sys::size_t(count) * sizeof(Expr*));
    slots[0] = theFirst.expr;
    ++count;
    depth = Deeper(depth, theFirst.depth + 1);
  }
  Function* function = Function::createAdopting(theHead, count > 0 ? &arguments_.at(list.start) : nullptr, count);
  arguments_.truncate(list.start);
  return checked(function, depth);
}

ParseValue ExprParser::makeCompound(ParseValue theFirst, ParseValue theSecond) {
  ParseValue list = {new MutableFunction(2, HeadSymbol(Head::CompoundExpression)), 1};
  return appendArgument(appendArgument(list, theFirst), theSecond);
}

ParseValue ExprParser::makeFunction(ParseValue theHead, ParseValue theSequence) {
  ParseValue function = closeSequence(theSequence, theHead.expr, {nullptr, 0});
  return checked(function.expr, Deeper(function.depth, theHead.depth + 1));
}

ParseValue ExprParser::makeList(ParseValue theSequence) {
  return closeSequence(theSequence, retained<Expr>(HeadSymbol(Head::List)).leak(), {nullptr, 0});
}

ParseValue ExprParser::makePart(ParseValue theExpr, ParseValue theSequence) {
  return closeSequence(theSequence, retained<Expr>(HeadSymbol(Head::Part)).leak(), theExpr);
}

ParseValue ExprParser::makeTagged(ParseValue theTag, ParseValue theLeft) {
  return appendArgument(appendArgument(makeMutableList(), theTag), theLeft);
}

ParseValue ExprParser::finishTagged(Head theHead, ParseValue theTagged) {
  AsMutable(theTagged.expr)->setHead(HeadSymbol(theHead), true);
  return theTagged;
}

ParseValue ExprParser::finishTagged(Head theHead, ParseValue theTagged, ParseValue theValue) {
  return appendArgument(finishTagged(theHead, theTagged), theValue);
}

ParseValue ExprParser::makeRowBox(ParseValue theSequence) {
  return makeUnary(Head::RowBox, makeList(theSequence));
}

const char* ExprParser::className() const { return "ExprParser"; }
const char* ExprParser::superclassName() const { return "Parser"; }

//===--- Conveniences -------------------------------------------------------------===//

Expr* ParseExpression(Reader* theReader) {
  auto parser = adopt(new ExprParser(theReader));
  return parser->parse();
}

Expr* ParseExpressionFromString(const String* theText) {
  auto reader = adopt<Reader>(new StringReader(theText));
  return ParseExpression(reader.get());
}
} // namespace Zn::Kx
