//===- NotebookHTMLIndexer.cpp - Renders a notebook as one HTML page ------===//
#include "NotebookHTMLIndexer.h"
#include "IndexerVocabulary.h"
#include "Kx/KxEncoding.h"
#include "Kx/KxNumber.h"
#include "Kx/KxString.h"
#include "Kx/KxSymbol.h"
#include "NotebookSummary.h"
#include "Zn/Base/ZnAssert.h"
#include "Zn/Base/ZnString.h"
#include "Zn/Base/ZnStringEncoding.h"
#include "Zn/Collection/ZnArray.h"
#include "Zn/IO/ZnWriter.h"
#include <cstdarg>

using Zn::adopt;
using Zn::retained;
using Zn::Kx::Expr;
using Zn::Kx::Head;
using Zn::Kx::HeadSymbol;

namespace {

//===--- Expression helpers ---------------------------------------------===//

bool isNumber(const Expr* theExpr) { return dynamic_cast<const Zn::Kx::Number*>(theExpr) != nullptr; }

/// The name of a symbol atom, or null. Borrowed.
Zn::String* symbolName(const Expr* theExpr) {
  auto symbol = dynamic_cast<const Zn::Kx::Symbol*>(theExpr);
  return symbol ? symbol->getName() : nullptr;
}

/// Whether theText spells theWord, in any case (style words are written
/// "Bold" or "bold").
bool isWord(const Zn::String* theText, Vocabulary::Constant& theWord) { return theWord.isNameOf(theText, false); }

/// Rule[name, value] or RuleDelayed[name, value] whose name is theName: the
/// options that this renderer reads from cells, graphics and style boxes.
bool isRuleFor(const Expr* theExpr, Vocabulary::Constant& theName) {
  return isRule(theExpr) && theName.matches(theExpr->part(1));
}

int32_t roundHalfAwayFromZero(double theValue) {
  return Zn::Kx::TruncateToInt32(theValue < 0 ? theValue - 0.5 : theValue + 0.5);
}

/// 0 to 255 from a colour component 0 to 1, cut toward zero and not clamped.
int colourByte(double theComponent) { return int(Zn::Kx::TruncateToInt32(theComponent * 255.0)); }

//===--- Cell margins -----------------------------------------------------===//

struct Margins {
  double left = 0, right = 0, bottom = 0, top = 0;
};

/// One side pair: a number for both, or a list of two numbers.
void readMarginPair(const Expr* theItem, double& theFirst, double& theSecond) {
  if (isNumber(theItem)) {
    theFirst = theSecond = theItem->doubleValue();
    return;
  }
  if (isList(theItem) && theItem->length() == 2 && isNumber(theItem->part(1)) && isNumber(theItem->part(2))) {
    theFirst = theItem->part(1)->doubleValue();
    theSecond = theItem->part(2)->doubleValue();
  }
}

/// A number for all four sides, or {{left, right}, {bottom, top}};
/// anything else leaves every side at 0.
Margins readMargins(const Expr* theValue) {
  Margins margins;
  if (isNumber(theValue)) {
    margins.left = margins.right = margins.bottom = margins.top = theValue->doubleValue();
  } else if (isList(theValue) && theValue->length() == 2) {
    readMarginPair(theValue->part(1), margins.left, margins.right);
    readMarginPair(theValue->part(2), margins.bottom, margins.top);
  }
  return margins;
}

void appendMargins(Zn::MutableString* theStyle, const Margins& theMargins) {
  const Margins& m = theMargins;
  if (m.left == m.right && m.left == m.bottom && m.left == m.top) {
    theStyle->appendFormat("margin: %ldpx;", long(roundHalfAwayFromZero(m.left)));
    return;
  }
  theStyle->appendFormat("margin-left: %ldpx; margin-right: %ldpx; margin-bottom: %ldpx; margin-top: %ldpx;",
                         long(roundHalfAwayFromZero(m.left)), long(roundHalfAwayFromZero(m.right)),
                         long(roundHalfAwayFromZero(m.bottom)), long(roundHalfAwayFromZero(m.top)));
}

//===--- Grid spans ---------------------------------------------------------===//

enum : ZnUnichar { kSpanFromLeft = 0xF3BA, kSpanFromAbove = 0xF3BB, kSpanFromBoth = 0xF3BC };

/// The span character a grid item stands for, or 0 for an ordinary item.
ZnUnichar spanCharacter(const Expr* theItem) {
  Zn::String* text = stringText(theItem);
  if (!text || text->length() != 1)
    return 0;
  ZnUnichar c = text->characterAtIndex(0);
  return c == kSpanFromLeft || c == kSpanFromAbove || c == kSpanFromBoth ? c : 0;
}

/// The same for item theColumn of theRow; a place outside the row is no span.
ZnUnichar spanCharacterAt(const Expr* theRow, ZnIndex theColumn) {
  if (!isList(theRow) || theColumn > theRow->length())
    return 0;
  return spanCharacter(theRow->part(theColumn));
}

} // namespace

