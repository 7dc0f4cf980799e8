#include "pge/PlatformLinux.h"

#include "pge/PixelEngine.h"

#include <GL/glx.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace pge {

namespace {

// Xlib ends the process when the server goes away, through exit(), whose destructors would
// then free textures of a context that no longer exists. Say so and end at once instead.
int ConnectionLost(Display*) {
    std::fprintf(stderr, "\n[pge] Die Verbindung zum X-Server ist abgebrochen - das Programm endet\n");
    std::_Exit(1);
}

// Adds or removes the full-screen state through the window manager (EWMH).
void SendFullScreenState(Display* display, Window window, bool full) {
    const Window root = DefaultRootWindow(display);
    XEvent xev{};
    xev.type = ClientMessage;
    xev.xclient.window = window;
    xev.xclient.message_type = XInternAtom(display, "_NET_WM_STATE", False);
    xev.xclient.format = 32;
    xev.xclient.data.l[0] = full ? 1 : 0; // add or remove
    xev.xclient.data.l[1] = long(XInternAtom(display, "_NET_WM_STATE_FULLSCREEN", False));
    XSendEvent(display, root, False, SubstructureRedirectMask | SubstructureNotifyMask, &xev);
}

// Whether a window manager that follows EWMH runs: it names itself on the root window.
bool WindowManagerRuns(Display* display) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char* data = nullptr;
    const Atom check = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", True);
    if (check == None) return false;
    XGetWindowProperty(display, DefaultRootWindow(display), check, 0, 1, False, AnyPropertyType, &type, &format,
                       &count, &after, &data);
    if (data) XFree(data);
    return type != None && count > 0;
}

} // namespace

void FillKeyTable() {
    mapKeys[0x00] = NONE;
    for (int i = 0; i < 26; ++i) mapKeys[size_t(XK_a + i)] = uint8_t(A + i);
    for (int i = 0; i < 12; ++i) mapKeys[size_t(XK_F1 + i)] = uint8_t(F1 + i);
    for (int i = 0; i < 10; ++i) {
        mapKeys[size_t(XK_0 + i)] = uint8_t(K0 + i);
        mapKeys[size_t(XK_KP_0 + i)] = uint8_t(NP0 + i);
    }
    mapKeys[XK_Down] = DOWN;
    mapKeys[XK_Left] = LEFT;
    mapKeys[XK_Right] = RIGHT;
    mapKeys[XK_Up] = UP;
    // All three enter keys give ENTER; RETURN is never produced.
    mapKeys[XK_KP_Enter] = ENTER;
    mapKeys[XK_Return] = ENTER;
    mapKeys[XK_Linefeed] = ENTER;
    mapKeys[XK_BackSpace] = BACK;
    mapKeys[XK_Escape] = ESCAPE;
    mapKeys[XK_Pause] = PAUSE;
    mapKeys[XK_Scroll_Lock] = SCROLL;
    mapKeys[XK_Tab] = TAB;
    mapKeys[XK_Delete] = DEL;
    mapKeys[XK_Home] = HOME;
    mapKeys[XK_End] = END;
    mapKeys[XK_Page_Up] = PGUP;
    mapKeys[XK_Page_Down] = PGDN;
    mapKeys[XK_Insert] = INS;
    mapKeys[XK_Shift_L] = SHIFT;
    mapKeys[XK_Shift_R] = SHIFT;
    mapKeys[XK_Control_L] = CTRL;
    mapKeys[XK_Control_R] = CTRL;
    mapKeys[XK_space] = SPACE;
    mapKeys[XK_period] = PERIOD;
    mapKeys[XK_minus] = MINUS;
    mapKeys[XK_equal] = EQUALS;
    mapKeys[XK_KP_Multiply] = NP_MUL;
    mapKeys[XK_KP_Add] = NP_ADD;
    mapKeys[XK_KP_Divide] = NP_DIV;
    mapKeys[XK_KP_Subtract] = NP_SUB;
    mapKeys[XK_KP_Decimal] = NP_DECIMAL;
    mapKeys[XK_KP_Home] = HOME;
    mapKeys[XK_KP_End] = END;
    mapKeys[XK_KP_Up] = UP;
    mapKeys[XK_KP_Down] = DOWN;
    mapKeys[XK_KP_Left] = LEFT;
    mapKeys[XK_KP_Right] = RIGHT;
    mapKeys[XK_KP_Page_Up] = PGUP;
    mapKeys[XK_KP_Page_Down] = PGDN;
    mapKeys[XK_KP_Insert] = INS;
    mapKeys[XK_KP_Delete] = DEL;
    mapKeys[XK_semicolon] = OEM_1;
    mapKeys[XK_slash] = OEM_2;
    mapKeys[XK_asciitilde] = OEM_3;
}

