#include "GUI/NumericDisplay.h"

#include <gtest/gtest.h>

namespace pulsara {
namespace {

TEST(NumericDisplay, ShowsItsDigitsWithLeadingZeros)
{
    struct Case {
        int32_t digits, value;
        std::u16string text;
    };
    const Case cases[] = {
        { 3, 0, u"000" },
        { 3, 7, u"007" },
        { 3, 150, u"150" },
        { 3, 1234, u"234" },
        { 2, -5, u"-5" },
    };
    for (const Case& c : cases) {
        NumericDisplay display(c.digits);
        display.setValue(c.value);
        EXPECT_EQ(display.text(), c.text) << c.value;
    }
}

} // namespace
} // namespace pulsara
