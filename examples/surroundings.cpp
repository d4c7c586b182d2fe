// The surroundings of an application on a desk: the simulated instrument.
#include "surroundings.h"

#include <csignal>
#include <cstdio>
#include <exception>

#include "instrument/distance_meter.h"
#include "instrument/event_window.h"
#include "line.h"

namespace {

volatile std::sig_atomic_t asked_to_end = 0;

void AskToEnd(int) { asked_to_end = 1; }

}  // namespace

int PrepareSurroundings(const char* port, HWND window, UINT event_message) {
  std::signal(SIGINT, AskToEnd);
  host::instrument::SetEventWindow(window, event_message);
  try {
    std::printf("%s is at %s\n", port, LeadToALine(port).c_str());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s has no line: %s\n", port, error.what());
    return 0;
  }
  return 1;
}

void LeaveSurroundings(void) {
  host::instrument::ResetEventWindow();
  host::instrument::DistanceMeter::Instance().Rest();
}

int AskedToEnd(void) { return asked_to_end; }
