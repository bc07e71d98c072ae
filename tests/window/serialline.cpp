// The keyer's line on a real device node whose modem lines the test program answers for.
#include "cw/ui/serialline.h"
#include "cw/steadypacer.h"
#include "cw/transmission.h"
#include "support/serialport.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <optional>

using namespace std::chrono_literals;

using testsupport::Device;
using testsupport::emulated;
using testsupport::ModemLines;
using testsupport::Port;

namespace {

/// A SerialLine whose one port is the Port of the test, whatever ports the computer has.
class LineOf final : public cw::KeyLine {
public:
    explicit LineOf(Port &port) : m_port(port) {}

    [[nodiscard]] QString deviceName(int) override { return m_port.device.name(); }
    void open(int) override { m_port.open(m_line); }
    void setRts(bool high) override { m_line.setRts(high); }
    void setDtr(bool high) override { m_line.setDtr(high); }
    void close() noexcept override { m_line.close(); }

private:
    Port &m_port;
    cw::SerialLine m_line;
};

/// Reason of the LineError that an operation throws; nothing where it throws none.
template <typename Operation>
std::optional<QString> refusal(Operation &&operation)
{
    try {
        operation();
    } catch (const cw::LineError &error) {
        return error.reason();
    }
    return {};
}

cw::Speed fastest()
{
    cw::Speed speed;
    speed.setBar(cw::Speed::kFastest);
    return speed;
}

cw::Result sendOver(Port &port, const QString &text)
{
    LineOf line(port);
    cw::SteadyPacer pacer;
    cw::Speed speed = fastest();
    return cw::transmit(text, 1, speed, line, pacer);
}

/// Levels of a port while "ea" goes over it: dot, gap, dot and dash.
const QStringList &levelsOfEa()
{
    static const QStringList levels = {
        QStringLiteral("DTR 0"), QStringLiteral("RTS 0"), QStringLiteral("RTS 1"), QStringLiteral("DTR 1"),
        QStringLiteral("DTR 0"), QStringLiteral("DTR 1"), QStringLiteral("DTR 0"), QStringLiteral("DTR 1"),
        QStringLiteral("DTR 0"), QStringLiteral("RTS 0")};
    return levels;
}

/// A program of its own that holds a device until its input ends.
int holdDevice(const QByteArray &device)
{
    ModemLines lines(device);
    emulated = &lines;
    cw::SerialLine line;
    if (refusal([&] { line.openDevice(QFile::decodeName(device)); }))
        return 1;
    constexpr char kReady = '+';
    if (::write(STDOUT_FILENO, &kReady, 1) != 1)
        return 1;
    char c = 0;
    while (::read(STDIN_FILENO, &c, 1) > 0) {
    }
    return 0;
}

/// A holdDevice() of this program that has the device.
class Holder {
public:
    explicit Holder(const Device &device)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--hold"), device.name()});
        m_holds = m_process.waitForReadyRead() && m_process.readAllStandardOutput() == "+";
    }
    [[nodiscard]] bool holds() const noexcept { return m_holds; }
    [[nodiscard]] bool letGo()
    {
        m_process.closeWriteChannel();
        return m_process.waitForFinished() && m_process.exitStatus() == QProcess::NormalExit &&
               m_process.exitCode() == 0;
    }
    [[nodiscard]] bool kill()
    {
        m_process.kill();
        return m_process.waitForFinished();
    }

private:
    QProcess m_process;
    bool m_holds = false;
};

