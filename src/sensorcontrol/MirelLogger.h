// The library's single logger, named "Mirel".
#pragma once

#include "share/logger_base.h"

namespace tovel {

class MirelLogger : public LoggerBase {
public:
    // Created on first use (binding to the logging library then), kept to process exit.
    static MirelLogger& Instance() {
        static MirelLogger instance;
        return instance;
    }

private:
    MirelLogger() : LoggerBase("Mirel") {}
};

} // namespace tovel
