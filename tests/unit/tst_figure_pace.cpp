#include "link/FigurePace.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
MqttMessage message(const QByteArray &payload)
{
    MqttMessage message;
    message.payload = payload;
    return message;
}
} // namespace

/// How often the figures of a station are handed on.
class FigurePaceTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theFirstComesAtOnce();
    void theNewestStandsForAll();
    void withoutAPauseAllAreTold();
    void whatWaitsIsToldWhenItIsWanted();
    void stationsComeInTheirOrder();
    void theOwnerMayEndWithin();

private:
    FigurePace::Deliver note()
    {
        return [this](const QString &station, const MqttMessage &told) {
            m_told.append(station + u' ' + QString::fromLatin1(told.payload));
        };
    }

    QStringList m_told;
};

void FigurePaceTest::init()
{
    m_told.clear();
}

void FigurePaceTest::theFirstComesAtOnce()
{
    FigurePace pace(1h, note());
    pace.add(u"a"_s, message("1"));
    pace.add(u"b"_s, message("1"));
    QCOMPARE(m_told, QStringList({u"a 1"_s, u"b 1"_s}));
    pace.add(u"a"_s, message("2"));
    QCoreApplication::processEvents();
    QCOMPARE(m_told.size(), 2);
}

void FigurePaceTest::theNewestStandsForAll()
{
    FigurePace pace(50ms, note());
    for (const char *number : {"1", "2", "3"})
        pace.add(u"a"_s, message(number));
    QTRY_COMPARE(m_told, QStringList({u"a 1"_s, u"a 3"_s}));
    pace.add(u"a"_s, message("4")); // a pause after the one before
    QCOMPARE(m_told.size(), 2);
    QTRY_COMPARE(m_told.size(), 3);
    QCOMPARE(m_told.constLast(), u"a 4"_s);
}

void FigurePaceTest::withoutAPauseAllAreTold()
{
    FigurePace pace(0ms, note());
    for (const char *number : {"1", "2", "3"})
        pace.add(u"a"_s, message(number));
    QCOMPARE(m_told, QStringList({u"a 1"_s, u"a 2"_s, u"a 3"_s}));
}

void FigurePaceTest::whatWaitsIsToldWhenItIsWanted()
{
    FigurePace pace(1h, note());
    pace.deliverNow(u"a"_s); // nothing waits
    for (const char *number : {"1", "2"})
        pace.add(u"a"_s, message(number));
    pace.deliverNow(u"a"_s);
    pace.deliverNow(u"a"_s);
    QCOMPARE(m_told, QStringList({u"a 1"_s, u"a 2"_s}));
}

void FigurePaceTest::stationsComeInTheirOrder()
{
    FigurePace pace(50ms, note());
    QStringList expected;
    for (const char *number : {"1", "2"}) {
        for (const auto &station : {u"a"_s, u"b"_s, u"c"_s}) {
            pace.add(station, message(number));
            expected.append(station + u' ' + QString::fromLatin1(number));
        }
    }
    QTRY_COMPARE(m_told, expected);
}

void FigurePaceTest::theOwnerMayEndWithin()
{
    std::unique_ptr<FigurePace> pace;
    pace = std::make_unique<FigurePace>(10ms, [this, &pace](const QString &station, const MqttMessage &told) {
        m_told.append(station + u' ' + QString::fromLatin1(told.payload));
        if (told.payload == "2")
            pace.reset();
    });
    for (const char *number : {"1", "2"}) {
        for (const auto &station : {u"a"_s, u"b"_s})
            pace->add(station, message(number));
    }
    QTRY_VERIFY(!pace);
    QCOMPARE(m_told, QStringList({u"a 1"_s, u"b 1"_s, u"a 2"_s}));
}

QTEST_GUILESS_MAIN(FigurePaceTest)
#include "tst_figure_pace.moc"
