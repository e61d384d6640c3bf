#include "CborVariant.h"
#include "mqtt/Deflate.h"
#include "mqtt/MqttBody.h"
#include "mqtt/MqttMessages.h"

#include <QTest>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {
QString errorOf(const QByteArray &bytes, const QString &contentType, const MessageLimits &limits = {})
{
    try {
        decodeBody(bytes, contentType, limits);
    } catch (const MessageError &error) {
        return error.text();
    }
    return u"none"_s;
}

QVariantMap largeMap()
{
    return {{u"text"_s, QString(100'000, u'x')}};
}
} // namespace

/// Bodies of messages, and the maps in them.
class MqttBodyTest : public QObject
{
    Q_OBJECT

private slots:
    void bodiesComeBack_data();
    void bodiesComeBack();
    void largeOnesAreDeflated();
    void deflatedIsThePlainFormat();
    void whatInflatesTooFarIsRefused();
    void brokenBodiesAreRefused_data();
    void brokenBodiesAreRefused();
    void tooLargeIsNotWritten();

    void commandsAndReplies();
    void keysOfMessages();
    void statusAndInstances();
    void wrongMapsAreRefused_data();
    void wrongMapsAreRefused();
};

void MqttBodyTest::bodiesComeBack_data()
{
    QTest::addColumn<QVariantMap>("map");
    QTest::addColumn<BodyForm>("form");
    const QVariantMap map{{u"number"_s, Q_INT64_C(9007199254740993)}, {u"list"_s, QVariantList{u"a"_s, true}}};
    QTest::newRow("CBOR") << map << BodyForm::Cbor;
    QTest::newRow("JSON") << map << BodyForm::Json;
    QTest::newRow("large CBOR") << largeMap() << BodyForm::Cbor;
    QTest::newRow("large JSON") << largeMap() << BodyForm::Json;
    QTest::newRow("empty") << QVariantMap() << BodyForm::Cbor;
}

void MqttBodyTest::bodiesComeBack()
{
    QFETCH(QVariantMap, map);
    QFETCH(BodyForm, form);
    const MqttBody body = encodeBody(map, form);
    QCOMPARE(decodeBody(body.bytes, body.contentType), map);
    QCOMPARE(bodyForm(body.contentType), std::optional(form));
    if (form == BodyForm::Cbor && map.size() != 1)
        QCOMPARE(decodeBody(body.bytes, {}), map); // no content type is CBOR
}

void MqttBodyTest::largeOnesAreDeflated()
{
    QCOMPARE(encodeBody({{u"a"_s, 1}}).contentType, u"application/cbor"_s);
    const MqttBody body = encodeBody(largeMap());
    QCOMPARE(body.contentType, u"application/cbor+deflate"_s);
    QVERIFY(body.bytes.size() < 2000);
    QCOMPARE(encodeBody(largeMap(), BodyForm::Json).contentType, u"application/json"_s);
}

void MqttBodyTest::deflatedIsThePlainFormat()
{
    const QByteArray text(10'000, 'a');
    QByteArray bytes = deflated(text);
    QCOMPARE(inflated(bytes, text.size()), text);
    bytes.prepend(QByteArray::fromHex("00002710")); // what Qt puts in front of the same format
    QCOMPARE(qUncompress(bytes), text);
}

void MqttBodyTest::whatInflatesTooFarIsRefused()
{
    MessageLimits limits;
    limits.bytes = 64 * 1024;
    const QByteArray bomb = deflated(QByteArray(50'000'000, 0)); // to 50 kB
    QVERIFY(bomb.size() < limits.bytes * 4);
    QVERIFY2(errorOf(bomb, u"application/cbor+deflate"_s, {limits.bytes * 4, 32, 1000}).contains(u"inflated"_s),
             qPrintable(errorOf(bomb, u"application/cbor+deflate"_s)));
}

void MqttBodyTest::brokenBodiesAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("contentType");
    QTest::addColumn<QString>("error");
    const QByteArray cbor = cborFromVariant(QVariantMap{{u"a"_s, 1}});
    const QByteArray zlib = deflated(cbor);
    QTest::newRow("nothing") << QByteArray() << QString() << u"ends in the middle"_s;
    QTest::newRow("no map") << cborFromVariant(1) << QString() << u"has to be a map"_s;
    QTest::newRow("unknown type") << cbor << u"text/plain"_s << u"\"text/plain\" is not known"_s;
    QTest::newRow("not deflated") << cbor << u"application/cbor+deflate"_s << u"not deflated"_s;
    QTest::newRow("cut off") << zlib.chopped(3) << u"application/cbor+deflate"_s << u"not deflated"_s;
    QTest::newRow("more behind") << zlib + "x" << u"application/cbor+deflate"_s << u"not deflated"_s;
    QTest::newRow("no JSON") << QByteArray("{") << u"application/json"_s << u"no JSON"_s;
    QTest::newRow("JSON list") << QByteArray("[]") << u"application/json"_s << u"has to be an object"_s;
}

void MqttBodyTest::brokenBodiesAreRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, contentType);
    QFETCH(QString, error);
    const QString found = errorOf(bytes, contentType);
    QVERIFY2(found.contains(error), qPrintable(found));
}

