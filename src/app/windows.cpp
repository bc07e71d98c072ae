#include "app/windows.h"

#include "interchange/ui/fdob.h"
#include "interchange/ui/frmexpo.h"
#include "logentry/ui/frmlog.h"

#include <QAction>

#include <utility>

namespace app {

Windows::Windows(const interchange::Services &services, logentry::frmlog &main)
{
    open(main.menu().mnuDob, [services, &main] {
        auto window = std::make_unique<interchange::Fdob>(services);
        connect(window.get(), &interchange::Fdob::logChanged, &main, &logentry::frmlog::logChanged);
        return window;
    });
    open(main.menu().mnuadex, [services, &main] {
        auto window = std::make_unique<interchange::frmExpo>(services);
        connect(window.get(), &interchange::frmExpo::logChanged, &main, &logentry::frmlog::logChanged);
        return window;
    });
}

void Windows::open(QAction *action, Make make)
{
    const std::size_t place = m_windows.size();
    m_windows.emplace_back();
    connect(action, &QAction::triggered, this, [this, place, make = std::move(make)] {
        auto &window = m_windows[place];
        if (!window)
            window = make();
        window->showNormal();
        window->raise();
        window->activateWindow();
    });
}

} // namespace app
