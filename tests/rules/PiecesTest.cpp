#include "RulesTestSupport.h"

#include "game/Pieces.h"

#include <cmath>
#include <cstring>
#include <random>
#include <set>

using namespace torvane;
using namespace torvane::testing_support;

namespace {
const char kAllLetters[] = "IOTLJSZ21";
}

TEST(PiecesShapes, RotationKeepsTheTurnedOrderOfCells) {
    EXPECT_EQ(Rotated('I', 1), (std::vector<Cell>{{0, 3}, {0, 2}, {0, 1}, {0, 0}}));
    EXPECT_EQ(Rotated('I', 2), (std::vector<Cell>{{3, 0}, {2, 0}, {1, 0}, {0, 0}}));
    // O turned three times: (x, y) -> (y, -x) thrice is (x, y) -> (-y, x), then moved by +1 in x.
    const std::vector<Cell> o3 = Rotated('O', 3);
    EXPECT_EQ(o3, (std::vector<Cell>{{1, 0}, {1, 1}, {0, 0}, {0, 1}}));
    EXPECT_EQ(ShapeWidth(o3), 2);
    EXPECT_EQ(ShapeHeight(o3), 2);
    // T turned once: (0,0)(1,0)(2,0)(1,1) -> (0,0)(0,-1)(0,-2)(1,-1) -> moved up by 2.
    EXPECT_EQ(Rotated('T', 1), (std::vector<Cell>{{0, 2}, {0, 1}, {0, 0}, {1, 1}}));
}

TEST(PiecesShapes, TurnsAreTakenModuloFour) {
    for (const char* p = kAllLetters; *p; ++p) {
        EXPECT_EQ(Rotated(*p, -1), Rotated(*p, 3)) << *p;
        EXPECT_EQ(Rotated(*p, 5), Rotated(*p, 1)) << *p;
        EXPECT_EQ(Rotated(*p, -8), Rotated(*p, 0)) << *p;
        EXPECT_EQ(Rotated(*p, 0), BaseShape(*p)) << *p;
    }
}

TEST(PiecesShapes, EveryRotationIsNormalisedAndKeepsItsCells) {
    for (const char* p = kAllLetters; *p; ++p) {
        for (int r = 0; r < 4; ++r) {
            const std::vector<Cell> cells = Rotated(*p, r);
            ASSERT_EQ(cells.size(), BaseShape(*p).size());
            int minX = 99, minY = 99;
            for (const Cell& c : cells) {
                minX = std::min(minX, c.x);
                minY = std::min(minY, c.y);
            }
            EXPECT_EQ(minX, 0) << *p << r;
            EXPECT_EQ(minY, 0) << *p << r;
            EXPECT_EQ(std::set<Cell>(cells.begin(), cells.end()).size(), cells.size());
            // A quarter turn swaps width and height.
            EXPECT_EQ(ShapeWidth(Rotated(*p, r + 1)), ShapeHeight(cells)) << *p << r;
        }
    }
}

TEST(PiecesShapes, UnknownLettersAreTheSingleCell) {
    EXPECT_EQ(BaseShape('x'), (std::vector<Cell>{{0, 0}}));
    EXPECT_EQ(BaseShape(0), (std::vector<Cell>{{0, 0}}));
    EXPECT_EQ(BaseShape('2'), (std::vector<Cell>{{0, 0}, {1, 0}}));
    EXPECT_EQ(ShapeWidth({}), 0);
    EXPECT_EQ(ShapeHeight({}), 0);
    EXPECT_EQ(std::strlen(kTetrominoes), 7u);
}

class PiecesShuffle : public RulesTest {};

TEST_F(PiecesShuffle, FisherYatesFromTheBack) {
    Game g(1);
    g.rng.seed(99);
    std::vector<char> list = {'a', 'b', 'c', 'd', 'e', 'f'};
    g.Shuffle(list);

    std::mt19937 reference(99);
    std::vector<char> expected = {'a', 'b', 'c', 'd', 'e', 'f'};
    for (int i = 5; i >= 1; --i) {
        const float r = static_cast<float>(std::ldexp(static_cast<double>(reference()), -32));
        const int j = std::min(i, static_cast<int>(static_cast<float>(i + 1) * r));
        std::swap(expected[i], expected[j]);
    }
    EXPECT_EQ(list, expected);
    // Both engines have drawn five numbers.
    EXPECT_EQ(g.rng(), reference());
}

