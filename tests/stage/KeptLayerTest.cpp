// A drawing kept between frames gives, frame after frame, what drawing it anew gives, however
// the pixels it finds change, and is drawn again only where they did.
#include "engine/Canvas.h"
#include "game/stage/KeptLayer.h"

#include <gtest/gtest.h>

#include <random>

namespace torvane {
namespace {

namespace cv = adv::canvas;

TEST(KeptLayerTest, KeptFramesEqualFreshOnesWhateverTheGroundDoes) {
    const int w = 120, h = 90;
    std::mt19937 pick(3);
    pge::Sprite ground(w, h);
    for (pge::Pixel& p : ground.pColData) p.n = static_cast<uint32_t>(pick());
    // Translucent shapes over each other, and one pixel in five left alone by all of them.
    float shift = 0.0f;
    int draws = 0;
    pge::Sprite* on = nullptr;
    const auto draw = [&]() {
        ++draws;
        cv::FillEllipse(on, {60.0f + shift, 45.0f}, 40.0f, 25.0f, pge::Pixel(40, 90, 200, 120));
        cv::Polyline(on, {{10, 80}, {60, 12}, {110, 80}}, pge::Pixel(250, 250, 250, 200), 3.0f, true, 6.0f, 2.0f);
        cv::FillRect(on, 30, 30, 20, 35, pge::Pixel(200, 40, 40, 255));
        cv::Line(on, {5, 5}, {115, 40}, pge::Pixel(0, 0, 0, 90));
    };
    const cv::Rect rect{5, 5, 116, 84};
    KeptLayer layer;
    struct Step {
        const char* what;
        int changedRows; // rows of the ground changed, at random places
        float shift;
        bool redrawn;     // whether draw must run at all
    };
    const Step steps[] = {{"first", 0, 0.0f, true},        {"unchanged", 0, 0.0f, false},
                          {"a few rows", 3, 0.0f, true},    {"unchanged again", 0, 0.0f, false},
                          {"scattered rows", 9, 0.0f, true}, {"most rows", 80, 0.0f, true},
                          {"another input", 0, 1.5f, true},  {"unchanged", 0, 1.5f, false}};
    for (const Step& step : steps) {
        for (int k = 0; k < step.changedRows; ++k) {
            const int y = std::uniform_int_distribution<int>(0, h - 1)(pick);
            const int x = std::uniform_int_distribution<int>(0, w - 8)(pick);
            for (int i = 0; i < 8; ++i) ground.pColData[static_cast<size_t>(y * w + x + i)].n = static_cast<uint32_t>(pick());
        }
        shift = step.shift;
        std::vector<int32_t> key;
        kept::Add(key, shift);
        pge::Sprite fresh(w, h), frame(w, h);
        fresh.pColData = frame.pColData = ground.pColData;
        on = &fresh;
        draw();
        on = &frame;
        draws = 0;
        kept::Draw(&frame, layer, key, rect, draw);
        ASSERT_EQ(frame.pColData, fresh.pColData) << step.what;
        EXPECT_EQ(draws > 0, step.redrawn) << step.what;
    }
}

// A rectangle reaching beyond the target is cut to it; one wholly outside is drawn every
// time, as is.
TEST(KeptLayerTest, RectanglesAreCutToTheTarget) {
    pge::Sprite frame(20, 10);
    KeptLayer layer;
    int draws = 0;
    const auto draw = [&]() {
        ++draws;
        cv::FillRect(&frame, -5, -5, 40, 40, pge::Pixel(10, 20, 30, 100));
    };
    for (int i = 0; i < 2; ++i) {
        frame.pColData.assign(frame.pColData.size(), pge::Pixel(200, 200, 200));
        kept::Draw(&frame, layer, {}, {-5, -5, 40, 40}, draw);
        for (const auto& [x, y] : {std::pair{0, 0}, std::pair{19, 9}}) // both corners, kept or not
            EXPECT_EQ(frame.GetPixel(x, y), cv::Over(pge::Pixel(200, 200, 200), pge::Pixel(10, 20, 30, 100))) << i;
    }
    EXPECT_EQ(draws, 1);
    kept::Draw(&frame, layer, {}, {30, 0, 40, 10}, draw);
    kept::Draw(&frame, layer, {}, {30, 0, 40, 10}, draw);
    EXPECT_EQ(draws, 3);
}

} // namespace
} // namespace torvane
