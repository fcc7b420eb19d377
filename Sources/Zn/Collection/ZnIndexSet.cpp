//===- ZnIndexSet.cpp - Sets of non-negative indices -----------------------===//
#include "Zn/Collection/ZnIndexSet.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/IO/ZnWriter.h"
#include <algorithm>
#include <cstdarg>

namespace Zn {

//===--- IndexSet ------------------------------------------------------------===//

// +1. The values sorted, without repeats: the array form's invariant, on
// which membership by binary search and range containment rely.
static MutableIndexValueArray* CreateSortedArray(const int32_t* theValues, ZnIndex theCount) {
  auto* array = new MutableIndexValueArray(theValues, theCount);
  int32_t* values = array->getMutableValues();
  std::sort(values, values + theCount);
  array->truncate(ZnIndex(std::unique(values, values + theCount) - values));
  return array;
}

IndexSet::IndexSet(Range theRange) : set_(new RangeObject(theRange)) {}

IndexSet::IndexSet(ZnIndex theCount, ...) {
  auto* array = new MutableIndexValueArray();
  va_list args;
  va_start(args, theCount);
  for (ZnIndex i = 0; i < theCount; ++i)
    array->addValue(va_arg(args, int32_t));
  va_end(args);
  set_ = CreateSortedArray(array->getValues(), array->getCount());
  array->release();
}

IndexSet::IndexSet(const IndexValueArray* theValues)
    : set_(CreateSortedArray(theValues->getValues(), theValues->getCount())) {}

IndexSet::IndexSet(const IndexSet& theIndexSet) : Object() {
  if (theIndexSet.set_ == nullptr)
    return;
  if (const IndexValueArray* theArray = theIndexSet.getArrayForm()) {
    set_ = new MutableIndexValueArray(theArray);
    return;
  }
  if (const RangeObject* theRange = theIndexSet.getRangeForm()) {
    set_ = new RangeObject(Range(*theRange));
    return;
  }
  ZnAssert(false, 0);
}

IndexSet::~IndexSet() {
  if (set_)
    set_->release();
}

const RangeObject* IndexSet::getRangeForm() const { return dynamic_cast<const RangeObject*>(set_); }

const IndexValueArray* IndexSet::getArrayForm() const { return dynamic_cast<const IndexValueArray*>(set_); }

void IndexSet::replaceSet(Object* theSet) {
  if (set_)
    set_->release();
  set_ = theSet;
}

ZnIndex IndexSet::getCount() const {
  if (const IndexValueArray* theArray = getArrayForm())
    return theArray->getCount();
  if (const RangeObject* theRange = getRangeForm())
    return theRange->length;
  return 0;
}

ZnIndex IndexSet::getValueAtIndex(ZnIndex n) const {
  ZnAssert(n >= 0, n);
  ZnAssert(set_, 0);
  if (const IndexValueArray* theArray = getArrayForm()) {
    ZnAssert(n < theArray->getCount(), n);
    return theArray->getValueAtIndex(n);
  }
  if (const RangeObject* theRange = getRangeForm()) {
    ZnAssert(n < theRange->length, n);
    return theRange->location + n;
  }
  ZnAssert(false, 0);
  return -1;
}

bool IndexSet::containsIndex(ZnIndex theIndex) const {
  if (const IndexValueArray* theArray = getArrayForm()) {
    const int32_t* values = theArray->getValues();
    return std::binary_search(values, values + theArray->getCount(), theIndex);
  }
  if (const RangeObject* theRange = getRangeForm())
    return theRange->location <= theIndex && theIndex < theRange->getMaximum();
  return false;
}

bool IndexSet::containsIndices(Range theRange) const {
  if (theRange.length <= 0)
    return true;
  if (const IndexValueArray* theArray = getArrayForm()) {
    // Sorted and distinct: the range is inside when its first index is a
    // member and the member L - 1 places on is its last index.
    const int32_t* values = theArray->getValues();
    const int32_t* end = values + theArray->getCount();
    const int32_t* first = std::lower_bound(values, end, theRange.location);
    return end - first >= theRange.length && *first == theRange.location &&
           first[theRange.length - 1] == theRange.getMaximum() - 1;
  }
  if (const RangeObject* own = getRangeForm())
    return own->location <= theRange.location && theRange.getMaximum() <= own->getMaximum();
  return false;
}

bool IndexSet::containsIndices(const IndexSet* theIndexSet) const {
  if (theIndexSet == nullptr)
    return true;
  if (const RangeObject* theRange = theIndexSet->getRangeForm())
    return containsIndices(Range(*theRange));
  ZnIndex count = theIndexSet->getCount();
  for (ZnIndex i = 0; i < count; ++i)
    if (!containsIndex(theIndexSet->getValueAtIndex(i)))
      return false;
  return true;
}

void IndexSet::enumerateIndices(IndexCallback theCallback, void* theContext) const {
  ZnIndex count = getCount();
  for (ZnIndex i = 0; i < count; ++i)
    theCallback(getValueAtIndex(i), theContext);
}

bool IndexSet::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const IndexSet* other = dynamic_cast<const IndexSet*>(theOther);
  if (other == nullptr || other->getCount() != getCount())
    return false;
  return containsIndices(other);
}

