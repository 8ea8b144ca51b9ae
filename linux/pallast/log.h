// Log lines of this library: through liblorvant2 of the device-library folder
// the product named in MDInitDeviceLibrariesDirectoryPath, else on standard error.
#pragma once

#include <string>

namespace pallast {

void setLibraryFolder(std::string const& folder);
void logError(std::string const& message);

} // namespace pallast
