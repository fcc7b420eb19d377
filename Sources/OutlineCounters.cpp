//===- OutlineCounters.cpp - The counts that CounterBox shows -------------===//
#include "OutlineCounters.h"
#include "Kx/KxNumber.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Collection/ZnDictionary.h"

using Zn::adopt;

namespace {
/// The outline's styles, from the top level down.
const char* const kOutline[] = {"Title", "Chapter", "Section", "Subsection", "Subsubsection"};
constexpr int kOutlineDepth = int(sizeof kOutline / sizeof kOutline[0]);

/// The level of theStyle in the outline, or -1 for any other style.
int outlineLevel(const Zn::String* theStyle) {
  for (int level = 0; level < kOutlineDepth; ++level)
    if (theStyle->compareToCString(kOutline[level], true) == 0)
      return level;
  return -1;
}
} // namespace

OutlineCounters::OutlineCounters() : counts_(adopt(new Zn::MutableDictionary())) {}

OutlineCounters::~OutlineCounters() = default;

void OutlineCounters::reset() { counts_ = adopt(new Zn::MutableDictionary()); }

void OutlineCounters::countCell(Zn::String* theStyle) {
  auto counter = dynamic_cast<Zn::Kx::Expr*>(counts_->objectForKey(theStyle));
  auto next = adopt(new Zn::Kx::MachineInteger(counter ? counter->integerValue() + 1 : 1));
  counts_->setObjectForKey(theStyle, next.get());
  const int level = outlineLevel(theStyle);
  if (level < 0)
    return;
  for (int below = level + 1; below < kOutlineDepth; ++below) {
    auto name = adopt(new Zn::String(kOutline[below]));
    counts_->removeObjectForKey(name.get());
  }
}

Zn::Object* OutlineCounters::countForName(const Zn::String* theName) const { return counts_->objectForKey(theName); }
