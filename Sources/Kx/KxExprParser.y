/*===- KxExprParser.y - LALR(1) grammar of notebook expressions -----------===//
 *
 * One expression in the linear input syntax, with box notation inside
 * "\(" ... "\)" groups. The lexer (KxLexer.cpp) returns the token codes
 * declared here; every action is one call to a helper of ExprParser that
 * takes over the +1 values it is given and returns a +1 value.
 *
 * Juxtaposition (`a b` is Times[a, b]) makes the grammar ambiguous wherever
 * an expression may end: every token that can start an expression could
 * either start a factor or follow what is already there. All of these
 * conflicts, and those of the prefix and postfix operators, are resolved by
 * the precedence block below; the grammar has no unresolved conflict, so
 * `%expect 0` makes any new one break the build.
 *
 * Three groups of tokens get a level that is not the level of an operator:
 *  - The tokens that start an expression sit just below "*": juxtaposition
 *    then binds like "*" (a + b c is a + (b c), a * b c and a b c group to
 *    the left, a^b c is (a^b) c), while an element of a box group
 *    (BoxSequence Expr, which reduces at the same level) ends before the
 *    next element instead of multiplying with it: \(a b\) is a row of two.
 *  - KxFormBox, as a token, sits between those and "*", so that the element
 *    before it becomes the form name (\(F\`x\)) while a box expression to
 *    its left is completed first. The FormBox rule itself binds at the
 *    lowest level (KxLowestPrecedence), below ";" and "=", so its right
 *    side extends as far as possible. Box tokens only occur inside box
 *    groups, where none of the linear operators can follow them.
 *  - KxGet and KxSqrtBox start expressions like the atoms; their rules bind
 *    tighter ("<< a + b" is Plus[Get[a], b], "\@ a \^ b" takes the power).
 *===----------------------------------------------------------------------===*/

%require "3.0"

%code requires {
#include "Kx/KxLexer.h"
}

%code {
#include "Kx/KxExprParser.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnMemory.h"

// The parse stack lives on the heap and grows by doubling. Its limit leaves
// room for the deepest nesting that the lexer lets through, with a few
// entries per level; beyond it the parse fails ("memory exhausted").
#define YYMALLOC Zn::Allocate
#define YYFREE Zn::Free
#define YYMAXDEPTH (8 * Zn::Kx::kMaxNestingDepth + 1000)

using Zn::Kx::Head;

static int kxlex(KXSTYPE* theValue, Zn::Kx::ExprParser* theParser) {
  return theParser->nextToken(&theValue->value);
}

static void kxerror(Zn::Kx::ExprParser* theParser, const char* theMessage) {
  theParser->reportSyntaxError(theMessage);
}
}

%define api.prefix {kx}
%define api.pure full
%parse-param {Zn::Kx::ExprParser* theParser}
%lex-param {Zn::Kx::ExprParser* theParser}
%define parse.trace
%define parse.error verbose

%union { Zn::Kx::ParseValue value; }

/* Atoms and ready-made expressions. KxBigInteger and KxBigReal keep their
   codes but are never returned: an integer literal too long for a machine
   integer comes as a KxMachineInteger token whose value is a BigInteger. */
%token KxUnknown 999
%token <value> KxMachineInteger 1000
%token KxBigInteger 1001
%token <value> KxMachineReal 1002
%token KxBigReal 1003
%token <value> KxString 1004
%token <value> KxSymbol 1005
%token <value> KxFunction 1006

