//===- KxEncoding.h - Character escapes of notebook text -------------------===//
#pragma once
#include "Kx/KxReplacementTable.h"
#include "Zn/Base/ZnStringEncoding.h"

namespace Zn {
class String;
} // namespace Zn

namespace Zn::Kx {
class NamedCharacterTable;

/// Notebook files are 7-bit text: every other character is written as
/// "\[Name]", "\.xx" or "\:xxxx". This encoding reads those escapes into
/// code units and writes code units back as escapes, plain-text stand-ins
/// or themselves, as its flags choose.
///
/// The named characters and the standard stand-ins are shared by every
/// encoding; they are built on first use and freed at exit. Changing a
/// stand-in with setReplacement gives this encoding a private copy first.
class Encoding : public StringEncoding {
public:
  /// Flag bits. The five name bits choose, per range of code points, where
  /// a character that has a name is written as "\[Name]".
  enum : uint32_t {
    kNameASCII = 0x1,        ///< code points below 128
    kNameLatin1 = 0x2,       ///< 128 to 255
    kNameGreek = 0x4,        ///< U+0370 to U+03FF
    kNamePrivateUse = 0x8,   ///< U+E000 to U+F8FF
    kNameOther = 0x10,       ///< every other code point
    kEscapeQuotes = 0x40,    ///< write '"' and '\' with a backslash in front
    kDecodeNames = 0x100,    ///< read "\[Name]"
    kStandardLetters = 0x200, ///< write private-use letters as their standard ones
  };
  /// Plain text names Greek letters too; HTML shows them as they are.
  static constexpr uint32_t kTextFlags = kDecodeNames | kNamePrivateUse | kNameGreek | kStandardLetters;
  static constexpr uint32_t kHTMLFlags = kDecodeNames | kNamePrivateUse | kStandardLetters;

  explicit Encoding(uint32_t theFlags);
  uint32_t getFlags() const { return flags_; }

  /// Writes each unit as its replacement, its name (as the flags say), the
  /// byte itself (tab, line feed, carriage return, 32 to 127) or a
  /// hexadecimal escape "\.xx" or "\:xxxx". Consumes every unit.
  ZnIndex encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                           bool theIsFirst) override;
  /// The same for 8-bit characters, except that bytes from 128 up that are
  /// not replaced or named are written as they are.
  ZnIndex encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData, bool theIsFirst) override;
  /// Appends the units of theCount bytes to theString, turning escapes into
  /// the characters they stand for, and returns the bytes consumed. An
  /// escape cut off by the end of the buffer (a lone "\" or "\[Name" without
  /// "]") stops decoding in front of its backslash, so that the caller can
  /// hand it in again with more bytes behind it.
  ZnIndex decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString,
                      bool theIsFirst) override;
  /// The same over code units, for text already held in a string; units
  /// above 255 pass unchanged. When the text is complete, the caller appends
  /// the unconsumed tail as it is.
  ZnIndex decodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableString* theString) const;

  /// Writes theCode's replacement, or its name when theFlags name its
  /// range. Returns false, writing nothing, when neither applies.
  bool encodeCharacter(ZnUnichar theCode, MutableData* theData, uint32_t theFlags) const;
  bool encodeCharacter(ZnUnichar theCode, MutableString* theString, uint32_t theFlags) const;

  /// Appends the units to theString for display inside a quoted string:
  /// replacements and names as the flags say; other control characters but
  /// tab and line feed as "\\.xx" (two backslashes); everything else as it is.
  void escapeString(const ZnUnichar* theCharacters, ZnIndex theCount, MutableString* theString) const;
  /// How many of theCharacters, from the first, escapeString copies as they
  /// are: printable ASCII, tabs and line feeds below the first replaced code,
  /// when ASCII is not written by name (and quotes and backslashes when they
  /// are not escaped). A text that is all plain can be written unchanged.
  ZnIndex plainLength(const ZnUnichar* theCharacters, ZnIndex theCount) const;

  /// Adds or changes a replacement of this encoding only (theText is ASCII
  /// and copied; "" drops the character).
  void setReplacement(ZnUnichar theCode, const char* theText);

  /// The code point of a name (without the brackets), of the written names
  /// or of those that are only read; false when unknown.
  static bool lookupNamedCharacter(const String* theName, ZnUnichar* theCode);
  static bool lookupNamedCharacter(const ZnUnichar* theName, ZnIndex theLength, ZnUnichar* theCode);
  static bool lookupNamedCharacter(const uint8_t* theName, ZnIndex theLength, ZnUnichar* theCode);

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~Encoding() override;

private:
  template <class Sink> bool writeCharacter(ZnUnichar theCode, Sink& theSink, uint32_t theFlags) const;
  template <class CharT> void encode(const CharT* theUnits, ZnIndex theCount, MutableData* theData) const;
  template <class CharT> ZnIndex decode(const CharT* theUnits, ZnIndex theCount, MutableString* theString) const;

  uint32_t flags_;
  const NamedCharacterTable* names_;
  /// The shared replacements, or ownReplacements_ once this encoding changed one.
  const ReplacementTable* replacements_;
  ReplacementTable ownReplacements_;
};
} // namespace Zn::Kx
