//===- ZnTestSupport.cpp - Shared helpers for the test suite ---------------===//
#include "Support/ZnTestSupport.h"

namespace ZnTest {

std::string Utf8(const Zn::String* theString) {
  std::string out;
  if (!theString)
    return "(null)";
  const ZnUnichar* u = theString->getCharactersPtr();
  for (ZnIndex i = 0; i < theString->length(); ++i) {
    uint32_t c = u[i];
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < theString->length() && u[i + 1] >= 0xDC00 && u[i + 1] < 0xE000)
      c = 0x10000 + ((c - 0xD800) << 10) + (u[++i] - 0xDC00);
    if (c < 0x80) {
      out += char(c);
    } else if (c < 0x800) {
      out += char(0xC0 | (c >> 6));
      out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += char(0xE0 | (c >> 12));
      out += char(0x80 | ((c >> 6) & 0x3F));
      out += char(0x80 | (c & 0x3F));
    } else {
      out += char(0xF0 | (c >> 18));
      out += char(0x80 | ((c >> 12) & 0x3F));
      out += char(0x80 | ((c >> 6) & 0x3F));
      out += char(0x80 | (c & 0x3F));
    }
  }
  return out;
}
} // namespace ZnTest
