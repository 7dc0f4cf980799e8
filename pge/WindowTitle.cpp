#include "pge/WindowTitle.h"

#include "pge/Platform.h"

#include <memory>

namespace adv {
namespace {

// Forwards everything to the wrapped platform, except that any title set through it
// is replaced by the stored one.
class FixedTitlePlatform : public pge::Platform {
public:
    explicit FixedTitlePlatform(std::unique_ptr<pge::Platform> wrapped) : inner(std::move(wrapped)) {}

    pge::rcode ApplicationStartUp() override { return inner->ApplicationStartUp(); }
    pge::rcode ApplicationCleanUp() override { return inner->ApplicationCleanUp(); }
    pge::rcode ThreadStartUp() override { return inner->ThreadStartUp(); }
    pge::rcode ThreadCleanUp() override { return inner->ThreadCleanUp(); }
    pge::rcode CreateGraphics(bool bFullScreen, bool bEnableVSYNC, const pge::vi2d& vViewPos,
                              const pge::vi2d& vViewSize) override {
        return inner->CreateGraphics(bFullScreen, bEnableVSYNC, vViewPos, vViewSize);
    }
    pge::rcode CreateWindowPane(const pge::vi2d& windowPos, pge::vi2d& windowSize, bool bFullScreen) override {
        return inner->CreateWindowPane(windowPos, windowSize, bFullScreen);
    }
    pge::rcode SetWindowTitle(const std::string&) override { return inner->SetWindowTitle(title); }
    pge::rcode SetFullScreen(bool bFullScreen) override { return inner->SetFullScreen(bFullScreen); }
    pge::rcode StartSystemEventLoop() override { return inner->StartSystemEventLoop(); }
    pge::rcode HandleSystemEvent() override { return inner->HandleSystemEvent(); }

    std::unique_ptr<pge::Platform> inner;
    std::string title;
};

} // namespace

void SetWindowTitle(const std::string& title) {
    if (!pge::platform) return;
    auto* fixed = dynamic_cast<FixedTitlePlatform*>(pge::platform.get());
    if (!fixed) {
        auto wrapper = std::make_unique<FixedTitlePlatform>(std::move(pge::platform));
        fixed = wrapper.get();
        pge::platform = std::move(wrapper);
    }
    fixed->title = title;
    fixed->inner->SetWindowTitle(title);
}

} // namespace adv
