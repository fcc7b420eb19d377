//===- KxReplacementTable.cpp - Plain-text stand-ins for characters --------===//
#include "Kx/KxReplacementTable.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"

namespace Zn::Kx {

ReplacementTable::~ReplacementTable() { removeAll(); }

// The slot that holds theCode, or the free slot where it belongs. There is
// always a free slot: the table is kept at most half full.
ReplacementTable::Slot* ReplacementTable::findSlot(ZnUnichar theCode) const {
  uint32_t mask = uint32_t(slotCount_ - 1);
  uint32_t slot = (uint32_t(theCode) * 2654435761u >> 16) & mask;
  while (slots_[slot].text != nullptr && slots_[slot].code != theCode)
    slot = (slot + 1) & mask;
  return &slots_[slot];
}

const char* ReplacementTable::replacementForCode(ZnUnichar theCode, ZnIndex* theLength) const {
  if (count_ == 0)
    return nullptr;
  const Slot* slot = findSlot(theCode);
  if (slot->text == nullptr)
    return nullptr;
  *theLength = slot->length;
  return slot->text;
}

void ReplacementTable::grow() {
  Slot* oldSlots = slots_;
  ZnIndex oldCount = slotCount_;
  slotCount_ = oldCount == 0 ? 16 : oldCount * 2;
  slots_ = static_cast<Slot*>(AllocateZeroed(Sys::size_t(slotCount_) * sizeof(Slot)));
  ZnAssert(slots_ != NULL, slotCount_);
  for (ZnIndex i = 0; i < oldCount; ++i) {
    if (oldSlots[i].text != nullptr)
      *findSlot(oldSlots[i].code) = oldSlots[i];
  }
  Free(oldSlots);
}

void ReplacementTable::setReplacement(ZnUnichar theCode, const char* theText, ZnIndex theLength) {
  ZnAssert(theText != NULL, 0);
  if (theLength < 0)
    theLength = ZnIndex(StringLength(theText));
  if (2 * (count_ + 1) > slotCount_)
    grow();
  Slot* slot = findSlot(theCode);
  if (slot->text != nullptr)
    Free(slot->text);
  else
    ++count_;
  slot->text = StringDuplicate(theText, theLength);
  slot->length = theLength;
  slot->code = theCode;
  if (theCode < lowestCode_)
    lowestCode_ = theCode;
}

void ReplacementTable::assign(const ReplacementTable& theOther) {
  if (&theOther == this)
    return;
  removeAll();
  for (ZnIndex i = 0; i < theOther.slotCount_; ++i) {
    const Slot& slot = theOther.slots_[i];
    if (slot.text != nullptr)
      setReplacement(slot.code, slot.text, slot.length);
  }
}

void ReplacementTable::removeAll() {
  for (ZnIndex i = 0; i < slotCount_; ++i)
    Free(slots_[i].text);
  Free(slots_);
  slots_ = nullptr;
  slotCount_ = 0;
  count_ = 0;
  lowestCode_ = 0xFFFF;
}
} // namespace Zn::Kx
