// Programs started on the virtual instrument: each is recorded, and nothing is ever run on this machine.
#ifndef QXHOST_COMMON_SYSTEM_PROGRAMS_H
#define QXHOST_COMMON_SYSTEM_PROGRAMS_H

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "common/text/utf.h"

namespace host {

/// Says whether a program can be started from this path: 0, or the error code of a start that fails.
using ProgramLookup = std::function<DWORD(const WideString& path)>;

/// Null, as at start, for an instrument without program files: every path is error 2. Any thread.
void SetProgramLookup(ProgramLookup lookup);

struct StartedProgram {
  WideString program;  ///< as it was named
  WideString command_line;
  DWORD id = 0;
  double at = 0;  ///< milliseconds since start
};

/// The newest so many started programs, the oldest of them first.
constexpr std::size_t kMostStartedPrograms = 256;
std::vector<StartedProgram> StartedPrograms();
void ForgetStartedPrograms();

/// Starts a program. A bare name is looked for as it stands and then in \Windows. The utility "opvutil.exe" is always
/// there; with the command line "-fulloff" it switches the instrument off. `process` may be null; its two handles, to
/// be closed by the caller, are never signalled: the program runs as long as the instrument does.
///
/// FALSE: last error 87 (no program named, or an argument that Windows CE has no use for: security, inheritance,
/// environment, folder, flags other than CREATE_SUSPENDED), 206 (a path of MAX_PATH units or more, a command line of
/// more than 32767), 8 (no room for the handles), or what the look-up says.
BOOL CreateProcessW(LPCWSTR program, LPCWSTR command_line, LPSECURITY_ATTRIBUTES process_security,
                    LPSECURITY_ATTRIBUTES thread_security, BOOL inherit, DWORD flags, LPVOID environment,
                    LPCWSTR folder, LPSTARTUPINFOW start, LPPROCESS_INFORMATION process);

}  // namespace host

#endif
