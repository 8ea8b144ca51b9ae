// A parse handler that writes every event as a short token.
#pragma once

#include <string>

#include "quilljson/parser.h"
#include "quilljson/value.h"

class Recorder : public quilljson::AbstractParseHandler {
public:
    std::string log;
    int cancelAt = -1; // index of the event that returns false

    bool onNull() override { return add("null"); }
    bool onBool(bool b) override { return add(b ? "true" : "false"); }
    bool onInteger(int64_t i) override { return add("i" + std::to_string(i)); }
    bool onDouble(double d) override { return add("d" + quilljson::Value(d).toString("")); }
    bool onString(std::string const& s) override { return add("s:" + s); }
    bool onArrayBegin() override { return add("["); }
    bool onArrayEnd(uint64_t n) override { return add("]" + std::to_string(n)); }
    bool onObjectBegin() override { return add("{"); }
    bool onObjectKey(std::string const& k) override { return add("k:" + k); }
    bool onObjectEnd(uint64_t n) override { return add("}" + std::to_string(n)); }

private:
    int events_ = 0;
    bool add(std::string const& token) {
        log += (log.empty() ? "" : " ") + token;
        return events_++ != cancelAt;
    }
};
