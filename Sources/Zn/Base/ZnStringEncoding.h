//===- ZnStringEncoding.h - Conversions between code units and bytes ------===//
#pragma once
#include "Zn/Base/ZnObject.h"
#include "Zn/Base/ZnRef.h"

namespace Zn {
class MutableData;
class MutableString;

/// The numbers by which StringEncodingWithID creates encodings.
enum StringEncodingID {
  kStringEncodingUTF16SwappedWithBOM = 0,
  kStringEncodingUTF16Swapped = 1,
  kStringEncodingUTF16WithBOM = 2,
  kStringEncodingUTF16 = 3,
  kStringEncodingUTF8WithBOM = 4,
  kStringEncodingUTF8 = 5,
  kStringEncodingASCII = 6,
  kStringEncodingASCIIEscaped = 7,
};

/// Converts between UTF-16 code units and bytes, one chunk at a time.
///
/// A subclass implements the three conversions below. Each appends to the
/// sink it is given and returns how much of its input it consumed; each is
/// handed `theIsFirst` true only for the first chunk of a conversion, where a
/// byte-order mark may be written or found. Malformed input is never an
/// error: every subclass turns any byte sequence into some code units.
/// Encodings keep no state between chunks apart from their byte-order-mark
/// switches, so one object may serve several conversions in turn.
class StringEncoding : public Object {
public:
  /// Appends the bytes for up to theCount units to theData. Returns the units
  /// consumed: fewer than theCount only when a unit cannot be represented,
  /// and then the bytes of the units before it have been appended.
  virtual ZnIndex encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                                   bool theIsFirst) = 0;
  /// The same for 8-bit characters, each byte taken as the code point 0-255.
  /// Returns the bytes consumed.
  virtual ZnIndex encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData,
                              bool theIsFirst) = 0;
  /// Appends the units decoded from up to theCount bytes to theString and
  /// returns the bytes consumed. A multi-byte sequence cut off by the end of
  /// the input is left unconsumed, so the caller can hand its bytes in again
  /// with the rest of the sequence behind them.
  virtual ZnIndex decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString,
                              bool theIsFirst) = 0;
  /// The input ended with theCount bytes that decodeBytes left unconsumed:
  /// appends what they stand for. By default they are dropped.
  virtual void decodeLastBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString);

  /// +1. Encodes all units, 1024 at a time. An encoder that consumes nothing
  /// is asked again without end, so never hand the strict ASCII encoding a
  /// unit above 255.
  static MutableData* dataFromCharacters(StringEncoding* theEncoding, const ZnUnichar* theCharacters,
                                         ZnIndex theCount);
  /// The same for 8-bit characters, through encodeBytes.
  static MutableData* dataFromCharacters(StringEncoding* theEncoding, const uint8_t* theCharacters,
                                         ZnIndex theCount);
  /// +1. Decodes the bytes in one call: at most 1024 of them. Longer input
  /// goes through a reader, or through String::createWithBytes.
  static MutableString* stringFromBytes(StringEncoding* theEncoding, const uint8_t* theBytes, ZnIndex theCount);

  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~StringEncoding() override = default;
};

/// +1. The encoding numbered theID (see StringEncodingID), or null.
StringEncoding* StringEncodingWithID(int theID);

/// 16-bit units, two bytes each: low byte first, or high byte first when
/// swapBytes is set. The byte-order mark written is FE FF before low-first
/// data and FF FE before high-first data; decoding reads it the same way.
class UTF16Encoding : public StringEncoding {
public:
  UTF16Encoding(bool theSwapBytes, bool theWriteBOM) : swapBytes_(theSwapBytes), writeBOM_(theWriteBOM) {}
  bool getSwapBytes() const { return swapBytes_; }
  bool getWriteBOM() const { return writeBOM_; }

