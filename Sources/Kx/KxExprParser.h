//===- KxExprParser.h - Parser of notebook expressions ---------------------===//
#pragma once
#include "Kx/KxExprStack.h"
#include "Kx/KxLexer.h"
#include "Kx/KxSymbol.h"
#include "Zn/IO/ZnParser.h"

namespace Zn::Kx {

/// Input that nests brackets, braces, parentheses and box groups (all counted
/// together) deeper than this is refused like a syntax error. Real notebooks
/// nest a few hundred levels at most. The walks of the renderers recurse once
/// per level of the tree, and in a sanitizer build a level of the HTML
/// renderer takes up to about 1 KB of stack: at this limit the deepest tree
/// (below) still fits in half of the usual 8 MB stack in every build.
constexpr int32_t kMaxNestingDepth = 2500;

/// No tree the parser returns is deeper than this, counting an atom as 0 and
/// each Function as one more than its deepest part. Input within
/// kMaxNestingDepth stays below it (a box group adds two levels, RowBox and
/// its List); chains of operators that would build a deeper tree are refused
/// too. A walk that recurses once per level needs at most this many frames.
constexpr int32_t kMaxExpressionDepth = 2 * kMaxNestingDepth + 64;

/// Turns the text of a notebook file, one expression in the linear syntax
/// with box notation, into an expression tree.
///
/// Usage: `auto parser = adopt(new ExprParser(reader)); auto e = adopt(parser->parse());`
/// A null result means the input was refused; the reason has been reported
/// through handleError (by default one log line with the position), and the
/// first error is kept (getFailure) for a caller that states it itself.
///
/// What the tree holds beyond the operators' heads:
/// - a "\(...\)" group becomes RowBox[List[elements]], with the box
///   operators building the script, fraction, radical and form boxes; its
///   elements are strings (runs of text; a quoted string inside keeps its
///   quotes and its own "\!\(...\)" text unparsed);
/// - a string literal in the linear syntax that holds box groups becomes
///   RowBox[List[text, box, text, ...]], or the box alone when the string is
///   nothing but the group; a group that does not parse stays text (and is
///   reported as a warning, kLogLevelNestedParseError);
/// - "<| ... |>" reads as Association[...]; the file name after ">>" and
///   ">>>" is not kept.
class ExprParser : public Parser {
public:
  /// Retains theReader.
  explicit ExprParser(Reader* theReader);

  /// +1. The one expression of the input: the symbol Null for an empty
  /// input, null when the input is not one well-formed expression, nests
  /// too deeply, or ends inside a string or comment.
  Expr* parse();

  /// Why the last parse gave null.
  enum class Failure : int32_t {
    kNone,
    /// Not one well-formed expression, or cut short inside a string or comment.
    kSyntax,
    /// Nesting beyond kMaxNestingDepth, or a tree beyond kMaxExpressionDepth.
    kTooDeep,
  };
  /// The first error of the last parse (warnings of sub-parses aside): its
  /// kind, its message (borrowed; null with kNone) and where it lies.
  Failure getFailure() const { return failure_; }
  const String* getFailureMessage() const { return failureMessage_.get(); }
  const SourceRange& getFailureRange() const { return failureRange_; }
  /// With false, the errors of the parse itself are only kept, not reported,
  /// for a caller that states the failure in its own words. The warnings of
  /// sub-parses are reported either way.
  void setReportsErrors(bool theOn) { reportsErrors_ = theOn; }
  /// Whether the last parse met nothing but white space and comments (its
  /// Null then stands for no expression at all).
  bool wasBlank() const { return !sawToken_; }

  /// Parses theText, a box group found inside a string ("\(...\)" or
  /// "\!\(...\)"), on a reader of its own. theRange is where the text lies
  /// in the input, for the report. On success *theResult is the parsed box
  /// and the result is true. Otherwise the failure is reported (with
  /// theKeepText, "linear syntax parse error"; without, "parse error") and
  /// *theResult is a CharacterString with the text (theKeepText) or the
  /// symbol $SyntaxError. Either way *theResult holds one reference.
  bool parseSubExpression(const String* theText, const SourceRange& theRange, bool theKeepText,
                          ParseValue* theResult);
  bool isInSubParse() const { return subParseText_ != nullptr; }

  /// The generated parser's trace of its states and tokens on standard
  /// error; off unless turned on here (for debugging the grammar).
  static void setTracing(bool theOn);

  /// Inside a sub-parse every error is only a warning (kLogLevelNestedParseError)
  /// and carries the sub-parsed text: "message (text)".
  int handleError(uint32_t theLevel, const String* theMessage, const SourceRange* theRange) override;

  //===--- Called by the lexer --------------------------------------------===//

  /// Reports theMessage at the current token and makes the parse fail.
  /// While the lexer is beyond kMaxNestingDepth the failure is kTooDeep.
  void refuse(const char* theMessage);
  bool isRefused() const { return refused_; }
  AtomTable* getAtoms() { return &atoms_; }

