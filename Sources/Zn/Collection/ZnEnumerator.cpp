//===- ZnEnumerator.cpp - Walks the elements of a collection once ----------===//
#include "Zn/Collection/ZnEnumerator.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Collection/ZnArray.h"

namespace Zn {

Array* Enumerator::createRemainingArray() const {
  auto twin = adopt(static_cast<Enumerator*>(copy()));
  return new Array(twin.get());
}

bool Enumerator::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const Enumerator* other = dynamic_cast<const Enumerator*>(theOther);
  if (other == nullptr)
    return false;
  auto mine = adopt(createRemainingArray());
  auto theirs = adopt(other->createRemainingArray());
  return mine->isEqual(theirs.get());
}

uint32_t Enumerator::hash() const {
  auto remaining = adopt(createRemainingArray());
  return remaining->hash();
}

void Enumerator::writeDescription(Writer* theWriter) const {
  auto remaining = adopt(createRemainingArray());
  remaining->writeDescription(theWriter);
}

const char* Enumerator::className() const { return "Enumerator"; }
const char* Enumerator::superclassName() const { return "Object"; }
} // namespace Zn
