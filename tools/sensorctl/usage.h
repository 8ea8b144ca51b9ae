// The text of "sensorctl --help", with the resource table drawn from the routes.
#pragma once

#include <iosfwd>

namespace sensorctl {

void PrintUsage(std::ostream& out);
void PrintShortUsage(std::ostream& out);
void PrintVersion(std::ostream& out); // "sensorctl <project version>"

} // namespace sensorctl
