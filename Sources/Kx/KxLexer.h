//===- KxLexer.h - Tokens of notebook expressions --------------------------===//
#pragma once
#include "Kx/KxAtomTable.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"

namespace Zn {
class Reader;
struct SourceRange;
} // namespace Zn

namespace Zn::Kx {
class Expr;
class ExprParser;
class MutableFunction;

/// One value of the grammar: an expression and the height of its tree (0 for
/// an atom). On the parse stack the value holds one reference.
struct ParseValue {
  Expr* expr;
  int32_t depth;
};

/// The token source of ExprParser. Reads code units from a reader, one at a
/// time with push-back, and returns one token code of the grammar per call
/// (single characters as themselves, 0 at the end), with the token's value.
///
/// It has two modes: the linear syntax, and box mode inside "\(" ... "\)",
/// where runs of text become strings and backslash pairs box operators. Text
/// is gathered in buffers that live as long as the lexer, so scanning a
/// token allocates only the value it returns.
///
/// A sub-parse (a box group inside a string) runs on a lexer of its own over
/// the group's text; the one scanning the string waits until it is done.
class Lexer {
public:
  /// Borrows the parser and the reader, which outlive the lexer. theNesting
  /// is the depth of brackets, braces, parentheses and box groups around the
  /// text (non-zero for the text of a sub-parse).
  Lexer(ExprParser* theParser, Reader* theReader, int32_t theNesting);
  Lexer(const Lexer&) = delete;
  Lexer& operator=(const Lexer&) = delete;
  ~Lexer();

  /// The next token code; theValue gets a +1 expression for the tokens that
  /// carry one, and null otherwise.
  int32_t nextToken(ParseValue* theValue);

  /// Where the last token returned starts and ends (0-based, as the reader
  /// counts; a token that spans lines keeps the column where it started).
  void getTokenRange(SourceRange* theRange) const;
  int32_t getNesting() const { return nesting_; }
  int32_t getBoxDepth() const { return boxDepth_; }

private:
  bool get(ZnUnichar* theCharacter);
  void unget(ZnUnichar theCharacter);
  /// Takes the run of characters that the reader holds ready up to the first
  /// one for which theStop is true (or the end of what is ready), appending
  /// them to theText when it is not null. Returns how many were taken; the
  /// caller goes on character by character after the run. theRunsAreLong
  /// says the run is likely to be long (the text of a string).
  template <class Stop> ZnIndex takeRun(MutableString* theText, Stop theStop, bool theRunsAreLong = false);
  /// Consumes the next character when it is theCharacter.
  bool skip(ZnUnichar theCharacter);
  void markTokenStart(ZnIndex theConsumed);

  int32_t scanLinear(ParseValue* theValue);
  int32_t scanBox(ParseValue* theValue);
  int32_t scanSign(ZnUnichar theSign);
  int32_t scanSymbol(ZnUnichar theFirst, ParseValue* theValue);
  int32_t scanBlank(Expr* thePatternName, ParseValue* theValue);
  int32_t scanSlot(ParseValue* theValue);
  /// +1. The number after "#" or "%": its digits, or 1 when there are none.
  Expr* scanIndex();
  int32_t scanOut(ParseValue* theValue);
  int32_t scanNumber(ZnUnichar theFirst, ParseValue* theValue);
  int32_t scanString(ParseValue* theValue);
  int32_t scanRun(ZnUnichar theFirst, ParseValue* theValue);
  int32_t scanElement(ParseValue* theValue);
  bool skipComment();
  void skipFileName();
  int32_t open(int32_t theToken);
  int32_t close(int32_t theToken);
  int32_t refuse(const char* theMessage);

  /// Reads a name into text_ starting with theFirst (already consumed);
  /// false when no character of a name was found.
  bool scanName(ZnUnichar theFirst);
  /// After a backslash: reads "[Name]", ".xx" or ":xxxx" and gives its
  /// character. When the escape is not one of these, everything read after
  /// the backslash is given back and the result is false.
  bool readEscapedCharacter(ZnUnichar* theCharacter);
  /// The body of a double-quoted string (the opening quote consumed) into
  /// theText. With theParseGroups, box groups are parsed and finished pieces
  /// go to pieces_; otherwise groups stay text. False when the input ends
  /// before the closing quote.
  bool scanQuoted(MutableString* theText, bool theParseGroups);
  /// A box group inside a string, "\(" or "\!\(" already read (theOpening
  /// holds it): its text up to the matching "\)", parsed when theParse is
  /// set. False when the input ends first.
  bool scanGroup(const char* theOpening, MutableString* theText, bool theParse);
  /// Moves theText into pieces_ as one string piece (nothing when empty).
  void flushPiece(MutableString* theText);

  ExprParser* parser_;
  Reader* reader_;
  /// Nesting of "\(" groups; 0 in the linear syntax.
  int32_t boxDepth_ = 0;
  /// The code of the previous token; decides unary signs and empty box operands.
  int32_t lastToken_ = 0;
  /// Open brackets, braces, parentheses and box groups, the enclosing text's included.
  int32_t nesting_;
  /// An opening token to return before reading on ("[" after "<|"), or 0.
  int32_t pendingToken_ = 0;
  /// Set after "\*": the next token is the embedded element's text.
  bool readElement_ = false;
  /// Position of the last token: the reader's mark, taken when this many of
  /// its characters had been read, and the line breaks inside it.
  ZnIndex tokenConsumed_ = 0;
  int32_t tokenBreaks_ = 0;
  /// Text of the token being scanned, and of a box group inside a string.
  Ref<MutableString> text_;
  Ref<MutableString> group_;
  /// The pieces of a string that holds parsed box groups (head List), and
  /// the height of the deepest piece.
  Ref<MutableFunction> pieces_;
  int32_t piecesDepth_ = 0;
};
} // namespace Zn::Kx