//===--- Life cycle ---------------------------------------------------------===//

NotebookHTMLIndexer::NotebookHTMLIndexer(Zn::Stream* theStream, Zn::StringEncoding* theEncoding)
    : NotebookTextIndexer(theStream), htmlEncoding_(adopt(new Zn::HTMLEncoding(theEncoding))) {
  // A page is thousands of small pieces of markup and text, each encoded
  // on its own: they reach the stream in writes of 64 KB instead.
  page_ = adopt(new Zn::StreamWriter(theStream, htmlEncoding_.get()));
  page_->holdBytes(64 * 1024);
  writer_ = Zn::retained<Zn::Writer>(page_.get());
  characterEncoding_ = adopt(new Zn::Kx::Encoding(Zn::Kx::Encoding::kHTMLFlags));
  textRenderer_ = adopt(NotebookTextIndexer::createLabelRenderer(characterEncoding_.get()));
}

NotebookHTMLIndexer::~NotebookHTMLIndexer() = default;

void NotebookHTMLIndexer::resetDocumentState() {
  NotebookTextIndexer::resetDocumentState();
  styleDefinitions_ = adopt<Zn::Object>(new Zn::String("Default.nb"));
  inDecoratedCode_ = false;
}

const char* NotebookHTMLIndexer::className() const { return "NotebookHTMLIndexer"; }
const char* NotebookHTMLIndexer::superclassName() const { return "NotebookTextIndexer"; }

//===--- Markup -------------------------------------------------------------===//

// A separator that the walk asked for goes out before the markup, escaped:
// a line end written raw would lose its <br/>.
void NotebookHTMLIndexer::writeMarkup(Zn::Writer* theWriter, const char* theMarkup) {
  theWriter->flushSeparator(theMarkup[0] == '\n' ? 10 : 0);
  htmlEncoding_->setRaw(true);
  theWriter->putBytes(theMarkup);
  htmlEncoding_->setRaw(false);
}

void NotebookHTMLIndexer::writeMarkupFormat(Zn::Writer* theWriter, const char* theFormat, ...) {
  va_list args;
  va_start(args, theFormat);
  theWriter->flushSeparator(theFormat[0] == '\n' ? 10 : 0);
  htmlEncoding_->setRaw(true);
  theWriter->putFormatV(theFormat, args);
  htmlEncoding_->setRaw(false);
  va_end(args);
}

//===--- Walk -----------------------------------------------------------------===//

void NotebookHTMLIndexer::indexBox(Expr* theBox, const IndexContext& theContext) {
  // Comments, strings and local variables of input code come back as style
  // boxes, which become coloured spans. Only cells of the notebook are
  // marked up (an inline cell is part of its cell's text), and code is marked
  // up with everything inside it: a cell inside it is not done again, which
  // for cells nested in cells would take time by the square of the depth.
  if (inDecoratedCode_ || !theContext.inCellList || !isCodeCell(theBox)) {
    NotebookTextIndexer::indexBox(theBox, theContext);
    return;
  }
  auto decorated = adopt(decorateBox(theBox, false));
  struct Inside {
    bool& flag;
    ~Inside() { flag = false; }
  } inside{inDecoratedCode_ = true};
  NotebookTextIndexer::indexBox(decorated.get(), theContext);
}

Zn::String* NotebookHTMLIndexer::stringForBox(Expr* theBox, const IndexContext& theContext) {
  // Labels and option values end up inside attributes or are compared as
  // words, so they are rendered without any markup.
  textRenderer_->setIndent(getIndent());
  return textRenderer_->stringForBox(theBox, theContext);
}

//===--- Document and cells ------------------------------------------------===//