/* Operators: 10000 + 100 * (position of the first letter) + a running index. */
%token KxAnd 10100 "&&"
%token KxApply 10101 "@@"
%token KxApply1 10102 "@@@"
%token KxBothBox 10200 "\\%"
%token KxCondition 10300 "/;"
%token KxDecrement 10400 "--"
%token KxDecrementBy 10401 "-="
%token KxDivideBy 10402 "/="
%token KxEqual 10500 "=="
%token KxFactorial2 10600 "!!"
%token KxFormBox 10601 "\\`"
%token KxFractionBox 10602 "\\/"
%token KxGet 10700 "<<"
%token KxGreaterEqual 10701 ">="
%token KxIncrement 10900 "++"
%token KxIncrementBy 10901 "+="
%token KxInterpretBox 10902 "\\*"
%token KxLessEqual 11200 "<="
%token KxMap 11300 "/@"
%token KxMapAll 11301 "//@"
%token KxNonCommutativeMultiply 11400 "**"
%token KxOr 11500 "||"
%token KxOverscriptBox 11501 "\\&"
%token KxPut 11600 ">>"
%token KxPutAppend 11601 ">>>"
%token KxRepeated 11800 ".."
%token KxRepeatedNull 11801 "..."
%token KxReplaceAll 11802 "/."
%token KxReplaceRepeated 11803 "//."
%token KxRowBoxBegin 11804 "\\("
%token KxRowBoxEnd 11805 "\\)"
%token KxRowBoxEval 11806 "\\!"
%token KxRule 11807 "->"
%token KxRuleDelayed 11808 ":>"
%token KxSameQ 11900 "==="
%token KxSetDelayed 11901 ":="
%token KxSlashSlash 11902 "//"
%token KxSqrtBox 11903 "\\@"
%token KxStringJoin 11904 "<>"
%token KxSubscriptBox 11905 "\\_"
%token KxSuperscriptBox 11906 "\\^"
%token KxTag 12000 "/:"
%token KxTimesBy 12001 "*="
%token KxUnderscriptBox 12100 "\\+"
%token KxUnequal 12101 "!="
%token KxUnsameQ 12102 "=!="
%token KxUpSet 12103 "^="
%token KxUpSetDelayed 12104 "^:="
%token KxHighestPrecedence 12105
%token KxLowestPrecedence 12106
%token KxUnaryMinus 12107
%token KxUnaryPlus 12108

%type <value> KxExpr KxLeafExpr KxNumberExpr KxInteger KxReal KxCompoundExpr KxFunctionExpr
%type <value> KxSequence KxExprTagExprSet KxExprTagExprSetDelayed KxOperators KxExprGroup
%type <value> KxBoxSequence KxRowBox KxBoxExpr

%destructor { theParser->discard($$); } <value>

// Precedence, loosest first; one family per line.
%precedence KxLowestPrecedence          // the FormBox rule and Expr: CompoundExpr
%left ';'                               // compound expressions
%precedence KxPut KxPutAppend           // postfix >> >>>
%right '=' KxSetDelayed KxUpSet KxUpSetDelayed KxTag // assignments
%left KxSlashSlash                      // x // f
%precedence '&'                         // postfix pure function
%right KxDecrementBy KxIncrementBy KxTimesBy KxDivideBy // -= += *= /=
%left KxReplaceAll KxReplaceRepeated    // /. //.
%right KxRule KxRuleDelayed             // -> :>
%left KxCondition                       // /;
%left KxNonCommutativeMultiply          // **
%right ':'                              // patterns and defaults
%left '|'                               // alternatives
%precedence KxRepeated KxRepeatedNull   // postfix .. ...
%left KxOr                              // ||
%left KxAnd                             // &&
%left KxSameQ KxUnsameQ                 // === =!=
%left '<' '>' KxLessEqual KxGreaterEqual KxEqual KxUnequal // comparisons
%left '+' '-'                           // sums
%left KxMachineInteger KxMachineReal KxString KxSymbol KxFunction '(' '{' KxGet KxRowBoxBegin KxRowBoxEval KxInterpretBox KxSqrtBox // starts of expressions
%precedence KxFormBox                   // the token, before the form's name
%left '*' '/' KxFractionBox             // products, juxtaposition, fractions
%right KxUnaryMinus KxUnaryPlus         // prefix signs; the \@ rule
%left '.'                               // dot products
%right '^' KxSuperscriptBox             // powers and superscripts
%left KxStringJoin                      // <>
%precedence '!' KxFactorial2 '\''       // postfix ! !! '
%right KxMap KxMapAll                   // /@ //@
%right KxApply KxApply1                 // @@ @@@
%right '@'                              // prefix application
%left KxIncrement KxDecrement           // ++ -- either side; prefix <<
%nonassoc '?'                           // pattern tests
%right KxSubscriptBox                   // subscripts
%right KxOverscriptBox KxUnderscriptBox // over- and underscripts
%precedence KxBothBox                   // the third part of a script box
%precedence '['                         // application and Part
%precedence KxHighestPrecedence         // the tag rules, which reduce at once

%expect 0

%start KxCompleteExpr

%%

