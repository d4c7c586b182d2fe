#include "windows/kernel/real_handles.h"

#include <mutex>
#include <unordered_map>

#include "common/calls/calls.h"
#include "common/calls/last_error.h"

namespace host {
namespace {

struct Noted {
  bool librarys;
  bool named;
};

class Notes {
 public:
  void Add(HANDLE handle, const Noted& noted) {
    const std::lock_guard<std::mutex> lock(mutex_);
    Erase(handle);  // closed by someone else, and used again
    noted_.emplace(handle, noted);
    Count(noted, 1);
  }
  void Remove(HANDLE handle) {
    const std::lock_guard<std::mutex> lock(mutex_);
    Erase(handle);
  }
  std::size_t librarys() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return librarys_;
  }
  std::size_t named() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return named_;
  }

 private:
  void Erase(HANDLE handle) {
    const auto found = noted_.find(handle);
    if (found == noted_.end()) return;
    Count(found->second, static_cast<std::size_t>(-1));
    noted_.erase(found);
  }
  void Count(const Noted& noted, std::size_t step) {
    if (noted.librarys) librarys_ += step;
    if (noted.named) named_ += step;
  }

  std::mutex mutex_;  // guards all below
  std::unordered_map<HANDLE, Noted> noted_;
  std::size_t librarys_ = 0;
  std::size_t named_ = 0;
};

Notes& TheNotes() {
  static auto* notes = new Notes;  // threads may outlive the end of main
  return *notes;
}

HANDLE Note(HANDLE made, bool named) {
  const KeepLastError keep;
  if (made != nullptr && made != INVALID_HANDLE_VALUE) TheNotes().Add(made, {InLibraryCall(), named});
  return made;
}

}  // namespace

HANDLE NoteHandle(HANDLE made) { return Note(made, false); }

HANDLE NoteNamedHandle(HANDLE made) { return Note(made, true); }

void ForgetHandle(HANDLE handle) {
  const KeepLastError keep;
  TheNotes().Remove(handle);
}

std::size_t LibraryRealHandles() { return TheNotes().librarys(); }

std::size_t NamedHandles() { return TheNotes().named(); }

}  // namespace host
