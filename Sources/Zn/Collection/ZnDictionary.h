//===- ZnDictionary.h - Hash tables from object keys to object values -----===//
#pragma once
#include "Zn/Base/ZnObject.h"
#include "Zn/Collection/ZnEnumerator.h"

namespace Zn {
class Array;
class MutableArray;

/// Immutable hash table with separate chaining. Keys are stored as copies,
/// so a mutable key changed by its owner afterwards cannot disturb the
/// table; values are retained and may be null. Each entry keeps its key's
/// hash, so growth never asks the keys again and chain walks compare
/// integers before calling isEqual.
class Dictionary : public Object {
public:
  Dictionary() = default;
  /// theCount pairs; a later key replaces an equal earlier one.
  Dictionary(Object* const* theKeys, Object* const* theValues, ZnIndex theCount);
  Dictionary(const Dictionary& theDictionary);

  ZnIndex getCount() const { return count_; }
  ZnIndex getBucketCount() const { return bucketCount_; }
  /// Borrowed; null for a null key, an absent key or a null value.
  Object* objectForKey(const Object* theKey) const;
  /// Borrowed. The lookup of a string key by its units, without making a
  /// string first; matches only keys that are strings.
  Object* objectForCharacters(const ZnUnichar* theCharacters, ZnIndex theLength) const;
  bool containsKey(const Object* theKey) const;
  /// Appends the keys and the values to the two arrays (either may be null);
  /// a null value appears as a Null. Sorted: by key, and the key array
  /// must start empty. Unsorted: in table order.
  void getKeysAndValues(MutableArray* theKeys, MutableArray* theValues, bool theSorted) const;
  /// +1 each. Walk the table in table order; a null value comes out as a Null.
  Enumerator* getKeyEnumerator() const;
  Enumerator* getObjectEnumerator() const;

  /// Same count, and every key maps to an equal value in the other.
  bool isEqual(const Object* theOther) const override;
  /// XOR over the entries of key hash plus value hash: independent of order.
  uint32_t hash() const override;
  Object* copy() const override;
  Object* mutableCopy() const override;
  /// "{", one "key = value" per indented line, "}".
  void writeDescription(Writer* theWriter) const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  friend class DictEnumerator;
  struct Node {
    Object* key;
    Object* value;
    uint32_t hash;
    Node* next;
  };

  ~Dictionary() override;
  /// The entry whose key equals theKey, or null.
  Node* findNode(const Object* theKey, uint32_t theHash) const;
  /// Grows the table ahead of holding theEntries entries.
  void growFor(ZnIndex theEntries);
  /// Inserts or replaces; takes a copy of the key and retains the value.
  void storeObjectForKey(Object* theKey, Object* theValue);
  /// Visits the entries in table order while theVisit returns true; says
  /// whether every visit did.
  template <class Visit> bool everyNode(Visit theVisit) const {
    for (ZnIndex b = 0; b < bucketCount_; ++b)
      for (const Node* node = buckets_[b]; node; node = node->next)
        if (!theVisit(node))
          return false;
    return true;
  }
  template <class Visit> void forEachNode(Visit theVisit) const {
    everyNode([&](const Node* theNode) { return theVisit(theNode), true; });
  }

  Node** buckets_ = nullptr;
  ZnIndex count_ = 0;
  ZnIndex bucketCount_ = 0;
};

/// A dictionary that changes in place.
class MutableDictionary : public Dictionary {
public:
  MutableDictionary() = default;
  explicit MutableDictionary(const Dictionary* theDictionary);

  /// Replaces the value of an equal key (taking a copy of the new key), or
  /// adds an entry. theValue may be null.
  void setObjectForKey(Object* theKey, Object* theValue);
  /// Nothing when the key is absent.
  void removeObjectForKey(const Object* theKey);

  Object* copy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~MutableDictionary() override = default;
};

/// Delivers the keys, or the values, of a dictionary in table order.
class DictEnumerator : public Enumerator {
public:
  /// Retains the dictionary.
  DictEnumerator(const Dictionary* theDictionary, bool theKeys);
  Object* nextObject() override;
  Object* copy() const override;
  const char* className() const override;
  const char* superclassName() const override;

protected:
  ~DictEnumerator() override;

private:
  const Dictionary* dictionary_;
  ZnIndex bucket_ = 0;
  const Dictionary::Node* node_ = nullptr;
  bool keys_;
  /// Stands in for null values, which would otherwise end the walk.
  Object* null_ = nullptr;
};
} // namespace Zn
