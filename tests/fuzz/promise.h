// What a fuzz target holds the code under test to.
#ifndef QX_TESTS_FUZZ_PROMISE_H
#define QX_TESTS_FUZZ_PROMISE_H

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Names the broken promise and aborts, which every fuzzer and test program reports as a failure.
inline void Promise(bool kept, const char* promise) {
  if (kept) return;
  std::fprintf(stderr, "broken promise: %s\n", promise);
  std::abort();
}

}  // namespace fuzz

#endif