KxCompleteExpr:
  KxExpr[e]                                       { theParser->setResult($e); }
| error                                           { theParser->setNoResult(); YYABORT; }
| %empty                                          { theParser->setResult(theParser->makeNull()); }
;

KxExpr:
  KxLeafExpr
| KxCompoundExpr %prec KxLowestPrecedence
| KxFunction
| KxFunctionExpr
| KxOperators
| KxExprGroup
| KxBoxExpr
;

KxLeafExpr:
  KxNumberExpr
| KxString
| KxSymbol
;

KxNumberExpr:
  KxInteger
| KxReal
;

KxInteger:
  KxMachineInteger
;

KxReal:
  KxMachineReal
;

KxCompoundExpr:
  KxExpr[l] ';' KxExpr[r]                         { $$ = theParser->makeCompound($l, $r); }
| KxExpr[l] ';'                                   { $$ = theParser->makeCompound($l, theParser->makeNull()); }
| KxCompoundExpr[c] ';' KxExpr[r]                 { $$ = theParser->appendArgument($c, $r); }
| KxCompoundExpr[c] ';'                           { $$ = theParser->appendArgument($c, theParser->makeNull()); }
;

KxFunctionExpr:
  KxExpr[h] '[' KxSequence[s] ']'                 { $$ = theParser->makeFunction($h, $s); }
| '{' KxSequence[s] '}'                           { $$ = theParser->makeList($s); }
| KxExpr[e] '[' '[' KxSequence[s] ']' ']'         { $$ = theParser->makePart($e, $s); }
;

KxSequence:
  %empty                                          { $$ = theParser->makeSequence(); }
| KxExpr[e]                                       { $$ = theParser->appendArgument(theParser->makeSequence(), $e); }
| KxSequence[s] ','                               { $$ = theParser->appendArgument($s, theParser->makeNull()); }
| KxSequence[s] ',' KxExpr[e]                     { $$ = theParser->appendArgument($s, $e); }
;

KxExprTagExprSet:
  KxExpr[t] KxTag KxExpr[l] '=' %prec KxHighestPrecedence
                                                  { $$ = theParser->makeTagged($t, $l); }
;

KxExprTagExprSetDelayed:
  KxExpr[t] KxTag KxExpr[l] KxSetDelayed %prec KxHighestPrecedence
                                                  { $$ = theParser->makeTagged($t, $l); }
;

KxOperators:
  KxExpr[e] KxPut                                 { $$ = theParser->makeUnary(Head::Put, $e); }
