#include "RefusalText.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// The sentences that operators read in place of return codes.
class RefusalTextTest : public QObject
{
    Q_OBJECT

    /// The words of a namespace as its header has them; each reads as its name, see tst_vocabulary.
    static QStringList words(const QString &header, const QString &group)
    {
        QFile file(QStringLiteral(SOURCE_DIR "/") + header);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QString text = QString::fromUtf8(file.readAll());
        static const QRegularExpression declaration(u"extern const QString\\s+(\\w+);"_s);
        const qsizetype begin = text.indexOf(u"namespace %1 {"_s.arg(group));
        const qsizetype end = text.indexOf(u"} // namespace %1"_s.arg(group));
        if (begin < 0 || end < begin)
            return {};
        QStringList found;
        auto matches = declaration.globalMatch(text.mid(begin, end - begin));
        while (matches.hasNext())
            found.append(matches.next().captured(1));
        return found;
    }

private slots:
    void everyCodeHasASentence_data()
    {
        QTest::addColumn<QString>("code");
        const QStringList station = words(u"protocol/StationVocabulary.h"_s, u"StationReturnCode"_s);
        const QStringList nas = words(u"protocol/ServerVocabulary.h"_s, u"NasReturnCode"_s);
        const QStringList host = words(u"host/framework/HostReturnCode.h"_s, u"HostReturnCode"_s);
        QVERIFY(station.contains(StationReturnCode::PlaceNotFound)
                && station.contains(StationReturnCode::NasKeyUnusable)
                && station.contains(StationReturnCode::UnknownCommand));
        QVERIFY(nas.contains(NasReturnCode::GetNasCapacityFailed));
        QVERIFY(host.contains(u"Closing"_s));
        for (const QString &code : station + nas + host)
            QTest::addRow("%s", qPrintable(code)) << code;
    }

    void everyCodeHasASentence()
    {
        QFETCH(const QString, code);
        const QString sentence = refusalText(code);
        QVERIFY2(!sentence.contains(code), qPrintable(sentence));
        QVERIFY2(sentence.size() > 10 && sentence.endsWith(u'.'), qPrintable(sentence));
    }

    void whatNobodyDescribedIsShown()
    {
        QCOMPARE(refusalText(u"Code77"_s), u"The station refused: Code77"_s);
        QCOMPARE(refusalText(ReturnCode::Success), QString());
    }
};

QTEST_GUILESS_MAIN(RefusalTextTest)
#include "tst_refusal_text.moc"
