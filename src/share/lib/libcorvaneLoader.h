#pragma once

#include "share/lib/LibraryLoader.h"

namespace tovel {

TOVEL_DECLARE_LOADER(libcorvaneLoader);

} // namespace tovel
