#include "RulesTestSupport.h"

#include <random>
#include <sstream>

using namespace torvane;
using namespace torvane::testing_support;

namespace {

void Put(std::ostream& out, const std::vector<Cell>& cells) {
    out << '[';
    for (const Cell& c : cells) out << c.x << ',' << c.y << ' ';
    out << ']';
}

// Every field of the state that the rules change, written out for comparison.
std::string Snapshot(const Game& g) {
    std::ostringstream out;
    out << int(g.phase) << ' ' << g.level << ' ' << g.score << ' ' << g.clock << ' ' << g.buildLeft << ' '
        << g.config.shots << ' ' << g.config.pieces << '\n';
    const RoundStats& s = g.stats;
    out << s.buildScore << ' ' << s.repairScore << ' ' << s.held << ' ' << s.lost << ' ' << s.levelBonus << ' '
        << s.timeBonus << ' ' << s.gapCells << ' ' << s.dropped << ' ' << s.overallPct << ' ' << s.passed;
    for (int v : s.towerPct) out << " t" << v;
    for (int v : s.sectorPct) out << " s" << v;
    out << '\n';
    for (const Tower& t : g.towers) {
        for (int id : t.cells) out << id << ' ';
        out << '\n';
    }
    for (const auto& [id, p] : g.pieces) {
        out << id << p.type << p.ruin << p.tower;
        Put(out, p.cells);
    }
    out << '\n' << g.nextPieceId << ' ' << g.nextShotId << ' ' << g.activeTower << ' '
        << std::string(g.supply.begin(), g.supply.end()) << ' ' << g.selected << ' ' << g.cursorX << ' '
        << g.cursorY << ' ' << g.rotation << ' ' << g.autoEndAt << ' ' << g.inspectEndAt << '\n';
    for (const Target& t : g.targets) {
        out << t.id << ' ' << t.piece << ' ' << t.tower << ' ' << t.firedAt << ' ' << t.hitAt;
        Put(out, t.cells);
        for (const Prep& p : t.preps) {
            out << p.type;
            Put(out, p.cells);
        }
        out << '\n';
    }
    for (const Hole& h : g.holes) {
        out << h.id << ' ' << h.tower << ' ' << h.openedAt << ' ' << h.collapseAt << ' ' << h.bells;
        Put(out, h.cells);
        out << '\n';
    }
    out << g.focus.kind << ' ' << g.focus.id << ' ' << g.shotsLeft << ' ' << g.nextShotAt << ' ' << g.attackEndAt
        << ' ' << g.wave << ' ' << g.waveShotsLeft << ' ' << g.bonusPieces << ' ' << g.lineStood << '\n';
    const UndoRecord& u = g.undo;
    out << u.valid << int(u.phase) << ' ' << u.tower << ' ' << u.piece << ' ' << u.target << ' ' << u.type << ' '
        << u.rotation << ' ' << u.x << ' ' << u.selected << ' ' << u.points << ' ' << u.until;
    Put(out, u.cells);
    return out.str();
}

std::string Describe(const std::vector<Event>& events) {
    std::ostringstream out;
    for (const Event& e : events) {
        out << e.kind << ' ' << int(e.sfx) << ' ' << e.value << ' ' << e.tower << ' ' << e.count << ' ' << e.text;
        Put(out, e.cells);
        out << '\n';
    }
    return out.str();
}

// One step of play chosen by `choice`, through the ways the application has into
// the rules: the build operations behind the keys, Act, the clock, and the card
// buttons between the phases.
void Step(Game& g, int choice, float dt) {
    switch (g.phase) {
    case Phase::Title: g.NewGame(); return;
    case Phase::Announce: g.BeginAttack(); return;
    case Phase::Eval: g.NextLevel(); return;
    case Phase::Over: g.NewGame(); return;
    default: break;
    }
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
            ASSERT_EQ(Describe(a.TakeEvents()), Describe(b.TakeEvents())) << "step " << i;
            ASSERT_EQ(Snapshot(a), Snapshot(b)) << "step " << i;
            ASSERT_TRUE(GridMatchesPieces(a)) << "step " << i;
        }
    }
    EXPECT_TRUE(a.rng == b.rng);
}

} // namespace

class GameDeterminism : public RulesTest {};

TEST_F(GameDeterminism, RingGamesWithTheSameSeedAndCallsStayIdentical) {
    for (int difficulty = 0; difficulty < 4; ++difficulty) {
        SCOPED_TRACE(difficulty);
        GetSettings().difficulty = difficulty;
        GetSettings().repair_mode = difficulty % 2;
        GetSettings().piece_choice = difficulty >= 2;
        PlayTwin(100 + difficulty, 3000);
    }
}

TEST_F(GameDeterminism, ClassicGamesWithTheSameSeedAndCallsStayIdentical) {
    GetSettings().classic = 1;
    for (int mode = 0; mode < 4; ++mode) {
        SCOPED_TRACE(mode);
        GetSettings().repair_mode = mode % 2;
        GetSettings().difficulty = mode;
        PlayTwin(200 + mode, 3000);
    }
}

TEST_F(GameDeterminism, DifferentSeedsPartWays) {
    Game a(1), b(2);
    EXPECT_NE(Snapshot(a), Snapshot(b));
}
