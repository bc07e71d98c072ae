#include "cw/transmission.h"

#include "cw/morse.h"

namespace cw {

namespace {

class OpenLine {
public:
    OpenLine(KeyLine &line, int port) : m_line(line) { m_line.open(port); }
    OpenLine(const OpenLine &) = delete;
    OpenLine &operator=(const OpenLine &) = delete;
    ~OpenLine() { m_line.close(); }

private:
    KeyLine &m_line;
};

/// False where it was stopped.
bool playElement(int digit, std::chrono::nanoseconds unit, KeyLine &line, Pacer &pacer)
{
    constexpr int kSilence = 2;
    if (digit == 0)
        return pacer.wait(kSilence * unit);
    line.setDtr(true);
    const bool whole = pacer.wait(digit * unit);
    line.setDtr(false);
    return whole && pacer.wait(unit);
}

} // namespace

Result transmit(QStringView text, int port, Speed &speed, KeyLine &line, Pacer &pacer,
                const std::function<void(qsizetype)> &playing)
{
    constexpr int kTail = 4;
    const QString elements = elementString(text);
    try {
        const OpenLine open(line, port);
        line.setRts(true);
        pacer.begin();
        bool whole = true;
        for (qsizetype position = 1; whole && position < elements.size(); ++position) {
            if (playing)
                playing(position);
            whole = playElement(elements[position - 1].digitValue(), speed.unit(), line, pacer);
        }
        speed.recompute();
        // The window has been painting all along, so nothing more is handed to it before RTS falls.
        whole = whole && pacer.wait(kTail * speed.unit());
        line.setRts(false);
        return {whole ? Outcome::Sent : Outcome::Stopped, {}};
    } catch (const LineError &error) {
        return {Outcome::Busy, error.reason()};
    }
}

} // namespace cw
