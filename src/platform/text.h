// Wide text: 16 bits a character on every host.
#ifndef QXCM_PLATFORM_TEXT_H
#define QXCM_PLATFORM_TEXT_H

#include <string>

#include "platform/windows_api.h"

namespace qxcm {

using WideText = std::basic_string<WCHAR>;

/// Every character to upper case, as the platform does it.
inline WideText UpperCase(WideText text) {
  CharUpperBuffW(text.data(), static_cast<DWORD>(text.size()));
  return text;
}

}  // namespace qxcm

#endif
