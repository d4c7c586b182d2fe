#include "common/calls/entry.h"

namespace host {

unsigned& internal::CallDepth() {
  thread_local unsigned depth = 0;
  return depth;
}

}  // namespace host
