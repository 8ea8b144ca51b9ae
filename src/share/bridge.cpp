#include "share/bridge.h"

#include <pthread.h>

#include <atomic>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <map>
#include <utility>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "sensorcontrol/MirelLogger.h"
#include "sensorcontrol/sensorcontrol.h"
#include "tvl/threading/mutex_locker.h"
#include "tvl/threading/mutex_posix.h"

namespace {

struct BridgeResponse {
    _BridgeStatusCode status;
    std::string text;
};

// The promise counter and the responses. Never destroyed, so a host thread
// still calling while the process exits finds it intact.
// Host threads meet here on every request. A response is stored in the shard
// of the thread that made it, and that thread usually fetches it: so two host
// threads write lines of their own here, where shards chosen by id made each
// thread take lines the other had just written. A request's entry is made
// under its own shard's lock, which only another thread's fetch waits for;
// fetched entries are read and freed outside the lock.
struct ResponseShard {
    using Map = std::map<uint32_t, BridgeResponse>;
    alignas(64) CriticalSection lock;
    // Entries in the map, written under the lock: read without it to pass
    // over empty shards when a response is looked for elsewhere.
    std::atomic<uint32_t> size{0};
    Map responses;

    // Under the lock.
    void insert(Map::node_type node) {
        responses.insert(std::move(node));
        size.store(static_cast<uint32_t>(responses.size()), std::memory_order_relaxed);
    }
    Map::node_type extract(Map::iterator entry) {
        Map::node_type node = responses.extract(entry);
        size.store(static_cast<uint32_t>(responses.size()), std::memory_order_relaxed);
        return node;
    }
};

ResponseShard::Map::node_type makeNode(uint32_t id, _BridgeStatusCode status, std::string text) {
    ResponseShard::Map staging;
    staging.emplace(id, BridgeResponse{status, std::move(text)});
    return staging.extract(staging.begin());
}

struct ResponseStore {
    static constexpr uint32_t kThreadShards = 16;
    // Responses stored by BridgeHelperSetResponse with an id the caller chose,
    // so that a request's own store needs to look only here besides its shard.
    static constexpr uint32_t kDirect = kThreadShards;
    // Every request writes the counter and, to look its sensor up, takes the
    // registry's lock a moment later: on one cache line, a request moves one
    // line between the cores instead of two.
    struct alignas(64) RequestLine {
        // Promises handed out. An id is the low 32 bits, so it wraps at 2^32
        // like the plain counter it stands for; the high bits count the wraps.
        std::atomic<uint64_t> counter{0};
        threading::Mutex sensorRegistry;
    } line;
    // The last wrap whose unfetched responses are in the direct shard; written
    // with every lock held.
    std::atomic<uint64_t> refiledRound{0};
    ResponseShard shards[kThreadShards + 1];

    // Thread stacks are mapped one after another, each a multiple of 64 KiB
    // and a guard page apart, and a thread's pthread_self() lies in its stack:
    // the page number modulo 16 gives threads started one after another
    // shards of their own.
    static uint32_t threadShard() {
#if defined(__GLIBC__) && defined(__x86_64__)
        // There pthread_self() is the thread pointer: read without a call.
        uintptr_t const self = reinterpret_cast<uintptr_t>(__builtin_thread_pointer());
#else
        uintptr_t const self = (uintptr_t)pthread_self();
#endif
        return static_cast<uint32_t>(self >> 12) % kThreadShards;
    }

    // Takes every lock, in shard order.
    void lockAll() {
        for (ResponseShard& s : shards)
            s.lock.lock();
    }
    void unlockAll() {
        for (ResponseShard& s : shards)
            s.lock.unlock();
    }
    // With every lock held: replaces the entry of the node's id wherever it is,
    // or stores the node in `home`.
    void replaceOrInsert(ResponseShard& home, ResponseShard::Map::node_type& node) {
        uint32_t const id = node.key();
        for (ResponseShard& s : shards) {
            auto const entry = s.responses.find(id);
            if (entry != s.responses.end()) {
                std::swap(entry->second, node.mapped()); // the old goes with the caller's node
                return;
            }
        }
        home.insert(std::move(node));
    }

