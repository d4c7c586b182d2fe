// The serial line behind a port; each kind of machine has its own.
#ifndef QXEXAMPLES_LINE_H
#define QXEXAMPLES_LINE_H

#include <string>

/// Leads the port ("COM5:") to a line and returns where a controller finds it. Throws std::exception.
std::string LeadToALine(const std::string& port);

#endif
