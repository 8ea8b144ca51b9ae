#include "share/lib/libdvcLoader.h"

namespace tovel {

TOVEL_DEFINE_LOADER(libdvcLoader, "libdvc", "libdvc does not have a requested function.")

} // namespace tovel
