//===- ZnObject.h - Root of the reference-counted class tree --------------===//
#pragma once
#include "Zn/Base/ZnTypes.h"

namespace Zn {
class String;
class Writer;

/// Interfaces without data that every object carries; nothing uses them yet.
class KeyValueCoder {};
class KeyValueObserver {};
class MessageHandler {};

/// Intrusively reference-counted root class. A creator holds one reference;
/// the release that takes the count from 1 to 0 destroys the object.
class Object : public KeyValueCoder, public KeyValueObserver, public MessageHandler {
public:
  Object();
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  /// Takes one more reference; returns this object.
  Object* retain() const;
  /// Drops one reference and destroys the object when it was the last one.
  void release() const;
  ZnIndex getRetainCount() const { return refCount_; }

  virtual bool isEqual(const Object* theOther) const;
  virtual int32_t compare(const Object* theOther) const;
  virtual uint32_t hash() const;
  /// +1. Immutable objects return themselves retained.
  virtual Object* copy() const;
  /// +1. Mutable-capable classes return a new mutable object.
  virtual Object* mutableCopy() const;
  /// +1. Text describing the object, built through writeDescription.
  virtual String* description() const;
  virtual void writeDescription(Writer* theWriter) const;
  virtual const char* className() const = 0;
  virtual const char* superclassName() const = 0;

  /// Objects live on the heap of the checked allocation wrappers.
  static void* operator new(Sys::size_t theSize);
  static void operator delete(void* theMemory);

  /// Number of objects alive in the process; tests use it to prove that
  /// nothing leaked.
  static ZnIndex getLiveObjectCount();

protected:
  virtual ~Object();

private:
  mutable ZnIndex refCount_;
};

/// True for the same pointer (two nulls included), false when one is null.
bool Equal(const Object* theA, const Object* theB);
/// Orders possibly-null objects; a null sorts first.
int32_t Compare(const Object* theA, const Object* theB);
/// +1. The class name (or the base's name) as a string.
String* ClassNameString(const Object* theObject);
String* SuperclassNameString(const Object* theObject);
/// Prints the description to standard error; nothing for null.
void PrintDescription(const Object* theObject);
} // namespace Zn
