//===- KxAtomTable.h - Atoms shared within one parse ------------------------===//
#pragma once
#include <cstdint>
#include "Zn/Base/ZnTypes.h"

namespace Zn {
class MutableString;
class String;
} // namespace Zn

namespace Zn::Kx {
class Expr;

/// Atoms that repeat throughout a notebook (names, short texts, small
/// integers) are made once per parser and shared: expressions never change,
/// and a large notebook would otherwise allocate the same few hundred names
/// and box strings millions of times.
class AtomTable {
public:
  AtomTable() = default;
  AtomTable(const AtomTable&) = delete;
  AtomTable& operator=(const AtomTable&) = delete;
  ~AtomTable();

  /// +1 each.
  Expr* symbol(const MutableString* theName);
  Expr* string(const MutableString* theText);
  Expr* integer(int32_t theValue);
  /// The same number for every equal value (equal bits: 0.0 and -0.0 differ).
  Expr* real(double theValue);

private:
  /// Texts of up to this many units, all below 256, are kept in the entry
  /// itself as well: a lookup compares them there, without reading the
  /// atom's string, which is one more cache miss in a large table.
  static constexpr ZnIndex kInlineLength = 16;
  /// The references that an entry holds for its atom and hands out (see
  /// handOut). A hit in a large table then reads the entry alone: taking a
  /// reference from the atom itself would be one more cache miss a hit.
  static constexpr uint16_t kStock = 1 << 15;
  struct Entry {
    Expr* atom;                 // null for a free slot
    uint32_t hash;
    uint16_t stock;             // references to the atom that the entry holds
    uint8_t length;             // kInlineLength + 1 for any longer text
    uint8_t isSymbol : 1;
    uint8_t isInline : 1;       // text holds the units, zero-padded
    uint8_t text[kInlineLength];
    uint32_t hashValue() const { return hash; }
  };
  struct RealEntry {
    Expr* atom;                 // null for a free slot
    uint64_t bits;
    uint16_t stock;
    uint32_t hashValue() const;
  };
  /// An open-addressed table of entries, each with its atom, its stock of
  /// references and its hashValue(), and beside them a byte a slot: 0 for a
  /// free slot, else a tag of the entry's hash. It doubles from 64 slots,
  /// keeping them at most half full, until it holds kMaximumEntries.
  template <class EntryT> class Slots {
  public:
    Slots() = default;
    Slots(const Slots&) = delete;
    Slots& operator=(const Slots&) = delete;
    ~Slots();
    /// The entry of theHash for which theMatches is true; otherwise null,
    /// and *theFree is the free slot where such an entry belongs. Grows
    /// first while the table may.
    template <class Matches> EntryT* find(uint32_t theHash, Matches theMatches, ZnIndex* theFree);
    /// Fills theFree, the free slot that find() gave for theHash, when there
    /// is room; the entry then takes its stock of references to its atom.
    void insert(ZnIndex theFree, uint32_t theHash, const EntryT& theEntry);
    /// +1. The atom of an entry, one reference of its stock: the atom's own
    /// count is written only when the stock runs low. The count an atom
    /// shows meanwhile is too high by the stock, which matters to none of
    /// its readers: they look at the counts of functions only.
    static Expr* handOut(EntryT* theEntry);

  private:
    EntryT* slots_ = nullptr;
    uint8_t* tags_ = nullptr;
    ZnIndex capacity_ = 0;
    ZnIndex count_ = 0;
  };

  /// Texts longer than this are rarely repeated and are not kept.
  static constexpr ZnIndex kMaximumStringLength = 24;
  /// Past this many entries a table stops growing (lookups go on).
  static constexpr ZnIndex kMaximumEntries = 1 << 15;
  static constexpr int32_t kSmallIntegers = 256;

  Expr* find(const MutableString* theText, bool theIsSymbol);

  Slots<Entry> texts_;
  Expr* integers_[kSmallIntegers] = {};
  // The reals of plots and styles repeat (coordinates, thicknesses, colour
  // components): 600,000 of them in the 100 MB notebook.
  Slots<RealEntry> reals_;
};
} // namespace Zn::Kx
