// Included ahead of each source of the DLL, by the compiler's command line: std::string and std::wstring are compiled
// with the code that uses them, as far as it does. Those of the static runtime are there only as a whole, twice as
// large.
#ifndef RUNTIME_OWN_STRINGS_H
#define RUNTIME_OWN_STRINGS_H

#include <bits/c++config.h>

#undef _GLIBCXX_EXTERN_TEMPLATE
#define _GLIBCXX_EXTERN_TEMPLATE -1  // the value that the runtime's header has for "not for strings"

#endif