namespace {
// Cell styles shown as what they are: the outline styles as headings, code
// and what it printed in a fixed-width font, items as list items. Line
// breaks and indentation are in the markup already (<br/> and spaces that
// do not collapse), so the text keeps its lines without white-space rules.
const char kCellStyleSheet[] =
    ".Title { font-size: 2.4em; font-weight: bold; }\n"
    ".Subtitle { font-size: 1.8em; }\n"
    ".Subsubtitle { font-size: 1.4em; }\n"
    ".Chapter { font-size: 2em; font-weight: bold; }\n"
    ".Subchapter { font-size: 1.7em; font-weight: bold; }\n"
    ".Section { font-size: 1.6em; font-weight: bold; margin-top: 0.6em; }\n"
    ".Subsection { font-size: 1.35em; font-weight: bold; }\n"
    ".Subsubsection { font-size: 1.15em; font-weight: bold; }\n"
    ".Subsubsubsection { font-size: 1.05em; font-weight: bold; }\n"
    ".Input, .InputOnly, .Code { font-family: Courier, monospace; font-weight: bold; overflow-wrap: break-word; }\n"
    ".Output, .Print, .Message, .Echo { font-family: Courier, monospace; overflow-wrap: break-word; }\n"
    ".Item, .Subitem, .ItemNumbered, .SubitemNumbered { display: list-item; list-style-position: inside; "
    "margin-left: 1.5em; }\n"
    ".Subitem, .SubitemNumbered { margin-left: 3em; }\n"
    ".Item { list-style-type: disc; }\n"
    ".Subitem { list-style-type: circle; }\n"
    ".ItemNumbered, .SubitemNumbered { list-style-type: decimal; }\n"
    // The cells are siblings, so each run of numbered items counts from 1.
    ":not(.ItemNumbered) + .ItemNumbered, :not(.SubitemNumbered) + .SubitemNumbered "
    "{ counter-reset: list-item; }\n";
} // namespace

void NotebookHTMLIndexer::beginDocument(Expr* theNotebook) {
  Zn::Writer* writer = writer_.get();
  NotebookSummary summary = SummarizeNotebook(theNotebook, *this);
  writeMarkup(writer, "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n");
  if (summary.title) {
    writeMarkup(writer, "<title>");
    writer->putString(summary.title.get());
    writeMarkup(writer, "</title>\n");
  }
  writeMetaElement(writer, "author", summary.authors.get());
  writeMetaElement(writer, "keywords", summary.keywords.get());
  writeMarkup(writer, "<style type=\"text/css\">\n"
                      "body { font-family: Times, serif; font-size: 12px; }\n"
                      "div { padding: 4px; }\n"
                      "form { display: inline; }\n"
                      "table { display: inline; }\n");
  writeMarkup(writer, kCellStyleSheet);
  if (styleDefinitions_) {
    if (auto css = adopt(styleSheetText(styleDefinitions_.get()))) {
      htmlEncoding_->setRaw(true);
      writer->putString(css.get());
      htmlEncoding_->setRaw(false);
    }
  }
  writeMarkup(writer, "\n</style>\n</head>\n<body>\n<form action=\"javascript:null\">\n");
}

void NotebookHTMLIndexer::writeMetaElement(Zn::Writer* theWriter, const char* theName, Zn::Array* theTexts) {
  if (theTexts->getCount() == 0)
    return;
  writeMarkupFormat(theWriter, "<meta name=\"%s\" content=\"", theName);
  for (ZnIndex i = 0; i < theTexts->getCount(); ++i) {
    if (i > 0)
      theWriter->putBytes(", ");
    theWriter->putString(static_cast<Zn::String*>(theTexts->objectAtIndex(i)));
  }
  writeMarkup(theWriter, "\">\n");
}

void NotebookHTMLIndexer::endDocument(Expr*) {
  writeMarkup(writer_.get(), "\n</form>\n</body>\n</html>\n");
  page_->flush();
}

void NotebookHTMLIndexer::beginCell(Expr* theCell, const IndexContext& theContext) {
  auto style = adopt(new Zn::MutableString());
  for (ZnIndex i = 2; i <= theCell->length(); ++i) {
    Expr* option = theCell->part(i);
    if (isRuleFor(option, Vocabulary::ImageMargins) || isRuleFor(option, Vocabulary::CellMargins))
      appendMargins(style.get(), readMargins(option->part(2)));
  }
  Zn::Writer* writer = theContext.writer.get();
  // The class is the style name as it stands: style names are identifiers.
  auto none = adopt(new Zn::String());
  writeMarkupFormat(writer, "\n<div class=\"%@\"", theContext.cellStyle ? theContext.cellStyle.get() : none.get());
  if (style->length() > 0)
    writeMarkupFormat(writer, " style=\"%@\"", style.get());
  writeMarkup(writer, ">");
}