  //===--- Called by the generated parser ---------------------------------===//

  int nextToken(ParseValue* theValue);
  void reportSyntaxError(const char* theMessage);
  void setResult(ParseValue theValue);
  void setNoResult();
  /// Releases a value that the parser drops.
  void discard(ParseValue theValue);

  // The actions. Each takes over the values it is given and returns a +1 value.
  ParseValue makeNull();
  ParseValue makeUnary(Head theHead, ParseValue theArgument);
  ParseValue makeBinary(Head theHead, ParseValue theLeft, ParseValue theRight);
  ParseValue makeTernary(Head theHead, ParseValue theFirst, ParseValue theSecond, ParseValue theThird);
  /// theHead[theLeft, theRight], where an operand that is already an
  /// application of theHead contributes its arguments (a + b + c is one Plus).
  ParseValue makeFlat(Head theHead, ParseValue theLeft, ParseValue theRight);
  /// theFunction[theArgument] (f @ x, x // f).
  ParseValue makeApplication(ParseValue theFunction, ParseValue theArgument);
  /// Derivative[1][theFunction].
  ParseValue makeDerivative(ParseValue theFunction);
  /// Apply[theLeft, theRight, {1}].
  ParseValue makeApplyAtLevelOne(ParseValue theLeft, ParseValue theRight);
  /// A number with its sign changed, or Minus[theArgument].
  ParseValue makeNegation(ParseValue theArgument);
  /// Optional when theLeft is a pattern, Pattern otherwise (x:1, x_:1, x:_:1).
  ParseValue makePattern(ParseValue theLeft, ParseValue theRight);
  /// An argument list being built: no head, no arguments. Its arguments
  /// wait on the parser's argument stack until its bracket closes, when they
  /// become a Function of exactly their number; the value stands for the
  /// list (a null expression, and the list's place among the open ones).
  ParseValue makeSequence();
  /// Appends to a list built by the parser (argument list, compound expression).
  ParseValue appendArgument(ParseValue theList, ParseValue theArgument);
  ParseValue makeCompound(ParseValue theFirst, ParseValue theSecond);
  ParseValue makeFunction(ParseValue theHead, ParseValue theSequence);
  ParseValue makeList(ParseValue theSequence);
  ParseValue makePart(ParseValue theExpr, ParseValue theSequence);
  /// The first two arguments of TagSet, TagSetDelayed or TagUnset.
  ParseValue makeTagged(ParseValue theTag, ParseValue theLeft);
  ParseValue finishTagged(Head theHead, ParseValue theTagged);
  ParseValue finishTagged(Head theHead, ParseValue theTagged, ParseValue theValue);
  /// RowBox[List[the elements]].
  ParseValue makeRowBox(ParseValue theSequence);

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~ExprParser() override;

private:
  /// Makes the parse fail with theKind, reporting theMessage at the current
  /// token; later refusals of the same parse add nothing.
  void refuse(Failure theKind, const char* theMessage);
  /// Reports an error of this parse at the current token, keeping the first.
  void reportFailure(Failure theKind, const char* theMessage);
  /// Runs the generated parser with theLexer; the result is left in result_.
  int run(Lexer* theLexer);
  /// The value of a new node theNode of height theDepth; a node deeper than
  /// kMaxExpressionDepth refuses the input.
  ParseValue checked(Expr* theNode, int32_t theDepth);
  /// The open argument list of theSequence, which must be the last one
  /// opened: +1, theHead[theFirst (when not null), its arguments...]. The
  /// head and theFirst are taken over.
  ParseValue closeSequence(ParseValue theSequence, Expr* theHead, ParseValue theFirst);
  /// A mutable list for the parser's own building (tagged assignments).
  ParseValue makeMutableList();

  /// An argument list waiting for its closing bracket: where its arguments
  /// start on arguments_, and the height of the deepest of them plus one.
  struct OpenList {
    ZnIndex start;
    int32_t depth;
  };
  ExprStack<Expr*> arguments_;
  ExprStack<OpenList> openLists_;

  AtomTable atoms_;
  Lexer* lexer_ = nullptr;
  ParseValue result_ = {nullptr, 0};
  bool refused_ = false;
  bool reportsErrors_ = true;
  Failure failure_ = Failure::kNone;
  Ref<String> failureMessage_;
  SourceRange failureRange_;
  bool sawToken_ = false;
  /// The text of the running sub-parse; null outside one. Borrowed.
  const String* subParseText_ = nullptr;
};

/// +1. Parses one expression from theReader with a new parser; null when
/// the input is refused (reported through the default handler).
Expr* ParseExpression(Reader* theReader);
/// +1. The same for a text held in a string ("(Memory Buffer)" in reports).
Expr* ParseExpressionFromString(const String* theText);
} // namespace Zn::Kx
