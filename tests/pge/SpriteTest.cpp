#include "pge/Sprite.h"

#include <gtest/gtest.h>

TEST(SpriteAccess, EmptyAndOutsideReadBlank) {
    pge::Sprite empty(0, 5);
    EXPECT_TRUE(empty.pColData.empty());
    EXPECT_EQ(empty.GetPixel(0, 0), pge::BLANK);

    pge::Sprite s(3, 2);
    EXPECT_EQ(s.GetPixel(1, 1), pge::BLACK);
    EXPECT_EQ(s.GetPixel(-1, 0), pge::BLANK);
    EXPECT_FALSE(s.SetPixel(3, 0, pge::WHITE));
    EXPECT_TRUE(s.SetPixel(2, 1, pge::WHITE));
    EXPECT_EQ(s.pColData[2 + 1 * 3], pge::WHITE);
}
