// A file of the instrument on this host: a stream of its own under the file's path.
#include <algorithm>
#include <cstring>
#include <memory>

#include "module_file.h"
#include "posix/streams/devices.h"
#include "posix/text/utf.h"

namespace platform_test {
namespace {

class BytesStream final : public host::Stream {
 public:
  explicit BytesStream(qxtest::FileBytes bytes) : bytes_(std::move(bytes)) {}
  std::string Name() const override { return "module file"; }
  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override {
    *read = static_cast<DWORD>(std::min<std::size_t>(bytes, bytes_.size() - at_));
    if (*read != 0) std::memcpy(buffer, bytes_.data() + at_, *read);
    at_ += *read;
    return TRUE;
  }
  BOOL Write(const void*, DWORD, DWORD*) override { return FALSE; }

 private:
  const qxtest::FileBytes bytes_;
  std::size_t at_ = 0;
};

}  // namespace

ModuleFile::ModuleFile(const qxtest::FileBytes& bytes) : path_(u"\\Temp\\Module.dll") {
  host::RegisterDevice(host::WideToUtf8(path_),
                       [bytes](const host::OpenRequest&) { return std::make_shared<BytesStream>(bytes); });
}

ModuleFile::~ModuleFile() { host::UnregisterDevice(host::WideToUtf8(path_)); }

}  // namespace platform_test
