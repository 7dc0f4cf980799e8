#pragma once
// The window and event side of the engine.
#include "pge/Pixel.h"
#include "pge/Renderer.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace pge {

class Platform {
public:
    virtual ~Platform() = default;
    virtual rcode ApplicationStartUp() = 0;
    virtual rcode ApplicationCleanUp() = 0;
    virtual rcode ThreadStartUp() = 0;
    virtual rcode ThreadCleanUp() = 0;
    virtual rcode CreateGraphics(bool bFullScreen, bool bEnableVSYNC, const vi2d& vViewPos,
                                 const vi2d& vViewSize) = 0;
    // May change windowSize (full screen takes what the window manager gives).
    virtual rcode CreateWindowPane(const vi2d& windowPos, vi2d& windowSize, bool bFullScreen) = 0;
    virtual rcode SetWindowTitle(const std::string& s) = 0;
    // Between window and full screen on an open window.
    virtual rcode SetFullScreen(bool bFullScreen) = 0;
    virtual rcode StartSystemEventLoop() = 0;
    virtual rcode HandleSystemEvent() = 0;

    static PixelEngine* ptrPGE;
};

// The process-wide platform, made by the engine's constructor.
extern std::unique_ptr<Platform> platform;

// Native key codes to pge::Key values, filled by the platform when its window opens.
extern std::map<size_t, uint8_t> mapKeys;

} // namespace pge
