#include "CborVariant.h"
#include "MessageStream.h"

#include <QCborArray>
#include <QCborMap>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTest>

#include <limits>

/// What travels between client and station: what comes out is what went in, and what comes from outside is taken apart
/// with care.
class MessageCodecTest : public QObject
{
    Q_OBJECT

private slots:
    void everyKindComesBack();
    void dataComesBack_data();
    void dataComesBack();
    void conversionsGiveListsBack();
    void nothingIsLostWithoutAWord();
    void hostileBytesAreRefused_data();
    void hostileBytesAreRefused();
    void limitsHold();
    void aStreamIsTakenInAnyPieces();
    void aStreamTakesNoMoreThanItsLimit();
    void theCorpusDoesNoHarm();
};

namespace {
StationMessage again(const StationMessage &message)
{
    return decodeMessage(encodeMessage(message));
}

QVariant travelled(const QVariant &data)
{
    return std::get<StationEvent>(again(StationEvent{QStringLiteral("E"), data})).data;
}

QString refusal(const QByteArray &bytes, const MessageLimits &limits = {})
{
    try {
        decodeMessage(bytes, limits);
    } catch (const MessageError &error) {
        return error.text();
    }
    return {};
}

QByteArray eventWith(const QByteArray &dataAsCbor)
{
    return QByteArray::fromHex("a3 6474797065 656576656e74 646e616d65 6145 6464617461") + dataAsCbor;
}
} // namespace

void MessageCodecTest::everyKindComesBack()
{
    const auto hello = std::get<Hello>(again(Hello{3, QStringLiteral("recordingctl"), QStringLiteral("1.2")}));
    QCOMPARE(hello.protocol, 3);
    QCOMPARE(hello.program, QStringLiteral("recordingctl"));
    QCOMPARE(hello.version, QStringLiteral("1.2"));
    const auto welcome = std::get<Welcome>(
        again(Welcome{1, QStringLiteral("1.2"), QStringLiteral("Münster"), QStringLiteral("relay-7")}));
    QCOMPARE(welcome.name, QStringLiteral("Münster"));
    QCOMPARE(welcome.relayPath, QStringLiteral("relay-7"));
    const auto goodbye = std::get<Goodbye>(again(Goodbye{GoodbyeCode::Stopping, QStringLiteral("over")}));
    QCOMPARE(goodbye.code, GoodbyeCode::Stopping);
    QCOMPARE(goodbye.text, QStringLiteral("over"));
    const quint64 highest = std::numeric_limits<quint64>::max();
    const auto command = std::get<CommandMessage>(
        again(CommandMessage{highest, {QStringLiteral("N"), 7, QStringLiteral("id"), QStringLiteral("c"), {}}}));
    QCOMPARE(command.correlation, highest);
    QCOMPARE(command.command.name, QStringLiteral("N"));
    QCOMPARE(command.command.data, QVariant(7LL));
    QCOMPARE(command.command.id, QStringLiteral("id"));
    QCOMPARE(command.command.client, QStringLiteral("c"));
    QVERIFY(command.command.user.isEmpty());
    const auto reply =
        std::get<ReplyMessage>(again(ReplyMessage{8, {QStringLiteral("NameRefused"), QVariantList{}, false}}));
    QCOMPARE(reply.correlation, 8U);
    QCOMPARE(reply.reply.returnCode, QStringLiteral("NameRefused"));
    QCOMPARE(reply.reply.finish, false);
}

void MessageCodecTest::dataComesBack_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QVariant>("expected");

    const auto same = [](const char *name, const QVariant &data) { QTest::newRow(name) << data << data; };
    same("invalid", {});
    same("null", QVariant::fromValue(nullptr));
    same("true", true);
    same("lowest", std::numeric_limits<qint64>::min());
    same("highest", std::numeric_limits<qint64>::max());
    same("double", 0.1);
    same("text", QStringLiteral("naïve \U0001F4F7 \u202E"));
    same("empty text", QStringLiteral(""));
    same("bytes", QByteArray("\0\xff\x80", 3));
    same("list", QVariantList{1LL, QStringLiteral("a"), QVariant()});
    same("map", QVariantMap{{QStringLiteral(""), QVariantList{}}, {QStringLiteral("b"), QVariantMap{}}});
    QTest::newRow("int") << QVariant(-7) << QVariant(-7LL);
    QTest::newRow("unsigned") << QVariant(7U) << QVariant(7LL);
    QTest::newRow("64-bit unsigned") << QVariant(7ULL) << QVariant(7LL);
    QTest::newRow("too large") << QVariant(std::numeric_limits<quint64>::max()) << QVariant(18446744073709551616.0);
    QTest::newRow("float") << QVariant(0.5F) << QVariant(0.5);
    QTest::newRow("null of a type") << QVariant(QMetaType::fromType<int>()) << QVariant::fromValue(nullptr);
    QTest::newRow("string list") << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")})
                                 << QVariant(QVariantList{QStringLiteral("a"), QStringLiteral("b")});
    QTest::newRow("list of maps") << QVariant::fromValue(QList<QVariantMap>{{{QStringLiteral("k"), 1LL}}})
                                  << QVariant(QVariantList{QVariantMap{{QStringLiteral("k"), 1LL}}});
    QTest::newRow("hash") << QVariant(QVariantHash{{QStringLiteral("k"), true}})
                          << QVariant(QVariantMap{{QStringLiteral("k"), true}});
}

void MessageCodecTest::dataComesBack()
{
    QFETCH(const QVariant, data);
    QFETCH(const QVariant, expected);
    const QVariant found = travelled(data);
    QCOMPARE(found.metaType(), expected.metaType());
    QCOMPARE(found, expected);
}

