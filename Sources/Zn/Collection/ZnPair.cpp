//===- ZnPair.cpp - Two objects compared as one ----------------------------===//
#include "Zn/Collection/ZnPair.h"
#include "Zn/Base/ZnValue.h"
#include "Zn/IO/ZnWriter.h"

namespace Zn {

//===--- Pair ----------------------------------------------------------------===//

static const Object* LookThrough(const Object* theObject, bool theAsIs) {
  if (theAsIs)
    return theObject;
  const auto* boxed = dynamic_cast<const ValueType<Object*>*>(theObject);
  return boxed ? boxed->getValue() : theObject;
}

const Object* Pair::getComparedFirst() const { return LookThrough(first, flags & kFirstAsIs); }
const Object* Pair::getComparedSecond() const { return LookThrough(second, flags & kSecondAsIs); }

bool Pair::isEqualToPair(const Pair& theOther) const {
  return Equal(getComparedFirst(), theOther.getComparedFirst()) &&
         Equal(getComparedSecond(), theOther.getComparedSecond());
}

int32_t Pair::compareToPair(const Pair& theOther) const {
  int32_t order = Compare(getComparedFirst(), theOther.getComparedFirst());
  if (order != 0)
    return order;
  return Compare(getComparedSecond(), theOther.getComparedSecond());
}

//===--- PairObject ----------------------------------------------------------===//

PairObject::PairObject(Object* theFirst, Object* theSecond, uint32_t theFlags)
    : Pair(theFirst, theSecond, theFlags) {
  if (first)
    first->retain();
  if (second)
    second->retain();
}

PairObject::~PairObject() {
  if (first)
    first->release();
  if (second)
    second->release();
}

Enumerator* PairObject::getObjectEnumerator() const { return new PairEnumerator(this); }

bool PairObject::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const PairObject* other = dynamic_cast<const PairObject*>(theOther);
  return other && isEqualToPair(*other);
}

int32_t PairObject::compare(const Object* theOther) const {
  if (theOther == this)
    return 0;
  const PairObject* other = dynamic_cast<const PairObject*>(theOther);
  if (other == nullptr)
    return Object::compare(theOther);
  return compareToPair(*other);
}

uint32_t PairObject::hash() const {
  // Hashes what the comparisons see, so equal pairs hash alike.
  const Object* a = getComparedFirst();
  const Object* b = getComparedSecond();
  return (a ? a->hash() : 0) * 31 + (b ? b->hash() : 0);
}

void PairObject::writeDescription(Writer* theWriter) const {
  theWriter->putBytes("Pair { ");
  if (first)
    first->writeDescription(theWriter);
  else
    theWriter->putBytes("(NULL)");
  theWriter->putBytes(" , ");
  if (second)
    second->writeDescription(theWriter);
  else
    theWriter->putBytes("(NULL)");
  theWriter->putBytes(" }");
}

const char* PairObject::className() const { return "PairObject"; }
const char* PairObject::superclassName() const { return "Object"; }

//===--- PairEnumerator ------------------------------------------------------===//

PairEnumerator::PairEnumerator(const PairObject* thePair, ZnIndex theIndex)
    : pair_(static_cast<const PairObject*>(thePair->retain())), index_(theIndex) {}

PairEnumerator::~PairEnumerator() { pair_->release(); }

Object* PairEnumerator::nextObject() {
  // A null element is skipped: returning it would end the walk early.
  while (index_ < 2) {
    Object* element = index_++ == 0 ? pair_->first : pair_->second;
    if (element)
      return element;
  }
  return nullptr;
}

Object* PairEnumerator::copy() const { return new PairEnumerator(pair_, index_); }

const char* PairEnumerator::className() const { return "PairEnumerator"; }
const char* PairEnumerator::superclassName() const { return "Enumerator"; }
} // namespace Zn