void MqttBodyTest::tooLargeIsNotWritten()
{
    MessageLimits limits;
    limits.bytes = 1000;
    QVERIFY_THROWS_EXCEPTION(MessageError, encodeBody(largeMap(), BodyForm::Cbor, limits));
    QVERIFY_THROWS_EXCEPTION(MessageError, encodeBody(largeMap(), BodyForm::Json, limits));
    QVERIFY(errorOf(QByteArray(1001, 'x'), u"application/json"_s, limits).contains(u"1001 bytes"_s));
}

void MqttBodyTest::commandsAndReplies()
{
    const StationCommand command{u"addRecordingGroup"_s, QVariantMap{{u"a"_s, 1}}, u"id-1"_s, u"not sent"_s,
                                 u"nor this"_s};
    const StationCommand found = commandFromMap(commandMap(command));
    QCOMPARE(found.name, command.name);
    QCOMPARE(found.data, command.data);
    QCOMPARE(found.id, command.id);
    QCOMPARE(found.client + found.user, QString());
    const ReplyPart part = replyFromMap(replyMap({3, {u"0"_s, QVariantList{1}, false}}));
    QCOMPARE(part.number, 3);
    QCOMPARE(part.reply.returnCode, u"0"_s);
    QCOMPARE(part.reply.data, QVariant(QVariantList{1}));
    QCOMPARE(part.reply.finish, false);
    QCOMPARE(eventFromMap(u"E"_s, eventMap({u"E"_s, 7})).data, QVariant(7));
}

/// What others build on.
void MqttBodyTest::keysOfMessages()
{
    QCOMPARE(commandMap({u"n"_s, 1, u"i"_s}), (QVariantMap{{u"name"_s, u"n"_s}, {u"data"_s, 1}, {u"id"_s, u"i"_s}}));
    QCOMPARE(commandMap({u"n"_s, {}}), (QVariantMap{{u"name"_s, u"n"_s}}));
    QCOMPARE(replyMap({2, {u"0"_s, 1, true}}),
             (QVariantMap{{u"returnCode"_s, u"0"_s}, {u"finish"_s, true}, {u"part"_s, 2}, {u"data"_s, 1}}));
    QCOMPARE(eventMap({u"n"_s, 1}), (QVariantMap{{u"data"_s, 1}}));
    const QDateTime time = QDateTime::fromString(u"2026-03-20T12:00:00.005Z"_s, Qt::ISODateWithMs);
    const QString text = u"2026-03-20T12:00:00.005Z"_s;
    using State = StationStatus::State;
    for (const auto &[state, word] :
         {std::pair(State::Up, u"up"_s), {State::Stopped, u"stopped"_s}, {State::Lost, u"lost"_s}})
        QCOMPARE(statusMap({state, u"n"_s, u"a"_s, u"v"_s, u"i"_s, time, time}),
                 (QVariantMap{{u"state"_s, word},
                              {u"name"_s, u"n"_s},
                              {u"address"_s, u"a"_s},
                              {u"version"_s, u"v"_s},
                              {u"instance"_s, u"i"_s},
                              {u"startedAt"_s, text},
                              {u"since"_s, text}}));
    QCOMPARE(
        instanceMap({true, u"i"_s, u"a"_s, time}),
        (QVariantMap{{u"says"_s, u"asks"_s}, {u"instance"_s, u"i"_s}, {u"address"_s, u"a"_s}, {u"startedAt"_s, text}}));
    QCOMPARE(instanceMap({false, {}, {}, time}).value(u"says"_s).toString(), u"serves"_s);
}

