#include "ui/keyboardlayout.h"

#include <QGuiApplication>

#include <X11/XKBlib.h>

namespace ui {

namespace {

class NoKeyboardLayout final : public KeyboardLayout {
public:
    void activatePrevious() override {}
    void leaveLayoutOf(const QKeyEvent &) override {}
    [[nodiscard]] bool isCyrillic(const QKeyEvent &) override { return false; }
};

/// XKB groups of an X11 display.
class X11KeyboardLayout final : public KeyboardLayout {
public:
    explicit X11KeyboardLayout(Display *display) : m_display(display) {}

    void activatePrevious() override
    {
        XkbStateRec state{};
        if (XkbGetState(m_display, XkbUseCoreKbd, &state) == Success)
            leave(state.group);
    }

    void leaveLayoutOf(const QKeyEvent &event) override
    {
        // An event that did not come from the server has no group: then the active one is meant.
        if (event.nativeScanCode() == 0)
            activatePrevious();
        else
            leave(groupOf(event));
    }

    [[nodiscard]] bool isCyrillic(const QKeyEvent &event) override
    {
        if (event.nativeScanCode() == 0)
            return false;
        constexpr KeyCode kLetterKey = 38; // the key of A and Ф on every PC keyboard
        const KeySym symbol = XkbKeycodeToKeysym(m_display, kLetterKey, static_cast<int>(groupOf(event)), 0);
        constexpr KeySym kCyrillicSet = 0x600;
        constexpr KeySym kUnicodeCyrillic = 0x1000400;
        constexpr KeySym kSetMask = ~KeySym{0xff};
        return (symbol & kSetMask) == kCyrillicSet || (symbol & kSetMask) == kUnicodeCyrillic;
    }

private:
    /// The group in which a key was typed stands in bits 13 and 14 of its modifiers.
    [[nodiscard]] static unsigned groupOf(const QKeyEvent &event)
    {
        constexpr unsigned kGroupShift = 13;
        constexpr unsigned kGroupMask = 3;
        return (event.nativeModifiers() >> kGroupShift) & kGroupMask;
    }

    void leave(unsigned group)
    {
        const unsigned target = group == 0 ? m_other : 0;
        if (group != 0)
            m_other = group;
        if (target < groupCount()) {
            XkbLockGroup(m_display, XkbUseCoreKbd, target);
            XFlush(m_display);
        }
    }

    [[nodiscard]] unsigned groupCount() const
    {
        XkbDescPtr keyboard = XkbAllocKeyboard();
        if (keyboard == nullptr)
            return 1;
        unsigned count = 1;
        if (XkbGetControls(m_display, XkbGroupsWrapMask, keyboard) == Success && keyboard->ctrls != nullptr)
            count = keyboard->ctrls->num_groups;
        XkbFreeKeyboard(keyboard, XkbAllComponentsMask, True);
        return count;
    }

    Display *m_display;
    unsigned m_other = 1; ///< the group beside the first that was used last
};

} // namespace

std::unique_ptr<KeyboardLayout> makeKeyboardLayout()
{
    if (auto *application = dynamic_cast<QGuiApplication *>(QCoreApplication::instance())) {
        auto *x11 = application->nativeInterface<QNativeInterface::QX11Application>();
        if (x11 != nullptr && x11->display() != nullptr)
            return std::make_unique<X11KeyboardLayout>(x11->display());
    }
    return std::make_unique<NoKeyboardLayout>();
}

} // namespace ui
