#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>

#include "share/bridge.h"
#include "share/error_check.h"
#include "support.h"

using quilljson::Value;

namespace {

using Handler = std::function<BridgeResult(BridgeData const&)>;

// An endpoint whose methods do what the test tells them; unset ones answer 405.
class Scripted : public tovel::Bridge {
public:
    Handler get, put, post, del;
    std::function<void()> begin, end;

    void onBeginBridge(BridgeData const&) override {
        if (begin) begin();
    }
    void onEndBridge(BridgeData const& data, BridgeResult const& result) override {
        Bridge::onEndBridge(data, result);
        if (end) end();
    }
    BridgeResult Get(BridgeData const& d) override { return get ? get(d) : Bridge::Get(d); }
    BridgeResult Put(BridgeData const& d) override { return put ? put(d) : Bridge::Put(d); }
    BridgeResult Post(BridgeData const& d) override { return post ? post(d) : Bridge::Post(d); }
    BridgeResult Delete(BridgeData const& d) override { return del ? del(d) : Bridge::Delete(d); }
};

Handler Returning(Value const& v) {
    return [v](BridgeData const&) { return BridgeResultOK(v); };
}

// Answers with all four parsed fields.
Scripted Echo() {
    Scripted e;
    e.get = e.put = e.post = e.del = [](BridgeData const& d) {
        Value v;
        v["request"] = d.request;
        v["parameters"] = d.parameters;
        v["query"] = d.query;
        v["data"] = d.data;
        return BridgeResultOK(v);
    };
    return e;
}

} // namespace

TEST(Bridge, EnvelopeOfEachOutcome) {
    struct Case {
        Handler handler;
        uint32_t status;
        char const* text;
    } const cases[] = {
        {Returning(Value()), 200, R"({"error":null,"value":null})"},
        {nullptr, 405,
         R"({"error":{"message":"GET method is not allowed.","name":"MethodError"},"value":null})"},
        {Returning(Value(std::string("b"))), 200, R"({"error":null,"value":"b"})"},
        {[](BridgeData const&) -> BridgeResult { throw BadRequest("data must have id."); }, 400,
         R"({"error":{"message":"data must have id.","name":"BadRequestError"},"value":null})"},
        {[](BridgeData const&) -> BridgeResult {
             tovel::BridgeCheckDvError(tovel::MakeDvError(static_cast<int32_t>(0x80000001u)),
                                       "Open sensor arm.");
             return BridgeResultOK(Value(1));
         },
         500,
         R"({"error":{"code":2147483649,"message":"Invalid argument.","name":"DvError","reason":"Open sensor arm."},"value":null})"},
        {[](BridgeData const&) -> BridgeResult { throw std::runtime_error("not ours"); }, 500,
         R"({"error":{"message":"Unknown error occurred.","name":"UnknownError"},"value":null})"},
        {[](BridgeData const&) -> BridgeResult { throw 42; }, 500,
         R"({"error":{"message":"Unknown error occurred.","name":"UnknownError"},"value":null})"},
        // A detail value that is no object becomes one; an error with only a detail still counts.
        {[](BridgeData const&) -> BridgeResult {
             BridgeError e("Error", "Not found.");
             e.value.append(Value(1));
             throw BridgeResultError(404, e);
         },
         404, R"({"error":{"message":"Not found.","name":"Error"},"value":null})"},
        {[](BridgeData const&) -> BridgeResult {
             BridgeError e;
             e.value["z"] = 1;
             throw BridgeResultError(500, e);
         },
         500, R"({"error":{"message":"","name":"","z":1},"value":null})"},
        // A returned result keeps its value even with an error.
        {[](BridgeData const&) {
             BridgeResult r;
             r.status = 299;
             r.error = BridgeError("Warn", "w");
             r.value = Value(true);
             return r;
         },
         299, R"({"error":{"message":"w","name":"Warn"},"value":true})"},
    };
    for (auto const& c : cases) {
        Scripted endpoint;
        endpoint.get = c.handler;
        Fetched const f = Request(endpoint, "");
        EXPECT_EQ(f.status, c.status) << c.text;
        EXPECT_EQ(f.text, c.text);
    }
}

