//===- IndexerHooks.cpp - Which hooks a renderer overrides ----------------===//
#include "SearchIndexer.h"
#include <cstring>

using Zn::adopt;

namespace {

// Several hooks do nothing by default, and building their arguments costs a
// rendering pass. The walk asks whether the renderer's class put another
// function in the hook's slot. g++ can turn a pointer to a virtual member
// bound to an object into the address of the function that the object's
// class uses; clang cannot, so there the slot is read the way the C++ ABI
// lays out a pointer to a virtual member (the vtable offset, plus 1 except
// on ARM, which marks virtual members in the adjustment instead). The
// addresses of the defaults come from a plain SearchIndexer made once
// before main.
#if defined(__clang__)
template <class F> const void* slotAddress(SearchIndexer* theIndexer, F SearchIndexer::*theMember) {
  struct {
    uintptr_t pointer;
    ptrdiff_t adjustment;
  } member;
  static_assert(sizeof member == sizeof theMember);
  std::memcpy(&member, &theMember, sizeof member);
#if defined(__arm__) || defined(__aarch64__)
  uintptr_t offset = member.pointer;
  ptrdiff_t adjustment = member.adjustment >> 1;
#else
  uintptr_t offset = member.pointer - 1;
  ptrdiff_t adjustment = member.adjustment;
#endif
  const char* vtable = *reinterpret_cast<const char* const*>(reinterpret_cast<const char*>(theIndexer) + adjustment);
  return *reinterpret_cast<const void* const*>(vtable + offset);
}
#define HOOK_ADDRESS(theMember) slotAddress(self, &SearchIndexer::theMember)
#else
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpmf-conversions"
#define HOOK_ADDRESS(theMember) reinterpret_cast<const void*>(self->*(&SearchIndexer::theMember))
#endif
} // namespace


namespace {
const void* hookAddress(const SearchIndexer* theIndexer, int32_t theHook) {
  auto self = const_cast<SearchIndexer*>(theIndexer);
  switch (theHook) {
  case 0: return HOOK_ADDRESS(setTitle);
  case 1: return HOOK_ADDRESS(noteCellText);
  case 2: return HOOK_ADDRESS(setNotebookKind);
  case 3: return HOOK_ADDRESS(setEvaluator);
  case 4: return HOOK_ADDRESS(noteCellOption);
  case 5: return HOOK_ADDRESS(setStyleDefinitions);
  case 6: return HOOK_ADDRESS(setFrontEndVersion);
  case 7: return HOOK_ADDRESS(setWindowFrame);
  case 8: return HOOK_ADDRESS(setWindowSize);
  case 9: return HOOK_ADDRESS(writeActionMenu);
  case 10: return HOOK_ADDRESS(writeInputField);
  case 11: return HOOK_ADDRESS(writePopupMenu);
  default: return nullptr;
  }
}
#undef HOOK_ADDRESS
#if !defined(__clang__)
#pragma GCC diagnostic pop
#endif

struct DefaultHooks {
  const void* addresses[12];
  DefaultHooks() {
    auto probe = adopt(new SearchIndexer());
    for (int32_t i = 0; i < 12; ++i)
      addresses[i] = hookAddress(probe.get(), i);
  }
};
const DefaultHooks sDefaultHooks;
} // namespace

bool SearchIndexer::overrides(Hook theHook) const {
  static_assert(kHookCount == 12, "one default address per hook");
  return hookAddress(this, theHook) != sDefaultHooks.addresses[theHook];
}
