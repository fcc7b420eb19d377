//===- ZnDictionary.cpp - Hash tables from object keys to object values ---===//
#include "Zn/Collection/ZnDictionary.h"
#include "Zn/Base/ZnMemory.h"
#include "Zn/Base/ZnRef.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnValue.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/IO/ZnWriter.h"
#include <cstring>

namespace Zn {

//===--- Dictionary ----------------------------------------------------------===//

Dictionary::Dictionary(Object* const* theKeys, Object* const* theValues, ZnIndex theCount) {
  for (ZnIndex i = 0; i < theCount; ++i)
    storeObjectForKey(theKeys[i], theValues[i]);
}

Dictionary::Dictionary(const Dictionary& theDictionary) : Object() {
  if (theDictionary.count_ == 0)
    return;
  // Same size, same chains: the stored hashes stay valid, nothing is rehashed.
  bucketCount_ = theDictionary.bucketCount_;
  buckets_ = static_cast<Node**>(AllocateZeroed(Sys::size_t(bucketCount_) * sizeof(Node*)));
  for (ZnIndex b = 0; b < bucketCount_; ++b) {
    Node** tail = &buckets_[b];
    for (const Node* n = theDictionary.buckets_[b]; n; n = n->next) {
      Node* node = static_cast<Node*>(Allocate(sizeof(Node)));
      node->key = n->key->retain();
      node->value = n->value ? n->value->retain() : nullptr;
      node->hash = n->hash;
      node->next = nullptr;
      *tail = node;
      tail = &node->next;
    }
  }
  count_ = theDictionary.count_;
}

Dictionary::~Dictionary() {
  for (ZnIndex b = 0; b < bucketCount_; ++b) {
    Node* node = buckets_[b];
    while (node) {
      Node* next = node->next;
      node->key->release();
      if (node->value)
        node->value->release();
      Free(node);
      node = next;
    }
  }
  Free(buckets_);
}

Dictionary::Node* Dictionary::findNode(const Object* theKey, uint32_t theHash) const {
  for (Node* node = buckets_[theHash % uint32_t(bucketCount_)]; node; node = node->next)
    if (node->hash == theHash && (node->key == theKey || theKey->isEqual(node->key)))
      return node;
  return nullptr;
}

Object* Dictionary::objectForKey(const Object* theKey) const {
  if (theKey == nullptr || count_ == 0)
    return nullptr;
  Node* node = findNode(theKey, theKey->hash());
  return node ? node->value : nullptr;
}

Object* Dictionary::objectForCharacters(const ZnUnichar* theCharacters, ZnIndex theLength) const {
  if (count_ == 0)
    return nullptr;
  // The same hash as String::hash, so string keys are found where they lie.
  uint32_t hash = HashCharacters(theCharacters, theLength);
  for (Node* node = buckets_[hash % uint32_t(bucketCount_)]; node; node = node->next) {
    if (node->hash != hash)
      continue;
    const String* key = dynamic_cast<const String*>(node->key);
    if (key && key->isEqualToCharacters(theCharacters, theLength))
      return node->value;
  }
  return nullptr;
}

bool Dictionary::containsKey(const Object* theKey) const {
  return theKey && count_ > 0 && findNode(theKey, theKey->hash()) != nullptr;
}

void Dictionary::growFor(ZnIndex theEntries) {
  double target = theEntries * 1.7;
  if (bucketCount_ >= target)
    return;
  ZnIndex size = bucketCount_ > 7 ? bucketCount_ : 7;
  while (size < target)
    size = ZnIndex(size * 1.7);
  size |= 1;
  Node** buckets = static_cast<Node**>(AllocateZeroed(Sys::size_t(size) * sizeof(Node*)));
  for (ZnIndex b = 0; b < bucketCount_; ++b) {
    Node* node = buckets_[b];
    while (node) {
      Node* next = node->next;
      Node** head = &buckets[node->hash % uint32_t(size)];
      node->next = *head;
      *head = node;
      node = next;
    }
  }
  Free(buckets_);
  buckets_ = buckets;
  bucketCount_ = size;
}

void Dictionary::storeObjectForKey(Object* theKey, Object* theValue) {
  ZnAssert(theKey, 0);
  growFor(count_ + 1);
  uint32_t hash = theKey->hash();
  Object* keyCopy = theKey->copy();
  if (theValue)
    theValue->retain();
  if (Node* node = findNode(theKey, hash)) {
    node->key->release();
    node->key = keyCopy;
    if (node->value)
      node->value->release();
    node->value = theValue;
    return;
  }
  Node** head = &buckets_[hash % uint32_t(bucketCount_)];
  Node* node = static_cast<Node*>(Allocate(sizeof(Node)));
  *node = Node{keyCopy, theValue, hash, *head};
  *head = node;
  ++count_;
}

void Dictionary::getKeysAndValues(MutableArray* theKeys, MutableArray* theValues, bool theSorted) const {
  Ref<Null> null;
  auto addValue = [&](Object* theValue) {
    if (theValues == nullptr)
      return;
    if (theValue == nullptr) {
      if (!null)
        null = adopt(new Null());
      theValue = null.get();
    }
    theValues->addObject(theValue);
  };
  if (!theSorted) {
    forEachNode([&](const Node* theNode) {
      if (theKeys)
        theKeys->addObject(theNode->key);
      addValue(theNode->value);
    });
    return;
  }
  Ref<MutableArray> ownKeys;
  if (theKeys == nullptr) {
    ownKeys = adopt(new MutableArray(nullptr, count_));
    theKeys = ownKeys.get();
  }
  forEachNode([&](const Node* theNode) { theKeys->addObject(theNode->key); });
  theKeys->sort();
  ZnAssert(theKeys->getCount() == count_, theKeys->getCount());
  for (ZnIndex i = 0; i < count_; ++i)
    addValue(objectForKey(theKeys->objectAtIndex(i)));
}

Enumerator* Dictionary::getKeyEnumerator() const { return new DictEnumerator(this, true); }

Enumerator* Dictionary::getObjectEnumerator() const { return new DictEnumerator(this, false); }

bool Dictionary::isEqual(const Object* theOther) const {
  if (theOther == this)
    return true;
  const Dictionary* other = dynamic_cast<const Dictionary*>(theOther);
  if (other == nullptr || other->count_ != count_)
    return false;
  return everyNode([&](const Node* theNode) {
    const Node* match = other->findNode(theNode->key, theNode->hash);
    return match && Equal(theNode->value, match->value);
  });
}

uint32_t Dictionary::hash() const {
  uint32_t result = 0;
  forEachNode([&](const Node* theNode) { result ^= theNode->hash + (theNode->value ? theNode->value->hash() : 0); });
  return result;
}

Object* Dictionary::copy() const { return retain(); }

Object* Dictionary::mutableCopy() const { return new MutableDictionary(this); }

void Dictionary::writeDescription(Writer* theWriter) const {
  theWriter->putBytes("{", 1);
  theWriter->increaseIndent();
  forEachNode([&](const Node* theNode) {
    theWriter->putNewlines(1);
    theNode->key->writeDescription(theWriter);
    theWriter->putBytes(" = ", 3);
    if (theNode->value)
      theNode->value->writeDescription(theWriter);
    else
      theWriter->putBytes("(NULL)", 6);
  });
  theWriter->decreaseIndent();
  theWriter->putNewlines(1);
  theWriter->putBytes("}", 1);
}

const char* Dictionary::className() const { return "Dictionary"; }
const char* Dictionary::superclassName() const { return "Object"; }

//===--- MutableDictionary ---------------------------------------------------===//

MutableDictionary::MutableDictionary(const Dictionary* theDictionary) : Dictionary(*theDictionary) {}

void MutableDictionary::setObjectForKey(Object* theKey, Object* theValue) { storeObjectForKey(theKey, theValue); }

void MutableDictionary::removeObjectForKey(const Object* theKey) {
  if (theKey == nullptr || count_ == 0)
    return;
  uint32_t hash = theKey->hash();
  for (Node** link = &buckets_[hash % uint32_t(bucketCount_)]; *link; link = &(*link)->next) {
    Node* node = *link;
    if (node->hash != hash || (node->key != theKey && !theKey->isEqual(node->key)))
      continue;
    *link = node->next;
    --count_;
    node->key->release();
    if (node->value)
      node->value->release();
    Free(node);
    return;
  }
}

Object* MutableDictionary::copy() const { return new Dictionary(*this); }

const char* MutableDictionary::className() const { return "MutableDictionary"; }
const char* MutableDictionary::superclassName() const { return "Dictionary"; }

//===--- DictEnumerator ------------------------------------------------------===//

DictEnumerator::DictEnumerator(const Dictionary* theDictionary, bool theKeys)
    : dictionary_(static_cast<const Dictionary*>(theDictionary->retain())), keys_(theKeys) {}

DictEnumerator::~DictEnumerator() {
  dictionary_->release();
  if (null_)
    null_->release();
}

Object* DictEnumerator::nextObject() {
  if (node_)
    node_ = node_->next;
  while (node_ == nullptr && bucket_ < dictionary_->bucketCount_)
    node_ = dictionary_->buckets_[bucket_++];
  if (node_ == nullptr)
    return nullptr;
  if (keys_)
    return node_->key;
  if (node_->value)
    return node_->value;
  if (null_ == nullptr)
    null_ = new Null();
  return null_;
}

Object* DictEnumerator::copy() const {
  DictEnumerator* twin = new DictEnumerator(dictionary_, keys_);
  twin->bucket_ = bucket_;
  twin->node_ = node_;
  return twin;
}

const char* DictEnumerator::className() const { return "DictEnumerator"; }
const char* DictEnumerator::superclassName() const { return "Enumerator"; }
} // namespace Zn
