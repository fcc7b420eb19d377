//===- IndexerVocabulary.cpp - Heads and option names the walk recognises -===//
#include "IndexerVocabulary.h"
#include "Kx/KxString.h"
#include "Zn/Base/ZnString.h"

namespace Vocabulary {

Word::Word(const char* theName)
    : symbol_(Zn::adopt(new Zn::Kx::Symbol(theName))), hash_(symbol_->hash()) {}

bool Word::matches(const Zn::Kx::Expr* theExpr) const { return theExpr && theExpr->isEqual(symbol_.get()); }

bool Word::isHeadOf(const Zn::Kx::Expr* theExpr) const {
  return theExpr && !theExpr->isAtom() && theExpr->head()->isEqual(symbol_.get());
}

bool Word::isNameOf(const Zn::String* theText) const {
  return theText && theText->isEqual(symbol_->getName());
}

bool Word::isNameOf(const Zn::Kx::Expr* theExpr) const {
  auto string = dynamic_cast<const Zn::Kx::CharacterString*>(theExpr);
  return string && isNameOf(string->getValue());
}

// One translation unit, so the constants are built in this order and torn
// down in the reverse one.
// Boolean values.
Constant True("True");
Constant False("False");
// Button options and link heads.
Constant ButtonStyle("ButtonStyle");
Constant Hyperlink("Hyperlink");
Constant BaseStyle("BaseStyle");
Constant ButtonData("ButtonData");
Constant Link("Link");
Constant URL("URL");
// Cell styles read as code.
Constant Input("Input");
Constant Code("Code");
// Cell.
Constant Cell("Cell");
// Controls that clear string quoting.
Constant ActionMenuBox("ActionMenuBox");
Constant CheckboxBox("CheckboxBox");
Constant InsetBox("InsetBox");
Constant PopupMenuBox("PopupMenuBox");
Constant SetterBox("SetterBox");
Constant TabViewBox("TabViewBox");
Constant TooltipBox("TooltipBox");
// Dynamic content.
Constant Dynamic("Dynamic");
Constant DynamicBox("DynamicBox");
Constant DynamicModuleBox("DynamicModuleBox");
// Boxes with handlers.
Constant ButtonBox("ButtonBox");
Constant InputFieldBox("InputFieldBox");
Constant PanelBox("PanelBox");
Constant PaneSelectorBox("PaneSelectorBox");
Constant RadioButtonBox("RadioButtonBox");
Constant RowBox("RowBox");
Constant CounterBox("CounterBox");
Constant FractionBox("FractionBox");
Constant GridBox("GridBox");
Constant RadicalBox("RadicalBox");
Constant SqrtBox("SqrtBox");
Constant StyleBox("StyleBox");
Constant SubscriptBox("SubscriptBox");
Constant SuperscriptBox("SuperscriptBox");
Constant GraphicsBox("GraphicsBox");
Constant Graphics3DBox("Graphics3DBox");
Constant GraphicsData("GraphicsData");
// Text containers.
Constant BoxData("BoxData");
Constant TextData("TextData");
// Graphics primitives, directives and other boxes that produce nothing.
Constant ArrowBox("ArrowBox");
Constant Arrow3DBox("Arrow3DBox");
Constant BezierCurve3DBox("BezierCurve3DBox");
Constant BezierCurveBox("BezierCurveBox");
Constant BSplineCurve3DBox("BSplineCurve3DBox");
Constant BSplineCurveBox("BSplineCurveBox");
Constant CircleBox("CircleBox");
Constant ColorSetterBox("ColorSetterBox");
Constant CompressedData("CompressedData");
Constant ConeBox("ConeBox");
Constant CuboidBox("CuboidBox");
Constant CylinderBox("CylinderBox");
Constant DiskBox("DiskBox");
Constant ErrorBox("ErrorBox");
Constant LineBox("LineBox");
Constant Line3DBox("Line3DBox");
Constant OpenerBox("OpenerBox");
Constant PointBox("PointBox");
Constant Point3DBox("Point3DBox");
Constant PolygonBox("PolygonBox");
Constant Polygon3DBox("Polygon3DBox");
Constant ProgressIndicatorBox("ProgressIndicatorBox");
Constant RasterBox("RasterBox");
Constant RectangleBox("RectangleBox");
Constant Slider2DBox("Slider2DBox");
Constant SliderBox("SliderBox");
Constant SphereBox("SphereBox");
Constant TogglerBox("TogglerBox");
Constant AbsoluteDashing("AbsoluteDashing");
Constant AbsolutePointSize("AbsolutePointSize");
Constant AbsoluteThickness("AbsoluteThickness");
Constant Arrowheads("Arrowheads");
Constant CMYKColor("CMYKColor");
Constant Dashing("Dashing");
Constant Directive("Directive");
Constant EdgeForm("EdgeForm");
Constant FaceForm("FaceForm");
Constant GrayLevel("GrayLevel");
Constant Hue("Hue");
Constant Opacity("Opacity");
Constant PointSize("PointSize");
Constant RGBColor("RGBColor");
Constant Thickness("Thickness");
Constant TubeBox("TubeBox");
// Cell group.
Constant CellGroupData("CellGroupData");
// Wrappers whose first argument alone is shown.
Constant AdjustmentBox("AdjustmentBox");
Constant AffineTransformBox("AffineTransformBox");
Constant AnimatorBox("AnimatorBox");
Constant FormBox("FormBox");
Constant FrameBox("FrameBox");
Constant GeometricTransformationBox("GeometricTransformationBox");
Constant GeometricTransformation3DBox("GeometricTransformation3DBox");
Constant InterpretationBox("InterpretationBox");
Constant ItemBox("ItemBox");
Constant PaneBox("PaneBox");
Constant RotationBox("RotationBox");
Constant TagBox("TagBox");
Constant TemplateBox("TemplateBox");
Constant Text3DBox("Text3DBox");
// Style sheet entries.
Constant StyleData("StyleData");
// Wrappers whose second argument alone is shown.
Constant GraphicsComplexBox("GraphicsComplexBox");
Constant GraphicsComplex3DBox("GraphicsComplex3DBox");
Constant LocatorBox("LocatorBox");
Constant LocatorPaneBox("LocatorPaneBox");
// Graphics options whose values are shown.
Constant AxesLabel("AxesLabel");
Constant FrameLabel("FrameLabel");
Constant PlotLabel("PlotLabel");
// Style option.
Constant ShowStringCharacters("ShowStringCharacters");
// Cell styles and cell options.
Constant Output("Output");
Constant Title("Title");
Constant Author("Author");
Constant CellTags("CellTags");
Constant Evaluator("Evaluator");
Constant InitializationCell("InitializationCell");
// Document head and notebook options.
Constant Notebook("Notebook");
Constant StyleDefinitions("StyleDefinitions");
Constant Embedded("(Embedded)");
Constant FrontEndVersion("FrontEndVersion");
Constant WindowFrame("WindowFrame");
Constant WindowClickSelect("WindowClickSelect");
Constant WindowSize("WindowSize");
Constant Palette("Palette");
Constant WindowTitle("WindowTitle");
Constant Style("Style");
} // namespace Vocabulary