uint32_t IndexSet::hash() const {
  ZnIndex count = getCount();
  return count == 0 ? 0 : uint32_t(count) * 31 + uint32_t(getFirstValue());
}

Object* IndexSet::copy() const { return retain(); }

Object* IndexSet::mutableCopy() const { return new MutableIndexSet(*this); }

void IndexSet::writeDescription(Writer* theWriter) const {
  theWriter->putBytes("{");
  ZnIndex count = getCount();
  for (ZnIndex i = 0; i < count; ++i)
    theWriter->putFormat(i == 0 ? " %d" : ", %d", getValueAtIndex(i));
  theWriter->putBytes(" }");
}

const char* IndexSet::className() const { return "IndexSet"; }
const char* IndexSet::superclassName() const { return "Object"; }

//===--- MutableIndexSet -----------------------------------------------------===//

MutableIndexValueArray* MutableIndexSet::makeArrayForm() {
  if (auto* array = dynamic_cast<MutableIndexValueArray*>(set_))
    return array;
  auto* array = new MutableIndexValueArray();
  if (const RangeObject* theRange = getRangeForm())
    for (ZnIndex i = theRange->location; i < theRange->getMaximum(); ++i)
      array->addValue(i);
  replaceSet(array);
  return array;
}

void MutableIndexSet::compact() {
  const IndexValueArray* theArray = getArrayForm();
  if (theArray == nullptr || theArray->getCount() == 0)
    return;
  ZnIndex first = theArray->getValueAtIndex(0);
  ZnIndex last = theArray->getValueAtIndex(theArray->getCount() - 1);
  if (last - first + 1 == theArray->getCount())
    replaceSet(new RangeObject(first, theArray->getCount()));
}

void MutableIndexSet::addIndicesInRange(Range theRange) {
  if (theRange.length <= 0 || containsIndices(theRange))
    return;
  if (set_ == nullptr || getCount() == 0) {
    replaceSet(new RangeObject(theRange));
    return;
  }
  // Two ranges that overlap or touch stay one range.
  const RangeObject* own = getRangeForm();
  if (own && theRange.location <= own->getMaximum() && own->location <= theRange.getMaximum()) {
    ZnIndex location = std::min(own->location, theRange.location);
    ZnIndex maximum = std::max(own->getMaximum(), theRange.getMaximum());
    replaceSet(new RangeObject(location, maximum - location));
    return;
  }
  MutableIndexValueArray* array = makeArrayForm();
  for (ZnIndex i = theRange.location; i < theRange.getMaximum(); ++i) {
    const int32_t* values = array->getValues();
    const int32_t* at = std::lower_bound(values, values + array->getCount(), i);
    if (at == values + array->getCount() || *at != i)
      array->insertValueAtIndex(ZnIndex(at - values), i);
  }
  compact();
}

void MutableIndexSet::removeIndicesInRange(Range theRange) {
  if (theRange.length <= 0 || set_ == nullptr)
    return;
  // Cutting at either end of a range keeps the range form.
  const RangeObject* own = getRangeForm();
  if (own && (theRange.location <= own->location || theRange.getMaximum() >= own->getMaximum())) {
    ZnIndex location = theRange.location <= own->location ? std::max(own->location, theRange.getMaximum())
                                                          : own->location;
    ZnIndex maximum = theRange.getMaximum() >= own->getMaximum() ? std::min(own->getMaximum(), theRange.location)
                                                                 : own->getMaximum();
    replaceSet(maximum > location ? new RangeObject(location, maximum - location) : nullptr);
    return;
  }
  MutableIndexValueArray* array = makeArrayForm();
  const int32_t* values = array->getValues();
  ZnIndex from = ZnIndex(std::lower_bound(values, values + array->getCount(), theRange.location) - values);
  ZnIndex to = ZnIndex(std::lower_bound(values, values + array->getCount(), theRange.getMaximum()) - values);
  for (ZnIndex i = to; i > from; --i)
    array->removeValueAtIndex(i - 1);
  compact();
}

Object* MutableIndexSet::copy() const { return new IndexSet(*this); }

const char* MutableIndexSet::className() const { return "MutableIndexSet"; }
const char* MutableIndexSet::superclassName() const { return "IndexSet"; }
} // namespace Zn
