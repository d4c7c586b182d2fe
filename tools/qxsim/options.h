// What the command line of qxsim asks for.
#ifndef QXSIM_OPTIONS_H
#define QXSIM_OPTIONS_H

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

namespace qxsim {

struct HttpAddress {
  std::string address = "127.0.0.1";  ///< numeric, IPv4 or IPv6 without brackets
  std::uint16_t port = 8580;          ///< 0 picks one
};

struct Options {
  std::string port = "COM5:";      ///< the port the service is opened on: "COM5:" or "COMBT:"
  std::string device;              ///< a serial device in place of a pty; empty = a pty
  std::string device_2;            ///< the same for the other port
  std::string link = "./qx-com5";  ///< symbolic link to the controller's end of the first pty
  std::string home;                ///< the instrument's folder; empty = the user's default
  bool ephemeral = false;          ///< a temporary home, removed at the end
  std::optional<HttpAddress> http = HttpAddress{};
  bool http_anyone = false;        ///< the address may be other than loopback
  bool still = false;              ///< values change only through the API
  std::uint64_t seed = 1;          ///< of the simulated motion and noise
  std::uint32_t pace = 0;          ///< baud, 0 = no limit
  std::uint32_t code_page = 1252;  ///< 1252 or 932
  std::string trace;               ///< file for the trace, "-" = standard error, empty = none
};

constexpr int kExitDone = 0;
constexpr int kExitUsage = 2;
constexpr int kExitStart = 3;

/// Reads the command line into `options`. Returns nothing when the program shall run; otherwise the exit status, with
/// help or version written to `out` or one line about the wrong usage to `err`.
std::optional<int> ParseOptions(int argc, const char* const* argv, Options* options, std::ostream& out,
                                std::ostream& err);

/// "./qx-com5" -> "./qx-com5-2": the link of the second line.
std::string SecondLink(const std::string& link);

}  // namespace qxsim

#endif
