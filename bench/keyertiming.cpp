#include "bench/keyertiming.h"

#include "bench/figures.h"
#include "cw/keyline.h"
#include "cw/morse.h"
#include "cw/steadypacer.h"
#include "cw/ui/keyer.h"
#include "cw/ui/urgent.h"

#include <QThread>

#include <chrono>
#include <cmath>
#include <memory>
#include <thread>
#include <vector>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBar = 80; // about 48 words a minute: many edges, and more than an operator asks for
constexpr Budget kEdgeBudget{1, 1};

enum class Line { Rts, Dtr };

template <typename Moment>
struct Edge {
    Line line;
    bool high;
    Moment at;
};
using PlannedEdge = Edge<std::chrono::nanoseconds>; ///< from the beginning of the transmission
using NotedEdge = Edge<Clock::time_point>;

/// Notes when each line changes.
class NotingLine final : public cw::KeyLine {
public:
    explicit NotingLine(std::size_t edges) { m_edges.reserve(edges); }

    [[nodiscard]] QString deviceName(int) override { return {}; }
    void open(int) override {}
    void setRts(bool high) override { m_edges.push_back({Line::Rts, high, Clock::now()}); }
    void setDtr(bool high) override { m_edges.push_back({Line::Dtr, high, Clock::now()}); }
    void close() noexcept override {}

    [[nodiscard]] const std::vector<NotedEdge> &edges() const noexcept { return m_edges; }

private:
    std::vector<NotedEdge> m_edges;
};

/// The program's own pacer; tells when the transmission began.
class NotingPacer final : public cw::Pacer {
public:
    void arm() override { m_pacer.arm(); }
    void begin() override
    {
        m_pacer.begin();
        m_begun = Clock::now();
    }
    [[nodiscard]] bool wait(std::chrono::nanoseconds length) override { return m_pacer.wait(length); }
    void stop() override { m_pacer.stop(); }

    [[nodiscard]] Clock::time_point begun() const noexcept { return m_begun; }

private:
    cw::SteadyPacer m_pacer;
    Clock::time_point m_begun;
};

/// When the lines are to change, straight from the elements: each dot or dash is followed by one unit of
/// silence, a silence lasts two, the last one is left out, and four units pass before the transmitter is
/// switched off.
std::vector<PlannedEdge> plan(const QString &text, std::chrono::nanoseconds unit)
{
    constexpr int kSilence = 2;
    constexpr int kTail = 4;
    std::vector<PlannedEdge> edges = {{Line::Rts, true, {}}};
    qint64 units = 0;
    const QString elements = cw::elementString(text).chopped(1);
    for (const QChar element : elements) {
        const int length = element.digitValue();
        if (length == 0) {
            units += kSilence;
            continue;
        }
        edges.push_back({Line::Dtr, true, units * unit});
        units += length;
        edges.push_back({Line::Dtr, false, units * unit});
        ++units;
    }
    edges.push_back({Line::Rts, false, (units + kTail) * unit});
    return edges;
}

/// The shortest run of these words that lasts as long.
QString textOf(std::chrono::seconds length, std::chrono::nanoseconds unit)
{
    const QStringList words = QStringLiteral("cq cq de ua3abc ua3abc pse k").split(QLatin1Char(' '));
    QString text;
    for (qsizetype i = 0; text.isEmpty() || plan(text, unit).back().at < length; ++i)
        text += words[i % words.size()] + QLatin1Char(' ');
    return text;
}

double milliseconds(Clock::duration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

/// How late the computer wakes a thread that only sleeps: half a unit after each planned edge, so that it is
/// not in the keyer's way. The keyer can do no better than that.
Samples wakeUps(const std::vector<PlannedEdge> &planned, std::chrono::nanoseconds unit)
{
    cw::makeThreadUrgent(); // as the keyer's own thread
    Samples samples;
    const Clock::time_point begun = Clock::now();
    for (const PlannedEdge &edge : planned) {
        const Clock::time_point due = begun + edge.at + unit / 2;
        std::this_thread::sleep_until(due);
        samples.add(milliseconds(Clock::now() - due));
    }
    return samples;
}

} // namespace

void measureKeyer(QTextStream &out, int seconds)
{
    cw::Speed speed;
    speed.setBar(kBar);
    const QString text = textOf(std::chrono::seconds(seconds), speed.unit());
    const std::vector<PlannedEdge> planned = plan(text, speed.unit());

    NotingLine line(planned.size());
    NotingPacer pacer;
    cw::Keyer keyer(line, pacer);
    keyer.speed().setBar(kBar);
    Samples computer;
    const std::unique_ptr<QThread> probe(QThread::create([&] { computer = wakeUps(planned, speed.unit()); }));
    probe->start();
    const cw::Result result = keyer.send(text, 1);
    probe->wait();
    const std::vector<NotedEdge> &noted = line.edges();
    if (result.outcome != cw::Outcome::Sent || noted.size() != planned.size())
        qFatal("the text was not sent as it should be");

    // The first edge, RTS going up, is the beginning itself.
    Samples errors;
    Samples first;
    Samples last;
    const std::size_t tenth = planned.size() / 10;
    double error = 0;
    for (std::size_t i = 1; i < planned.size(); ++i) {
        if (noted[i].line != planned[i].line || noted[i].high != planned[i].high)
            qFatal("edge %zu is not the one of the text", i);
        error = milliseconds(noted[i].at - (pacer.begun() + planned[i].at));
        errors.add(std::abs(error));
        if (i <= tenth)
            first.add(std::abs(error));
        if (i + tenth >= planned.size())
            last.add(std::abs(error));
    }
    printFigure(out, QStringLiteral("keyer, error of an edge"), errors, kEdgeBudget);
    printFigure(out, QStringLiteral("  in the first tenth of the text"), first);
    printFigure(out, QStringLiteral("  in the last tenth of the text"), last);
    printFigure(out, QStringLiteral("  the computer's own wake-ups meanwhile"), computer);
    out << "keyer: " << planned.size() << " edges, unit " << milliseconds(speed.unit())
        << " ms; the last edge came " << QString::number(std::abs(error), 'f', 3) << " ms "
        << (error < 0 ? "before" : "after") << " its time at "
        << QString::number(milliseconds(planned.back().at) / 1e3, 'f', 1) << " s\n";
}

} // namespace bench
