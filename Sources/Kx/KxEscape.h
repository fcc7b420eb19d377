//===- KxEscape.h - One escape of the notation, decoded --------------------===//
#pragma once
#include "Zn/Base/ZnTypes.h"

namespace Zn::Kx {

/// What the escape after a backslash stands for.
///
/// The notation writes characters as "\[Name]", "\.xx" and "\:xxxx"
/// everywhere; strings add "\"", "\\", "\n", "\r", "\t", the string markers
/// "\<" and "\>", and line continuations (a backslash before a line end).
/// The encoding, the lexer and the text of atoms all decode escapes here;
/// each decides for itself which forms it reads and what becomes of a
/// backslash that starts none, or of an escape that its text cuts short.
struct Escape {
  /// The forms that decode() reads; any other is kNone.
  enum Forms : uint32_t {
    kNamedForm = 0x1,   ///< "\[Name]"
    kHexForms = 0x2,    ///< "\.xx" and "\:xxxx"
    kStringForms = 0x4, ///< "\"", "\\", "\n", "\r", "\t", markers, continuations
    kCharacterForms = kNamedForm | kHexForms,
    kAllForms = kNamedForm | kHexForms | kStringForms,
  };
  enum Kind : uint8_t {
    kNone,       ///< no escape of the forms asked for
    kIncomplete, ///< the text ends before it is known: more may complete it
    kCharacter,  ///< stands for character
    kNothing,    ///< a string marker or a line continuation
  };
  Kind kind = kNone;
  ZnUnichar character = 0;
  /// How many units after the backslash the escape takes.
  ZnIndex length = 0;

  /// Decodes the escape whose backslash comes just before theText, of which
  /// theLength units are at hand. A name is searched for its "]" no further
  /// than the longest name; a carriage return at the end of the text is a
  /// continuation of its own (the string forms are read from whole texts).
  static Escape decode(const ZnUnichar* theText, ZnIndex theLength, uint32_t theForms);
  /// The same over 8-bit characters.
  static Escape decode(const uint8_t* theText, ZnIndex theLength, uint32_t theForms);
};
} // namespace Zn::Kx