/// Whether a process without the superuser's rights, for whom no lock counts, is refused the device. Nothing
/// where that could not be tried.
std::optional<bool> refusedToUser(const Port &port)
{
    enum Verdict : int { Refused = 10, Opened = 11, NoReason = 12 };
    constexpr uid_t kNobody = 65534;
    const pid_t child = ::fork();
    if (child == 0) {
        if (::getuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
            ::_exit(1);
        cw::SerialLine line;
        const auto reason = refusal([&] { line.openDevice(port.device.name()); });
        ::_exit(!reason ? Opened : reason->isEmpty() ? NoReason : Refused);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return {};
    switch (WEXITSTATUS(status)) {
    case Refused:
        return true;
    case Opened:
        return false;
    default:
        return {};
    }
}

using Clock = std::chrono::steady_clock;

/// Lets that much time pass.
void pass(Clock::duration time)
{
    cw::SteadyPacer pacer;
    pacer.begin();
    QVERIFY(pacer.wait(time));
}

} // namespace

class SerialLineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void opensWithBothLinesLow()
    {
        Port port;
        cw::SerialLine line;
        port.open(line);
        QVERIFY(!port.lines.dtr);
        QVERIFY(!port.lines.rts);
        // The key first: until it is down the transmitter may be on the air.
        QCOMPARE(port.lines.changes, QStringList({QStringLiteral("DTR 0"), QStringLiteral("RTS 0")}));
    }

    void keysWhatIsAsked()
    {
        Port port;
        cw::SerialLine line;
        port.open(line);
        port.lines.changes.clear();
        line.setRts(true);
        QVERIFY(port.lines.rts);
        QVERIFY(!port.lines.dtr);
        line.setDtr(true);
        line.setDtr(false);
        line.setDtr(false);
        line.setDtr(true);
        line.setRts(true);
        line.setRts(false);
        QVERIFY(port.lines.dtr);
        line.setDtr(false);
        QCOMPARE(port.lines.changes,
                 QStringList({QStringLiteral("RTS 1"), QStringLiteral("DTR 1"), QStringLiteral("DTR 0"),
                              QStringLiteral("DTR 1"), QStringLiteral("RTS 0"), QStringLiteral("DTR 0")}));
    }

    void closesWithBothLinesLow()
    {
        Port port;
        cw::SerialLine line;
        for (int i = 0; i < 3; ++i) {
            port.open(line);
            line.setRts(true);
            line.setDtr(true);
            line.close();
            QVERIFY(!port.lines.dtr);
            QVERIFY(!port.lines.rts);
            const int requests = port.lines.requests;
            line.close(); // nothing is open
            QCOMPARE(port.lines.requests, requests);
        }
        cw::SerialLine other;
        port.open(other);
    }

    void goesWithBothLinesLow()
    {
        Port port;
        {
            cw::SerialLine line;
            port.open(line);
            line.setRts(true);
            line.setDtr(true);
        }
        QVERIFY(!port.lines.dtr);
        QVERIFY(!port.lines.rts);
        cw::SerialLine other;
        port.open(other);
    }

    void noSuchDevice_data()
    {
        QTest::addColumn<QString>("device");
        QTest::newRow("no name") << QString();
        QTest::newRow("unknown path") << QStringLiteral("/dev/ttyNoSuchPort7");
        QTest::newRow("unknown name") << QStringLiteral("ttyNoSuchPort7");
        QTest::newRow("folder") << QStringLiteral("/dev");
        QTest::newRow("no port") << QStringLiteral("/dev/null");
    }

    void noSuchDevice()
    {
        QFETCH(QString, device);
        Port port;
        cw::SerialLine line;
        const auto reason = refusal([&] { line.openDevice(device); });
        QVERIFY(reason);
        QVERIFY(!reason->isEmpty());
        line.close(); // harmless
        port.open(line);
        line.setDtr(true);
        QVERIFY(port.lines.dtr);
    }

    void noSuchPortNumber()
    {
        constexpr int kMoreThanThereAre = 10000;
        cw::SerialLine line;
        QCOMPARE(line.deviceName(kMoreThanThereAre), QString());
        QCOMPARE(line.deviceName(0), QString());
        const auto reason = refusal([&] { line.open(kMoreThanThereAre); });
        QVERIFY(reason);
        QVERIFY(!reason->isEmpty());
    }

    void heldByAnotherLine()
    {
        Port port;
        cw::SerialLine first;
        port.open(first);
        first.setDtr(true);
        const int requests = port.lines.requests;
        cw::SerialLine second;
        const auto reason = refusal([&] { second.openDevice(port.device.name()); });
        QVERIFY(reason);
        QVERIFY(!reason->isEmpty());
        second.close();
        QCOMPARE(port.lines.requests, requests); // the first one's message goes on undisturbed
        QVERIFY(port.lines.dtr);
        first.close();
        port.open(second);
    }

    void heldByAnotherProgram_data()
    {
        QTest::addColumn<bool>("killed");
        QTest::newRow("that ends") << false;
        QTest::newRow("that is killed") << true;
    }

    void heldByAnotherProgram()
    {
        QFETCH(bool, killed);
        Port port;
        const int bystander = ::open(port.device.path().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        QVERIFY(bystander >= 0);
        Holder holder(port.device);
        QVERIFY(holder.holds());
        cw::SerialLine line;
        const auto reason = refusal([&] { port.open(line); });
        QVERIFY(reason);
        QVERIFY(!reason->isEmpty());
        QCOMPARE(port.lines.requests, 0);
        QVERIFY(killed ? holder.kill() : holder.letGo());
        // A port forgets the claim of a killed program with its last closing. A pseudo-terminal is never
        // closed while its other end is open, so that it has to be told.
        QCOMPARE(::ioctl(bystander, TIOCNXCL), 0);
        ::close(bystander);
        port.open(line); // a lock that a killed program left counts no longer
        line.setDtr(true);
        QVERIFY(port.lines.dtr);
    }

    /// A program that knows nothing of lock files but claims the device from the system.
    void claimedByAnotherProgram()
    {
        Port port;
        constexpr mode_t kForAll = 0666;
        QCOMPARE(::chmod(port.device.path().constData(), kForAll), 0);
        const int other = ::open(port.device.path().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        QVERIFY(other >= 0);
        QCOMPARE(refusedToUser(port), std::optional(false)); // open, not claimed
        QCOMPARE(::ioctl(other, TIOCEXCL), 0);
        QCOMPARE(refusedToUser(port), std::optional(true));
        QCOMPARE(::ioctl(other, TIOCNXCL), 0);
        QCOMPARE(refusedToUser(port), std::optional(false));
        ::close(other);
    }

    void pulledOutInMidMessage()
    {
        Port port;
        cw::SerialLine line;
        port.open(line);
        line.setRts(true);
        line.setDtr(true);
        line.setDtr(false);
        line.setDtr(true);
        port.lines.asked.clear();
        port.lines.failFrom = port.lines.requests + 1;
        for (const bool high : {false, true}) {
            const auto dtr = refusal([&] { line.setDtr(high); });
            QVERIFY(dtr);
            QVERIFY(!dtr->isEmpty());
            const auto rts = refusal([&] { line.setRts(high); });
            QVERIFY(rts);
            QVERIFY(!rts->isEmpty());
        }
        port.lines.asked.clear();
        line.close();
        QCOMPARE(port.lines.asked,
                 QStringList({QStringLiteral("DTR 0 fails"), QStringLiteral("RTS 0 fails")}));

        port.device.vanish();
        const auto gone = refusal([&] { line.openDevice(port.device.name()); });
        QVERIFY(gone);
        QVERIFY(!gone->isEmpty());
    }

    void pluggedInAgain()
    {
        Port port;
        cw::SerialLine line;
        port.open(line);
        port.lines.failFrom = 1;
        QVERIFY(refusal([&] { line.setDtr(true); }));
        line.close();
        port.lines.failFrom = 0;
        port.open(line);
        line.setDtr(true);
        QVERIFY(port.lines.dtr);
    }

    void wholeMessage_data()
    {
        QTest::addColumn<bool>("ownThread");
        QTest::newRow("by the caller's thread") << false;
        QTest::newRow("by a thread of its own") << true;
    }

    void wholeMessage()
    {
        QFETCH(bool, ownThread);
        Port port;
        cw::Result result{cw::Outcome::Busy, {}};
        const auto send = [&] { result = sendOver(port, QStringLiteral("ea")); };
        if (ownThread) {
            const std::unique_ptr<QThread> thread(QThread::create(send));
            thread->start();
            QVERIFY(thread->wait());
        } else {
            send();
        }
        QCOMPARE(result.outcome, cw::Outcome::Sent);
        QCOMPARE(port.lines.changes, levelsOfEa());
    }

    void emptyMessage()
    {
        Port port;
        QCOMPARE(sendOver(port, {}).outcome, cw::Outcome::Sent);
        QCOMPARE(port.lines.changes, QStringList({QStringLiteral("DTR 0"), QStringLiteral("RTS 0"),
                                                  QStringLiteral("RTS 1"), QStringLiteral("RTS 0")}));
    }

    void messageOverAnAbsentPort()
    {
        Port port;
        port.device.vanish();
        const cw::Result result = sendOver(port, QStringLiteral("ea"));
        QCOMPARE(result.outcome, cw::Outcome::Busy);
        QVERIFY(!result.reason.isEmpty());
        QCOMPARE(port.lines.requests, 0);
    }

    void stoppedByAnotherThread()
    {
        Port port;
        LineOf line(port);
        cw::SteadyPacer pacer;
        cw::Speed slowest;
        slowest.setBar(cw::Speed::kSlowest);
        cw::Result result;
        const std::unique_ptr<QThread> thread(QThread::create(
            [&] { result = cw::transmit(u"0000000000000000000000000", 1, slowest, line, pacer); }));
        thread->start();
        pacer.stop();
        QVERIFY(thread->wait());
        QCOMPARE(result.outcome, cw::Outcome::Stopped);
        QVERIFY(!port.lines.dtr);
        QVERIFY(!port.lines.rts);
    }

    void pulledOutAnywhere_data()
    {
        QTest::addColumn<bool>("once");
        QTest::newRow("for good") << false;
        QTest::newRow("for a moment") << true;
    }

    void pulledOutAnywhere()
    {
        QFETCH(bool, once);
        int busy = 0;
        int sent = 0;
        for (int call = 1;; ++call) {
            Port port;
            port.lines.failFrom = call;
            port.lines.failOnce = once;
            const cw::Result result = sendOver(port, QStringLiteral("a"));
            const QStringList &asked = port.lines.asked;
            if (port.lines.requests < call) {
                QCOMPARE(result.outcome, cw::Outcome::Sent);
                break;
            }
            QVERIFY(asked.size() >= 2);
            const QStringList last = asked.mid(asked.size() - 2);
            QVERIFY2(last.front().startsWith(QLatin1String("DTR 0")), qPrintable(asked.join(u',')));
            QVERIFY2(last.back().startsWith(QLatin1String("RTS 0")), qPrintable(asked.join(u',')));
            // Where only the closing meets the fault, all that matters had been sent and the lines were low.
            const bool inMessage = asked.mid(0, asked.size() - 2).join(u',').contains(QLatin1String("fails"));
            QCOMPARE(result.outcome, inMessage ? cw::Outcome::Busy : cw::Outcome::Sent);
            QCOMPARE(result.reason.isEmpty(), !inMessage);
            ++(inMessage ? busy : sent);
            if (once || !inMessage) {
                QVERIFY2(!port.lines.dtr && !port.lines.rts, qPrintable(asked.join(u',')));
            }
        }
        // Lowered twice at the beginning, RTS up, four edges of the key, RTS down.
        constexpr int kRequestsOfMessage = 8;
        QVERIFY(busy >= kRequestsOfMessage);
        QVERIFY(sent >= 1);
    }

    void naturalOrder_data()
    {
        QTest::addColumn<QString>("names");
        QTest::addColumn<QString>("ordered");
        QTest::newRow("none") << QString() << QString();
        QTest::newRow("one") << "ttyS0"
                             << "ttyS0";
        QTest::newRow("kinds and numbers") << "ttyUSB1 ttyS10 ttyACM0 ttyS2 ttyUSB0 ttyS0"
                                           << "ttyACM0 ttyS0 ttyS2 ttyS10 ttyUSB0 ttyUSB1";
        QTest::newRow("paths") << "/dev/ttyUSB10 /dev/ttyUSB9 /dev/ttyS0"
                               << "/dev/ttyS0 /dev/ttyUSB9 /dev/ttyUSB10";
        QTest::newRow("of Windows") << "COM10 COM1 COM2"
                                    << "COM1 COM2 COM10";
        QTest::newRow("without digits") << "ttyS1 modem ttyS ttyS0 line"
                                        << "line modem ttyS ttyS0 ttyS1";
        QTest::newRow("only digits") << "10 9 100"
                                     << "9 10 100";
        QTest::newRow("digits inside") << "tty10a1 tty9a2 tty9a1"
                                       << "tty9a1 tty9a2 tty10a1";
        QTest::newRow("leading zeros") << "ttyS010 ttyS10 ttyS9 ttyS09"
                                       << "ttyS09 ttyS9 ttyS010 ttyS10";
        QTest::newRow("very long numbers")
            << "ttyS100000000000000000000000000000 ttyS99999999999999999999999 ttyS5 ttyS18446744073709551616"
            << "ttyS5 ttyS18446744073709551616 ttyS99999999999999999999999 "
               "ttyS100000000000000000000000000000";
    }

    void naturalOrder()
    {
        QFETCH(QString, names);
        QFETCH(QString, ordered);
        QStringList list = names.split(u' ', Qt::SkipEmptyParts);
        const QStringList wanted = ordered.split(u' ', Qt::SkipEmptyParts);
        QCOMPARE(cw::inNaturalOrder(list), wanted);
        std::reverse(list.begin(), list.end());
        QCOMPARE(cw::inNaturalOrder(list), wanted); // however the system lists them
    }

    void stopEndsAWait()
    {
        cw::SteadyPacer pacer;
        for (int i = 0; i < 5; ++i) {
            pacer.arm();
            pacer.begin();
            Clock::time_point stopped;
            const std::unique_ptr<QThread> stopper(QThread::create([&] {
                pass(10ms); // the wait has begun by then, mostly; it must end either way
                stopped = Clock::now();
                pacer.stop();
            }));
            stopper->start();
            const bool whole = pacer.wait(1min);
            const Clock::time_point ended = Clock::now();
            QVERIFY(stopper->wait());
            QVERIFY(!whole);
            QVERIFY2(ended - stopped < 100ms,
                     qPrintable(QStringLiteral("%1 ns").arg((ended - stopped).count())));
            QVERIFY(!pacer.wait(1min)); // and each one after it
            QVERIFY(Clock::now() - ended < 1s);
        }
    }

    void armForgetsAStop()
    {
        cw::SteadyPacer pacer;
        pacer.arm();
        pacer.stop();
        pacer.begin();
        QVERIFY(!pacer.wait(1min));
        pacer.arm();
        const Clock::time_point begun = Clock::now();
        pacer.begin();
        QVERIFY(pacer.wait(5ms));
        QVERIFY(pacer.wait(5ms));
        QVERIFY(Clock::now() - begun >= 10ms);
    }

    void lateWaitsAreMadeUpFor()
    {
        cw::SteadyPacer pacer;
        pacer.arm();
        const Clock::time_point begun = Clock::now();
        pacer.begin();
        pass(400ms);
        QVERIFY(pacer.wait(100ms)); // over already
        QVERIFY(pacer.wait(350ms));
        const Clock::duration taken = Clock::now() - begun;
        QVERIFY(taken >= 450ms);
        QVERIFY2(taken < 750ms, "the lateness has been added"); // 850 ms then
    }
};

int main(int argc, char *argv[])
{
    constexpr int kHoldArguments = 3;
    if (argc == kHoldArguments && QByteArray(argv[1]) == "--hold")
        return holdDevice(argv[2]);
    QCoreApplication application(argc, argv);
    SerialLineTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "serialline.moc"
