#include "share/bridge.h"

#include <atomic>
#include <cctype>
#include <cstring>
#include <map>
#include <utility>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "sensorcontrol/MirelLogger.h"
#include "sensorcontrol/sensorcontrol.h"
#include "tvl/threading/mutex_locker.h"

namespace {

struct BridgeResponse {
    _BridgeStatusCode status;
    std::string text;
};

// The promise counter and the responses. Never destroyed, so a host thread
// still calling while the process exits finds it intact.
// Host threads meet here on every request: the responses are spread over
// shards by id, each with its own lock on its own cache line, so that threads
// working on different promises rarely take the same lock; a lock is held
// only to link and unlink map nodes, which are made, filled, read and freed
// outside it.
struct ResponseShard {
    using Map = std::map<uint32_t, BridgeResponse>;
    alignas(64) CriticalSection lock;
    Map responses;
};

struct ResponseStore {
    static constexpr uint32_t kShards = 16;
    alignas(64) std::atomic<uint32_t> counter{0}; // wraps at 2^32 like the plain counter it stands for
    ResponseShard shards[kShards];

    ResponseShard& shard(uint32_t id) { return shards[id % kShards]; }
};

ResponseStore& store() {
    static ResponseStore* const instance = new ResponseStore;
    return *instance;
}

char const kUnknownErrorResponse[] =
    "{\"error\":{\"message\":\"Unknown error occurred.\",\"name\":\"UnknownError\"},\"value\":null}";

// A text that does not parse leaves the field null, whatever the parser built.
quilljson::Value parseText(char const* text) {
    quilljson::Value parsed;
    if (text == nullptr || text[0] == '\0') return parsed; // nothing to parse, so null

    if (!quilljson::Parser().parse(&parsed, nullptr, text, text + std::strlen(text)))
        return quilljson::Value();
    return parsed;
}

std::string methodText(quilljson::Value const& request, char const* fallback) {
    if (!request.contains("method")) return fallback;
    quilljson::Value const& method = request["method"];
    return method.isString() ? method.stringRef() : std::string();
}

} // namespace

uint32_t BridgeTemplate::operator()(char const* request, char const* parameters, char const* query,
                                    char const* data) {
    uint32_t const id = BridgeHelperCreatePromiseID();
    BridgeResult const result = execute(request, parameters, query, data);

    // A non-finite number stops the serializer; what it wrote so far is kept.
    std::string text;
    if (result.error.empty()) {
        // The envelope of a success is fixed around the value: written as it stands.
        text.reserve(256);
        text = "{\"error\":null,\"value\":";
        if (quilljson::Serializer::serialize(text, result.value)) text += '}';
    } else {
        quilljson::Value response = quilljson::Value::object();
        quilljson::Value& error = response["error"];
        error = result.error.value;
        error["name"] = result.error.name;
        error["message"] = result.error.message;
        response["value"] = result.value;
        quilljson::Serializer::serialize(text, response);
    }
    BridgeHelperSetResponse(id, result.status, std::move(text));
    return id;
}

BridgeResult BridgeTemplate::execute(char const* request, char const* parameters, char const* query,
                                     char const* data) {
    BridgeData bridgeData;
    bridgeData.request = parseText(request);
    bridgeData.parameters = parseText(parameters);
    bridgeData.query = parseText(query);
    bridgeData.data = parseText(data);
    if (bridgeData.data.isNull() && data != nullptr && data[0] != '\0')
        bridgeData.data = quilljson::Value(data);

    BridgeMethod const method = getMethod(bridgeData.request);
    onBeginBridge(bridgeData);

    BridgeResult result;
    try {
        switch (method) {
        case BridgeMethodPost:
            result = Post(bridgeData);
            break;
        case BridgeMethodPut:
            result = Put(bridgeData);
            break;
        case BridgeMethodDelete:
            result = Delete(bridgeData);
            break;
        case BridgeMethodGet:
        default:
            result = Get(bridgeData);
            break;
        }
    } catch (BridgeResultError const& error) {
        result = error;
    } catch (...) {
        result = BridgeResultError(500, "UnknownError", "Unknown error occurred.");
    }

    onEndBridge(bridgeData, result);
    return result;
}