| KxExpr[e] KxPutAppend                           { $$ = theParser->makeUnary(Head::PutAppend, $e); }
| KxExprTagExprSet[t] KxExpr[v] %prec '='         { $$ = theParser->finishTagged(Head::TagSet, $t, $v); }
| KxExprTagExprSet[t] '.'                         { $$ = theParser->finishTagged(Head::TagUnset, $t); }
| KxExprTagExprSetDelayed[t] KxExpr[v] %prec '='  { $$ = theParser->finishTagged(Head::TagSetDelayed, $t, $v); }
| KxExpr[l] '=' KxExpr[r]                         { $$ = theParser->makeBinary(Head::Set, $l, $r); }
| KxExpr[l] KxSetDelayed KxExpr[r]                { $$ = theParser->makeBinary(Head::SetDelayed, $l, $r); }
| KxExpr[e] '=' '.'                               { $$ = theParser->makeUnary(Head::Unset, $e); }
| KxExpr[l] KxUpSet KxExpr[r]                     { $$ = theParser->makeBinary(Head::UpSet, $l, $r); }
| KxExpr[l] KxUpSetDelayed KxExpr[r]              { $$ = theParser->makeBinary(Head::UpSetDelayed, $l, $r); }
| KxExpr[a] KxSlashSlash KxExpr[f]                { $$ = theParser->makeApplication($f, $a); }
| KxExpr[e] '&'                                   { $$ = theParser->makeUnary(Head::Function, $e); }
| KxExpr[l] KxDecrementBy KxExpr[r]               { $$ = theParser->makeBinary(Head::SubtractFrom, $l, $r); }
| KxExpr[l] KxIncrementBy KxExpr[r]               { $$ = theParser->makeBinary(Head::AddTo, $l, $r); }
| KxExpr[l] KxTimesBy KxExpr[r]                   { $$ = theParser->makeBinary(Head::TimesBy, $l, $r); }
| KxExpr[l] KxDivideBy KxExpr[r]                  { $$ = theParser->makeBinary(Head::DivideBy, $l, $r); }
| KxExpr[l] KxReplaceAll KxExpr[r]                { $$ = theParser->makeBinary(Head::ReplaceAll, $l, $r); }
| KxExpr[l] KxReplaceRepeated KxExpr[r]           { $$ = theParser->makeBinary(Head::ReplaceRepeated, $l, $r); }
| KxExpr[l] KxRule KxExpr[r]                      { $$ = theParser->makeBinary(Head::Rule, $l, $r); }
| KxExpr[l] KxRuleDelayed KxExpr[r]               { $$ = theParser->makeBinary(Head::RuleDelayed, $l, $r); }
| KxExpr[l] KxCondition KxExpr[r]                 { $$ = theParser->makeBinary(Head::Condition, $l, $r); }
| KxExpr[l] KxNonCommutativeMultiply KxExpr[r]    { $$ = theParser->makeFlat(Head::NonCommutativeMultiply, $l, $r); }
| KxExpr[l] ':' KxExpr[r]                         { $$ = theParser->makePattern($l, $r); }
| KxExpr[l] '|' KxExpr[r]                         { $$ = theParser->makeFlat(Head::Alternatives, $l, $r); }
| KxExpr[e] KxRepeated                            { $$ = theParser->makeUnary(Head::Repeated, $e); }
| KxExpr[e] KxRepeatedNull                        { $$ = theParser->makeUnary(Head::RepeatedNull, $e); }
| KxExpr[l] KxOr KxExpr[r]                        { $$ = theParser->makeFlat(Head::Or, $l, $r); }
| KxExpr[l] KxAnd KxExpr[r]                       { $$ = theParser->makeFlat(Head::And, $l, $r); }
| KxExpr[l] KxSameQ KxExpr[r]                     { $$ = theParser->makeFlat(Head::SameQ, $l, $r); }
| KxExpr[l] KxUnsameQ KxExpr[r]                   { $$ = theParser->makeFlat(Head::UnsameQ, $l, $r); }
| KxExpr[l] '<' KxExpr[r]                         { $$ = theParser->makeFlat(Head::Less, $l, $r); }
| KxExpr[l] '>' KxExpr[r]                         { $$ = theParser->makeFlat(Head::Greater, $l, $r); }
| KxExpr[l] KxLessEqual KxExpr[r]                 { $$ = theParser->makeFlat(Head::LessEqual, $l, $r); }
| KxExpr[l] KxGreaterEqual KxExpr[r]              { $$ = theParser->makeFlat(Head::GreaterEqual, $l, $r); }
| KxExpr[l] KxEqual KxExpr[r]                     { $$ = theParser->makeFlat(Head::Equal, $l, $r); }
| KxExpr[l] KxUnequal KxExpr[r]                   { $$ = theParser->makeFlat(Head::Unequal, $l, $r); }
| KxExpr[l] '+' KxExpr[r]                         { $$ = theParser->makeFlat(Head::Plus, $l, $r); }
| KxExpr[l] '-' KxExpr[r]                         { $$ = theParser->makeBinary(Head::Subtract, $l, $r); }
| KxGet KxExpr[e] %prec KxIncrement               { $$ = theParser->makeUnary(Head::Get, $e); }
| KxExpr[l] '*' KxExpr[r]                         { $$ = theParser->makeFlat(Head::Times, $l, $r); }
| KxExpr[l] KxExpr[r] %prec '*'                   { $$ = theParser->makeFlat(Head::Times, $l, $r); }
| KxExpr[l] '/' KxExpr[r]                         { $$ = theParser->makeBinary(Head::Divide, $l, $r); }
| KxUnaryPlus KxExpr[e]                           { $$ = $e; }
| KxUnaryMinus KxExpr[e]                          { $$ = theParser->makeNegation($e); }
| KxExpr[l] '.' KxExpr[r]                         { $$ = theParser->makeFlat(Head::Dot, $l, $r); }
| KxExpr[l] '^' KxExpr[r]                         { $$ = theParser->makeBinary(Head::Power, $l, $r); }
| KxExpr[l] KxStringJoin KxExpr[r]                { $$ = theParser->makeFlat(Head::StringJoin, $l, $r); }
| KxExpr[e] '!'                                   { $$ = theParser->makeUnary(Head::Factorial, $e); }
| KxExpr[e] KxFactorial2                          { $$ = theParser->makeUnary(Head::Factorial2, $e); }
| KxExpr[l] KxMap KxExpr[r]                       { $$ = theParser->makeBinary(Head::Map, $l, $r); }
| KxExpr[l] KxMapAll KxExpr[r]                    { $$ = theParser->makeBinary(Head::MapAll, $l, $r); }
| KxExpr[e] '\''                                  { $$ = theParser->makeDerivative($e); }
| KxExpr[l] KxApply KxExpr[r]                     { $$ = theParser->makeBinary(Head::Apply, $l, $r); }
| KxExpr[l] KxApply1 KxExpr[r]                    { $$ = theParser->makeApplyAtLevelOne($l, $r); }
| KxExpr[f] '@' KxExpr[a]                         { $$ = theParser->makeApplication($f, $a); }
| KxExpr[e] KxDecrement                           { $$ = theParser->makeUnary(Head::Decrement, $e); }
| KxExpr[e] KxIncrement                           { $$ = theParser->makeUnary(Head::Increment, $e); }
| KxDecrement KxExpr[e]                           { $$ = theParser->makeUnary(Head::PreDecrement, $e); }
| KxIncrement KxExpr[e]                           { $$ = theParser->makeUnary(Head::PreIncrement, $e); }
| KxExpr[l] '?' KxExpr[r]                         { $$ = theParser->makeBinary(Head::PatternTest, $l, $r); }
;

