// Links made on Windows or Wine (support/this_machine.h), and their end.
#ifndef QXTEST_PLATFORM_WIN32_THIS_MACHINE_H
#define QXTEST_PLATFORM_WIN32_THIS_MACHINE_H

namespace qxtest {

/// Removes all links that MakeLinks has made, and nothing that they lead to.
void RemoveLinks();

}  // namespace qxtest

#endif
