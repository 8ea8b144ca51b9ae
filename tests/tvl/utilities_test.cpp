#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "tvl/fs/path.h"
#include "tvl/string_utils.h"
#include "tvl/threading/mutex_locker.h"
#include "tvl/uuid_posix.h"

TEST(StringUtils, NumbersReadLikeStreamExtraction) {
    // Partial and unreadable texts are left to the date tests, which read dates this way.
    EXPECT_EQ(string::to<int>(" -7"), -7);
    EXPECT_EQ(string::to<unsigned int>("4294967295"), 4294967295u);
    EXPECT_EQ(string::to<unsigned long>("18446744073709551615"), 18446744073709551615ul);
    EXPECT_EQ(string::to_pointer("0x1f"), reinterpret_cast<void*>(0x1f));
    EXPECT_EQ(string::to_pointer("ff"), reinterpret_cast<void*>(0xff));
    EXPECT_EQ(string::to_pointer("zz"), nullptr);
}

TEST(Path, KeepsNoTrailingSeparator) {
    EXPECT_EQ(fs::Path("/usr/lib/").string(), "/usr/lib");
    EXPECT_EQ(fs::Path("a//").string(), "a/");
    EXPECT_EQ(fs::Path("c:\\dir\\").string(), "c:\\dir");
    EXPECT_EQ(fs::Path("").string(), "");

    fs::Path path("lib");
    path.appendPathComponent("x.dylib");
    EXPECT_EQ(path.string(), "lib/x.dylib");
    path.assign("lib");
    path.appendPathComponent("/x");
    EXPECT_EQ(path.string(), "lib/x");
    path.appendPathComponent("");
    EXPECT_EQ(path.string(), "lib/x");
    path.appendPathComponent("y/");
    EXPECT_EQ(path.string(), "lib/x/y");
}

// Held elsewhere until unlocked as often as locked: the registry's host lock test.
TEST(Locks, AreRecursive) {
    CriticalSection section;
    {
        CriticalSectionLocker outer(&section);
        CriticalSectionLocker inner(&section);
    }
    threading::Mutex mutex;
    EXPECT_EQ(mutex.lock() + mutex.lock() + mutex.unlock() + mutex.unlock(), 0);
}

TEST(Uuid, IsLowerCaseTextAndFresh) {
    std::regex const form("[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}");
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        std::string const id = uuid::create();
        EXPECT_TRUE(std::regex_match(id, form)) << id;
        seen.insert(id);
    }
    EXPECT_EQ(seen.size(), 100u);
}
