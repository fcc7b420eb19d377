//===- ZnArray.cpp - Ordered lists of retained objects ---------------------===//
#include "Zn/Collection/ZnArray.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Collection/ZnIndexSet.h"
#include "Zn/IO/ZnWriter.h"
#include <cstdlib>

namespace Zn {

//===--- Array ---------------------------------------------------------------===//

Array::Array(Object* const* theArray, ZnIndex theCount) {
  reserveExactly(theCount);
  for (ZnIndex i = 0; i < theCount; ++i) {
    ZnAssert(theArray[i] != NULL, i);
    objects_[count_++] = theArray[i]->retain();
  }
}

Array::Array(const Array& theArray) : Object() {
  reserveExactly(theArray.count_);
  for (ZnIndex i = 0; i < theArray.count_; ++i)
    objects_[i] = theArray.objects_[i]->retain();
  count_ = theArray.count_;
}

Array::Array(Enumerator* theEnumerator) { appendObjectsFromEnumerator(theEnumerator); }

void Array::initWithList(Object* const* theList, ZnIndex theLength) {
  // The list may be long; a block of 16 saves the first few doublings.
  reserveExactly(16);
  for (ZnIndex i = 0; i < theLength && theList[i] != nullptr; ++i)
    appendObject(theList[i]);
}

Array::~Array() {
  releaseObjectsInRange(Range(0, count_));
  Free(objects_);
}

void Array::ensureCapacity(ZnIndex theNeeded) {
  if (theNeeded <= capacity_)
    return;
  ZnIndex capacity = capacity_ == 0 ? 1 : capacity_;
  while (capacity < theNeeded)
    capacity *= 2;
  objects_ = static_cast<Object**>(Reallocate(objects_, Sys::size_t(capacity) * sizeof(Object*)));
  capacity_ = capacity;
}

void Array::reserveExactly(ZnIndex theCapacity) {
  if (theCapacity <= capacity_)
    return;
  objects_ = static_cast<Object**>(Reallocate(objects_, Sys::size_t(theCapacity) * sizeof(Object*)));
  capacity_ = theCapacity;
}

void Array::appendObjectsFromEnumerator(Enumerator* theEnumerator) {
  while (Object* object = theEnumerator->nextObject())
    appendObject(object);
}

void Array::releaseObjectsInRange(Range theRange) {
  for (ZnIndex i = theRange.location; i < theRange.getMaximum(); ++i)
    objects_[i]->release();
}

ZnIndex Array::indexOfObject(const Object* theObject) const {
  for (ZnIndex i = 0; i < count_; ++i)
    if (Equal(objects_[i], theObject))
      return i;
  return -1;
}

Enumerator* Array::getObjectEnumerator() const { return new ArrayEnumerator(this); }

bool Array::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const Array* other = dynamic_cast<const Array*>(theOther);
  if (other == nullptr || other->count_ != count_)
    return false;
  for (ZnIndex i = 0; i < count_; ++i)
    if (!objects_[i]->isEqual(other->objects_[i]))
      return false;
  return true;
}

uint32_t Array::hash() const {
  uint32_t result = 0;
  for (ZnIndex i = 0; i < count_; ++i)
    result ^= objects_[i]->hash();
  return result;
}

Object* Array::copy() const { return retain(); }

Object* Array::mutableCopy() const { return new MutableArray(this); }

void Array::writeDescription(Writer* theWriter) const {
  theWriter->putBytes("{", 1);
  theWriter->increaseIndent();
  for (ZnIndex i = 0; i < count_; ++i) {
    theWriter->putNewlines(1);
    objects_[i]->writeDescription(theWriter);
    if (i + 1 < count_)
      theWriter->putBytes(",", 1);
  }
  theWriter->decreaseIndent();
  theWriter->putNewlines(1);
  theWriter->putBytes("}", 1);
}

const char* Array::className() const { return "Array"; }
const char* Array::superclassName() const { return "Zn::Object"; }

//===--- MutableArray --------------------------------------------------------===//

MutableArray::MutableArray(const Array* theArray, ZnIndex theExtraCapacity) {
  ZnAssert(theExtraCapacity >= 0, theExtraCapacity);
  reserveExactly(theExtraCapacity + (theArray ? theArray->getCount() : 0));
  if (theArray)
    addObjectsFromArray(theArray);
}

void MutableArray::addObject(Object* theObject) {
  ZnAssert(theObject != NULL, 0);
  appendObject(theObject);
}

void MutableArray::setObjectAtIndex(ZnIndex theIndex, Object* theObject) {
  ZnAssert(theObject != NULL, 0);
  ZnAssert(theIndex >= 0, theIndex);
  ZnAssert(theIndex <= count_, theIndex);
  if (theIndex == count_) {
    appendObject(theObject);
    return;
  }
  // Retain first: the new element may be the one it replaces.
  theObject->retain();
  objects_[theIndex]->release();
  objects_[theIndex] = theObject;
}

void MutableArray::insertObjectAtIndex(ZnIndex theIndex, Object* theObject) {
  ZnAssert(theObject != NULL, 0);
  ZnAssert(theIndex >= 0, theIndex);
  ZnAssert(theIndex <= count_, theIndex);
  ensureCapacity(count_ + 1);
  MoveMemory(objects_ + theIndex, objects_ + theIndex + 1, Sys::size_t(count_ - theIndex) * sizeof(Object*));
  objects_[theIndex] = theObject->retain();
  ++count_;
}