TEST_F(PiecesShuffle, ShortListsDrawNothing) {
    Game g(1);
    const std::mt19937 before = g.rng;
    std::vector<char> one = {'a'};
    std::vector<char> none;
    g.Shuffle(one);
    g.Shuffle(none);
    EXPECT_TRUE(g.rng == before);
    EXPECT_EQ(one, std::vector<char>{'a'});
}

TEST_F(PiecesShuffle, EverySevenPiecesHoldEachShapeOnce) {
    GetSettings().classic = 1;
    for (unsigned seed = 1; seed <= 20; ++seed) {
        Game g(seed);
        g.StartLevel(7);  // 87 pieces: twelve whole bags and three more
        ASSERT_EQ(static_cast<int>(g.supply.size()), g.config.pieces);
        for (size_t start = 0; start + 7 <= g.supply.size(); start += 7) {
            const std::string bag(g.supply.begin() + start, g.supply.begin() + start + 7);
            EXPECT_EQ(std::set<char>(bag.begin(), bag.end()).size(), 7u) << bag;
            EXPECT_EQ(bag.find_first_not_of(kTetrominoes), std::string::npos) << bag;
        }
    }
}

class PiecesSupply : public RulesTest {};

TEST_F(PiecesSupply, CycleIsRefusedAloudWhenChoiceIsOff) {
    Game g = ClassicGame(1);
    GetSettings().piece_choice = false;
    g.supply = {'I'};
    g.Cycle();
    std::vector<Event> events = g.TakeEvents();
    EXPECT_EQ(Texts(events, Event::Say), std::vector<std::string>{"Teile aussuchen ist ausgeschaltet"});
    EXPECT_EQ(Sounds(events), std::vector<Sfx>{Sfx::Deny});
    EXPECT_TRUE(g.PiecesLimited());

    GetSettings().piece_choice = true;
    EXPECT_FALSE(g.PiecesLimited());
    g.Cycle();
    EXPECT_TRUE(g.TakeEvents().empty());  // one piece: nothing at all

    g.supply = {'I', 'O', 'T'};
    g.selected = 2;
    g.rotation = 3;
    g.Cycle();
    EXPECT_EQ(g.selected, 0);
    EXPECT_EQ(g.rotation, 0);
    EXPECT_EQ(Sounds(g.TakeEvents()), std::vector<Sfx>{Sfx::Tick});
}

TEST_F(PiecesSupply, CycleInTheAttackIgnoresTheChoiceSetting) {
    Game g = ClassicGame(1);
    GetSettings().piece_choice = false;
    g.phase = Phase::Attack;
    EXPECT_FALSE(g.PiecesLimited());
    g.supply = {'I', 'O'};
    g.selected = 0;
    g.Cycle();
    EXPECT_EQ(g.selected, 1);
}

TEST_F(PiecesSupply, SelectStepWrapsBothWaysAndKeepsTheRotation) {
    Game g = ClassicGame(1);
    g.supply = {'I', 'O', 'T', 'L'};
    g.selected = 0;
    g.rotation = 2;
    g.SelectStep(-1);
    EXPECT_EQ(g.selected, 3);
    g.SelectStep(6);
    EXPECT_EQ(g.selected, 1);
    EXPECT_EQ(g.rotation, 2);
    EXPECT_EQ(g.SelectedType(), 'O');
    g.TakeEvents();
    g.supply = {'I'};
    g.selected = 0;
    g.SelectStep(1);
    EXPECT_EQ(g.selected, 0);
    EXPECT_TRUE(g.TakeEvents().empty());
    g.supply.clear();
    EXPECT_EQ(g.SelectedType(), 0);
}

TEST_F(PiecesSupply, GiveBackInsertsRightAfterTheSelectedPiece) {
    Game g = ClassicGame(1);
    g.supply.clear();
    g.selected = 3;
    g.GiveBack({'1', '2'});
    EXPECT_EQ(g.supply, (std::vector<char>{'1', '2'}));
    EXPECT_EQ(g.selected, 0);

    g.supply = {'I', 'O', 'T', 'L', 'J'};
    g.selected = 4;
    g.GiveBack({'S'});
    EXPECT_EQ(g.supply, (std::vector<char>{'I', 'O', 'T', 'L', 'J', 'S'}));
    EXPECT_EQ(g.selected, 4);

    g.selected = 1;
    g.GiveBack({'1', '1'});
    EXPECT_EQ(g.supply, (std::vector<char>{'I', 'O', '1', '1', 'T', 'L', 'J', 'S'}));
    EXPECT_EQ(g.selected, 1);
    EXPECT_EQ(g.SelectedType(), 'O');

    g.GiveBack({});
    EXPECT_EQ(g.supply.size(), 8u);
}
