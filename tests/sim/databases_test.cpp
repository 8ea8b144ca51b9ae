// libcorvane: the correlation-data and correlation-matrix databases.
#include "devices/corvane.h"
#include "sim_test_util.h"

namespace {

using namespace simtest;

class Databases : public SimTest {};

TEST_F(Databases, EnumerationListsOneSensorsEntries) {
    MDCorrelationInfo info{};
    uint64_t id = 0;
    ASSERT_EQ(0, MDEnumCorrelationInfo(0x150, "QS5-52B00042", 0, &info, &id).code);
    EXPECT_EQ(2u, id);
    EXPECT_STREQ("LC11-88210", info.referenceSerial);
    EXPECT_STREQ("52B00042", info.monitorProduct); // the texts as the product adds them
    EXPECT_EQ(1, info.panelRevision);
    EXPECT_EQ(kNoMoreData, MDEnumCorrelationInfo(0x150, "QS5-52B00042", 1, &info, &id).code);
    EXPECT_EQ(kNoMoreData, MDEnumCorrelationInfo(0x150, "QS5-OTHER", 0, &info, &id).code);

    MDIFSv3CorrelationData ifs{};
    EXPECT_EQ(kInvalidData, MDGetIFSv3CorrelationData(2, &ifs).code);
    EXPECT_EQ(kNotRegistered, MDGetIFSv3CorrelationData(9, &ifs).code);
    ASSERT_EQ(0, MDGetIFSv3CorrelationData(1, &ifs).code);
    EXPECT_EQ(180, ifs.reference.dimmerOut);
    EXPECT_EQ(0.5, ifs.toneCorrection.value[0].red.X);
}

TEST_F(Databases, AddedEntriesAreKeptWithTheirDatesAndTexts) {
    MDIFSv3CorrelationData data{};
    data.reference.setTemperature = 26.5;
    CSSG2_Date date{2025, 4, 1, 12, 0};
    uint64_t dated = 0, undated = 0;
    // The texts are stored as given, whatever order the caller used.
    ASSERT_EQ(0, MDAddIFSv3CorrelationData(0x131, "QS3-41A00017", 8, "LS8-20419", "41A00017", "VX2710", 3,
                                           data, &date, &dated)
                     .code);
    ASSERT_EQ(0, MDAddIFSv3CorrelationData(0x131, "QS3-41A00017", 8, "LS8-20419", "41A00017", "VX2710", 3,
                                           data, nullptr, &undated)
                     .code);
    EXPECT_EQ(3u, dated);
    EXPECT_EQ(4u, undated);

    CSSG2_Date back{};
    ASSERT_EQ(0, MDGetCorrelationDataDate(dated, &back).code);
    EXPECT_EQ(4, back.month);
    EXPECT_EQ(kNoMoreData, MDGetCorrelationDataDate(undated, &back).code);

    MDCorrelationInfo info{};
    uint64_t id = 0;
    ASSERT_EQ(0, MDEnumCorrelationInfo(0x131, "QS3-41A00017", 1, &info, &id).code);
    EXPECT_EQ(dated, id);
    EXPECT_STREQ("41A00017", info.monitorProduct);
    EXPECT_STREQ("VX2710", info.monitorSerial);

    Value const entries = World()["correlationDatabase"];
    ASSERT_EQ(4u, entries.size());
    EXPECT_EQ(Value("IFSv3"), entries[2]["kind"]);
    EXPECT_EQ(Value(26.5), entries[2]["correlationData"]["reference"]["setTemperature"]);
    EXPECT_TRUE(entries[3]["date"].isNull());
}

TEST_F(Databases, MatrixLookupsMatchTheMonitorByEitherText) {
    MDCorrelationMatrixInfo info{};
    unsigned long id = 0;
    for (char const* monitor : {"VX2710", "41A00017"}) {
        char text[17];
        std::snprintf(text, sizeof text, "%s", monitor);
        ASSERT_EQ(0, MDEnumCorrelationMatrixInfo(0x131, text, 3, 0, &info, &id).code);
        EXPECT_EQ(1u, id);
        ASSERT_EQ(0, MDGetLatestCorrelationMatrixID(0x131, 8, "LS8-20419", text, 3, &id).code);
        EXPECT_EQ(1u, id);
    }
    char product[] = "VX2710";
    EXPECT_EQ(kNoMoreData, MDEnumCorrelationMatrixInfo(0x131, product, 1, 0, &info, &id).code);
    EXPECT_EQ(kNoMoreData, MDGetLatestCorrelationMatrixID(0x131, 11, "LS8-20419", product, 3, &id).code);

    // The latest is the one added last.
    char serial[] = "41A00017";
    double matrix[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    unsigned long added = 0;
    ASSERT_EQ(0, MDAddCorrelationMatrix(0x131, "QS3-41A00017", 8, "LS8-20419", serial, product, 3, 1, 12,
                                        matrix, nullptr, &added)
                     .code);
    EXPECT_EQ(2u, added);
    ASSERT_EQ(0, MDGetLatestCorrelationMatrixID(0x131, 8, "LS8-20419", product, 3, &id).code);
    EXPECT_EQ(added, id);
    CSSG2_Date date{};
    EXPECT_EQ(kNoMoreData, MDGetCorrelationMatrixDate(added, &date).code);
    ASSERT_EQ(0, MDGetCorrelationMatrixDate(1, &date).code);
    EXPECT_EQ(2025, date.year);
    EXPECT_EQ(Value(12), World()["matrixDatabase"][1]["correlationID"]);
}

} // namespace
