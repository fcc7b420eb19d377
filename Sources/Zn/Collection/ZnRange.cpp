//===- ZnRange.cpp - A run of indices: location and length ----------------===//
#include "Zn/Collection/ZnRange.h"
#include "Zn/IO/ZnWriter.h"

namespace Zn {

bool RangeObject::isEqual(const Object* theOther) const {
  const RangeObject* other = dynamic_cast<const RangeObject*>(theOther);
  return other && *other == static_cast<const Range&>(*this);
}

uint32_t RangeObject::hash() const { return uint32_t(location) ^ (uint32_t(length) << 16); }

void RangeObject::writeDescription(Writer* theWriter) const { theWriter->putFormat("{%d, %d}", location, length); }

const char* RangeObject::className() const { return "RangeObject"; }
const char* RangeObject::superclassName() const { return "Object"; }
} // namespace Zn
