// What a program and the programs it has started use of this machine.
#ifndef QXTEST_CONVERSATIONS_PROCESS_TREE_H
#define QXTEST_CONVERSATIONS_PROCESS_TREE_H

#include <sys/types.h>

#include <cstddef>

namespace qxtest {

struct ProcessTree {
  std::size_t threads = 0;
  std::size_t descriptors = 0;  ///< open files, sockets and the like
};

/// Of the process and all its descendants at this moment.
ProcessTree CountProcessTree(pid_t process);

}  // namespace qxtest

#endif
