#include "MqttAttempt.h"

#include <QFile>
#include <QFileInfo>
#include <QHostAddress>

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <vector>

#include <netdb.h>
#include <sys/socket.h>

namespace {
constexpr int keepAlive = 5; // seconds, the least that the library takes: who is silent for 7.5 s is gone
constexpr int windowSize = 1000; // messages that may be on their way unacknowledged

QString errnoText()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

bool readPassword(const MqttSettings &settings, QByteArray &password, QString &error)
{
    password = settings.password;
    if (settings.passwordFile.isEmpty())
        return true;
    QFile file(settings.passwordFile);
    if (!file.open(QIODevice::ReadOnly)) {
        error =
            QStringLiteral("the password file %1 cannot be read: %2").arg(settings.passwordFile, file.errorString());
        return false;
    }
    constexpr QFile::Permissions ofOthers = QFile::ReadOther | QFile::WriteOther;
    if (file.permissions() & ofOthers) {
        error = QStringLiteral("everybody on this machine may read or write the password file %1; take that away "
                               "(chmod o= FILE)")
                    .arg(settings.passwordFile);
        return false;
    }
    password = file.readLine();
    while (password.endsWith('\n') || password.endsWith('\r'))
        password.chop(1);
    if (!password.isEmpty())
        return true;
    error = QStringLiteral("the password file %1 is empty").arg(settings.passwordFile);
    return false;
}

struct Place
{
    QString address; ///< in numbers
    bool isLoopback;
    bool isIpV6;
};

/// What the library is told to connect to.
struct Destination
{
    QString host; ///< or an address; empty: nothing
    QByteArray from; ///< any address of this machine's, of the family to use; empty: either family
};

std::vector<Place> placesOf(const QString &host, QString &error)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *list = nullptr;
    const int outcome = getaddrinfo(host.toUtf8().constData(), nullptr, &hints, &list);
    if (outcome != 0) {
        error = QStringLiteral("the name %1 cannot be looked up: %2")
                    .arg(host, QString::fromLocal8Bit(gai_strerror(outcome)));
        return {};
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo *)> owner(list, freeaddrinfo);
    std::vector<Place> places;
    for (const addrinfo *entry = list; entry; entry = entry->ai_next) {
        const QHostAddress address(entry->ai_addr);
        if (!address.isNull())
            places.push_back({address.toString(), address.isLoopback(), entry->ai_family == AF_INET6});
    }
    return places;
}

/// Of an encrypted broker it is the name, as the certificate is compared with that. The library then takes the first
/// address which does not refuse at once; by the family of the own address each attempt takes another one.
Destination destinationOf(const MqttSettings &settings, int number, MqttAttempt &attempt)
{
    std::vector<Place> places = placesOf(settings.host, attempt.error);
    if (places.empty())
        return {};
    if (settings.isEncrypted)
        places.erase(std::unique(places.begin(), places.end(),
                                 [](const Place &one, const Place &next) { return one.isIpV6 == next.isIpV6; }),
                     places.end());
    attempt.places = static_cast<int>(places.size());
    const Place &place = places[static_cast<std::size_t>(number) % places.size()];
    if (settings.isEncrypted && attempt.places > 1)
        return {settings.host, place.isIpV6 ? "::" : "0.0.0.0"};
    if (settings.isEncrypted)
        return {settings.host, {}};
    if (place.isLoopback || settings.isPlaintextAllowed)
        return {place.address, {}};
    attempt.error =
        QStringLiteral("%1 (%2) is another machine, and without TLS everybody on the way may read and change what is "
                       "said, passwords included: use mqtts, or accept that with ?plaintext=everybody-may-read")
            .arg(settings.host, place.address);
    return {};
}

bool setTls(mosquitto *client, const MqttSettings &settings, QString &error)
{
    const auto path = [](const QString &file) { return QFile::encodeName(file); };
    for (const QString &file : {settings.caFile, settings.certificateFile, settings.keyFile}) {
        if (!file.isEmpty() && !QFileInfo(file).isReadable()) {
            error = QStringLiteral("the file %1 cannot be read").arg(file);
            return false;
        }
    }
    const QByteArray ca = path(settings.caFile);
    const QByteArray certificate = path(settings.certificateFile);
    const QByteArray key = path(settings.keyFile);
    const auto orNull = [](const QByteArray &file) { return file.isEmpty() ? nullptr : file.constData(); };
    const char *const systemFolder = ca.isEmpty() ? "/etc/ssl/certs" : nullptr;
    // Without a way to ask for one, a key that needs a passphrase would ask at the terminal.
    const auto noPassphrase = [](char *, int, int, void *) { return 0; };
    const int outcome =
        mosquitto_tls_set(client, orNull(ca), systemFolder, orNull(certificate), orNull(key), noPassphrase);
    if (outcome == MOSQ_ERR_SUCCESS && mosquitto_tls_opts_set(client, 1, nullptr, nullptr) == MOSQ_ERR_SUCCESS)
        return true;
    error = QStringLiteral("TLS cannot be set up: %1").arg(mqttErrorText(outcome));
    return false;
}

