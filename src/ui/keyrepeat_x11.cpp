#include "ui/keyrepeat.h"

#include <QGuiApplication>

#include <X11/XKBlib.h>
#include <xcb/xcb.h>

namespace ui {

namespace {

class X11KeyWatch final : public QAbstractNativeEventFilter {
public:
    explicit X11KeyWatch(RepeatMarker &marker) : m_marker(marker) {}

    bool nativeEventFilter(const QByteArray &kind, void *message, qintptr *) override
    {
        if (kind != "xcb_generic_event_t")
            return false;
        constexpr int kSentByProgram = 0x80;
        const auto *event = static_cast<xcb_generic_event_t *>(message);
        switch (event->response_type & ~kSentByProgram) {
        case XCB_KEY_PRESS: {
            const auto *key = static_cast<xcb_key_press_event_t *>(message);
            m_marker.pressed(key->detail, key->time);
            break;
        }
        case XCB_KEY_RELEASE:
            m_marker.released(static_cast<xcb_key_release_event_t *>(message)->detail);
            break;
        case XCB_FOCUS_OUT:
            m_marker.forget();
            break;
        default:
            break;
        }
        return false;
    }

private:
    RepeatMarker &m_marker;
};

} // namespace

std::unique_ptr<QAbstractNativeEventFilter> watchKeys(RepeatMarker &marker)
{
    auto *application = dynamic_cast<QGuiApplication *>(QCoreApplication::instance());
    if (application == nullptr)
        return nullptr;
    auto *x11 = application->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->display() == nullptr)
        return nullptr;
    Bool supported = False;
    if (XkbSetDetectableAutoRepeat(x11->display(), True, &supported) != True || supported != True)
        return nullptr;
    return std::make_unique<X11KeyWatch>(marker);
}

} // namespace ui
