// Tests with a real second process: this test program again, playing one of the roles that the tests define.
//
// started_process.h is the only header of these tests that knows how the host starts and ends processes.
#ifndef QXTEST_PLATFORM_SECOND_PROCESS_H
#define QXTEST_PLATFORM_SECOND_PROCESS_H

#include <functional>
#include <memory>
#include <string>

namespace platform_test {

/// Lines of text to and from the other process.
class Conversation {
 public:
  virtual ~Conversation() = default;
  virtual void Tell(const std::string& line) = 0;
  /// Waits for the other's next line; empty when there will be none.
  virtual std::string Listen() = 0;
};

/// What a second process does. Define one as a constant beside the test that starts it.
class Role {
 public:
  using Play = std::function<void(Conversation& first)>;
  Role(std::string name, Play play);
  const std::string& name() const { return name_; }

 private:
  const std::string name_;
};

/// A second process that plays a role. It has ended when this object has: the role sees the end of the conversation.
class SecondProcess final : public Conversation {
 public:
  explicit SecondProcess(const Role& role);
  SecondProcess(const SecondProcess&) = delete;
  SecondProcess& operator=(const SecondProcess&) = delete;
  ~SecondProcess() override;

  void Tell(const std::string& line) override;
  std::string Listen() override;
  /// Ends the process at once, wherever it is; it has ended on return.
  void Kill();
  /// Waits until the role has been played; the process's exit code.
  int Finish();

 private:
  struct Process;
  std::unique_ptr<Process> process_;
};

}  // namespace platform_test

#endif