void MqttBodyTest::statusAndInstances()
{
    const QDateTime time = QDateTime::fromString(u"2026-03-20T12:00:00Z"_s, Qt::ISODate);
    const StationStatus lost{StationStatus::State::Lost, u"North"_s, u"host"_s, u"1.0"_s, u"i"_s, time, {}};
    QCOMPARE(statusFromMap(statusMap(lost)), lost);
    StationStatus beating = lost;
    beating.heartbeat = std::chrono::seconds(3);
    QCOMPARE(statusMap(beating).value(u"heartbeat"_s), 3);
    QCOMPARE(statusFromMap(statusMap(beating)), beating);
    const InstanceWord word{false, u"i"_s, u"host"_s, time};
    QCOMPARE(instanceFromMap(instanceMap(word)), word);
}

void MqttBodyTest::wrongMapsAreRefused_data()
{
    QTest::addColumn<QVariantMap>("map");
    QTest::addColumn<char>("kind");
    QTest::newRow("command without name") << QVariantMap() << 'c';
    QTest::newRow("name of another type") << QVariantMap{{u"name"_s, 1}} << 'c';
    QTest::newRow("id of another type") << QVariantMap{{u"name"_s, u"a"_s}, {u"id"_s, 1}} << 'c';
    QTest::newRow("reply without code") << QVariantMap{{u"finish"_s, true}, {u"part"_s, 0}} << 'r';
    QTest::newRow("reply without part") << QVariantMap{{u"finish"_s, true}, {u"returnCode"_s, u"0"_s}} << 'r';
    QTest::newRow("reply without end") << QVariantMap{{u"returnCode"_s, u"0"_s}, {u"part"_s, 0}} << 'r';
    QTest::newRow("part below 0") << QVariantMap{{u"finish"_s, true}, {u"returnCode"_s, u"0"_s}, {u"part"_s, -1}}
                                  << 'r';
    const QVariantMap sound =
        statusMap({StationStatus::State::Up, {}, {}, {}, u"i"_s, QDateTime::currentDateTimeUtc(), {}});
    for (const QString &key : {u"state"_s, u"instance"_s, u"startedAt"_s, u"heartbeat"_s}) {
        QVariantMap map = sound;
        map.insert(key, u"nonsense"_s);
        if (key == u"instance"_s)
            map.remove(key);
        QTest::newRow(qPrintable(u"status: "_s + key)) << map << 's';
    }
    QTest::newRow("instance says something else")
        << QVariantMap{{u"says"_s, u"hello"_s}, {u"instance"_s, u"i"_s}} << 'i';
}

void MqttBodyTest::wrongMapsAreRefused()
{
    QFETCH(QVariantMap, map);
    QFETCH(char, kind);
    const auto read = [&] {
        if (kind == 'c')
            commandFromMap(map);
        else if (kind == 'r')
            replyFromMap(map);
        else if (kind == 's')
            statusFromMap(map);
        else
            instanceFromMap(map);
    };
    QVERIFY_THROWS_EXCEPTION(MessageError, read());
}

QTEST_APPLESS_MAIN(MqttBodyTest)
#include "tst_mqtt_body.moc"