bool setWill(mosquitto *client, const MqttMessage &will)
{
    mosquitto_property *properties = nullptr;
    if (!will.contentType.isEmpty())
        mosquitto_property_add_string(&properties, MQTT_PROP_CONTENT_TYPE, will.contentType.toUtf8().constData());
    const int outcome =
        mosquitto_will_set_v5(client, will.topic.toUtf8().constData(), static_cast<int>(will.payload.size()),
                              will.payload.constData(), 1, will.isRetained, properties);
    if (outcome != MOSQ_ERR_SUCCESS)
        mosquitto_property_free_all(&properties); // else they are the client's
    return outcome == MOSQ_ERR_SUCCESS;
}
} // namespace

QString mqttErrorText(int code)
{
    if (code == MOSQ_ERR_ERRNO && errno != 0)
        return errnoText();
    if (code == MOSQ_ERR_ERRNO) // the connection ended, and the system knows no reason
        code = MOSQ_ERR_CONN_LOST;
    return QString::fromLatin1(mosquitto_strerror(code)).remove(u'.');
}

QString mqttConnectError(const MqttSettings &settings, int code, const QString &detail)
{
    if (settings.isEncrypted && (code == MOSQ_ERR_TLS || !detail.isEmpty())) {
        const QString why = detail.section(u':', -1).trimmed();
        return QStringLiteral("no TLS with %1:%2: %3")
            .arg(settings.host)
            .arg(settings.port)
            .arg(why.isEmpty() ? mqttErrorText(code) : why);
    }
    // What the broker says of the certificate can be lost with the connection; the library makes EPROTO of it at times.
    constexpr std::array brokenOff{0, ECONNRESET, EPIPE, EPROTO};
    const bool isBrokenOff = code == MOSQ_ERR_CONN_LOST
        || (code == MOSQ_ERR_ERRNO && std::find(brokenOff.cbegin(), brokenOff.cend(), errno) != brokenOff.cend());
    if (settings.isEncrypted && isBrokenOff) {
        return QStringLiteral("no TLS with %1:%2: the broker broke the connection off; it may want another certificate")
            .arg(settings.host)
            .arg(settings.port);
    }
    return QStringLiteral("the broker %1:%2 cannot be reached: %3")
        .arg(settings.host)
        .arg(settings.port)
        .arg(mqttErrorText(code));
}

MqttAttempt attemptMqtt(const MqttSettings &settings, const QString &clientId, const std::optional<MqttMessage> &will,
                        int number)
{
    static std::once_flag isInitialised;
    std::call_once(isInitialised, mosquitto_lib_init);
    MqttAttempt attempt;
    QByteArray password;
    if (!readPassword(settings, password, attempt.error))
        return attempt;
    const Destination destination = destinationOf(settings, number, attempt);
    if (destination.host.isEmpty())
        return attempt;
    std::shared_ptr<mosquitto> client(mosquitto_new(clientId.toUtf8().constData(), true, nullptr), mosquitto_destroy);
    if (!client) {
        attempt.error = errnoText();
        return attempt;
    }
    mosquitto_int_option(client.get(), MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_int_option(client.get(), MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_int_option(client.get(), MOSQ_OPT_RECEIVE_MAXIMUM, windowSize);
    mosquitto_int_option(client.get(), MOSQ_OPT_SEND_MAXIMUM, windowSize);
    if (!settings.user.isEmpty())
        mosquitto_username_pw_set(client.get(), settings.user.toUtf8().constData(),
                                  password.isEmpty() ? nullptr : password.constData());
    if (settings.isEncrypted && !setTls(client.get(), settings, attempt.error))
        return attempt;
    if (will && !setWill(client.get(), *will)) {
        attempt.error = QStringLiteral("the last will is not taken");
        return attempt;
    }
    QString detail; // what the library says of TLS, where the handshake fails at once
    mosquitto_user_data_set(client.get(), &detail);
    mosquitto_log_callback_set(client.get(), [](mosquitto *, void *text, int level, const char *line) {
        if (level == MOSQ_LOG_ERR)
            *static_cast<QString *>(text) = QString::fromLocal8Bit(line);
    });
    int outcome =
        mosquitto_connect_bind_async(client.get(), destination.host.toUtf8().constData(), settings.port, keepAlive,
                                     destination.from.isEmpty() ? nullptr : destination.from.constData());
    if (outcome == MOSQ_ERR_TLS && detail.isEmpty()) { // newer ones begin with TLS before they know that nobody listens
        outcome = MOSQ_ERR_ERRNO;
        errno = ECONNREFUSED;
    }
    mosquitto_log_callback_set(client.get(), nullptr);
    if (outcome == MOSQ_ERR_SUCCESS)
        attempt.client = std::move(client);
    else
        attempt.error = mqttConnectError(settings, outcome, detail);
    return attempt;
}
