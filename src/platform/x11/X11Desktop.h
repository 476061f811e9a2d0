// Every platform interface of an X11 desktop, over one connection.
//
// Threads: main thread, with a Qt application.
#pragma once

#include "platform/Queues.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/qt/SessionLock.h"
#include "platform/x11/Connection.h"
#include "platform/x11/ModifierMap.h"
#include "platform/x11/PanelStack.h"
#include "platform/x11/RaisedWindows.h"
#include "platform/x11/RenderFormats.h"
#include "platform/x11/ScreenLayout.h"
#include "platform/x11/X11Accessibility.h"
#include "platform/x11/X11EventPoster.h"
#include "platform/x11/X11EventTap.h"
#include "platform/x11/X11OwnWindows.h"
#include "platform/x11/X11Panel.h"
#include "platform/x11/X11ScreenCapture.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11WindowServer.h"
#include "platform/x11/X11Workspace.h"

namespace skylet::platform::x11 {

class X11Desktop {
  public:
    // All of it must outlive the desktop.
    struct Services {
        MainQueue& mainQueue;
        SerialQueueFactory& queues;
        qt::AccessibilityTrust& accessibilityTrust;
        qt::SessionLock& sessionLock;
    };

    X11Desktop(Connection& connection, const Services& services);
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;

    [[nodiscard]] WindowServer& windowServer() { return windowServer_; }
    [[nodiscard]] Accessibility& accessibility() { return accessibility_; }
    [[nodiscard]] ScreenCapture& screenCapture() { return screenCapture_; }
    [[nodiscard]] PanelFactory& panelFactory() { return panelFactory_; }
    [[nodiscard]] Workspace& workspace() { return workspace_; }
    [[nodiscard]] Screens& screens() { return screens_; }
    [[nodiscard]] EventTap& eventTap() { return eventTap_; }
    [[nodiscard]] EventPoster& eventPoster() { return eventPoster_; }
    [[nodiscard]] OwnWindows& ownWindows() { return ownWindows_; }
    // The key-down of a key code and modifier state of X; nothing for modifiers and keys of no keyboard here.
    [[nodiscard]] std::optional<KeyEvent> keyDown(std::uint32_t keyCode, std::uint32_t state) const;

  private:
    Connection& connection_;
    qt::SessionLock& sessionLock_;
    RenderFormats formats_;
    ScreenLayout layout_;
    ModifierMap modifiers_;
    RaisedWindows raised_;
    X11WindowServer windowServer_;
    X11Accessibility accessibility_;
    X11ScreenCapture screenCapture_;
    PanelStack panelStack_;
    X11PanelFactory panelFactory_;
    X11Workspace workspace_;
    X11Screens screens_;
    X11EventTap eventTap_;
    X11EventPoster eventPoster_;
    X11OwnWindows ownWindows_;
    Subscription lockChanges_;
    Subscription mappingChanges_;
};

} // namespace skylet::platform::x11
