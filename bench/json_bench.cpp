// Parse and serialize throughput of quilljson, nlohmann::json and RapidJSON on
// the three usual benchmark documents. Throughput is bytes of the input
// document per second, for serialization too.
#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"

namespace {

std::string const& document(std::string const& name) {
    static std::map<std::string, std::string> cache;
    auto it = cache.find(name);
    if (it == cache.end()) {
        std::ifstream in(std::string(BENCH_DATA_DIR) + "/" + name, std::ios::binary);
        if (!in) throw std::runtime_error("cannot read " + name);
        std::ostringstream text;
        text << in.rdbuf();
        it = cache.emplace(name, text.str()).first;
    }
    return it->second;
}

void bytes(benchmark::State& state, std::string const& text) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void QuillParse(benchmark::State& state, char const* name) {
    std::string const& text = document(name);
    for (auto _ : state) {
        quilljson::Value v;
        quilljson::Parser parser;
        if (!parser.parse(&v, text)) state.SkipWithError(parser.error().c_str());
        benchmark::DoNotOptimize(v);
    }
    bytes(state, text);
}

void NlohmannParse(benchmark::State& state, char const* name) {
    std::string const& text = document(name);
    for (auto _ : state) {
        nlohmann::json v = nlohmann::json::parse(text);
        benchmark::DoNotOptimize(v);
    }
    bytes(state, text);
}

void RapidParse(benchmark::State& state, char const* name) {
    std::string const& text = document(name);
    for (auto _ : state) {
        rapidjson::Document d;
        d.Parse(text.c_str(), text.size());
        if (d.HasParseError()) state.SkipWithError("RapidJSON parse error");
        benchmark::DoNotOptimize(d);
    }
    bytes(state, text);
}

// The full-precision flag makes RapidJSON convert every number exactly, as
// quilljson always does; its default parse may be off by an ulp on canada.
void RapidParseFullPrecision(benchmark::State& state, char const* name) {
    std::string const& text = document(name);
    for (auto _ : state) {
        rapidjson::Document d;
        d.Parse<rapidjson::kParseFullPrecisionFlag>(text.c_str(), text.size());
        if (d.HasParseError()) state.SkipWithError("RapidJSON parse error");
        benchmark::DoNotOptimize(d);
    }
    bytes(state, text);
}

void QuillSerialize(benchmark::State& state, char const* name) {
    std::string const& text = document(name);
    quilljson::Value v;
    quilljson::Parser().parse(&v, text);
    for (auto _ : state) {
        std::string out;
        quilljson::Serializer::serialize(out, v);
        benchmark::DoNotOptimize(out);
    }
    bytes(state, text);
}

void QuillSerializePretty(benchmark::State& state, char const* name) {
    std::string const& text = document(name);
    quilljson::Value v;
    quilljson::Parser().parse(&v, text);
    for (auto _ : state) {
        std::string out;
        quilljson::Serializer::serialize(out, v,
                                         quilljson::SerializeOption(quilljson::SerializeOption::Pretty));
        benchmark::DoNotOptimize(out);
    }
    bytes(state, text);
}

void NlohmannSerialize(benchmark::State& state, char const* name) {
    std::string const& text = document(name);
    nlohmann::json v = nlohmann::json::parse(text);
    for (auto _ : state) {
        std::string out = v.dump();
        benchmark::DoNotOptimize(out);
    }
    bytes(state, text);
}

void RapidSerialize(benchmark::State& state, char const* name) {
    std::string const& text = document(name);
    rapidjson::Document d;
    d.Parse(text.c_str(), text.size());
    for (auto _ : state) {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        d.Accept(writer);
        benchmark::DoNotOptimize(buffer.GetString());
    }
    bytes(state, text);
}

#define FOR_EACH_DOCUMENT(fn)                                                                                \
    BENCHMARK_CAPTURE(fn, canada, "canada.json")->Unit(benchmark::kMillisecond);                             \
    BENCHMARK_CAPTURE(fn, citm_catalog, "citm_catalog.json")->Unit(benchmark::kMillisecond);                 \
    BENCHMARK_CAPTURE(fn, twitter, "twitter.json")->Unit(benchmark::kMillisecond)

FOR_EACH_DOCUMENT(QuillParse);
FOR_EACH_DOCUMENT(NlohmannParse);
FOR_EACH_DOCUMENT(RapidParse);
FOR_EACH_DOCUMENT(RapidParseFullPrecision);
FOR_EACH_DOCUMENT(QuillSerialize);
FOR_EACH_DOCUMENT(QuillSerializePretty);
FOR_EACH_DOCUMENT(NlohmannSerialize);
FOR_EACH_DOCUMENT(RapidSerialize);

} // namespace

BENCHMARK_MAIN();
