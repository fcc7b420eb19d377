//===- OutlineCounters.h - The counts that CounterBox shows ---------------===//
#pragma once
#include "Zn/Base/ZnRef.h"

namespace Zn {
class MutableDictionary;
class Object;
class String;
} // namespace Zn

/// The counts behind CounterBox, by style name: every cell of the notebook
/// counts one more of its style. The styles of the outline nest (Title >
/// Chapter > Section > Subsection > Subsubsection): a cell of one of them
/// starts the counts of the levels below it again, so that the sections of
/// the second chapter number 2.1, 2.2, ... once more.
class OutlineCounters {
public:
  OutlineCounters();
  ~OutlineCounters();
  OutlineCounters(const OutlineCounters&) = delete;
  OutlineCounters& operator=(const OutlineCounters&) = delete;

  /// Forgets every count: a new document numbers from 1 again.
  void reset();
  /// Counts one more cell of theStyle.
  void countCell(Zn::String* theStyle);
  /// Borrowed. The count of theName (a number), or null while no cell of it
  /// was counted since its level last started again.
  Zn::Object* countForName(const Zn::String* theName) const;

private:
  /// Owning; style names to MachineInteger counts.
  Zn::Ref<Zn::MutableDictionary> counts_;
};