TEST(Bridge, DispatchesByMethodWord) {
    struct Case {
        char const* request;
        char const* ran;
    } const cases[] = {
        {"", "GET"},
        {R"({"method":"Post"})", "POST"},
        {R"({"method":"PUT"})", "PUT"},
        {R"({"method":"dElEtE"})", "DELETE"},
        {R"({"method":"patch"})", "GET"},
        {R"({"method":1})", "GET"},
        {R"({"method":"post")", "GET"}, // malformed: the request is null
        {R"({"Method":"post"})", "GET"},
    };
    for (auto const& c : cases) {
        Scripted endpoint;
        endpoint.get = Returning(Value("GET"));
        endpoint.post = Returning(Value("POST"));
        endpoint.put = Returning(Value("PUT"));
        endpoint.del = Returning(Value("DELETE"));
        EXPECT_EQ(Request(endpoint, c.request).text,
                  std::string(R"({"error":null,"value":")") + c.ran + "\"}")
            << c.request;
    }
}

TEST(Bridge, ParsesTheFourTexts) {
    struct Case {
        char const* parameters;
        char const* data;
        char const* expected; // {"data":...,"parameters":...}
    } const cases[] = {
        {"", "", R"("data":null,"parameters":null)"},
        {R"({"id":"x"})", "true", R"("data":true,"parameters":{"id":"x"})"},
        {R"({"id":"x")", "abc", R"("data":"abc","parameters":null)"},
        {"[1", "null", R"("data":"null","parameters":null)"}, // the parser had built [1]
        {"{} x", "{\"a\":", R"("data":"{\"a\":","parameters":null)"},
        {" 3 ", " [1, {\"b\" : 2}] ", R"("data":[1,{"b":2}],"parameters":3)"},
    };
    for (auto const& c : cases) {
        Scripted endpoint = Echo();
        Fetched const f = Request(endpoint, "", c.parameters, R"({"supports":null})", c.data);
        EXPECT_EQ(f.text, std::string(R"({"error":null,"value":{)") + c.expected +
                              R"(,"query":{"supports":null},"request":null}})")
            << c.parameters << " | " << c.data;
    }
    Scripted endpoint = Echo(); // null pointers read as empty texts
    EXPECT_EQ(Request(endpoint, nullptr, nullptr, nullptr, nullptr).text,
              R"({"error":null,"value":{"data":null,"parameters":null,"query":null,"request":null}})");
}

TEST(Bridge, EscapesFromTheFrameworkStillGetAnAnswer) {
    char const* const unknown =
        R"({"error":{"message":"Unknown error occurred.","name":"UnknownError"},"value":null})";
    std::function<void()> const throwers[] = {
        [] { throw std::runtime_error("begin"); },
        [] { throw std::bad_alloc(); },
        [] { throw BadRequest("not caught here either"); },
    };
    for (bool atEnd : {false, true}) {
        for (auto const& thrower : throwers) {
            Scripted endpoint;
            endpoint.get = Returning(Value(1));
            (atEnd ? endpoint.end : endpoint.begin) = thrower;
            uint32_t const before = BridgeHelperCreatePromiseID();
            Fetched const f = Request(endpoint, "");
            EXPECT_EQ(f.status, 500u);
            EXPECT_EQ(f.text, unknown);
            // The id the request had taken stays unanswered; the answer has a fresh one.
            EXPECT_EQ(f.id, before + 2);
            uint32_t length = 7;
            EXPECT_EQ(BridgeHelperGetResponse(before + 1, nullptr, &length), 500u);
            EXPECT_EQ(length, 7u);
        }
    }
}
