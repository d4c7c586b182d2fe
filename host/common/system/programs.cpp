#include "common/system/programs.h"

#include <deque>
#include <mutex>
#include <utility>

#include "common/calls/calls.h"
#include "common/calls/errors.h"
#include "common/kernel/handles.h"
#include "common/sync/sync.h"
#include "common/system/power.h"
#include "common/text/text.h"

namespace host {
namespace {

constexpr std::size_t kLongestCommandLine = 32767;
constexpr WCHAR kWindowsFolder[] = TEXT("\\Windows\\");
constexpr WCHAR kUtility[] = TEXT("OPVUTIL.EXE");
constexpr WCHAR kSwitchOff[] = TEXT("-FULLOFF");

struct Programs {
  std::mutex mutex;
  ProgramLookup lookup;                // guarded by mutex, as all below
  std::deque<StartedProgram> started;  // at most kMostStartedPrograms
  DWORD last_id = 0x1000;
};

Programs& ThePrograms() {
  static auto* programs = new Programs;  // threads may outlive the end of main
  return *programs;
}

/// What can be waited for like a program that runs, or its thread.
HANDLE NeverSignalled() { return CreateEventW(nullptr, TRUE, FALSE, nullptr); }

WideString Upper(WideString text) {
  for (WCHAR& unit : text) unit = UpperCase(unit);
  return text;
}

bool IsBareName(const WideString& path) { return path.find_first_of(TEXT("\\/:")) == WideString::npos; }

bool IsUtility(const WideString& program) {
  const WideString name = Upper(program);
  return name == kUtility || name == Upper(WideString(kWindowsFolder) + kUtility);
}

/// The last error of a start of this program; 0 when it is there.
DWORD Find(const WideString& program) {
  if (IsUtility(program)) return ERROR_SUCCESS;
  ProgramLookup lookup;
  {
    Programs& programs = ThePrograms();
    const std::lock_guard<std::mutex> lock(programs.mutex);
    lookup = programs.lookup;
  }
  if (!lookup) return ERROR_FILE_NOT_FOUND;
  const DWORD error = lookup(program);
  const bool elsewhere = error == ERROR_FILE_NOT_FOUND && !program.empty() && IsBareName(program);
  return elsewhere && lookup(kWindowsFolder + program) == ERROR_SUCCESS ? ERROR_SUCCESS : error;
}

StartedProgram Record(const WideString& program, const WideString& command_line) {
  Programs& programs = ThePrograms();
  const std::lock_guard<std::mutex> lock(programs.mutex);
  programs.last_id += 2;  // the number between is its thread's
  StartedProgram started{program, command_line, programs.last_id, MillisecondsSinceStart()};
  programs.started.push_back(started);
  if (programs.started.size() > kMostStartedPrograms) programs.started.pop_front();
  return started;
}

bool InsertHandles(LPPROCESS_INFORMATION process) {
  if (process == nullptr) return true;
  *process = {};
  process->hProcess = NeverSignalled();
  if (process->hProcess != nullptr) process->hThread = NeverSignalled();
  if (process->hThread != nullptr) return true;
  if (process->hProcess != nullptr) CloseHandle(process->hProcess);
  *process = {};
  return false;
}

BOOL Start(const WideString& program, const WideString& command_line, LPPROCESS_INFORMATION process) {
  if (program.size() >= MAX_PATH || command_line.size() > kLongestCommandLine) {
    return Fail(ERROR_FILENAME_EXCED_RANGE, FALSE);
  }
  const DWORD error = Find(program);
  if (error != ERROR_SUCCESS) return Fail(error, FALSE);
  if (!InsertHandles(process)) return FALSE;
  const StartedProgram started = Record(program, command_line);
  if (process != nullptr) {
    process->dwProcessId = started.id;
    process->dwThreadId = started.id + 1;
  }
  if (IsUtility(program) && Upper(command_line) == kSwitchOff) RecordPowerState(kPowerOff);
  return TRUE;
}

}  // namespace

void SetProgramLookup(ProgramLookup lookup) {
  Programs& programs = ThePrograms();
  const std::lock_guard<std::mutex> lock(programs.mutex);
  programs.lookup = std::move(lookup);
}

std::vector<StartedProgram> StartedPrograms() {
  Programs& programs = ThePrograms();
  const std::lock_guard<std::mutex> lock(programs.mutex);
  return {programs.started.begin(), programs.started.end()};
}

void ForgetStartedPrograms() {
  Programs& programs = ThePrograms();
  const std::lock_guard<std::mutex> lock(programs.mutex);
  programs.started.clear();
}

BOOL CreateProcessW(LPCWSTR program, LPCWSTR command_line, LPSECURITY_ATTRIBUTES process_security,
                    LPSECURITY_ATTRIBUTES thread_security, BOOL inherit, DWORD flags, LPVOID environment,
                    LPCWSTR folder, LPSTARTUPINFOW, LPPROCESS_INFORMATION process) {
  const bool unknown_to_ce = process_security != nullptr || thread_security != nullptr || inherit != FALSE ||
                             environment != nullptr || folder != nullptr || (flags & ~CREATE_SUSPENDED) != 0;
  if (program == nullptr || unknown_to_ce) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  return Start(program, command_line == nullptr ? TEXT("") : command_line, process);
}

}  // namespace host
