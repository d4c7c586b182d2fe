// The system's own calls, where the name stands for the library's platform in the tests.
#ifndef QXTEST_PLATFORM_WIN32_SYSTEM_CALLS_H
#define QXTEST_PLATFORM_WIN32_SYSTEM_CALLS_H

#include <windows.h>

namespace platform_test {

/// SystemCall<decltype(::ReadFile)>("ReadFile")
template <class Call>
Call* SystemCall(const char* name) {
  return reinterpret_cast<Call*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), name)));
}

}  // namespace platform_test

#endif
