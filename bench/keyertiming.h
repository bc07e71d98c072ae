#pragma once

#include <QTextStream>

namespace bench {

/// Sends a text of at least that many seconds through the keyer, over a line that notes the moment of each
/// edge, and prints how far the edges are off. Needs a QApplication; blocks for as long as the text lasts.
void measureKeyer(QTextStream &out, int seconds);

} // namespace bench
