#include <gtest/gtest.h>

#include "share/bridge_result.h"
#include "tvl/dynamic_library.h"

using tovel::DynamicLibrary;

namespace {

fs::Path const kMath("libm.so.6");
fs::Path const kHost(TEST_LIBRARY_DIR "/libhalvern" SENSORCONTROL_LIBRARY_SUFFIX);

class Counting : public DynamicLibrary {
public:
    void throw_function_not_found_error() const override { ++misses; }
    mutable int misses = 0;
};

} // namespace

TEST(DynamicLibrary, LoadKeepsTheFirstLibrary) {
    DynamicLibrary library;
    EXPECT_FALSE(library.load(fs::Path("/nonexistent/libnothing.so")));
    EXPECT_FALSE(library.isOpen());
    EXPECT_EQ(library.path().string(), "");

    ASSERT_TRUE(library.load(kMath));
    EXPECT_TRUE(library.load(kHost));
    EXPECT_EQ(library.path().string(), "libm.so.6");
    EXPECT_EQ(library.symbol("Plg_GetArchitecture"), nullptr);
    EXPECT_DOUBLE_EQ(library.execThrows<double>("cos", 0.0), 1.0);
}

TEST(DynamicLibrary, LooksTheSymbolUpOnEveryCall) {
    Counting library;
    library.release(); // nothing open: no effect
    ASSERT_TRUE(library.load(kMath));
    EXPECT_DOUBLE_EQ(library.execThrows<double>("sqrt", 16.0), 4.0);
    library.release();
    EXPECT_FALSE(library.isOpen());

    // The hook returned: the safety net throws the 404 shape instead of calling null.
    try {
        library.execThrows<double>("sqrt", 16.0);
        FAIL() << "no exception";
    } catch (BridgeResultError const& e) {
        EXPECT_EQ(e.status, 404u);
        EXPECT_EQ(e.error.name, "FunctionNotFoundError");
        EXPECT_FALSE(e.error.message.empty());
    }
    EXPECT_EQ(library.misses, 1);
    EXPECT_THROW(library.execAs<double (*)(double)>("sqrt", 2), BridgeResultError);
    EXPECT_EQ(library.misses, 2);
    ASSERT_TRUE(library.load(kMath));
    EXPECT_DOUBLE_EQ(library.execAs<double (*)(double)>("sqrt", 9), 3.0);
}
