#include "storage/log/date_text.h"

#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

// 16 November 2026, 04:33:10, a Monday.
constexpr SYSTEMTIME kTime = {2026, 11, 1, 16, 4, 33, 10, 0};
constexpr FILETIME kFileTime = {0x957AC700, 0x01DD7583};

class DateTextTest : public tests::DeviceTest {
protected:
    static Text Format(LCTYPE item) {
        char16_t buffer[kDateTimeTextUnits];
        const std::size_t length = FormatDateTimeText(kTime, buffer, item);
        EXPECT_EQ(length, Text(buffer).size());
        return buffer;
    }
};

TEST_F(DateTextTest, ShortAndLongDateAreTheUsers) {
    EXPECT_EQ(Text(u"11/16/26, 4:33:10 AM"), Format(LOCALE_SSHORTDATE));
    EXPECT_EQ(Text(u"Monday, November 16, 2026, 4:33:10 AM"), Format(LOCALE_SLONGDATE));
}

TEST_F(DateTextTest, ADatePatternThatCannotBeReadIsSpelledOut) {
    device().Fault("GetLocaleInfoW", 1, 1, ERROR_INVALID_FLAGS);
    EXPECT_EQ(Text(u"16 November 2026, 4:33:10 AM"), Format(LOCALE_SSHORTDATE));
}

TEST_F(DateTextTest, ATimePatternThatCannotBeReadHas24Hours) {
    device().Fault("GetLocaleInfoW", 2, 1, ERROR_INVALID_FLAGS);
    EXPECT_EQ(Text(u"11/16/26, 4:33:10"), Format(LOCALE_SSHORTDATE));
}

TEST_F(DateTextTest, ADateThatCannotBeFormattedLeavesTheTime) {
    device().Fault("GetDateFormatW", 1, 1, ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Text(u", 4:33:10 AM"), Format(LOCALE_SSHORTDATE));
}

TEST_F(DateTextTest, ATimeThatCannotBeFormattedLeavesTheDate) {
    device().Fault("GetTimeFormatW", 1, 1, ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Text(u"11/16/26, "), Format(LOCALE_SSHORTDATE));
}

TEST_F(DateTextTest, AFileTimeIsNotMovedToTheZone) {
    device().Command("set zone UTC-5");
    char16_t buffer[kDateTimeTextUnits];
    EXPECT_EQ(20u, FormatFileTimeText(kFileTime, buffer, LOCALE_SSHORTDATE));
    EXPECT_EQ(Text(u"11/16/26, 4:33:10 AM"), buffer);
}

TEST_F(DateTextTest, AFileTimeThatIsNoDateIsAnEmptyText) {
    char16_t buffer[kDateTimeTextUnits] = u"before";
    EXPECT_EQ(0u, FormatFileTimeText({0xFFFFFFFF, 0xFFFFFFFF}, buffer, LOCALE_SSHORTDATE));
    EXPECT_EQ(Text(), buffer);
}

TEST_F(DateTextTest, APlainDateHasDigitsAlone) {
    device().Set("locale.shortdate", "dddd, MMMM dd, yyyy");
    char16_t buffer[kDateTimeTextUnits];
    FormatPlainDateTime(kTime, buffer);
    EXPECT_EQ(Text(u"2026-11-16, 04:33"), buffer);
    FormatPlainFileTime(kFileTime, buffer);
    EXPECT_EQ(Text(u"2026-11-16, 04:33"), buffer);
    FormatPlainFileTime({0xFFFFFFFF, 0xFFFFFFFF}, buffer);
    EXPECT_EQ(Text(), buffer);
}

}  // namespace
}  // namespace tolvenar