void MessageCodecTest::conversionsGiveListsBack()
{
    const QStringList names{QStringLiteral("a"), QStringLiteral("b")};
    QCOMPARE(travelled(names).toStringList(), names);
}

void MessageCodecTest::nothingIsLostWithoutAWord()
{
    QVERIFY_THROWS_EXCEPTION(MessageError, encodeMessage(StationEvent{{}, QPointF(1, 2)}));
    QVERIFY_THROWS_EXCEPTION(MessageError,
                             encodeMessage(StationEvent{{}, QVariantList{QDateTime::currentDateTimeUtc()}}));
}

void MessageCodecTest::hostileBytesAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");

    const auto row = [](const char *name, const QByteArray &bytes, const char *reason) {
        QTest::newRow(name) << bytes << QString::fromUtf8(reason);
    };
    row("nothing", {}, "in the middle");
    row("no map", QByteArray::fromHex("80"), "a message has to be a map");
    row("no type", QByteArray::fromHex("a0"), "\"type\" of the message has to be a text");
    row("other type", encodeMessage(StationEvent{}).replace("event", "evemt"), "of the type \"evemt\" is not known");
    row("cut", encodeMessage(StationEvent{}).chopped(1), "in the middle");
    row("more", encodeMessage(StationEvent{}) + '\0', "bytes follow the message");
    row("number as name", QByteArray::fromHex("a3 6474797065 656576656e74 646e616d65 07 6464617461 f6"),
        "\"name\" of the message has to be a text");
    row("list claims 2^60", eventWith(QByteArray::fromHex("9b1000000000000000")), "more than");
    row("text claims 2^60", eventWith(QByteArray::fromHex("7b1000000000000000")), "");
    row("key is a number", eventWith(QByteArray::fromHex("a10102")), "a key in the message is no text");
    row("key twice", eventWith(QByteArray::fromHex("a2616101616102")), "stands twice");
    row("no UTF-8", eventWith(QByteArray::fromHex("62c328")), "");
    row("no UTF-8 in a key", eventWith(QByteArray::fromHex("a162c32801")), "");
    row("tag", eventWith(QByteArray::fromHex("c0613a")), "a tag");
    row("in pieces", eventWith(QByteArray::fromHex("7f6161ff")), "not stated");
    row("list without length", eventWith(QByteArray::fromHex("9fff")), "not stated");
    row("too deep", eventWith(QByteArray(40, '\x81') + '\0'), "deeper than 32");
    row("very deep", eventWith(QByteArray(1'000'000, '\x81') + '\0'), "deeper than 32");
}

void MessageCodecTest::hostileBytesAreRefused()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, reason);
    const QString found = refusal(bytes);
    QVERIFY(!found.isEmpty());
    QVERIFY2(found.contains(reason), qPrintable(found));
}

void MessageCodecTest::limitsHold()
{
    const QByteArray bytes = encodeMessage(StationEvent{QStringLiteral("E"), QVariantList{1, 2, 3}});
    MessageLimits limits;
    limits.bytes = bytes.size();
    limits.depth = 2;
    limits.elements = 1 + 6 + 3;
    QCOMPARE(refusal(bytes, limits), QString());
    for (qsizetype MessageLimits::*limit : {&MessageLimits::bytes, &MessageLimits::elements}) {
        MessageLimits tighter = limits;
        --(tighter.*limit);
        QVERIFY(!refusal(bytes, tighter).isEmpty());
    }
    --limits.depth;
    QVERIFY(!refusal(bytes, limits).isEmpty());
}

void MessageCodecTest::aStreamIsTakenInAnyPieces()
{
    const QByteArray bytes = framedMessage(StationEvent{QStringLiteral("one"), QByteArray(300, 'x')})
        + framedMessage(StationEvent{QStringLiteral("two"), {}})
        + framedMessage(StationEvent{QStringLiteral("three"), {}});
    for (qsizetype piece = 1; piece <= bytes.size(); ++piece) {
        MessageStream stream;
        QStringList names;
        for (qsizetype at = 0; at < bytes.size(); at += piece) {
            stream.append(QByteArrayView(bytes).sliced(at, std::min(piece, bytes.size() - at)));
            while (const std::optional<StationMessage> message = stream.next())
                names.append(std::get<StationEvent>(*message).name);
        }
        QCOMPARE(names, QStringList({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")}));
        QCOMPARE(stream.waitingBytes(), 0);
    }
}

void MessageCodecTest::aStreamTakesNoMoreThanItsLimit()
{
    MessageLimits limits;
    limits.bytes = 1000;
    MessageStream stream(limits);
    stream.append(QByteArrayView("\x00\x00\x03\xe9", 4)); // 1001, before any of them is here
    QVERIFY_THROWS_EXCEPTION(MessageError, stream.next());
    QVERIFY_THROWS_EXCEPTION(MessageError, framedMessage(StationEvent{{}, QByteArray(1000, 'x')}, limits));
}

/// What once was found by the fuzzer, and what it begins with.
void MessageCodecTest::theCorpusDoesNoHarm()
{
    const QDir corpus(QStringLiteral(CORPUS));
    const QStringList names = corpus.entryList(QDir::Files);
    QVERIFY(names.size() >= 6);
    for (const QString &name : names) {
        QFile file(corpus.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        MessageStream stream;
        stream.append(file.readAll());
        try {
            while (const std::optional<StationMessage> message = stream.next())
                encodeMessage(*message);
        } catch (const MessageError &error) {
            QVERIFY(!error.text().isEmpty());
        }
    }
}

QTEST_GUILESS_MAIN(MessageCodecTest)
#include "tst_message_codec.moc"