  ZnIndex encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                           bool theIsFirst) override;
  ZnIndex encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData, bool theIsFirst) override;
  /// A mark at the start sets the byte order and writeBOM, and is skipped.
  ZnIndex decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString,
                      bool theIsFirst) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~UTF16Encoding() override = default;

private:
  bool swapBytes_;
  bool writeBOM_;
};

/// UTF-8 without joining surrogates: every unit is one sequence of 1-3
/// bytes.
///
/// Decoding takes only well-formed sequences: the shortest form of a code
/// point up to U+10FFFF that is not a surrogate, code points above U+FFFF as
/// a surrogate pair. Any other byte (a stray continuation byte, C0, C1,
/// F5-FF, a lead byte whose next byte cannot continue it, or one cut short
/// by the end of the input) is one character of Windows-1252, and decoding
/// goes on with the byte after it: text saved as Latin-1 reads as written.
class UTF8Encoding : public StringEncoding {
public:
  explicit UTF8Encoding(bool theWriteBOM = false) : writeBOM_(theWriteBOM) {}
  bool getWriteBOM() const { return writeBOM_; }

  ZnIndex encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                           bool theIsFirst) override;
  /// The bytes go out unchanged (after the mark, when one is written).
  ZnIndex encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData, bool theIsFirst) override;
  /// A mark at the start of the input is skipped and sets writeBOM, so that
  /// writing with the same object puts it back.
  ZnIndex decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString,
                      bool theIsFirst) override;
  /// A sequence cut short by the end: each of its bytes in Windows-1252.
  void decodeLastBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~UTF8Encoding() override = default;

private:
  bool writeBOM_;
};

/// One byte per unit (Latin-1). A unit above 255 is written as "\uXXXX"
/// when escapeUnicode is set; otherwise encoding stops in front of it.
class ASCIIEncoding : public StringEncoding {
public:
  explicit ASCIIEncoding(bool theEscapeUnicode) : escapeUnicode_(theEscapeUnicode) {}
  bool getEscapeUnicode() const { return escapeUnicode_; }

  ZnIndex encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                           bool theIsFirst) override;
  ZnIndex encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData, bool theIsFirst) override;
  ZnIndex decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString,
                      bool theIsFirst) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~ASCIIEncoding() override = default;

private:
  bool escapeUnicode_;
};

/// Text for an HTML page: tabs, line breaks, quotes, "&", "<" and ">" become
/// markup, everything else goes to the inner encoding. While raw is set
/// everything goes to the inner encoding unchanged, which is how markup
/// itself is written.
class HTMLEncoding : public StringEncoding {
public:
  /// Retains theInner; null means UTF-8 without byte-order mark.
  explicit HTMLEncoding(StringEncoding* theInner = nullptr);
  /// Borrowed.
  StringEncoding* getInner() const { return inner_.get(); }
  bool isRaw() const { return raw_; }
  void setRaw(bool theRaw) { raw_ = theRaw; }

  ZnIndex encodeCharacters(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData,
                           bool theIsFirst) override;
  ZnIndex encodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData, bool theIsFirst) override;
  /// Each byte one unit; entities are not decoded.
  ZnIndex decodeBytes(const uint8_t* theBytes, ZnIndex theCount, MutableString* theString,
                      bool theIsFirst) override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~HTMLEncoding() override = default;

private:
  template <class CharT>
  ZnIndex encodeEscaped(const CharT* theCharacters, ZnIndex theCount, MutableData* theData, bool theIsFirst,
                        bool theNumericReferences);
  ZnIndex encodePlain(const ZnUnichar* theCharacters, ZnIndex theCount, MutableData* theData, bool theIsFirst);
  ZnIndex encodePlain(const uint8_t* theBytes, ZnIndex theCount, MutableData* theData, bool theIsFirst);

  Ref<StringEncoding> inner_;
  bool raw_ = false;
  /// Units from 128 up become numeric references when the inner encoding
  /// is 8-bit.
  bool innerIsASCII_;
};
} // namespace Zn
