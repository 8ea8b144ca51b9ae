#include "tvl/uuid_posix.h"

#include <uuid/uuid.h>

namespace uuid {

std::string create() {
    uuid_t id;
    uuid_generate(id);
    char text[37] = {};
    uuid_unparse_lower(id, text);
    return text;
}

} // namespace uuid
