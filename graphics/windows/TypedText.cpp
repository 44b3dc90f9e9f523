// The rules of typed entry.
#include "graphics/windows/TypedText.h"

#include <algorithm>

#include "graphics/IGraphics.h"
#include "graphics/windows/EditOfParam.h"
#include "iplug/IParam.h"

namespace {

// The number at the head of a text, without its fraction; saturates.
long WholeNumber(const std::u32string& text) {
  constexpr long kLimit = 1L << 40;
  std::size_t i = !text.empty() && (text[0] == U'-' || text[0] == U'+') ? 1 : 0;
  long value = 0;
  for (; i < text.size() && text[i] >= U'0' && text[i] <= U'9'; ++i) {
    value = std::min(value * 10 + static_cast<long>(text[i] - U'0'), kLimit);
  }
  return text[0] == U'-' ? -value : value;
}

}  // namespace

bool LineFilter::Accepts(const std::u32string& text) const {
  if (maxLength && static_cast<int>(text.size()) > maxLength) return false;
  if (maxValue && !text.empty() && WholeNumber(text) > maxValue) return false;
  if (filterCharacterSet.empty()) return true;
  return text.find_first_not_of(filterCharacterSet) == std::u32string::npos;
}

LineFilter FilterFor(const IControl& control, const IParam* param) {
  LineFilter filter;
  if (!param) return filter;
  filter.filterCharacterSet = param->Type() == kTypeDouble ? U"0123456789.-+" : U"0123456789-+";
  filter.maxLength = control.GetTextEntryLength();
  return filter;
}

int EntryTextSize(const IText& text) { return static_cast<int>(text.mSize * 0.9); }

void CommitTypedText(IGraphics& graphics, IControl& control, IParam* param, const char* text) {
  if (!param) return control.TextFromTextEntry(text);
  const EditOfParam edit(graphics.GetPlug(), control.ParamIdx());
  graphics.SetFromStringAfterPrompt(&control, param, text);
}
