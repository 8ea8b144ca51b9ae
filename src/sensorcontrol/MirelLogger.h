// The library's single logger, named "Mirel".
#pragma once

#include "share/logger_base.h"

namespace tovel {

class MirelLogger : public LoggerBase {
public:
    static MirelLogger& Instance();

private:
    MirelLogger() : LoggerBase("Mirel") {}
};

} // namespace tovel
