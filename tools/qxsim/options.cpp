#include "qxsim/options.h"

#include <CLI/CLI.hpp>
#include <boost/asio/ip/address.hpp>
#include <charconv>
#include <ostream>

namespace qxsim {
namespace {

/// "com5" -> "COM5:"; empty when it is neither of the two ports.
std::string PortName(std::string name) {
  if (!name.empty() && name.back() == ':') name.pop_back();
  const std::string lower = CLI::detail::to_lower(name);
  if (lower == "com5") return "COM5:";
  return lower == "combt" ? "COMBT:" : "";
}

std::optional<std::uint16_t> PortNumber(const std::string& text) {
  std::uint16_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// "127.0.0.1:0", "localhost:80" or "[::1]:80"; throws when it is none of them.
HttpAddress ReadHttpAddress(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  const auto number = colon == std::string::npos ? std::nullopt : PortNumber(text.substr(colon + 1));
  if (!number) throw CLI::ValidationError("--http", "ADDR:PORT or off expected, not " + text);
  std::string address = text.substr(0, colon);
  if (address == "localhost") address = "127.0.0.1";
  const bool bracketed = address.size() > 2 && address.front() == '[' && address.back() == ']';
  if (bracketed) address = address.substr(1, address.size() - 2);
  boost::system::error_code error;
  const auto parsed = boost::asio::ip::make_address(address, error);
  if (error || parsed.is_v6() != bracketed) throw CLI::ValidationError("--http", "not a numeric address: " + text);
  return {address, *number};
}

void CheckReach(const Options& options) {
  if (!options.http || options.http_anyone) return;
  if (boost::asio::ip::make_address(options.http->address).is_loopback()) return;
  throw CLI::ValidationError("--http", options.http->address + " is not loopback: say --http-anyone as well");
}

struct RawTexts {
  std::string port = "COM5:";
  std::string http = "127.0.0.1:8580";
};

void Declare(CLI::App& app, Options* options, RawTexts* raw) {
  app.add_option("--port", raw->port, "COM5: (default) or COMBT:");
  app.add_option("--device", options->device, "use this serial device instead of making a pty");
  app.add_option("--device-2", options->device_2, "the same for the other port");
  app.add_option("--link", options->link, "symbolic link to the controller's end of the pty (default ./qx-com5)");
  app.add_option("--home", options->home, "the instrument's files and state (default $XDG_DATA_HOME/qxsim)");
  app.add_flag("--ephemeral", options->ephemeral, "start from the defaults in a temporary home, leave nothing behind");
  app.add_option("--http", raw->http, "ADDR:PORT of panel and API (default 127.0.0.1:8580; port 0 picks one) or off");
  app.add_flag("--http-anyone", options->http_anyone, "allow an address other than loopback");
  app.add_flag("--still", options->still, "nothing moves by itself");
  app.add_option("--seed", options->seed, "number for the simulated motion and noise")->check(CLI::NonNegativeNumber);
  app.add_option("--pace", options->pace, "line speed in baud, both ways (0 = no limit, the default)");
  app.add_option("--code-page", options->code_page, "ANSI code page, 1252 (default) or 932")
      ->check(CLI::IsMember({1252, 932}));
  app.add_option("--trace", options->trace, "file for one line per frame, platform call and notice (- = stderr)");
  app.set_version_flag("--version", "qxsim " QXSIM_VERSION);
}

void Take(const CLI::App& app, const RawTexts& raw, Options* options) {
  options->port = PortName(raw.port);
  if (options->port.empty()) throw CLI::ValidationError("--port", "COM5: or COMBT: expected, not " + raw.port);
  options->http.reset();
  if (raw.http != "off") options->http = ReadHttpAddress(raw.http);
  for (const char* name : {"--device", "--device-2", "--link", "--home", "--trace"}) {
    const auto* option = app.get_option(name);
    if (option->count() > 0 && option->as<std::string>().empty()) throw CLI::ValidationError(name, "empty");
  }
  CheckReach(*options);
}

}  // namespace

std::optional<int> ParseOptions(int argc, const char* const* argv, Options* options, std::ostream& out,
                                std::ostream& err) {
  CLI::App app("The virtual instrument: a serial line with the communication service on it.", "qxsim");
  RawTexts raw;
  Declare(app, options, &raw);
  app.allow_windows_style_options(false);  // a path may begin with a slash
  try {
    app.parse(argc, argv);
    Take(app, raw, options);
  } catch (const CLI::Success& wanted) {  // help or version
    app.exit(wanted, out, err);
    return kExitDone;
  } catch (const CLI::ParseError& error) {
    err << "qxsim: " << error.what() << " (see --help)\n";
    return kExitUsage;
  }
  return std::nullopt;
}

std::string SecondLink(const std::string& link) { return link + "-2"; }

}  // namespace qxsim
