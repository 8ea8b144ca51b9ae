// The request framework: every endpoint export runs one BridgeTemplate.
#pragma once

#include <cstdint>
#include <string>

#include "quilljson/value.h"
#include "share/bridge_result.h"
#include "tvl/threading/mutex_posix.h"

// The parsed request: request (with "method"), path parameters, query, data.
struct BridgeData {
    quilljson::Value request;
    quilljson::Value parameters;
    quilljson::Value query;
    quilljson::Value data;
};

enum BridgeMethod { BridgeMethodGet = 0, BridgeMethodPost = 1, BridgeMethodPut = 2, BridgeMethodDelete = 3 };

class BridgeTemplate {
public:
    virtual ~BridgeTemplate() = default;

    // Runs the request and stores its response; returns the promise id.
    uint32_t operator()(char const* request, char const* parameters, char const* query, char const* data);

    // Parses the texts, dispatches by method, guards the method call.
    virtual BridgeResult execute(char const* request, char const* parameters, char const* query,
                                 char const* data);
    virtual void onBeginBridge(BridgeData const& data);
    virtual void onEndBridge(BridgeData const& data, BridgeResult const& result);
    // Defaults answer 405 "MethodError".
    virtual BridgeResult Get(BridgeData const& data);
    virtual BridgeResult Put(BridgeData const& data);
    virtual BridgeResult Post(BridgeData const& data);
    virtual BridgeResult Delete(BridgeData const& data);

    static BridgeMethod getMethod(quilljson::Value const& request);
};

namespace tovel {

// Base of every endpoint: carries the URI that the result log line prints.
class Bridge : public BridgeTemplate {
public:
    Bridge();
    void onEndBridge(BridgeData const& data, BridgeResult const& result) override;

    std::string uri; // the fixed host segment, then the resource path as the endpoint appends it
};

// The fixed host segment every URI starts with.
extern char const* const kBridgeHostSegment;

// What an endpoint export does: build the endpoint on the stack and run it.
// Never lets an exception out.
template <typename Endpoint>
uint32_t RunEndpoint(char const* request, char const* parameters, char const* query, char const* data);

} // namespace tovel

// Response store.
uint32_t BridgeHelperCreatePromiseID();
void BridgeHelperSetResponse(uint32_t id, _BridgeStatusCode status, std::string text);
extern "C" uint32_t BridgeHelperGetResponse(uint32_t id, char* buffer, uint32_t* length);

namespace tovel {
// Runs the endpoint; anything that escapes it is answered with 500
// "UnknownError" under a fresh id.
uint32_t RunEndpointGuarded(BridgeTemplate& endpoint, char const* request, char const* parameters,
                            char const* query, char const* data);
// Stores the 500 "UnknownError" response under a fresh id and returns the id.
uint32_t AnswerUnknownError() noexcept;
// The sensor registry's lock (device::SensorCache), kept beside the promise
// counter. Never destroyed.
threading::Mutex& SensorRegistryMutex();
// Sets how many promises were handed out, wraps of the 32-bit ids included:
// lets tests reach a wrap of the counter.
void SetPromisesTaken(uint64_t taken);

template <typename Endpoint>
uint32_t RunEndpoint(char const* request, char const* parameters, char const* query, char const* data) {
    try {
        Endpoint endpoint;
        return RunEndpointGuarded(endpoint, request, parameters, query, data);
    } catch (...) { // the endpoint's construction
        return AnswerUnknownError();
    }
}
} // namespace tovel
