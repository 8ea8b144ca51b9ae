#include "envelope.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <set>
#include <vector>

#include "quilljson/parser.h"
#include "routes.h"
#include "sensorcontrol/sensorcontrol.h"

namespace fuzz {

namespace {

[[noreturn]] void Fail(char const* what, std::string const& text) {
    std::fprintf(stderr, "fuzz: %s: %s\n", what, text.c_str());
    std::abort();
}

} // namespace

Endpoint FindExport(std::string const& name) {
    return reinterpret_cast<Endpoint>(dlsym(RTLD_DEFAULT, name.c_str()));
}

std::vector<std::string> const& ExportNames() {
    static std::vector<std::string> const names = [] {
        std::vector<std::string> out;
        std::set<std::string> seen;
        for (sensorctl::Route const& route : sensorctl::Routes()) // gateway rows name no export
            if (*route.exportName != '\0' && seen.insert(route.exportName).second)
                out.push_back(route.exportName);
        return out;
    }();
    return names;
}

Fetched CallChecked(Endpoint endpoint, char const* request, char const* parameters, char const* query,
                    char const* data) {
    uint32_t const id = endpoint(request, parameters, query, data);
    uint32_t length = 0;
    uint32_t const status = BridgeHelperGetResponse(id, nullptr, &length);
    if (length == 0) Fail("no response stored", std::to_string(id));
    std::string buffer(length, '\xff');
    Fetched fetched;
    fetched.status = BridgeHelperGetResponse(id, &buffer[0], &length);
    if (fetched.status != status) Fail("the two fetches disagree on the status", std::to_string(status));
    if (buffer[length - 1] != '\0' || buffer.find('\0') != length - 1)
        Fail("text and length disagree", buffer);
    fetched.text = buffer.c_str();
    uint32_t again = 0;
    if (BridgeHelperGetResponse(id, nullptr, &again) != 500)
        Fail("fetched response still stored", fetched.text);

    quilljson::Value json;
    if (!quilljson::Parser().parse(&json, fetched.text)) Fail("response is not JSON", fetched.text);
    if (!json.isObject() || json.size() != 2 || !json.contains("error") || !json.contains("value"))
        Fail("response is not {\"error\":..., \"value\":...}", fetched.text);
    quilljson::Value const& error = json["error"];
    if (status == 200) {
        if (!error.isNull()) Fail("a success carries an error", fetched.text);
    } else if (status == 400 || status == 404 || status == 405 || status == 500) {
        if (!error.isObject() || !error["name"].isString() || !error["message"].isString() ||
            error["name"].stringRef().empty() || !json["value"].isNull())
            Fail("an error response without its error", fetched.text);
    } else {
        Fail("unexpected status", std::to_string(status) + " " + fetched.text);
    }
    return fetched;
}

std::string const& SensorId(bool builtin) {
    static std::string ids[2];
    std::string& id = ids[builtin ? 1 : 0];
    void* handle = nullptr;
    if (id.empty() || !SensorControlGetHandleForID(id.c_str(), &handle)) {
        id = builtin ? IdOf(CallChecked(FindExport("Monitors"), R"({"method":"POST"})",
                                        R"({"product":"LMN27A","serial":"41A00017"})", "", ""))
                     : IdOf(CallChecked(FindExport("DeviceID"), R"({"method":"POST"})", R"({"deviceID":"8"})",
                                        "", ""));
    }
    return id;
}

std::string Replace(std::string text, std::string const& from, std::string const& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

std::string IdOf(Fetched const& opened) {
    auto const start = opened.text.find("\"value\":\"");
    if (opened.status != 200 || start == std::string::npos) return std::string();
    return opened.text.substr(start + 9, opened.text.find('"', start + 9) - start - 9);
}

} // namespace fuzz
