#pragma once

#include "awards/ui/services.h"
#include "interchange/ui/services.h"
#include "qsl/ui/services.h"
#include "reference/ui/services.h"

#include <QObject>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QAction;

namespace logentry {
class frmlog;
}

namespace app {

/// The windows beside the main one: each is made when it is first asked for, shown again after that, and
/// stays until the program ends.
class Windows : public QObject {
    Q_OBJECT

public:
    /// All outlive it.
    Windows(const interchange::Services &interchange, const qsl::Services &qsl,
            const awards::Services &awards, const reference::Services &reference, logentry::frmlog &main);

protected:
    /// The main window closes after all others have: one that cannot save what was typed keeps it open.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using Make = std::function<std::unique_ptr<QWidget>()>;
    /// A place for a window that is made later.
    [[nodiscard]] std::size_t newPlace();
    /// Makes the window of a place where there is none yet, and shows it before the others.
    void bringUp(std::size_t place, const Make &make);
    void open(QAction *action, Make make);
    void openAwards(const awards::Services &services, logentry::frmlog &main);
    void openReference(const reference::Services &services, logentry::frmlog &main);
    void openBureau(const qsl::Services &services, logentry::frmlog &main);

    std::vector<std::unique_ptr<QWidget>> m_windows;
};

} // namespace app
