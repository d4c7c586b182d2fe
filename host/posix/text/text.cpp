#include "common/text/text.h"

#include <cstring>
#include <string>
#include <string_view>

#include "common/calls/errors.h"
#include "posix/text/code_pages.h"
#include "posix/text/letters.h"

namespace host {
namespace {

constexpr DWORD kErrorInvalidFlags = 1004;

std::u16string_view WideText(LPCWSTR wide, int length) {
  if (length >= 0) return {wide, static_cast<std::size_t>(length)};
  return {wide, std::char_traits<char16_t>::length(wide) + 1};
}

std::string_view NarrowText(LPCSTR text, int bytes) {
  return {text, bytes >= 0 ? static_cast<std::size_t>(bytes) : std::strlen(text) + 1};
}

// Checks what both directions ask of their arguments.
bool GoodArguments(const void* from, int from_length, const void* to, int to_size) {
  if (from == nullptr || from_length == 0 || to_size < 0) return false;
  return to_size == 0 || (to != nullptr && to != from);
}

template <class Unit>
int CopyOut(const std::basic_string<Unit>& result, Unit* out, int size) {
  if (size == 0) return static_cast<int>(result.size());
  if (result.size() > static_cast<std::size_t>(size)) return Fail(ERROR_INSUFFICIENT_BUFFER, 0);
  std::memcpy(out, result.data(), result.size() * sizeof(Unit));
  return static_cast<int>(result.size());
}

NarrowCharacter Encode(const CodePage& page, char16_t character) {
  const NarrowCharacter narrow = page.Encode(character);
  const char16_t instead = narrow.length == 0 ? page.BestFit(character) : char16_t{0};
  return instead == 0 ? narrow : page.Encode(instead);
}

// The character at `*place`, with the combining mark behind it when that makes one that the code page has.
NarrowCharacter TakeCharacter(const CodePage& page, std::u16string_view wide, bool compose, std::size_t* place) {
  const char16_t letter = wide[(*place)++];
  const char16_t composed = compose && *place < wide.size() ? Compose(letter, wide[*place]) : char16_t{0};
  const NarrowCharacter both = composed == 0 ? NarrowCharacter() : Encode(page, composed);
  if (both.length == 0) return Encode(page, letter);
  ++*place;
  return both;
}

}  // namespace

int MultiByteToWideChar(UINT code_page, DWORD flags, LPCSTR text, int bytes, LPWSTR wide, int wide_size) {
  const CodePage* page = FindCodePage(code_page);
  if (page == nullptr || !GoodArguments(text, bytes, wide, wide_size)) return Fail(ERROR_INVALID_PARAMETER, 0);
  if ((flags & ~MB_PRECOMPOSED) != 0) return Fail(kErrorInvalidFlags, 0);
  std::string_view left = NarrowText(text, bytes);
  std::u16string result;
  while (!left.empty()) {
    char16_t character = 0;
    left.remove_prefix(page->Decode(left, &character));
    result.push_back(character);
  }
  return CopyOut(result, wide, wide_size);
}

int WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR wide, int wide_length, LPSTR text, int text_size,
                        LPCSTR default_char, LPBOOL used_default) {
  const CodePage* page = FindCodePage(code_page);
  if (page == nullptr || !GoodArguments(wide, wide_length, text, text_size)) return Fail(ERROR_INVALID_PARAMETER, 0);
  if ((flags & ~WC_COMPOSITECHECK) != 0) return Fail(kErrorInvalidFlags, 0);
  if (used_default != nullptr) *used_default = FALSE;
  const std::u16string_view from = WideText(wide, wide_length);
  std::string result;
  for (std::size_t place = 0; place < from.size();) {
    const NarrowCharacter narrow = TakeCharacter(*page, from, (flags & WC_COMPOSITECHECK) != 0, &place);
    result.append(reinterpret_cast<const char*>(narrow.bytes), static_cast<std::size_t>(narrow.length));
    if (narrow.length != 0) continue;
    result.append(default_char != nullptr ? default_char : "?");
    if (used_default != nullptr) *used_default = TRUE;
  }
  return CopyOut(result, text, text_size);
}

DWORD CharUpperBuffW(LPWSTR text, DWORD length) {
  if (text == nullptr) return 0;
  for (DWORD i = 0; i < length; ++i) text[i] = UpperCase(text[i]);
  return length;
}

}  // namespace host
