// Open devices and files: what ReadFile, WriteFile and the device calls find behind a handle.
#ifndef QXHOST_COMMON_STREAMS_STREAMS_H
#define QXHOST_COMMON_STREAMS_STREAMS_H

#include <memory>
#include <string>
#include <utility>

#include "common/kernel/handles.h"

namespace host {

/// One open device or file. Its calls set the last error when they fail. All may run at once on several threads.
class Stream {
 public:
  Stream() = default;
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  virtual ~Stream() = default;

  /// The path or device name it was opened by (UTF-8), for faults that are limited to one.
  virtual std::string Name() const = 0;
  /// Whether the call log shows what is read, written and closed: true for files, not for devices.
  virtual bool CallsListed() const { return false; }
  virtual BOOL Read(void* buffer, DWORD bytes, DWORD* read) = 0;
  virtual BOOL Write(const void* buffer, DWORD bytes, DWORD* written) = 0;
  /// DeviceIoControl: neither buffer is null unless it is empty, and *returned is 0. Without a device's own: error 50.
  virtual BOOL Control(DWORD code, const void* in, DWORD in_bytes, void* out, DWORD out_bytes, DWORD* returned);
  /// The handle has been closed: calls still under way on other threads shall end.
  virtual void Closed() {}
};

/// The kernel object of an open device or file. Calls hold the stream and not this object while they wait, so that it
/// ends with its handle and can tell them.
class StreamHandle final : public KernelObject {
 public:
  /// \param library  the name under which the call log shows the closing; null when it is a call of COREDLL's
  explicit StreamHandle(std::shared_ptr<Stream> stream, const char* library = nullptr)
      : stream_(std::move(stream)), library_(library) {}
  ~StreamHandle() override { stream_->Closed(); }
  bool Closes() override;
  const std::shared_ptr<Stream>& stream() const { return stream_; }

 private:
  std::shared_ptr<Stream> stream_;
  const char* library_;
};

/// The stream of one kind behind a handle; null and last error 6 when there is none.
template <class Kind = Stream>
std::shared_ptr<Kind> FindStream(HANDLE handle) {
  const auto object = FindHandle<StreamHandle>(handle);
  if (object == nullptr) return nullptr;
  auto stream = std::dynamic_pointer_cast<Kind>(object->stream());
  if (stream == nullptr) SetLastError(ERROR_INVALID_HANDLE);
  return stream;
}

/// The path or device name behind a handle, empty when it names something else or nothing.
std::string StreamName(HANDLE handle);
/// Stream::CallsListed of what is behind a handle, false when it names something else or nothing.
bool StreamCallsListed(HANDLE handle);

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD read, LPOVERLAPPED overlapped);
BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD written, LPOVERLAPPED overlapped);

/// A driver's own operation. `returned` may be null; `overlapped` must be.
BOOL DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD in_bytes, LPVOID out, DWORD out_bytes,
                     LPDWORD returned, LPOVERLAPPED overlapped);

}  // namespace host

#endif
