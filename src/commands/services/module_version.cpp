#include "commands/services/module_version.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace qxcm {

namespace {

struct Translation {
  std::uint16_t language;
  std::uint16_t code_page;
};

std::vector<std::byte> ReadResource(LPCWSTR path) {
  const DWORD attributes = GetFileAttributesW(path);
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return {};
  DWORD unused = 0;
  std::vector<std::byte> resource(GetFileVersionInfoSizeW(path, &unused));
  if (resource.empty()) return {};
  if (!GetFileVersionInfoW(path, 0, static_cast<DWORD>(resource.size()), resource.data())) return {};
  return resource;
}

/// "\StringFileInfo\040904b0\", or nothing when the resource names no translation.
WideText FirstTranslationPrefix(const std::vector<std::byte>& resource) {
  void* found = nullptr;
  UINT bytes = 0;
  if (!VerQueryValueW(resource.data(), TEXT("\\VarFileInfo\\Translation"), &found, &bytes)) return {};
  Translation first = {};
  if (bytes < sizeof first) return {};
  std::memcpy(&first, found, sizeof first);
  char text[64];
  std::snprintf(text, sizeof text, "\\StringFileInfo\\%04x%04x\\", static_cast<unsigned>(first.language),
                static_cast<unsigned>(first.code_page));
  const std::string_view narrow = text;
  return {narrow.begin(), narrow.end()};
}

}  // namespace

bool ModuleVersionInfo::Load(LPCWSTR path) {
  prefix_.clear();
  resource_ = ReadResource(path);
  if (!resource_.empty()) prefix_ = FirstTranslationPrefix(resource_);
  return !resource_.empty();
}

bool ModuleVersionInfo::Query(const WideText& name, WideText* result) const {
  result->clear();
  if (prefix_.empty()) return false;
  void* found = nullptr;
  UINT length = 0;  // characters, mostly with the terminating zero
  if (!VerQueryValueW(resource_.data(), (prefix_ + name).c_str(), &found, &length)) return false;
  const auto* text = static_cast<const WCHAR*>(found);
  result->assign(text, std::find(text, text + length, WCHAR()));
  std::replace(result->begin(), result->end(), WCHAR(','), WCHAR('.'));
  result->erase(std::remove(result->begin(), result->end(), WCHAR(' ')), result->end());
  return true;
}

}  // namespace qxcm