uint32_t TypedCharacter(unsigned long keysym, const char* text, int length) {
    if (length == 1) return uint8_t(text[0]);
    // Keysyms 0x01000100 and above stand for the Unicode character of their low bits.
    if (keysym >= 0x01000100 && keysym <= 0x0110FFFF) return uint32_t(keysym - 0x01000000);
    return 0;
}

rcode Platform_Linux::ApplicationStartUp() { return OK; }

rcode Platform_Linux::ApplicationCleanUp() {
    if (!display) return OK;
    XDestroyWindow(display, window);
    if (visualInfo) XFree(visualInfo);
    visualInfo = nullptr;
    return OK;
}

rcode Platform_Linux::ThreadStartUp() { return OK; }

rcode Platform_Linux::ThreadCleanUp() { return renderer->DestroyDevice(); }

rcode Platform_Linux::CreateGraphics(bool bFullScreen, bool bEnableVSYNC, const vi2d& vViewPos,
                                     const vi2d& vViewSize) {
    renderer->PrepareDevice();
    if (renderer->CreateDevice({display, &window, visualInfo}, bFullScreen, bEnableVSYNC) != OK) return FAIL;
    renderer->UpdateViewport(vViewPos, vViewSize);
    return OK;
}

rcode Platform_Linux::CreateWindowPane(const vi2d& windowPos, vi2d& windowSize, bool bFullScreen) {
    XInitThreads();
    // A write to a server that is gone then fails instead of ending the process unasked.
    std::signal(SIGPIPE, SIG_IGN);
    XSetIOErrorHandler(ConnectionLost);
    display = XOpenDisplay(nullptr);
    if (!display) {
        const char* name = std::getenv("DISPLAY");
        std::fprintf(stderr, "[pge] Kein X-Server erreichbar (DISPLAY=%s): ohne Bildschirm kein Fenster\n",
                     name ? name : "");
        return FAIL;
    }
    const Window root = DefaultRootWindow(display);

    GLint attributes[] = {GLX_RGBA, GLX_DEPTH_SIZE, 24, GLX_DOUBLEBUFFER, None};
    XVisualInfo* vi = glXChooseVisual(display, 0, attributes);
    if (!vi) {
        std::fprintf(stderr, "[pge] Das X-Display bietet kein passendes OpenGL-Visual\n");
        XCloseDisplay(display);
        display = nullptr;
        return FAIL;
    }
    visualInfo = vi;

    XSetWindowAttributes swa{};
    swa.colormap = XCreateColormap(display, root, vi->visual, AllocNone);
    swa.event_mask = KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask |
                     PointerMotionMask | ExposureMask | StructureNotifyMask | FocusChangeMask;
    window = XCreateWindow(display, root, windowPos.x, windowPos.y, unsigned(windowSize.x),
                           unsigned(windowSize.y), 0, vi->depth, InputOutput, vi->visual,
                           CWColormap | CWEventMask, &swa);

    Atom wmDelete = XInternAtom(display, "WM_DELETE_WINDOW", True);
    XSetWMProtocols(display, window, &wmDelete, 1);
    XMapWindow(display, window);
    XStoreName(display, window, "Pixelrahmen");

    if (bFullScreen) {
        XMapWindow(display, window);
        SendFullScreenState(display, window, true);
        XFlush(display);
        XWindowAttributes gwa;
        XGetWindowAttributes(display, window, &gwa);
        windowSize = {gwa.width, gwa.height};
    }

    FillKeyTable();
    return OK;
}