void MutableArray::insertObjects(ZnIndex theIndex, Object* const* theObjects, ZnIndex theCount) {
  ZnAssert(theObjects != NULL, 0);
  ZnAssert(theIndex >= 0, theIndex);
  ZnAssert(theIndex <= count_, theIndex);
  ZnAssert(theCount >= 0, theCount);
  ensureCapacity(count_ + theCount);
  MoveMemory(objects_ + theIndex, objects_ + theIndex + theCount,
             Sys::size_t(count_ - theIndex) * sizeof(Object*));
  for (ZnIndex i = 0; i < theCount; ++i) {
    ZnAssert(theObjects[i], i);
    objects_[theIndex + i] = theObjects[i]->retain();
  }
  count_ += theCount;
}

void MutableArray::addObjectsFromArray(const Array* theArray) {
  ZnAssert(theArray != NULL, 0);
  // Read the count first: the source may be this very array.
  ZnIndex added = theArray->getCount();
  ensureCapacity(count_ + added);
  Object* const* source = theArray->getObjects();
  for (ZnIndex i = 0; i < added; ++i)
    objects_[count_ + i] = source[i]->retain();
  count_ += added;
}

void MutableArray::addObjectsFromEnumerator(Enumerator* theEnumerator) {
  ZnAssert(theEnumerator != NULL, 0);
  appendObjectsFromEnumerator(theEnumerator);
}

void MutableArray::removeObjectAtIndex(ZnIndex theIndex) {
  ZnAssert(theIndex >= 0, theIndex);
  ZnAssert(theIndex < count_, theIndex);
  Object* removed = objects_[theIndex];
  MoveMemory(objects_ + theIndex + 1, objects_ + theIndex, Sys::size_t(count_ - theIndex - 1) * sizeof(Object*));
  --count_;
  // Released last: the element's destructor must see a consistent array.
  removed->release();
}

void MutableArray::moveObject(ZnIndex oldIndex, ZnIndex newIndex) {
  if (oldIndex == newIndex)
    return;
  ZnAssert((oldIndex >= 0) && (oldIndex < count_), oldIndex);
  ZnAssert((newIndex >= 0) && (newIndex < count_), newIndex);
  auto moved = retained(objects_[oldIndex]);
  removeObjectAtIndex(oldIndex);
  insertObjectAtIndex(newIndex, moved.get());
}

void MutableArray::removeObject(const Object* theObject) {
  ZnIndex index = indexOfObject(theObject);
  if (index >= 0)
    removeObjectAtIndex(index);
}

void MutableArray::removeObjectsInArray(const Array* theArray) {
  if (theArray == this) {
    ZnIndex count = count_;
    count_ = 0;
    for (ZnIndex i = 0; i < count; ++i)
      objects_[i]->release();
    return;
  }
  for (ZnIndex i = 0; i < theArray->getCount(); ++i)
    removeObject(theArray->getObjects()[i]);
}

void MutableArray::removeObjectsInRange(Range theRange) {
  ZnAssert(theRange.getMaximum() <= count_, theRange.getMaximum());
  if (theRange.length <= 0)
    return;
  releaseObjectsInRange(theRange);
  MoveMemory(objects_ + theRange.getMaximum(), objects_ + theRange.location,
             Sys::size_t(count_ - theRange.getMaximum()) * sizeof(Object*));
  count_ -= theRange.length;
}

void MutableArray::removeObjectsAtIndexes(const IndexSet* theIndexes) {
  ZnIndex members = theIndexes->getCount();
  if (members == 0)
    return;
  ZnAssert(theIndexes->getLastValue() < count_, theIndexes->getLastValue());
  // Members come in ascending order: keep everything between them.
  ZnIndex kept = theIndexes->getFirstValue();
  ZnIndex next = 0;
  for (ZnIndex i = kept; i < count_; ++i) {
    if (next < members && theIndexes->getValueAtIndex(next) == i) {
      objects_[i]->release();
      ++next;
      continue;
    }
    objects_[kept++] = objects_[i];
  }
  count_ = kept;
}

static int CompareObjectPointers(const void* theA, const void* theB) {
  const Object* a = *static_cast<Object* const*>(theA);
  const Object* b = *static_cast<Object* const*>(theB);
  if (a == b)
    return 0;
  return a->compare(b);
}

void MutableArray::sort() {
  if (count_ > 1)
    std::qsort(objects_, Sys::size_t(count_), sizeof(Object*), CompareObjectPointers);
}

Object* MutableArray::copy() const { return new Array(*this); }

const char* MutableArray::className() const { return "MutableArray"; }
const char* MutableArray::superclassName() const { return "Zn::Array"; }

//===--- ArrayEnumerator -----------------------------------------------------===//

ArrayEnumerator::ArrayEnumerator(const Array* theArray, ZnIndex theIndex)
    : array_(static_cast<const Array*>(theArray->retain())), index_(theIndex) {}

ArrayEnumerator::~ArrayEnumerator() { array_->release(); }

Object* ArrayEnumerator::nextObject() {
  if (index_ >= array_->getCount())
    return nullptr;
  return array_->objectAtIndex(index_++);
}

Object* ArrayEnumerator::copy() const { return new ArrayEnumerator(array_, index_); }

const char* ArrayEnumerator::className() const { return "ArrayEnumerator"; }
const char* ArrayEnumerator::superclassName() const { return "Enumerator"; }
} // namespace Zn
