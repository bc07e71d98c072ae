// Serial ports of Unix systems: by the natural order of their device names.
#include "cw/ui/serialline.h"

#include <QSerialPortInfo>

namespace cw {

QString serialPortName(int number)
{
    QStringList names;
    const auto ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &port : ports)
        names.append(port.systemLocation());
    return inNaturalOrder(names).value(number - 1);
}

} // namespace cw
