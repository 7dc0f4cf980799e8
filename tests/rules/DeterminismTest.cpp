#include "RulesTestSupport.h"

#include <random>
#include <sstream>

using namespace torvane;
using namespace torvane::testing_support;

namespace {

std::ostream& operator<<(std::ostream& out, const std::vector<Cell>& cells) {
    for (const Cell& c : cells) out << c.x << ',' << c.y << ' ';
    return out << '|';
}

// Every field of the state that the rules change, written out for comparison.
std::string Snapshot(const Game& g) {
    std::ostringstream o;
    const RoundStats& s = g.stats;
    o << int(g.phase) << ' ' << g.level << ' ' << g.score << ' ' << g.clock << ' ' << g.buildLeft << ' '
      << s.buildScore << ' ' << s.repairScore << ' ' << s.held << ' ' << s.lost << ' ' << s.levelBonus << ' '
      << s.timeBonus << ' ' << s.gapCells << ' ' << s.dropped << ' ' << s.overallPct << ' ' << s.passed << '\n';
    for (const Tower& t : g.towers)
        for (int id : t.cells) o << id << ' ';
    for (const auto& [id, p] : g.pieces) o << id << p.type << p.ruin << p.tower << p.cells;
    o << '\n' << g.nextPieceId << ' ' << g.nextShotId << ' ' << g.activeTower << ' '
      << std::string(g.supply.begin(), g.supply.end()) << ' ' << g.selected << ' ' << g.cursorX << ' '
      << g.cursorY << ' ' << g.rotation << ' ' << g.autoEndAt << ' ' << g.inspectEndAt << '\n';
    for (const Target& t : g.targets) {
        o << t.id << ' ' << t.piece << ' ' << t.firedAt << ' ' << t.hitAt << t.cells;
        for (const Prep& p : t.preps) o << p.type << p.cells;
    }
    for (const Hole& h : g.holes) o << h.id << ' ' << h.openedAt << ' ' << h.collapseAt << ' ' << h.bells << h.cells;
    o << g.focus.kind << ' ' << g.focus.id << ' ' << g.shotsLeft << ' ' << g.nextShotAt << ' ' << g.attackEndAt
      << ' ' << g.wave << ' ' << g.waveShotsLeft << ' ' << g.bonusPieces << ' ' << g.lineStood << ' '
      << g.undo.valid << g.undo.piece << ' ' << g.undo.target << ' ' << g.undo.until << g.undo.cells;
    for (const Event& e : g.events)
        o << e.kind << ' ' << int(e.sfx) << ' ' << e.value << ' ' << e.tower << ' ' << e.count << e.text << e.cells;
    return o.str();
}

// One step of play through the application's ways into the rules.
void Step(Game& g, int choice, float dt) {
    if (g.phase == Phase::Title || g.phase == Phase::Over) return g.NewGame();
    if (g.phase == Phase::Announce) return g.BeginAttack();
    if (g.phase == Phase::Eval) return g.NextLevel();
    if (g.phase == Phase::Build && choice % 16 < 8) {
        switch (choice % 16) {
        case 0: g.Move(-1); break;
        case 1: g.Move(1); break;
        case 2: g.Rotate(); break;
        case 3: g.Drop(); break;
        case 4: g.Cycle(); break;
        case 5: g.Undo(); break;
        case 6: g.SwitchTower(1); break;
        default: g.EndBuild(choice % 5 == 0); break;
        }
    } else {
        g.Act(static_cast<Action>(choice % 8));
    }
    g.Update(dt);
}

void PlayTwin(unsigned seed, int steps) {
    Game a(seed), b(seed);
    std::mt19937 chooser(seed * 31 + 7);
    for (int i = 0; i < steps; ++i) {
        const int choice = static_cast<int>(chooser() % 1000);
        const float dt = 0.01f + 0.04f * static_cast<float>(chooser() % 100) / 100.0f;
        Step(a, choice, dt);
        Step(b, choice, dt);
        if (i % 50 == 0 || i == steps - 1) {
            ASSERT_EQ(Snapshot(a), Snapshot(b)) << "step " << i;
            ASSERT_TRUE(GridMatchesPieces(a)) << "step " << i;
            a.TakeEvents();
            b.TakeEvents();
        }
    }
    EXPECT_TRUE(a.rng == b.rng);
}

} // namespace

class GameDeterminism : public RulesTest {};

TEST_F(GameDeterminism, GamesWithTheSameSeedAndCallsStayIdenticalInEveryMode) {
    for (int mode = 0; mode < 8; ++mode) {
        SCOPED_TRACE(mode);
        GetSettings().classic = mode / 4;
        GetSettings().difficulty = mode % 4;
        GetSettings().repair_mode = mode % 2;
        GetSettings().piece_choice = mode % 4 >= 2;
        PlayTwin(100 + mode, 3000);
    }
    EXPECT_NE(Snapshot(Game(1)), Snapshot(Game(2)));
}
