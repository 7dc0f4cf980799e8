#pragma once
// The window on X11, with its GLX context.
#include "pge/Platform.h"

struct _XDisplay;

namespace pge {

// Fills mapKeys from X keysyms; the window does it when it opens.
void FillKeyTable();

// The character that a key press types, from its keysym and the text XLookupString made of
// it (Latin-1, control characters included): that text's one byte, else the code point of a
// keysym that stands for a Unicode character; 0 when the press types nothing.
uint32_t TypedCharacter(unsigned long keysym, const char* text, int length);

class Platform_Linux : public Platform {
public:
    rcode ApplicationStartUp() override;
    rcode ApplicationCleanUp() override;
    rcode ThreadStartUp() override;
    rcode ThreadCleanUp() override;
    rcode CreateGraphics(bool bFullScreen, bool bEnableVSYNC, const vi2d& vViewPos,
                         const vi2d& vViewSize) override;
    // Without an X server: one line on stderr and FAIL.
    rcode CreateWindowPane(const vi2d& windowPos, vi2d& windowSize, bool bFullScreen) override;
    rcode SetWindowTitle(const std::string& s) override;
    // Asks the window manager; without one that knows full screen, the window covers the
    // screen itself and goes back to its place after.
    rcode SetFullScreen(bool bFullScreen) override;
    rcode StartSystemEventLoop() override;
    rcode HandleSystemEvent() override;

private:
    _XDisplay* display = nullptr;
    unsigned long window = 0;
    void* visualInfo = nullptr; // XVisualInfo*
    int windowed[4] = {0, 0, 0, 0}; // x, y, width, height before the screen was covered
    // The last key release: the server's auto-repeat sends a release and a press of the same
    // key with the same time, and such a press types nothing.
    unsigned int releasedKey = 0;
    unsigned long releasedAt = 0;
};

} // namespace pge
