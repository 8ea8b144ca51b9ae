#include "share/lib/libcorvaneLoader.h"

namespace tovel {

TOVEL_DEFINE_LOADER(libcorvaneLoader, "libcorvane", "libcorvane does not have a requested function.")

} // namespace tovel
