//===- ZnValue.cpp - Plain values boxed as objects -------------------------===//
#include "Zn/Base/ZnValue.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/IO/ZnWriter.h"
#include <cstring>

namespace Zn {

//===--- Value ---------------------------------------------------------------===//

void Value::getValue(void* theOut) const { CopyMemory(getBytes(), theOut, Sys::size_t(getSize())); }

const char* Value::getTypeName() const { return className(); }

bool Value::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const Value* other = dynamic_cast<const Value*>(theOther);
  if (other == nullptr || other->getSize() != getSize())
    return false;
  if (getSize() > 0 && std::memcmp(getBytes(), other->getBytes(), Sys::size_t(getSize())) != 0)
    return false;
  return StringCompare(getTypeName(), other->getTypeName()) == 0;
}

int32_t Value::compare(const Object* theOther) const {
  if (theOther == this)
    return 0;
  const Value* other = dynamic_cast<const Value*>(theOther);
  if (other == nullptr)
    return Object::compare(theOther);
  if (other->getSize() != getSize())
    return getSize() - other->getSize();
  if (getSize() > 0) {
    int order = std::memcmp(getBytes(), other->getBytes(), Sys::size_t(getSize()));
    if (order != 0)
      return order;
  }
  return StringCompare(getTypeName(), other->getTypeName());
}

uint32_t Value::hash() const {
  const uint8_t* bytes = static_cast<const uint8_t*>(getBytes());
  switch (getSize()) {
  case 1: return bytes[0];
  case 2: {
    uint16_t half;
    std::memcpy(&half, bytes, 2);
    return half;
  }
  case 4: {
    uint32_t word;
    std::memcpy(&word, bytes, 4);
    return word;
  }
  default: return HashMemory(bytes, Sys::size_t(getSize()));
  }
}

void Value::writeDescription(Writer* theWriter) const {
  theWriter->putFormat("Value (%s) {", getTypeName());
  const uint8_t* bytes = static_cast<const uint8_t*>(getBytes());
  for (ZnIndex i = 0; i < getSize(); ++i)
    theWriter->putFormat(i % 4 == 0 ? " %02x" : "%02x", bytes[i]);
  theWriter->putBytes(" }", 2);
}

const char* Value::className() const { return "Value"; }
const char* Value::superclassName() const { return "Object"; }

//===--- Null ----------------------------------------------------------------===//

void Null::writeDescription(Writer* theWriter) const { theWriter->putBytes("Null", 4); }

const char* Null::className() const { return "Null"; }
const char* Null::superclassName() const { return "Value"; }
} // namespace Zn
