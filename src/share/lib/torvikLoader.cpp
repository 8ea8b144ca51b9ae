#include "share/lib/torvikLoader.h"

namespace tovel {

TOVEL_DEFINE_LOADER(torvikLoader, "libtorvik", "torvik does not have a requested function.")

} // namespace tovel
