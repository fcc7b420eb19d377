//===- ZnObject.h - Root of the reference-counted class tree --------------===//
#pragma once
#include <type_traits>
#include <typeinfo>
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
  /// Takes theCount more references at once, for a container that hands
  /// out one shared object many times: it holds a stock of references and
  /// gives them out one by one without writing to the object.
  void retainMany(ZnIndex theCount) const;
  /// Drops theCount references at once, as that many release() calls would.
  void releaseMany(ZnIndex theCount) const;
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

/// theObject as a T* when theObject is a T, or null. An object whose class is
/// exactly T is recognised by one comparison of type identities, and so is
/// any object when T is final; other cases take a dynamic_cast, which walks
/// Object's several bases and costs hundreds of instructions (the walk and
/// the parser ask by the million).
template <class T> const T* ObjectCast(const Object* theObject) {
  if (theObject == nullptr)
    return nullptr;
  if (typeid(*theObject) == typeid(T))
    return static_cast<const T*>(theObject);
  if constexpr (std::is_final_v<T>)
    return nullptr;
  else
    return dynamic_cast<const T*>(theObject);
}
template <class T> T* ObjectCast(Object* theObject) {
  return const_cast<T*>(ObjectCast<T>(static_cast<const Object*>(theObject)));
}

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
