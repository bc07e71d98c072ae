#include "ui/keyrepeat.h"

#include <QGuiApplication>

#include <X11/XKBlib.h>

namespace ui {

bool reportReleasesOnce()
{
    auto *application = dynamic_cast<QGuiApplication *>(QCoreApplication::instance());
    if (application == nullptr)
        return false;
    auto *x11 = application->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->display() == nullptr)
        return false;
    Bool supported = False;
    return XkbSetDetectableAutoRepeat(x11->display(), True, &supported) == True && supported == True;
}

} // namespace ui