void NotebookHTMLIndexer::endCell(Expr*, const IndexContext& theContext) {
  writeMarkup(theContext.writer.get(), "</div>");
}

void NotebookHTMLIndexer::writeCellSeparator(const IndexContext&) {}

void NotebookHTMLIndexer::setStyleDefinitions(Expr* theValue) { styleDefinitions_ = retained<Zn::Object>(theValue); }

Zn::String* NotebookHTMLIndexer::styleSheetText(Zn::Object*) { return nullptr; }

//===--- Graphics -----------------------------------------------------------===//

void NotebookHTMLIndexer::writeGraphicsPlaceholder(Expr* theBox, ZnIndex theFirstOption,
                                                   const IndexContext& theContext) {
  int32_t width = 320;
  int32_t height = 240;
  for (ZnIndex i = theFirstOption; i <= theBox->length(); ++i) {
    Expr* option = theBox->part(i);
    if (!isRuleFor(option, Vocabulary::ImageSize))
      continue;
    Expr* size = option->part(2);
    if (isNumber(size)) {
      width = height = size->integerValue();
    } else if (isList(size) && size->length() == 2) {
      width = size->part(1)->integerValue();
      height = size->part(2)->integerValue();
    } else if (Vocabulary::Tiny.matches(size)) {
      width = 100, height = 58;
    } else if (Vocabulary::Small.matches(size)) {
      width = 180, height = 106;
    } else if (Vocabulary::Medium.matches(size)) {
      width = 360, height = 215;
    } else if (Vocabulary::Large.matches(size)) {
      width = 576, height = 349;
    }
  }
  writeMarkupFormat(theContext.writer.get(),
                    "<table width=\"%d\" height=\"%d\" bgcolor=\"#EEEEEE\" border=\"1\"><tr>"
                    "<td align=\"center\">-Graphics-</td></tr></table>",
                    int(width), int(height));
}

void NotebookHTMLIndexer::indexGraphicsBox(Expr* theBox, const IndexContext& theContext) {
  writeGraphicsPlaceholder(theBox, 2, theContext);
}

void NotebookHTMLIndexer::indexGraphicsData(Expr* theBox, const IndexContext& theContext) {
  writeGraphicsPlaceholder(theBox, 3, theContext);
}

//===--- Style boxes ----------------------------------------------------------===//

void NotebookHTMLIndexer::indexStyleBox(Expr* theBox, const IndexContext& theContext) {
  // The walk of the base decides what the text shows; the options become
  // the span's style around it.
  if (theBox->length() <= 1)
    return NotebookTextIndexer::indexStyleBox(theBox, theContext);
  Zn::Writer* writer = theContext.writer.get();
  writeMarkup(writer, "<span style=\"");
  for (ZnIndex i = 2; i <= theBox->length(); ++i) {
    Expr* element = theBox->part(i);
    if (isRule(element)) {
      writeStyleOption(element->part(1), element->part(2), theContext);
    } else if (isNumber(element)) {
      writeMarkupFormat(writer, "font-size:%ldpx;", long(element->integerValue()));
    } else {
      // A style name or a bare font word.
      Zn::String* text = stringText(element);
      if (!text)
        text = symbolName(element);
      if (isWord(text, Vocabulary::Bold))
        writeMarkup(writer, "font-weight:bold;");
      else if (isWord(text, Vocabulary::Italic))
        writeMarkup(writer, "font-style:italic;");
    }
  }
  writeMarkup(writer, "\">");
  NotebookTextIndexer::indexStyleBox(theBox, theContext);
  writeMarkup(writer, "</span>");
}