KxExprGroup:
  '(' KxExpr[e] ')'                               { $$ = $e; }
;

KxBoxSequence:
  %empty                                          { $$ = theParser->makeSequence(); }
| KxBoxSequence[s] KxExpr[e] %prec KxSymbol       { $$ = theParser->appendArgument($s, $e); }
;

KxRowBox:
  KxRowBoxBegin KxBoxSequence[s] KxRowBoxEnd                  { $$ = theParser->makeRowBox($s); }
| KxRowBoxEval KxRowBoxBegin KxBoxSequence[s] KxRowBoxEnd     { $$ = theParser->makeRowBox($s); }
;

KxBoxExpr:
  KxRowBox
| KxExpr[f] KxFormBox KxExpr[b] %prec KxLowestPrecedence      { $$ = theParser->makeBinary(Head::FormBox, $b, $f); }
| KxInterpretBox KxString[s]                                  { $$ = theParser->makeUnary(Head::RowBox, $s); }
| KxExpr[n] KxFractionBox KxExpr[d]                           { $$ = theParser->makeBinary(Head::FractionBox, $n, $d); }
| KxSqrtBox KxExpr[e] %prec KxUnaryMinus                      { $$ = theParser->makeUnary(Head::SqrtBox, $e); }
| KxSqrtBox KxExpr[e] KxBothBox KxExpr[i] %prec KxUnaryMinus  { $$ = theParser->makeBinary(Head::RadicalBox, $e, $i); }
| KxExpr[b] KxSuperscriptBox KxExpr[s]                        { $$ = theParser->makeBinary(Head::SuperscriptBox, $b, $s); }
| KxExpr[b] KxSubscriptBox KxExpr[s]                          { $$ = theParser->makeBinary(Head::SubscriptBox, $b, $s); }
| KxExpr[b] KxSubscriptBox KxExpr[s] KxBothBox KxExpr[t] %prec KxSubscriptBox
                                                              { $$ = theParser->makeTernary(Head::SubsuperscriptBox, $b, $s, $t); }
| KxExpr[b] KxOverscriptBox KxExpr[o]                         { $$ = theParser->makeBinary(Head::OverscriptBox, $b, $o); }
| KxExpr[b] KxUnderscriptBox KxExpr[u]                        { $$ = theParser->makeBinary(Head::UnderscriptBox, $b, $u); }
| KxExpr[b] KxUnderscriptBox KxExpr[u] KxBothBox KxExpr[o] %prec KxUnderscriptBox
                                                              { $$ = theParser->makeTernary(Head::UnderoverscriptBox, $b, $u, $o); }
;

%%