rcode Platform_Linux::SetWindowTitle(const std::string& s) {
    if (display) XStoreName(display, window, s.c_str());
    return OK;
}

rcode Platform_Linux::SetFullScreen(bool bFullScreen) {
    if (!display) return FAIL;
    SendFullScreenState(display, window, bFullScreen);
    if (!WindowManagerRuns(display)) {
        if (bFullScreen) {
            XWindowAttributes gwa;
            XGetWindowAttributes(display, window, &gwa);
            windowed[0] = gwa.x;
            windowed[1] = gwa.y;
            windowed[2] = gwa.width;
            windowed[3] = gwa.height;
            XWindowAttributes root;
            XGetWindowAttributes(display, DefaultRootWindow(display), &root);
            XMoveResizeWindow(display, window, 0, 0, unsigned(root.width), unsigned(root.height));
        } else if (windowed[2] > 0 && windowed[3] > 0) {
            XMoveResizeWindow(display, window, windowed[0], windowed[1], unsigned(windowed[2]), unsigned(windowed[3]));
        }
    }
    XFlush(display);
    return OK;
}

rcode Platform_Linux::StartSystemEventLoop() { return OK; }

rcode Platform_Linux::HandleSystemEvent() {
    PixelEngine* pge = ptrPGE;
    XEvent xev;
    while (XPending(display)) {
        XNextEvent(display, &xev);
        switch (xev.type) {
        case Expose: {
            XWindowAttributes gwa;
            XGetWindowAttributes(display, window, &gwa);
            pge->pge_UpdateWindowSize(gwa.width, gwa.height);
            break;
        }
        case ConfigureNotify:
            pge->pge_UpdateWindowSize(xev.xconfigure.width, xev.xconfigure.height);
            break;
        case KeyPress:
        case KeyRelease: {
            KeySym sym = 0;
            char text[8];
            const int length = XLookupString(&xev.xkey, text, sizeof text, &sym, nullptr);
            if (sym != 0) pge->pge_UpdateKeyState(int32_t(sym), xev.type == KeyPress);
            if (xev.type == KeyRelease) {
                releasedKey = xev.xkey.keycode;
                releasedAt = xev.xkey.time;
            } else if (xev.xkey.keycode != releasedKey || xev.xkey.time != releasedAt) {
                if (const uint32_t code = TypedCharacter(sym, text, length))
                    pge->pge_KeyTyped(code, (xev.xkey.state & ControlMask) != 0);
            }
            break;
        }
        case ButtonPress:
        case ButtonRelease: {
            const bool down = xev.type == ButtonPress;
            switch (xev.xbutton.button) {
            case 1: pge->pge_UpdateMouseState(0, down); break;
            case 2: pge->pge_UpdateMouseState(2, down); break;
            case 3: pge->pge_UpdateMouseState(1, down); break;
            case 4: if (down) pge->pge_UpdateMouseWheel(120); break;
            case 5: if (down) pge->pge_UpdateMouseWheel(-120); break;
            default: break;
            }
            break;
        }
        case MotionNotify:
            pge->pge_UpdateMouse(xev.xmotion.x, xev.xmotion.y);
            break;
        case MappingNotify:
            // The keyboard's map changed (a typing tool lends keys their characters so):
            // XLookupString is to read the new one.
            XRefreshKeyboardMapping(&xev.xmapping);
            break;
        case FocusIn:
            pge->pge_UpdateKeyFocus(true);
            break;
        case FocusOut:
            pge->pge_UpdateKeyFocus(false);
            break;
        case ClientMessage:
            bAtomActive = false;
            break;
        default:
            break;
        }
    }
    return OK;
}

} // namespace pge
