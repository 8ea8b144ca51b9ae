// Random identifiers.
#pragma once

#include <string>

namespace uuid {

// A new random UUID in its 36-character lower-case text form.
std::string create();

} // namespace uuid
