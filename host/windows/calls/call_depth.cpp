#include "common/calls/entry.h"
#include "common/calls/last_error.h"

namespace host {
namespace {

// A call that the compiler leaves where it is.
[[gnu::noipa]] unsigned& Depth() {
  thread_local unsigned depth = 0;
  return depth;
}

}  // namespace

// What is thread-local is made by calls of the system when a thread first asks for it.
unsigned& internal::CallDepth() {
  const KeepLastError keep;
  return Depth();
}

}  // namespace host
