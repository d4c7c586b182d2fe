#include "posix/windows/window_table.h"

#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/text/text.h"

namespace host {
namespace {

constexpr std::uintptr_t kFirstHandle = 0x10000;
constexpr std::uintptr_t kLastHandle = 0x7FFF0000;
constexpr ATOM kFirstAtom = 0xC000;

struct WindowClass {
  std::u16string name;  // in upper case
  WNDPROC procedure;
};

struct Tables {
  std::unordered_map<HWND, Window> windows;
  std::uintptr_t next_handle = kFirstHandle;
  std::vector<WindowClass> classes;  // the atoms count them
};

Tables& TheTables() {
  static auto* tables = new Tables;  // threads may outlive the end of main
  return *tables;
}

std::u16string ClassName(LPCWSTR name) {
  std::u16string upper(name);
  for (char16_t& unit : upper) unit = UpperCase(unit);
  return upper;
}

const WindowClass* FindClassByName(LPCWSTR name) {
  for (const WindowClass& known : TheTables().classes) {
    if (known.name == ClassName(name)) return &known;
  }
  return nullptr;
}

}  // namespace

Window* FindWindowByHandle(HWND handle) {
  auto& windows = TheTables().windows;
  const auto window = windows.find(handle);
  return window != windows.end() ? &window->second : nullptr;
}

HWND AddWindow(Window window) {
  Tables& tables = TheTables();
  HWND handle = nullptr;
  do {
    handle = reinterpret_cast<HWND>(tables.next_handle);
    tables.next_handle = tables.next_handle == kLastHandle ? kFirstHandle : tables.next_handle + 2;
  } while (tables.windows.count(handle) != 0);
  tables.windows.emplace(handle, std::move(window));
  return handle;
}

void RemoveWindow(HWND handle) { TheTables().windows.erase(handle); }

void RemoveWindowsOf(const MessageQueue& queue) {
  auto& windows = TheTables().windows;
  for (auto window = windows.begin(); window != windows.end();) {
    window = window->second.queue.get() == &queue ? windows.erase(window) : std::next(window);
  }
}

ATOM AddClass(LPCWSTR name, WNDPROC procedure) {
  if (FindClassByName(name) != nullptr) return 0;
  auto& classes = TheTables().classes;
  classes.push_back({ClassName(name), procedure});
  return static_cast<ATOM>(kFirstAtom + classes.size() - 1);
}

WNDPROC FindClass(LPCWSTR name) {
  const auto atom = reinterpret_cast<std::uintptr_t>(name);
  if (atom <= 0xFFFF) {
    const auto& classes = TheTables().classes;
    const bool known = atom >= kFirstAtom && atom - kFirstAtom < classes.size();
    return known ? classes[atom - kFirstAtom].procedure : nullptr;
  }
  const WindowClass* known = FindClassByName(name);
  return known != nullptr ? known->procedure : nullptr;
}

}  // namespace host
