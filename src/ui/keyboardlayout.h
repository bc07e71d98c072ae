#pragma once

#include <QKeyEvent>

#include <memory>

namespace ui {

/// The platform's keyboard layout. Where the platform offers no way (or no second layout) nothing happens.
class KeyboardLayout {
public:
    KeyboardLayout() = default;
    KeyboardLayout(const KeyboardLayout &) = delete;
    KeyboardLayout &operator=(const KeyboardLayout &) = delete;
    virtual ~KeyboardLayout() = default;

    /// Activates the previous layout: of two layouts the other one than the active.
    virtual void activatePrevious() = 0;
    /// Activates the other layout than the one in which the key of `event` was typed. Set absolutely, so that
    /// several keys that wait in the queue switch once and not back and forth.
    virtual void leaveLayoutOf(const QKeyEvent &event) = 0;
    /// The key of `event` was typed in a Cyrillic layout. False where the platform does not tell.
    [[nodiscard]] virtual bool isCyrillic(const QKeyEvent &event) = 0;
};

/// The layout switch of the platform that the program runs on.
[[nodiscard]] std::unique_ptr<KeyboardLayout> makeKeyboardLayout();

} // namespace ui
