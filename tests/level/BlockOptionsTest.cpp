#include "level/BlockOptions.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

/// The step of an option by its saturation's offset, as level authors have it on their sheet.
int sheetStep(int offset)
{
    return offset < 2 ? 0 : offset < 5 ? 1 : offset < 8 ? 2 : 3;
}

int sheetPieces(int offset)
{
    return sheetStep(offset) + 1;
}

}  // namespace

TEST(CheckpointOption, TellsTypeNeedAndCoinsOfEverySaturation)
{
    for (int saturation = 0; saturation <= 100; ++saturation) {
        SCOPED_TRACE(saturation);
        CheckpointOption expected{CheckpointType::Checkpoint, false, 10};
        if (saturation > 90)
            expected = {CheckpointType::Start, false, 10};
        else if (saturation > 78)
            expected = {CheckpointType::Checkpoint, true, ((saturation - 79) / 3 + 1) * 10};
        else if (saturation > 68)
            expected = {CheckpointType::Checkpoint, false, ((saturation - 69) / 3 + 1) * 10};
        else if (saturation > 48)
            expected = {CheckpointType::Goal, false, ((saturation - 49) / 3 + 1) * 50};
        const CheckpointOption option = CheckpointOption::ofSaturation(saturation);
        EXPECT_EQ(option.type, expected.type);
        EXPECT_EQ(option.required, expected.required);
        EXPECT_EQ(option.coins, expected.coins);
    }
}

TEST(ButtonOption, TellsModeAndTimeOfEverySaturation)
{
    for (int saturation = 0; saturation <= 100; ++saturation) {
        SCOPED_TRACE(saturation);
        ButtonOption expected{ButtonMode::OneShot, 0.0f};
        if (saturation >= 59 && saturation < 91)
            // 1 for 59 to 61, 2 for 62 to 64, and so on.
            expected = {ButtonMode::Timed, float((saturation - 59) / 3 + 1)};
        else if (saturation >= 49 && saturation < 59)
            expected = {ButtonMode::Toggle, 1.0f};
        const ButtonOption option = ButtonOption::ofSaturation(saturation);
        EXPECT_EQ(option.mode, expected.mode);
        EXPECT_EQ(option.coolDown, expected.coolDown);
    }
}

TEST(GhostOption, TellsStateAndPeriodOfEverySaturation)
{
    // Of the steps 0 to 16; beyond there is no rhythm.
    const double periods[] = {0.5, 0.5, 1.0, 1.0, 1.0, 1.5, 1.5, 1.5, 2.0,
                              2.0, 2.0, 2.5, 2.5, 2.5, 3.0, 3.0, 3.0};
    for (int saturation = 0; saturation <= 100; ++saturation) {
        SCOPED_TRACE(saturation);
        double period = 0.0;
        if (saturation < 50 || saturation == 79)
            period = 0.5;
        else if (saturation <= 66)
            period = periods[saturation - 50];
        else if (saturation >= 80 && saturation <= 96)
            period = periods[saturation - 80];
        const GhostOption option = GhostOption::ofSaturation(saturation);
        EXPECT_EQ(option.initiallyOpaque, saturation >= 79);
        EXPECT_EQ(option.period, period);
    }
}

TEST(ElevatorOption, TellsModeAndTravelOfEverySaturation)
{
    const double travels[] = {-2.0, -1.5, -1.0, -0.5, 0.5, 1.0, 1.5, 2.0, 2.5};
    for (int saturation = 0; saturation <= 100; ++saturation) {
        SCOPED_TRACE(saturation);
        const bool automatic = saturation <= 73;
        // A step's nominal saturation and its two neighbours.
        const int step = std::max(0, (saturation - (automatic ? 50 : 75) + 1) / 3);
        const ElevatorOption option = ElevatorOption::ofSaturation(saturation);
        EXPECT_EQ(option.automatic, automatic);
        EXPECT_EQ(option.travel, travels[step]);
    }
}

TEST(TrapOption, NumbersTheKinds)
{
    EXPECT_EQ(int(TrapKind::None), -1);
    EXPECT_EQ(int(TrapKind::Mine), 0);
    EXPECT_EQ(int(TrapKind::Spring), 1);
    EXPECT_EQ(int(TrapKind::Trapdoor), 2);
    EXPECT_EQ(int(TrapKind::Well), 3);
}

TEST(TrapOption, TellsKindAndParameterOfEverySaturation)
{
    const double strength[] = {5.0, 8.0, 11.0, 14.0};
    const double side[] = {3.0, 4.0, 6.0, 7.0};
    for (int saturation = 0; saturation <= 100; ++saturation) {
        SCOPED_TRACE(saturation);
        TrapOption expected{TrapKind::Mine, 0.0};
        if (saturation > 88)
            expected = {TrapKind::Mine, double(sheetStep(saturation - 90))};
        else if (saturation > 78)
            expected = {TrapKind::Spring, strength[sheetStep(saturation - 80)]};
        else if (saturation > 68)
            expected = {TrapKind::Trapdoor, double(sheetStep(saturation - 70))};
        else if (saturation > 58)
            expected = {TrapKind::None, 0.0};
        else if (saturation > 48)
            expected = {TrapKind::Well, side[sheetStep(saturation - 50)]};
        const TrapOption option = TrapOption::ofSaturation(saturation);
        EXPECT_EQ(option.kind, expected.kind);
        EXPECT_EQ(option.parameter, expected.parameter);
    }
}

TEST(ItemOption, TellsKindCountAndAmountOfEverySaturation)
{
    for (int saturation = 0; saturation <= 100; ++saturation) {
        SCOPED_TRACE(saturation);
        ItemOption expected{ItemKind::Coin, 1, 10.0};
        if (saturation > 88) {
            const int pieces = sheetPieces(saturation - 90);
            expected = {ItemKind::Coin, pieces, pieces * 10.0};
        } else if (saturation > 78) {
            const int pieces = sheetPieces(saturation - 80);
            expected = {ItemKind::Coin, -pieces, pieces * -10.0};
        } else if (saturation > 68) {
            const int pieces = sheetPieces(saturation - 70);
            expected = {ItemKind::Heart, pieces, double(pieces)};
        } else if (saturation > 58) {
            const int pieces = sheetPieces(saturation - 60);
            expected = {ItemKind::Heart, -pieces, -double(pieces)};
        } else if (saturation > 48) {
            expected = {ItemKind::Weight, 0, sheetPieces(saturation - 50) * 3.0 - 2.0};
        }
        const ItemOption option = ItemOption::ofSaturation(saturation);
        EXPECT_EQ(option.kind, expected.kind);
        EXPECT_EQ(option.count, expected.count);
        EXPECT_EQ(option.amount, expected.amount);
    }
}

TEST(PortalOption, TellsFaceAndStrengthOfEverySaturation)
{
    const int bandOf[] = {90, 80, 70, 60, 50};
    const float strength[] = {0.0f, 0.5f, 1.0f, 1.5f};
    for (int saturation = 0; saturation <= 100; ++saturation) {
        SCOPED_TRACE(saturation);
        int face = 0;
        int offset = 0;
        for (int candidate = 4; candidate >= 0; --candidate) {
            if (saturation >= bandOf[candidate] - 1) {
                face = candidate;
                offset = saturation - bandOf[candidate];
            }
        }
        const PortalOption option = PortalOption::ofSaturation(saturation);
        EXPECT_EQ(int(option.face), face);
        EXPECT_FLOAT_EQ(option.strength, strength[sheetStep(offset)]);
    }
}
