#include "common/system/identity.h"

#include <atomic>

namespace host {
namespace {

std::atomic<std::uint32_t> os_revision{kStandardOsRevision};
std::atomic<std::uint16_t> language{kStandardLanguage};

}  // namespace

std::uint32_t OsRevision() { return os_revision; }
void SetOsRevision(std::uint32_t revision) { os_revision = revision; }

std::uint16_t SystemLanguage() { return language; }
void SetSystemLanguage(std::uint16_t number) { language = number; }

}  // namespace host
