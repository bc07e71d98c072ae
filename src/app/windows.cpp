#include "app/windows.h"

#include "awards/ui/frmdipin.h"
#include "awards/ui/frmdiplom.h"
#include "interchange/ui/fdob.h"
#include "interchange/ui/frmexpo.h"
#include "logentry/ui/frmlog.h"
#include "qsl/ui/frmhelplog.h"
#include "qsl/ui/qslburo.h"
#include "reference/ui/dxcc1.h"
#include "reference/ui/frmcalbuk.h"
#include "reference/ui/rusdx.h"

#include <QAction>
#include <QEvent>

#include <algorithm>
#include <utility>

namespace app {

namespace {

/// Shows a window before the others; a maximised one stays so.
void bringUp(QWidget &window)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace

Windows::Windows(const interchange::Services &interchange, const qsl::Services &qsl,
                 const awards::Services &awards, const reference::Services &reference, logentry::frmlog &main)
{
    open(main.menu().mnuDob, [interchange, &main] {
        auto window = std::make_unique<interchange::Fdob>(interchange);
        connect(window.get(), &interchange::Fdob::logChanged, &main, &logentry::frmlog::logChanged);
        return window;
    });
    open(main.menu().mnuadex, [interchange, &main] {
        auto window = std::make_unique<interchange::frmExpo>(interchange);
        connect(window.get(), &interchange::frmExpo::logChanged, &main, &logentry::frmlog::logChanged);
        return window;
    });
    openBureau(qsl, main);
    openAwards(awards, main);
    openReference(reference, main);
    open(main.menu().mnuhelp, [qsl] { return std::make_unique<qsl::frmhelplog>(qsl); });
    main.installEventFilter(this);
}

bool Windows::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Close)
        return QObject::eventFilter(watched, event);
    const bool closed = std::all_of(m_windows.begin(), m_windows.end(), [](const auto &window) {
        return !window || !window->isVisible() || window->close();
    });
    if (!closed)
        event->ignore();
    return !closed;
}

void Windows::openBureau(const qsl::Services &services, logentry::frmlog &main)
{
    open(main.menu().mnuqsl, [services, &main] {
        auto window = std::make_unique<qsl::QSLburo>(services);
        connect(window.get(), &qsl::QSLburo::logChanged, &main, &logentry::frmlog::logChanged);
        connect(window->mnulog, &QAction::triggered, &main, [&main] { app::bringUp(main); });
        connect(window->mnudxcc, &QAction::triggered, main.menu().mnudxcc, &QAction::trigger);
        return window;
    });
}

void Windows::openAwards(const awards::Services &services, logentry::frmlog &main)
{
    const std::size_t application = newPlace();
    open(main.menu().mnudipl, [this, services, application, &main] {
        auto window = std::make_unique<awards::frmDIPLOM>(services);
        connect(window.get(), &awards::frmDIPLOM::logChanged, &main, &logentry::frmlog::logChanged);
        connect(window.get(), &awards::frmDIPLOM::applicationAsked, this, [this, services, application] {
            bringUp(application, [services] { return std::make_unique<awards::frmdipin>(services); });
        });
        return window;
    });
}

void Windows::openReference(const reference::Services &services, logentry::frmlog &main)
{
    open(main.menu().mnubuk, [services] { return std::make_unique<reference::frmcalbuk>(services); });
    const std::size_t regions = newPlace();
    open(main.menu().mnudxcc, [this, services, regions] {
        auto window = std::make_unique<reference::dxcc1>(services);
        connect(window.get(), &reference::dxcc1::regionsAsked, this, [this, services, regions] {
            bringUp(regions, [services] { return std::make_unique<reference::rusdx>(services); });
        });
        return window;
    });
}

std::size_t Windows::newPlace()
{
    m_windows.emplace_back();
    return m_windows.size() - 1;
}

void Windows::bringUp(std::size_t place, const Make &make)
{
    auto &window = m_windows[place];
    if (!window)
        window = make();
    app::bringUp(*window);
}

void Windows::open(QAction *action, Make make)
{
    connect(action, &QAction::triggered, this,
            [this, place = newPlace(), make = std::move(make)] { bringUp(place, make); });
}

} // namespace app
