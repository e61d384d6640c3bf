#include "service/RequestFingerprint.h"

#include "ServerVocabulary.h"

#include <QStringList>
#include <QTest>
#include <QVariantList>
#include <QVariantMap>

using namespace Qt::StringLiterals;

/// What counts as another delivery of the same command.
class RequestFingerprintTest : public QObject
{
    Q_OBJECT

private slots:
    void sameRequests_data();
    void sameRequests();
    void otherRequests_data();
    void otherRequests();
    void nameAndSenderAndId();
};

namespace {
QByteArray of(const QVariant &data)
{
    return requestFingerprint({u"command"_s, data});
}

QVariantMap map(const QString &key, const QVariant &value)
{
    return {{key, value}};
}
} // namespace

void RequestFingerprintTest::sameRequests_data()
{
    QTest::addColumn<QVariant>("one");
    QTest::addColumn<QVariant>("other");
    QTest::newRow("types of numbers") << QVariant(5) << QVariant(5.0);
    QTest::newRow("long numbers") << QVariant(Q_INT64_C(1) << 40) << QVariant(Q_UINT64_C(1) << 40);
    QTest::newRow("lists of strings") << QVariant(QStringList{u"a"_s, u"b"_s})
                                      << QVariant(QVariantList{u"a"_s, u"b"_s});
    QTest::newRow("a password") << QVariant(map(FieldKey::password, u"one"_s))
                                << QVariant(map(FieldKey::password, u"two"_s));
    QTest::newRow("a password within") << QVariant(QVariantList{map(FieldKey::password, u"one"_s)})
                                       << QVariant(QVariantList{map(FieldKey::password, u"two"_s)});
    QTest::newRow("nothing") << QVariant() << QVariant::fromValue(nullptr);
}

void RequestFingerprintTest::sameRequests()
{
    QFETCH(QVariant, one);
    QFETCH(QVariant, other);
    QCOMPARE(of(one), of(other));
}

void RequestFingerprintTest::otherRequests_data()
{
    QTest::addColumn<QVariant>("one");
    QTest::addColumn<QVariant>("other");
    QTest::newRow("numbers") << QVariant(5) << QVariant(6);
    QTest::newRow("fractions") << QVariant(5.25) << QVariant(5.5);
    QTest::newRow("neighbours that doubles cannot tell")
        << QVariant((Q_INT64_C(1) << 60) + 1) << QVariant(Q_INT64_C(1) << 60);
    QTest::newRow("a number and its text") << QVariant(5) << QVariant(u"5"_s);
    QTest::newRow("true and 1") << QVariant(true) << QVariant(1);
    QTest::newRow("nothing and no text") << QVariant() << QVariant(QString());
    QTest::newRow("keys") << QVariant(map(u"a"_s, 1)) << QVariant(map(u"b"_s, 1));
    QTest::newRow("no map and an empty one") << QVariant() << QVariant(QVariantMap());
    QTest::newRow("another key beside") << QVariant(map(u"a"_s, 1)) << QVariant(QVariantMap{{u"a"_s, 1}, {u"b"_s, 1}});
    QTest::newRow("order") << QVariant(QVariantList{1, 2}) << QVariant(QVariantList{2, 1});
    QTest::newRow("nesting") << QVariant(QVariantList{QVariantList{1}, 2})
                             << QVariant(QVariantList{QVariantList{1, 2}});
    QTest::newRow("nesting of maps") << QVariant(QVariantMap{{u"a"_s, map(u"b"_s, 1)}, {u"c"_s, 1}})
                                     << QVariant(map(u"a"_s, QVariantMap{{u"b"_s, 1}, {u"c"_s, 1}}));
}

void RequestFingerprintTest::otherRequests()
{
    QFETCH(QVariant, one);
    QFETCH(QVariant, other);
    QVERIFY(of(one) != of(other));
}

void RequestFingerprintTest::nameAndSenderAndId()
{
    const QByteArray fingerprint = of(5);
    QCOMPARE(requestFingerprint({u"command"_s, 5, u"id"_s, u"client"_s, u"user"_s}), fingerprint);
    QVERIFY(requestFingerprint({u"another"_s, 5}) != fingerprint);
    QCOMPARE(fingerprint.size(), 32);
}

QTEST_APPLESS_MAIN(RequestFingerprintTest)
#include "tst_request_fingerprint.moc"