void NotebookHTMLIndexer::writeStyleOption(Expr* theName, Expr* theValue, const IndexContext& theContext) {
  using namespace Vocabulary;
  Zn::Writer* writer = theContext.writer.get();
  if (FontColor.matches(theName)) {
    if (RGBColor.isHeadOf(theValue) && theValue->length() >= 3) {
      writeMarkupFormat(writer, "color: #%02X%02X%02X;", colourByte(theValue->part(1)->doubleValue()),
                        colourByte(theValue->part(2)->doubleValue()), colourByte(theValue->part(3)->doubleValue()));
    } else if (GrayLevel.isHeadOf(theValue) && theValue->length() >= 1) {
      int level = colourByte(theValue->part(1)->doubleValue());
      writeMarkupFormat(writer, "color: #%02X%02X%02X;", level, level, level);
    }
    return;
  }
  const bool family = FontFamily.matches(theName);
  const bool size = FontSize.matches(theName);
  const bool weight = FontWeight.matches(theName);
  const bool slant = FontSlant.matches(theName);
  if (!family && !size && !weight && !slant)
    return;
  auto text = adopt(stringForBox(theValue, theContext));
  if (family) {
    // The whole declaration belongs to the span's opening markup.
    writeMarkupFormat(writer, "font-family: '%@';", text.get());
  } else if (size) {
    double points = 0;
    if (text->doubleValue(&points, 10)) {
      writeMarkupFormat(writer, "font-size:%ld;", long(roundHalfAwayFromZero(points)));
      return;
    }
    writeMarkupFormat(writer, "font-size:%@;", adopt(text->lowercaseString()).get());
  } else if (weight) {
    if (isWord(text.get(), Plain))
      writeMarkup(writer, "font-weight:normal;");
    else if (isWord(text.get(), Bold))
      writeMarkup(writer, "font-weight:bold;");
  } else if (isWord(text.get(), Plain)) {
    // The transposed letters are part of the page as it has always been written.
    writeMarkup(writer, "font-stlye:normal;");
  } else if (isWord(text.get(), Italic)) {
    writeMarkup(writer, "font-style:italic;");
  }
}

//===--- Controls -----------------------------------------------------------===//

void NotebookHTMLIndexer::writeActionMenu(Zn::String* theLabel, Zn::Array* theItems, const IndexContext& theContext) {
  // The label is the menu's first, chosen entry; the actions follow it.
  auto entries = adopt(new Zn::MutableArray());
  auto none = adopt(new Zn::String());
  entries->addObject(theLabel ? theLabel : none.get());
  for (ZnIndex i = 0; i < theItems->getCount(); ++i)
    entries->addObject(theItems->objectAtIndex(i));
  writePopupMenu(entries.get(), 0, theContext);
}

void NotebookHTMLIndexer::writeHyperlink(Zn::String* theLabel, Zn::String* theURL, const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writeMarkup(writer, "<a href=\"");
  writer->putString(theURL);
  writeMarkup(writer, "\">");
  writer->putString(theLabel);
  writeMarkup(writer, "</a>");
}

void NotebookHTMLIndexer::writeButton(Zn::String* theLabel, const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writeMarkup(writer, "<input type=\"button\" value=\"");
  writer->putString(theLabel);
  writeMarkup(writer, "\"/>");
}

void NotebookHTMLIndexer::writeCheckbox(int32_t theState, const IndexContext& theContext) {
  writeMarkup(theContext.writer.get(),
              theState == 0 ? "<input type=\"checkbox\"/>" : "<input type=\"checkbox\" checked=\"1\"/>");
}

void NotebookHTMLIndexer::writeRadioButton(int32_t theState, const IndexContext& theContext) {
  writeMarkup(theContext.writer.get(),
              theState == 0 ? "<input type=\"radio\"/>" : "<input type=\"radio\" checked=\"1\"/>");
}

void NotebookHTMLIndexer::writeInputField(Zn::String* theValue, const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writeMarkup(writer, "<input type=\"text\" value=\"");
  writer->putString(theValue);
  writeMarkup(writer, "\"/>");
}

void NotebookHTMLIndexer::writePopupMenu(Zn::Array* theItems, int32_t theSelected, const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writeMarkup(writer, "<select>");
  for (ZnIndex i = 0; i < theItems->getCount(); ++i) {
    writeMarkup(writer, i == theSelected ? "<option selected=\"selected\">" : "<option>");
    writer->putString(static_cast<Zn::String*>(theItems->objectAtIndex(i)));
    writeMarkup(writer, "</option>");
  }
  writeMarkup(writer, "</select>");
}

