#include "util/WindowStyle.h"

#include "util/WindowSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using mirabend::WindowStyle;
using ::testing::InSequence;
using ::testing::Return;

namespace {

class MockWindowSystem : public mirabend::WindowSystem {
public:
    MOCK_METHOD(mirabend::NativeHandle, findWindowByClass, (const QString&), (override));
    MOCK_METHOD(bool, setParent, (mirabend::NativeHandle, mirabend::NativeHandle), (override));
    MOCK_METHOD(bool, setWindowText, (mirabend::NativeHandle, const QString&), (override));
    MOCK_METHOD(bool, applyStyle, (mirabend::NativeHandle, std::uint32_t), (override));
    MOCK_METHOD(bool, showNormal, (mirabend::NativeHandle), (override));
    MOCK_METHOD(bool, moveResize, (mirabend::NativeHandle, int, int, int, int), (override));
    MOCK_METHOD(bool, setTopMost, (mirabend::NativeHandle, bool), (override));
};

} // namespace

TEST(WindowStyle, BitArithmeticOfEachSwitch) {
    constexpr auto T = WindowStyle::kTrue;
    EXPECT_EQ(WindowStyle::computeStyle(0, 0, 0, 0, 0, 0), 0x06000000u);
    EXPECT_EQ(WindowStyle::computeStyle(T, 0, 0, 0, 0, 0), 0x06C00000u);
    EXPECT_EQ(WindowStyle::computeStyle(0, T, 0, 0, 0, 0), 0x06080000u);
    EXPECT_EQ(WindowStyle::computeStyle(0, 0, T, 0, 0, 0), 0x06020000u);
    EXPECT_EQ(WindowStyle::computeStyle(0, 0, 0, T, 0, 0), 0x06010000u);
    EXPECT_EQ(WindowStyle::computeStyle(0, 0, 0, 0, T, 0), 0x06040000u);
    EXPECT_EQ(WindowStyle::computeStyle(0, 0, 0, 0, 0, T), 0x86000000u);
    EXPECT_EQ(WindowStyle::computeStyle(T, T, T, T, T, T), 0x86CF0000u);
}

TEST(WindowStyle, EveryLetWithAHandleAppliesOnlyTrueSwitchesThenShows) {
    MockWindowSystem system;
    {
        InSequence order;
        // Setting the handle applies the switches as they are: no frame at all.
        EXPECT_CALL(system, applyStyle(42u, 0x06000000u)).WillOnce(Return(true));
        EXPECT_CALL(system, showNormal(42u)).WillOnce(Return(true));
        EXPECT_CALL(system, applyStyle(42u, 0x06C00000u)).WillOnce(Return(true));
        EXPECT_CALL(system, showNormal(42u)).WillOnce(Return(true));
        EXPECT_CALL(system, applyStyle(42u, 0x06C20000u)).WillOnce(Return(true));
        EXPECT_CALL(system, showNormal(42u)).WillOnce(Return(true));
    }
    WindowStyle style(&system);
    style.Border(1); // only True (-1) sets a switch, and without a handle nothing is applied
    style.Sysmenu(2);
    style.popup(-2);
    style.HWnd(42);
    style.Border(WindowStyle::kTrue);
    style.Minimize(WindowStyle::kTrue);
}
