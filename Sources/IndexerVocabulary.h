//===- IndexerVocabulary.h - Heads and option names the walk recognises ---===//
#pragma once
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "Zn/Base/ZnRef.h"

namespace Zn {
class String;
} // namespace Zn

/// The symbols against which the notebook walk compares box heads, cell
/// styles and option names (always with isEqual). They are made before main
/// runs, in the order declared here, and released at exit in the reverse
/// order. Each is named after the symbol it holds; `Embedded` holds the
/// symbol "(Embedded)".
namespace Vocabulary {

/// One symbol of the vocabulary, held by an owning reference, with its hash
/// kept so that the dispatcher can rule out most heads by an integer compare
/// before it asks isEqual (equal objects hash alike).
class Word {
public:
  explicit Word(const char* theName);
  Word(const Word&) = delete;
  Word& operator=(const Word&) = delete;

  /// Borrowed.
  Zn::Kx::Symbol* get() const { return symbol_.get(); }
  Zn::Kx::Symbol* operator->() const { return symbol_.get(); }
  uint32_t getHash() const { return hash_; }

  /// Whether theExpr (which may be null) is this symbol.
  bool matches(const Zn::Kx::Expr* theExpr) const;
  /// The same, for an expression whose hash the caller already has.
  bool matches(const Zn::Kx::Expr* theExpr, uint32_t theHash) const {
    return theHash == hash_ && theExpr->isEqual(symbol_.get());
  }
  /// Whether theExpr (which may be null) is a compound whose head is this symbol.
  bool isHeadOf(const Zn::Kx::Expr* theExpr) const;
  /// Whether theText spells this symbol's name (cell styles are strings).
  bool isNameOf(const Zn::String* theText) const;
  /// The same for an expression: a string atom holding the name.
  bool isNameOf(const Zn::Kx::Expr* theExpr) const;

private:
  Zn::Ref<Zn::Kx::Symbol> symbol_;
  uint32_t hash_;
};

using Constant = const Word;

// Boolean values.
extern Constant True, False;
// Button options and link heads.
extern Constant ButtonStyle, Hyperlink, BaseStyle, ButtonData, Link, URL;
// Cell styles read as code.
extern Constant Input, Code;
// Cell.
extern Constant Cell;
// Controls that clear string quoting.
extern Constant ActionMenuBox, CheckboxBox, InsetBox, PopupMenuBox, SetterBox, TabViewBox,
    TooltipBox;
// Dynamic content.
extern Constant Dynamic, DynamicBox, DynamicModuleBox;
// Boxes with handlers.
extern Constant ButtonBox, InputFieldBox, PanelBox, PaneSelectorBox, RadioButtonBox, RowBox,
    CounterBox, FractionBox, GridBox, RadicalBox, SqrtBox, StyleBox, SubscriptBox, SuperscriptBox,
    GraphicsBox, Graphics3DBox, GraphicsData;
// Text containers.
extern Constant BoxData, TextData;
// Graphics primitives, directives and other boxes that produce nothing.
extern Constant ArrowBox, Arrow3DBox, BezierCurve3DBox, BezierCurveBox, BSplineCurve3DBox,
    BSplineCurveBox, CircleBox, ColorSetterBox, CompressedData, ConeBox, CuboidBox, CylinderBox,
    DiskBox, ErrorBox, LineBox, Line3DBox, OpenerBox, PointBox, Point3DBox, PolygonBox,
    Polygon3DBox, ProgressIndicatorBox, RasterBox, RectangleBox, Slider2DBox, SliderBox,
    SphereBox, TogglerBox, AbsoluteDashing, AbsolutePointSize, AbsoluteThickness, Arrowheads,
    CMYKColor, Dashing, Directive, EdgeForm, FaceForm, GrayLevel, Hue, Opacity, PointSize,
    RGBColor, Thickness, TubeBox;
// Cell group.
extern Constant CellGroupData;
// Wrappers whose first argument alone is shown.
extern Constant AdjustmentBox, AffineTransformBox, AnimatorBox, FormBox, FrameBox,
    GeometricTransformationBox, GeometricTransformation3DBox, InterpretationBox, ItemBox, PaneBox,
    RotationBox, TagBox, TemplateBox, Text3DBox;
// Style sheet entries.
extern Constant StyleData;
// Wrappers whose second argument alone is shown.
extern Constant GraphicsComplexBox, GraphicsComplex3DBox, LocatorBox, LocatorPaneBox;
// Graphics options whose values are shown.
extern Constant AxesLabel, FrameLabel, PlotLabel;
// Style option.
extern Constant ShowStringCharacters;
// Cell styles and cell options.
extern Constant Output, Title, Author, CellTags, Evaluator, InitializationCell;
// Document head and notebook options.
extern Constant Notebook, StyleDefinitions, Embedded, FrontEndVersion, WindowFrame,
    WindowClickSelect, WindowSize, Palette, WindowTitle, Style;
} // namespace Vocabulary

/// Whether theExpr (which may be null) is a compound whose head is the
/// built-in symbol theHead.
inline bool isHead(const Zn::Kx::Expr* theExpr, Zn::Kx::Head theHead) {
  return theExpr && !theExpr->isAtom() && theExpr->head()->isEqual(Zn::Kx::HeadSymbol(theHead));
}

/// Whether theExpr (which may be null) is a List[...].
inline bool isList(const Zn::Kx::Expr* theExpr) { return isHead(theExpr, Zn::Kx::Head::List); }

/// Rule[a, b] or RuleDelayed[a, b] with exactly two parts.
inline bool isRule(const Zn::Kx::Expr* theExpr) {
  return (isHead(theExpr, Zn::Kx::Head::Rule) || isHead(theExpr, Zn::Kx::Head::RuleDelayed)) &&
         theExpr->length() == 2;
}

/// The text of a string atom, or null for anything else (theExpr may be
/// null). Borrowed.
inline Zn::String* stringText(const Zn::Kx::Expr* theExpr) {
  auto string = theExpr ? theExpr->asCharacterString() : nullptr;
  return string ? string->getValue() : nullptr;
}
