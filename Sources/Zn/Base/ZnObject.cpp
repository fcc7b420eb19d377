//===- ZnObject.cpp - Root of the reference-counted class tree ------------===//
#include "Zn/Base/ZnObject.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnObjectHeap.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include "Zn/IO/ZnWriter.h"
#include <cstdint>

namespace Zn {

static ZnIndex sLiveObjects = 0;

Object::Object() : refCount_(1) { ++sLiveObjects; }

Object::~Object() {
  ZnAssert(refCount_ == 0, refCount_);
  --sLiveObjects;
}

ZnIndex Object::getLiveObjectCount() { return sLiveObjects; }

void* Object::operator new(Sys::size_t theSize) { return AllocateObject(theSize); }

void Object::operator delete(void* theMemory) { FreeObject(theMemory); }

// retain and release inspect objects that may already be dead (that is what
// their poison checks are for), so the sanitizer's type check stays off here.
__attribute__((no_sanitize("vptr"))) Object* Object::retain() const {
  ZnAssert(refCount_ != static_cast<ZnIndex>(0xD0D0D0D0), refCount_);
  ZnAssert(refCount_ != 0, refCount_);
  ++refCount_;
  return const_cast<Object*>(this);
}

__attribute__((no_sanitize("vptr"))) void Object::release() const {
  ZnAssert((Sys::size_t)this != (Sys::size_t)0xD0D0D0D0, 0);
  ZnAssert((Sys::size_t)this != (Sys::size_t)0xCCCCCCCC, 0);
  ZnAssert(refCount_ != static_cast<ZnIndex>(0xD0D0D0D0), refCount_);
  if (--refCount_ == 0)
    delete this;
}

__attribute__((no_sanitize("vptr"))) void Object::retainMany(ZnIndex theCount) const {
  ZnAssert(refCount_ != static_cast<ZnIndex>(0xD0D0D0D0), refCount_);
  ZnAssert(refCount_ != 0 && theCount >= 0, theCount);
  refCount_ += theCount;
}

__attribute__((no_sanitize("vptr"))) void Object::releaseMany(ZnIndex theCount) const {
  ZnAssert(refCount_ != static_cast<ZnIndex>(0xD0D0D0D0), refCount_);
  ZnAssert(theCount >= 0 && theCount <= refCount_, theCount);
  refCount_ -= theCount;
  if (refCount_ == 0 && theCount > 0)
    delete this;
}

bool Object::isEqual(const Object* theOther) const { return theOther == this; }

int32_t Object::compare(const Object* theOther) const {
  if (theOther == this)
    return 0;
  if (theOther == nullptr)
    return 1;
  auto mine = adopt(description());
  auto theirs = adopt(theOther->description());
  return mine->compare(theirs.get());
}

uint32_t Object::hash() const {
  const char* name = className();
  return HashMemory(name, StringLength(name));
}

Object* Object::copy() const { return retain(); }

Object* Object::mutableCopy() const { return copy(); }

String* Object::description() const {
  auto string = adopt(new MutableString());
  auto writer = adopt(new StringWriter(string.get()));
  writeDescription(writer.get());
  return string.leak();
}

void Object::writeDescription(Writer* theWriter) const {
  theWriter->writeFormat("%s(%d) @ 0x%lx", className(), refCount_,
                         static_cast<unsigned long>(reinterpret_cast<uintptr_t>(this)));
}

bool Equal(const Object* theA, const Object* theB) {
  if (theA == theB)
    return true;
  if (theA == nullptr || theB == nullptr)
    return false;
  return theA->isEqual(theB);
}

int32_t Compare(const Object* theA, const Object* theB) {
  if (theA == theB)
    return 0;
  if (theA)
    return theA->compare(theB);
  return -theB->compare(theA);
}

String* ClassNameString(const Object* theObject) { return new String(theObject->className()); }

String* SuperclassNameString(const Object* theObject) { return new String(theObject->superclassName()); }

void PrintDescription(const Object* theObject) {
  if (theObject == nullptr)
    return;
  auto text = adopt(theObject->description());
  PrintToStandardError(text.get());
}
} // namespace Zn
