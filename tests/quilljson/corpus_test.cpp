// Every file of the conformance corpus: the parse ends (true or false) without
// crashing, the four parse modes agree, and an accepted value survives a
// serialize/parse round trip.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "quilljson/parser.h"
#include "quilljson/serializer.h"
#include "recorder.h"

using quilljson::Parser;
using quilljson::Value;

TEST(Corpus, EveryFileEndsAndAcceptedFilesMatchTheirClass) {
    // Accepted-class files the parser rejects on purpose: none so far.
    std::set<std::string> const rejectedOnPurpose = {};
    std::filesystem::path const dir = std::filesystem::path(TEST_DATA_DIR) / "json-corpus";
    int files = 0;
    for (auto const& entry : std::filesystem::directory_iterator(dir)) {
        std::string const name = entry.path().filename().string();
        if (entry.path().extension() != ".json") continue;
        std::ifstream in(entry.path(), std::ios::binary);
        std::ostringstream buffer;
        buffer << in.rdbuf();
        std::string const text = buffer.str();
        char const* b = text.data();
        char const* e = b + text.size();
        ++files;

        Value v;
        Parser parser;
        bool const ok = parser.parse(&v, nullptr, b, e);
        Recorder counter;
        Value withKeys;
        EXPECT_EQ(Parser().parse(&withKeys, &counter, b, e), ok) << name;
        EXPECT_EQ(Parser().parse(nullptr, &counter, b, e), ok) << name;
        EXPECT_EQ(Parser().parse(nullptr, nullptr, b, e), ok) << name;

        if (name[0] == 'y') {
            EXPECT_EQ(ok, !rejectedOnPurpose.count(name)) << name << ": " << parser.error();
        }
        if (ok) {
            std::string out;
            if (quilljson::Serializer::serialize(out, v)) { // fails only for huge exponents (inf)
                Value again;
                EXPECT_TRUE(Parser().parse(&again, out)) << name;
                EXPECT_EQ(quilljson::Serializer::toText(again), out) << name;
            }
        }
    }
    EXPECT_GT(files, 300);
}