void NotebookHTMLIndexer::indexSetterBox(Expr* theBox, const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writeMarkup(writer, "<input type=\"button\" value=\"");
  if (Expr* label = theBox->length() > 2 ? theBox->part(3) : theBox->part(2)) {
    // Rendered by this renderer, so any markup of its own goes into the
    // attribute escaped along with the text.
    auto text = adopt(SearchIndexer::stringForBox(label, theContext));
    writer->putString(text.get());
  }
  writeMarkup(writer, "\"/>");
}

void NotebookHTMLIndexer::indexPanelBox(Expr* theBox, const IndexContext& theContext) {
  if (!theBox->part(1))
    return;
  Zn::Writer* writer = theContext.writer.get();
  writeMarkup(writer, "<table bgcolor=\"#EEEEEE\" style=\"display:inline;border:1px solid;margin:2px;padding:4px;\">"
                      "<tr><td>");
  indexBox(theBox->part(1), theContext);
  writeMarkup(writer, "</td></tr></table>");
}

//===--- Scripts, grids and tab views --------------------------------------===//

void NotebookHTMLIndexer::writeSubscript(Expr* theScript, const IndexContext& theContext) {
  writeMarkup(theContext.writer.get(), "<sub>");
  indexBox(theScript, theContext);
  writeMarkup(theContext.writer.get(), "</sub>");
}

void NotebookHTMLIndexer::writeSuperscript(Expr* theScript, const IndexContext& theContext) {
  writeMarkup(theContext.writer.get(), "<sup>");
  indexBox(theScript, theContext);
  writeMarkup(theContext.writer.get(), "</sup>");
}

void NotebookHTMLIndexer::indexGridBox(Expr* theBox, const IndexContext& theContext) {
  Expr* rows = theBox->part(1);
  if (!isList(rows))
    return;
  const ZnIndex rowCount = rows->length();
  Zn::Writer* writer = theContext.writer.get();
  writeMarkup(writer, "<table border=\"1\">\n");
  for (ZnIndex i = 1; i <= rowCount; ++i) {
    writeMarkup(writer, "<tr>");
    Expr* row = rows->part(i);
    const ZnIndex columnCount = isList(row) ? row->length() : 0;
    for (ZnIndex j = 1; j <= columnCount; ++j) {
      Expr* item = row->part(j);
      // A span character is covered by the cell that spans over it.
      if (spanCharacter(item))
        continue;
      int32_t rowSpan = 1;
      for (ZnIndex r = i + 1; r <= rowCount; ++r, ++rowSpan) {
        ZnUnichar c = spanCharacterAt(rows->part(r), j);
        if (c != kSpanFromAbove && c != kSpanFromBoth)
          break;
      }
      int32_t columnSpan = 1;
      for (ZnIndex c = j + 1; c <= columnCount; ++c, ++columnSpan) {
        ZnUnichar s = spanCharacter(row->part(c));
        if (s != kSpanFromLeft && s != kSpanFromBoth)
          break;
      }
      writeMarkup(writer, "<td");
      if (rowSpan > 1)
        writeMarkupFormat(writer, " rowSpan=\"%d\"", int(rowSpan));
      if (columnSpan > 1)
        writeMarkupFormat(writer, " colSpan=\"%d\"", int(columnSpan));
      writeMarkup(writer, ">");
      indexBox(item, theContext);
      writeMarkup(writer, "</td>");
    }
    writeMarkup(writer, "</tr>");
  }
  writeMarkup(writer, "</table>\n");
}

void NotebookHTMLIndexer::writeTabView(Zn::Array* theLabels, Zn::Array* theContents, int32_t theSelected,
                                       const IndexContext& theContext) {
  Zn::Writer* writer = theContext.writer.get();
  writeMarkup(writer, "\n<table bgcolor=\"#EEEEEE\" style=\"border:1px solid;\"><tr>\n");
  for (ZnIndex i = 0; i < theLabels->getCount(); ++i) {
    writeMarkup(writer, i == theSelected ? "<td style=\"border:1px solid;\" bgcolor=\"#7799FF\">"
                                         : "<td style=\"border:1px solid;\">");
    indexBox(static_cast<Expr*>(theLabels->objectAtIndex(i)), theContext);
    writeMarkup(writer, "</td>\n");
  }
  writeMarkupFormat(writer, "</tr><tr><td style=\"border:1px solid;\" colspan=\"%d\">\n", int(theLabels->getCount()));
  indexBox(static_cast<Expr*>(theContents->objectAtIndex(ZnIndex(theSelected))), theContext);
  writeMarkup(writer, "\n</td></tr></table>\n");
}
