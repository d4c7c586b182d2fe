// A key of the platform's registry, by root and path.
#ifndef QXCM_PLATFORM_REGISTRY_KEY_H
#define QXCM_PLATFORM_REGISTRY_KEY_H

#include <utility>

#include "platform/text.h"
#include "platform/windows_api.h"

namespace qxcm {

/// Holds no open handle: every operation opens the key, does one thing and closes it. All return whether that worked.
/// Any thread.
class RegistryKey {
 public:
  RegistryKey(HKEY root, WideText path) : root_(root), path_(std::move(path)) {}

  bool Exists() const;
  /// The type of a value and its size in bytes.
  bool QueryValueInfo(const WideText& name, DWORD* type, DWORD* size) const;
  /// Reads a value of the expected type into a buffer of `*size` bytes, which becomes the number of bytes read.
  bool ReadValue(const WideText& name, DWORD expected_type, void* buffer, DWORD* size) const;
  /// Makes the key when it is missing.
  bool WriteValue(const WideText& name, DWORD type, const void* data, DWORD size) const;
  bool DeleteValue(const WideText& name) const;
  /// With all that is under it.
  bool Delete() const;

 private:
  HKEY root_;
  WideText path_;
};

}  // namespace qxcm

#endif
