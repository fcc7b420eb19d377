//===- KxAtomTable.cpp - Atoms shared within one parse ----------------------===//
#include "Kx/KxAtomTable.h"
#include <cstring>
#include "Kx/KxNumber.h"
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnString.h"

namespace Zn::Kx {

namespace {
/// The tag of a slot that holds an entry of theHash: seven bits of the hash
/// that do not choose the slot, and the high bit, so that 0 is a free slot.
uint8_t TagOf(uint32_t theHash) { return uint8_t(0x80 | (theHash >> 25)); }
} // namespace

template <class EntryT> AtomTable::Slots<EntryT>::~Slots() {
  for (ZnIndex i = 0; i < capacity_; ++i)
    if (tags_[i])
      slots_[i].atom->releaseMany(slots_[i].stock);
  Free(slots_);
  Free(tags_);
}

template <class EntryT>
template <class Matches>
EntryT* AtomTable::Slots<EntryT>::find(uint32_t theHash, Matches theMatches, ZnIndex* theFree) {
  if (count_ * 2 >= capacity_ && count_ < kMaximumEntries) {
    // Rehash into twice the room. A small start: the parsers that the walk
    // makes for box groups in strings read a few atoms each.
    ZnIndex capacity = capacity_ == 0 ? 64 : capacity_ * 2;
    auto* slots = static_cast<EntryT*>(Allocate(Sys::size_t(capacity) * sizeof(EntryT)));
    auto* tags = static_cast<uint8_t*>(AllocateZeroed(Sys::size_t(capacity)));
    for (ZnIndex i = 0; i < capacity_; ++i) {
      if (!tags_[i])
        continue;
      ZnIndex j = ZnIndex(slots_[i].hashValue() & uint32_t(capacity - 1));
      while (tags[j])
        j = (j + 1) & (capacity - 1);
      slots[j] = slots_[i];
      tags[j] = tags_[i];
    }
    Free(slots_);
    Free(tags_);
    slots_ = slots;
    tags_ = tags;
    capacity_ = capacity;
  }
  // The probe reads the tags, a byte a slot, and an entry only where its
  // tag matches: a text seen for the first time costs no look at the entries.
  const uint8_t tag = TagOf(theHash);
  ZnIndex j = ZnIndex(theHash & uint32_t(capacity_ - 1));
  for (; tags_[j]; j = (j + 1) & (capacity_ - 1))
    if (tags_[j] == tag && theMatches(slots_[j]))
      return &slots_[j];
  *theFree = j;
  return nullptr;
}

template <class EntryT>
void AtomTable::Slots<EntryT>::insert(ZnIndex theFree, uint32_t theHash, const EntryT& theEntry) {
  if (count_ >= kMaximumEntries || count_ * 2 >= capacity_)
    return;
  slots_[theFree] = theEntry;
  slots_[theFree].stock = kStock;
  tags_[theFree] = TagOf(theHash);
  theEntry.atom->retainMany(kStock);
  ++count_;
}

template <class EntryT> Expr* AtomTable::Slots<EntryT>::handOut(EntryT* theEntry) {
  // The stock never runs out: the entry's last reference keeps the atom
  // alive whatever its users release.
  if (theEntry->stock == 1) {
    theEntry->atom->retainMany(kStock);
    theEntry->stock += kStock;
  }
  --theEntry->stock;
  return theEntry->atom;
}

namespace {
/// A hash of the bytes of a text, eight at a time. The lexer's texts are one
/// byte a unit whenever they can be, as the atoms' own are, so equal texts
/// hash alike; one that did not would only miss its shared atom.
uint32_t HashBytes(const void* theBytes, Sys::size_t theCount) {
  const auto* bytes = static_cast<const unsigned char*>(theBytes);
  uint64_t hash = 0x9E3779B97F4A7C15u ^ theCount;
  for (; theCount >= 8; bytes += 8, theCount -= 8) {
    uint64_t word;
    std::memcpy(&word, bytes, 8);
    hash = (hash ^ word) * 0xFF51AFD7ED558CCDu;
    hash ^= hash >> 32;
  }
  if (theCount > 0) {
    // The last one to seven bytes, in at most two loads of fixed size (a
    // copy of a variable count is a call): the first and the last four,
    // two or one, which may overlap.
    uint64_t word;
    if (theCount >= 4) {
      uint32_t first, last;
      std::memcpy(&first, bytes, 4);
      std::memcpy(&last, bytes + theCount - 4, 4);
      word = uint64_t(first) | uint64_t(last) << 32;
    } else {
      word = uint64_t(bytes[0]) | uint64_t(bytes[theCount / 2]) << 8 | uint64_t(bytes[theCount - 1]) << 16;
    }
    hash = (hash ^ word) * 0xFF51AFD7ED558CCDu;
  }
  hash ^= hash >> 29;
  return uint32_t(hash * 0xC4CEB9FE1A85EC53u >> 32);
}
} // namespace

namespace {
/// The string an atom of the table was made with.
const String* TextOf(const Expr* theAtom, bool theIsSymbol) {
  return theIsSymbol ? static_cast<const Symbol*>(theAtom)->getName()
                     : static_cast<const CharacterString*>(theAtom)->getValue();
}
} // namespace

Expr* AtomTable::find(const MutableString* theText, bool theIsSymbol) {
  const ZnIndex length = theText->length();
  // A short one-byte text, zero-padded as the entries keep theirs, so that
  // the comparison is of the whole field.
  uint8_t padded[kInlineLength] = {};
  const bool isInline = length <= kInlineLength && !theText->isWide();
  uint32_t hash = theText->withCharacters([&](auto theUnits, ZnIndex theLength) {
    if (isInline)
      std::memcpy(padded, theUnits, Sys::size_t(theLength));
    return HashBytes(theUnits, Sys::size_t(theLength) * sizeof *theUnits);
  });
  hash ^= theIsSymbol ? 1 : 0;
  const auto storedLength = uint8_t(length <= kInlineLength ? length : kInlineLength + 1);
  ZnIndex free = 0;
  Entry* found = texts_.find(
      hash,
      [&](const Entry& theEntry) {
        if (theEntry.hash != hash || theEntry.length != storedLength || theEntry.isSymbol != theIsSymbol ||
            theEntry.isInline != isInline)
          return false;
        if (isInline)
          return std::memcmp(theEntry.text, padded, sizeof padded) == 0;
        return TextOf(theEntry.atom, theIsSymbol)->hasSameUnits(theText);
      },
      &free);
  if (found)
    return texts_.handOut(found);
  auto characters = adopt(String::createWithString(theText));
  Expr* atom = theIsSymbol ? static_cast<Expr*>(new Symbol(characters.get(), true))
                           : static_cast<Expr*>(new CharacterString(characters.get(), true));
  Entry entry = {atom, hash, 0, storedLength, theIsSymbol, isInline, {}};
  std::memcpy(entry.text, padded, sizeof padded);
  texts_.insert(free, hash, entry);
  return atom;
}

Expr* AtomTable::symbol(const MutableString* theName) { return find(theName, true); }

Expr* AtomTable::string(const MutableString* theText) {
  if (theText->length() > kMaximumStringLength)
    return new CharacterString(String::createWithString(theText), false);
  return find(theText, false);
}

AtomTable::~AtomTable() {
  for (Expr* integer : integers_)
    if (integer)
      integer->release();
}

Expr* AtomTable::integer(int32_t theValue) {
  if (theValue < 0 || theValue >= kSmallIntegers)
    return new MachineInteger(theValue);
  Expr*& shared = integers_[theValue];
  if (!shared)
    shared = new MachineInteger(theValue);
  return retained(shared).leak();
}

/// Spreads the bits of a double, whose low bits are mostly zero, over a hash.
uint32_t AtomTable::RealEntry::hashValue() const { return uint32_t((bits * 0x9E3779B97F4A7C15u) >> 32); }

Expr* AtomTable::real(double theValue) {
  RealEntry entry = {nullptr, 0, 0};
  std::memcpy(&entry.bits, &theValue, sizeof entry.bits);
  const uint32_t hash = entry.hashValue();
  ZnIndex free = 0;
  RealEntry* found = reals_.find(hash, [&](const RealEntry& theEntry) { return theEntry.bits == entry.bits; }, &free);
  if (found)
    return reals_.handOut(found);
  entry.atom = new MachineReal(theValue);
  reals_.insert(free, hash, entry);
  return entry.atom;
}
} // namespace Zn::Kx
