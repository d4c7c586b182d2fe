// Holds the reader of version resources to its promises on any bytes, taken as an executable and as a resource.
#include <cstring>
#include <memory>
#include <string>

#include "posix/version/executable.h"
#include "posix/version/version_block.h"
#include "promise.h"
#include "targets.h"

namespace fuzz {

namespace {

using host::Bytes;

/// A copy of exactly this size: what is read outside of it, the sanitizers see.
class Copy {
 public:
  Copy(const std::uint8_t* data, std::size_t size) : data_(new std::uint8_t[size]), size_(size) {
    if (size != 0) std::memcpy(data_.get(), data, size);
  }
  Bytes bytes() const { return {data_.get(), size_}; }

 private:
  const std::unique_ptr<std::uint8_t[]> data_;
  const std::size_t size_;
};

bool Inside(Bytes part, Bytes whole) {
  return part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size();
}

std::u16string UpperLetters(std::u16string text) {
  for (char16_t& unit : text) {
    if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - u'a' + u'A');
  }
  return text;
}

void Query(Bytes resource, const std::u16string& path) {
  const auto found = host::FindVersionValue(resource, path);
  const auto again = host::FindVersionValue(resource, UpperLetters(path));
  Promise(found.has_value() == again.has_value(), "letter case does not matter");
  if (!found) return;
  Promise(found->bytes.data() == again->bytes.data() && found->bytes.size() == again->bytes.size(),
          "nor for the value");
  if (found->bytes.size() != 0) Promise(Inside(found->bytes, resource), "a value lies in its resource");
}

void QueryAll(Bytes resource) {
  for (const char16_t* path : {u"", u"\\", u"\\VarFileInfo\\Translation", u"\\StringFileInfo\\040904b0\\FileVersion",
                               u"\\\\StringFileInfo\\", u"\\StringFileInfo\\040704e4\\ProductVersion\\More"}) {
    Query(resource, path);
  }
  const auto list = host::FindVersionValue(resource, u"\\VarFileInfo\\Translation");
  if (!list || !list->bytes.U32(0)) return;
  std::u16string prefix = u"\\StringFileInfo\\";
  for (const unsigned number : {*list->bytes.U16(0), *list->bytes.U16(2)}) {
    for (const int shift : {12, 8, 4, 0}) prefix.push_back(u"0123456789abcdef"[number >> shift & 15]);
  }
  Query(resource, prefix + u"\\FileVersion");
}

}  // namespace

void FuzzVersionResource(const std::uint8_t* data, std::size_t size) {
  const Copy input(data, size);
  QueryAll(input.bytes());

  Bytes resource;
  if (host::FindVersionResource(input.bytes(), &resource) != ERROR_SUCCESS) {
    Promise(resource.size() == 0, "a file that is refused gives nothing");
    return;
  }
  Promise(Inside(resource, input.bytes()), "a resource lies in its file");
  Promise(resource.size() >= 6 && resource.size() <= 0xFFFF, "a resource has a size it can tell itself");
  const Copy cut(resource.data(), resource.size());
  QueryAll(cut.bytes());
  QueryAll(cut.bytes().First(cut.bytes().size() / 2));
}

}  // namespace fuzz