    // A promise: its id in the low 32 bits.
    uint64_t take() {
        uint64_t const ticket = line.counter.fetch_add(1, std::memory_order_relaxed) + 1;
        if (static_cast<uint32_t>(ticket) == 0) refileUnfetched(ticket >> 32);
        return ticket;
    }
    // A response made by a request under the promise `ticket`.
    void storeOwn(uint64_t ticket, _BridgeStatusCode status, std::string text);
    // A response under an id the caller chose.
    void storeDirect(ResponseShard::Map::node_type& node) {
        lockAll();
        replaceOrInsert(shards[kDirect], node);
        unlockAll();
    }
    // When the counter wraps, the responses never fetched move to the direct
    // shard, where the requests that take their ids again look for them.
    void refileUnfetched(uint64_t round) {
        lockAll();
        ResponseShard& direct = shards[kDirect];
        for (uint32_t i = 0; i < kThreadShards; ++i)
            while (shards[i].size.load(std::memory_order_relaxed) != 0)
                direct.insert(shards[i].extract(shards[i].responses.begin()));
        if (round > refiledRound.load(std::memory_order_relaxed))
            refiledRound.store(round, std::memory_order_relaxed);
        unlockAll();
    }
};

// Ids are unique within a round of the counter, so an earlier entry of a
// promise's id can only be in the direct shard (stored there, or refiled at
// the wrap that began the round): while that is empty and the round's refile
// is done, the request looks at its own shard alone. Both are changed with
// every lock held, this shard's too, so reading them under this lock cannot
// miss a change.
// The entry is made under the lock: only a fetch from another thread ever
// waits for this one.
void ResponseStore::storeOwn(uint64_t ticket, _BridgeStatusCode status, std::string text) {
    ResponseShard& own = shards[threadShard()];
    uint32_t const id = static_cast<uint32_t>(ticket);
    {
        CriticalSectionLocker locker(&own.lock);
        if ((ticket >> 32) == refiledRound.load(std::memory_order_relaxed) &&
            shards[kDirect].size.load(std::memory_order_relaxed) == 0) {
            BridgeResponse response{status, std::move(text)};
            auto const placed =
                own.responses.try_emplace(id, std::move(response)); // leaves it when not placed
            if (placed.second)
                own.size.store(static_cast<uint32_t>(own.responses.size()), std::memory_order_relaxed);
            else
                std::swap(placed.first->second, response); // replaces; the old goes with `response`
            return;
        }
    }
    ResponseShard::Map::node_type node = makeNode(id, status, std::move(text));
    lockAll();
    replaceOrInsert(own, node);
    unlockAll();
}

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

static_assert(sizeof(ResponseStore::RequestLine) == 64, "the counter and the registry lock on one line");

} // namespace

uint32_t BridgeTemplate::operator()(char const* request, char const* parameters, char const* query,
                                    char const* data) {
    uint64_t const ticket = store().take();
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
    uint32_t const id = static_cast<uint32_t>(ticket);
    store().storeOwn(ticket, result.status, std::move(text));
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

void SetPromisesTaken(uint64_t taken) {
    store().line.counter.store(taken, std::memory_order_relaxed);
}

threading::Mutex& SensorRegistryMutex() {
    return store().line.sensorRegistry;
}

uint32_t AnswerUnknownError() noexcept {
    uint32_t id = 0;
    try {
        uint64_t const ticket = store().take();
        id = static_cast<uint32_t>(ticket);
        store().storeOwn(ticket, 500, kUnknownErrorResponse);
    } catch (...) {
        // Out of memory even for this: the id stays unanswered (its fetch gives 500).
    }
    return id;
}

} // namespace tovel

uint32_t BridgeHelperCreatePromiseID() {
    return static_cast<uint32_t>(store().take());
}

void BridgeHelperSetResponse(uint32_t id, _BridgeStatusCode status, std::string text) {
    ResponseShard::Map::node_type node = makeNode(id, status, std::move(text));
    store().storeDirect(node);
}

namespace {

// Under the shard's lock: answers the fetch of an entry; the node is the
// entry taken out when the text is wanted (to be copied outside the lock).
inline __attribute__((always_inline)) uint32_t answer(ResponseShard& s, ResponseShard::Map::iterator entry,
                                                      char* buffer, uint32_t* length,
                                                      ResponseShard::Map::node_type& node) {
    if (buffer == nullptr) {
        *length = static_cast<uint32_t>(entry->second.text.size()) + 1;
        return entry->second.status;
    }
    node = s.extract(entry);
    return 0;
}

} // namespace

// The calling thread's shard first: the thread that made a response usually
// fetches it. Elsewhere empty shards are passed over without their locks; a
// response stored meanwhile is one stored after the fetch began.
uint32_t BridgeHelperGetResponse(uint32_t id, char* buffer, uint32_t* length) {
    if (length == nullptr) return 500;
    ResponseStore& responses = store();
    uint32_t const own = ResponseStore::threadShard();
    ResponseShard::Map::node_type node;
    uint32_t status = 500;
    auto const lookIn = [&](ResponseShard& s) {
        CriticalSectionLocker locker(&s.lock);
        auto const entry = s.responses.find(id);
        if (entry == s.responses.end()) return false;
        status = answer(s, entry, buffer, length, node);
        return true;
    };
    bool found = lookIn(responses.shards[own]);
    for (uint32_t i = 0; i <= ResponseStore::kThreadShards && !found; ++i)
        if (i != own && responses.shards[i].size.load(std::memory_order_relaxed) != 0)
            found = lookIn(responses.shards[i]);
    if (!found || buffer == nullptr) return status;
    std::string const& text = node.mapped().text;
    uint32_t const n = static_cast<uint32_t>(text.size());
    uint32_t const copy = *length < n ? *length : n;
    std::memset(buffer, 0, *length);
    std::memcpy(buffer, text.data(), copy);
    return node.mapped().status;
}
