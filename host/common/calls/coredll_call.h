// One row for each COREDLL call: its name, whether it is listed, and the implementation it passes its arguments to.
#ifndef QXHOST_COMMON_CALLS_COREDLL_CALL_H
#define QXHOST_COMMON_CALLS_COREDLL_CALL_H

#include <windows.h>

#include <cstdint>
#include <string>
#include <type_traits>

#include "common/calls/entry.h"
#include "common/streams/streams.h"
#include "common/text/utf.h"

/// What the function behind a call is named. Linux has no such calls: it is the call itself. Windows has most of them:
/// there COREDLL.dll exports it under the call's name.
#ifdef _WIN32
#define COREDLL(call) CoreDll##call
#else
#define COREDLL(call) call
#endif

namespace host {

constexpr bool kListed = true;
constexpr bool kUnlisted = false;

/// For calls that are listed on files only. Without a log nobody asks.
inline bool ListedOn(HANDLE handle) {
  return (internal::watch.load(std::memory_order_relaxed) & internal::kListing) != 0 && StreamCallsListed(handle);
}

/// An argument that is a buffer, or text without a terminating zero: passed on, never listed.
template <class Pointer>
struct Buffer {
  explicit Buffer(Pointer buffer) : pointer(buffer) {}
  operator Pointer() const { return pointer; }
  Pointer pointer;
};

/// How each kind of argument is listed: numbers, texts and handles as such, the two serial structures as hex, other
/// pointers only when they are null.
inline void AppendPointer(const void* pointer, CallValues* values) {
  if (pointer == nullptr) values->emplace_back(nullptr);
}
void AppendStructure(const void* bytes, std::size_t size, CallValues* values);

template <class Argument>
void AppendArgument(const Argument& argument, CallValues* values) {
  if constexpr (std::is_same_v<Argument, LPCWSTR>) {
    if (argument == nullptr) return AppendPointer(argument, values);
    values->emplace_back(WideToUtf8(argument));
  } else if constexpr (std::is_same_v<Argument, LPDCB> || std::is_same_v<Argument, LPCOMMTIMEOUTS>) {
    AppendStructure(argument, sizeof *argument, values);
  } else if constexpr (std::is_same_v<Argument, HANDLE> || std::is_same_v<Argument, HWND>) {
    if (argument == nullptr) return AppendPointer(argument, values);
    values->emplace_back(static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(argument)));
  } else if constexpr (std::is_same_v<Argument, HKEY>) {
    // 32 bits of it: desktop Windows lengthens the roots' numbers by their sign.
    if (argument == nullptr) return AppendPointer(argument, values);
    values->emplace_back(std::int64_t{static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(argument))});
  } else if constexpr (std::is_pointer_v<Argument> && std::is_function_v<std::remove_pointer_t<Argument>>) {
    if (argument == nullptr) values->emplace_back(nullptr);
  } else if constexpr (std::is_pointer_v<Argument>) {
    AppendPointer(argument, values);
  } else {
    values->emplace_back(static_cast<std::int64_t>(argument));
  }
}

template <class Pointer>
void AppendArgument(const Buffer<Pointer>& buffer, CallValues* values) {
  AppendPointer(buffer.pointer, values);
}

template <class Argument>
void FindSubject(const Argument& argument, std::string* subject) {
  if constexpr (std::is_same_v<Argument, HANDLE>) {
    if (subject->empty()) *subject = StreamName(argument);
  }
}

/// Makes the COREDLL call `name`: `real` with these arguments. The device or file behind a handle among them is what
/// the call works on.
template <class Result, class... Parameters, class... Arguments>
Result CoreDllCall(const char* name, bool listed, FailsWith fails, Result (*real)(Parameters...),
                   const Arguments&... arguments) {
  const auto args = [&] {
    CallValues values;
    (AppendArgument(arguments, &values), ...);
    return values;
  };
  const auto subject = [&] {
    std::string name_of_subject;
    (FindSubject(arguments, &name_of_subject), ...);
    return name_of_subject;
  };
  return Entry(
      "COREDLL", name, listed, args, [&] { return real(arguments...); }, fails, subject);
}

/// The same for the many that fail with 0.
template <class Result, class... Parameters, class... Arguments>
Result CoreDllCall(const char* name, bool listed, Result (*real)(Parameters...), const Arguments&... arguments) {
  return CoreDllCall(name, listed, FailsWith::kZero, real, arguments...);
}

}  // namespace host

#endif
