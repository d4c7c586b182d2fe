// What the controller says of itself: the product's revision of its operating system, and the system's language.
#ifndef QXHOST_COMMON_SYSTEM_IDENTITY_H
#define QXHOST_COMMON_SYSTEM_IDENTITY_H

#include <cstdint>

namespace host {

constexpr std::uint32_t kStandardOsRevision = 0x06000201;  // 6.0.2.1
constexpr std::uint16_t kStandardLanguage = 1033;          // English; 1041 is Japanese

/// Four bytes, the highest first. Any thread, as all here.
std::uint32_t OsRevision();
void SetOsRevision(std::uint32_t revision);

/// A language identifier of the platform.
std::uint16_t SystemLanguage();
void SetSystemLanguage(std::uint16_t language);

}  // namespace host

#endif