void BridgeTemplate::onBeginBridge(BridgeData const&) {}
void BridgeTemplate::onEndBridge(BridgeData const&, BridgeResult const&) {}

BridgeResult BridgeTemplate::Get(BridgeData const&) {
    throw BridgeResultError(405, "MethodError", "GET method is not allowed.");
}
BridgeResult BridgeTemplate::Put(BridgeData const&) {
    throw BridgeResultError(405, "MethodError", "PUT method is not allowed.");
}
BridgeResult BridgeTemplate::Post(BridgeData const&) {
    throw BridgeResultError(405, "MethodError", "POST method is not allowed.");
}
BridgeResult BridgeTemplate::Delete(BridgeData const&) {
    throw BridgeResultError(405, "MethodError", "DELETE method is not allowed.");
}

BridgeMethod BridgeTemplate::getMethod(quilljson::Value const& request) {
    if (!request.isObject() || !request.contains("method")) return BridgeMethodGet;
    std::string word = methodText(request, "");
    for (char& c : word)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (word == "post") return BridgeMethodPost;
    if (word == "put") return BridgeMethodPut;
    if (word == "delete") return BridgeMethodDelete;
    return BridgeMethodGet;
}

namespace tovel {

char const* const kBridgeHostSegment = "/sensorbridge.tovelworks.net/";

Bridge::Bridge() : uri(kBridgeHostSegment) {}

void Bridge::onEndBridge(BridgeData const& data, BridgeResult const& result) {
    MirelLogger& logger = MirelLogger::Instance();
    if (!logger.bound()) return;
    std::string word = methodText(data.request, "GET");
    for (char& c : word)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (word != "PUT" && word != "POST" && word != "DELETE") word = "GET";
    logger.logResult(uri, word, result);
}

uint32_t RunEndpointGuarded(BridgeTemplate& endpoint, char const* request, char const* parameters,
                            char const* query, char const* data) {
    try {
        return endpoint(request, parameters, query, data);
    } catch (...) {
    }
    return AnswerUnknownError();
}

uint32_t AnswerUnknownError() noexcept {
    uint32_t id = 0;
    try {
        id = BridgeHelperCreatePromiseID();
        BridgeHelperSetResponse(id, 500, kUnknownErrorResponse);
    } catch (...) {
        // Out of memory even for this: the id stays unanswered (its fetch gives 500).
    }
    return id;
}

} // namespace tovel

uint32_t BridgeHelperCreatePromiseID() {
    return store().counter.fetch_add(1, std::memory_order_relaxed) + 1;
}

void BridgeHelperSetResponse(uint32_t id, _BridgeStatusCode status, std::string text) {
    ResponseShard& s = store().shard(id);
    ResponseShard::Map staging;
    staging.emplace(id, BridgeResponse{status, std::move(text)});
    ResponseShard::Map::node_type node = staging.extract(staging.begin());
    {
        CriticalSectionLocker locker(&s.lock);
        auto const entry = s.responses.find(id);
        if (entry != s.responses.end())
            std::swap(entry->second, node.mapped()); // replaces; the old goes below
        else
            s.responses.insert(std::move(node));
    }
}

uint32_t BridgeHelperGetResponse(uint32_t id, char* buffer, uint32_t* length) {
    if (length == nullptr) return 500;
    ResponseShard& s = store().shard(id);
    ResponseShard::Map::node_type node;
    {
        CriticalSectionLocker locker(&s.lock);
        auto const entry = s.responses.find(id);
        if (entry == s.responses.end()) return 500;
        if (buffer == nullptr) {
            *length = static_cast<uint32_t>(entry->second.text.size()) + 1;
            return entry->second.status;
        }
        node = s.responses.extract(entry);
    }
    std::string const& text = node.mapped().text;
    uint32_t const n = static_cast<uint32_t>(text.size());
    uint32_t const copy = *length < n ? *length : n;
    std::memset(buffer, 0, *length);
    std::memcpy(buffer, text.data(), copy);
    return node.mapped().status;
}
