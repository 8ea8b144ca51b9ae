#include "share/lib/libpallastLoader.h"

namespace tovel {

TOVEL_DEFINE_LOADER(libpallastLoader, "libpallast", "libpallast does not have a requested function.")

} // namespace tovel
