#include "MqttSettings.h"

#include "MqttTopics.h"

#include <QUrl>
#include <QUrlQuery>

namespace {
constexpr int plainPort = 1883;
constexpr int encryptedPort = 8883;

bool takeQuery(const QUrlQuery &query, MqttSettings &settings, QString *error)
{
    const auto items = query.queryItems(QUrl::FullyDecoded);
    for (const auto &[key, value] : items) {
        if (key == QStringLiteral("ca"))
            settings.caFile = value;
        else if (key == QStringLiteral("certificate"))
            settings.certificateFile = value;
        else if (key == QStringLiteral("key"))
            settings.keyFile = value;
        else if (key == QStringLiteral("password-file"))
            settings.passwordFile = value;
        else if (key == QStringLiteral("plaintext") && value == QStringLiteral("everybody-may-read"))
            settings.isPlaintextAllowed = true;
        else {
            *error = QStringLiteral("\"%1=%2\" in the URL of the broker is not known: expected ca, certificate, key or "
                                    "password-file with a file, or plaintext=everybody-may-read.")
                         .arg(key, value);
            return false;
        }
    }
    return true;
}

void addFromEnvironment(QString &value, const char *variable)
{
    if (value.isEmpty())
        value = qEnvironmentVariable(variable);
}

/// @param form of what stands behind "//", for who has to write it
std::optional<MqttUrl> readUrl(const QString &place, bool isEncrypted, const QString &form, QString *error)
{
    const QString scheme = isEncrypted ? QStringLiteral("mqtts") : QStringLiteral("mqtt");
    const QUrl url(scheme + u':' + place, QUrl::StrictMode);
    if (!url.password().isEmpty()) {
        *error =
            QStringLiteral("The URL of the broker has a password in it, which others can read there. Put it into a "
                           "file: $RECORDING_BROKER_PASSWORD_FILE or ?password-file=FILE.");
        return {};
    }
    const QString path = url.path(QUrl::FullyEncoded).mid(1);
    if (!url.isValid() || url.host().isEmpty() || url.port() == 0 || url.hasFragment() || path.contains(u'/')) {
        *error = QStringLiteral("\"%1:%2\" is not understood: expected %1://%3.").arg(scheme, place, form);
        return {};
    }
    MqttUrl found;
    found.settings.host = url.host(QUrl::FullyEncoded);
    found.settings.port = static_cast<quint16>(url.port(isEncrypted ? encryptedPort : plainPort));
    found.settings.isEncrypted = isEncrypted;
    found.settings.user = url.userName(QUrl::FullyDecoded);
    found.station = QString::fromUtf8(QByteArray::fromPercentEncoding(path.toUtf8()));
    if (!takeQuery(QUrlQuery(url), found.settings, error))
        return {};
    return found;
}

} // namespace

std::optional<MqttUrl> readMqttUrl(const QString &place, bool isEncrypted, QString *error)
{
    return readUrl(place, isEncrypted, QStringLiteral("[USER@]BROKER[:PORT]/STATION"), error);
}

std::optional<MqttUrl> readBrokerUrl(const QString &url, QString *error)
{
    const QString brokerForm = QStringLiteral("[USER@]BROKER[:PORT]");
    const qsizetype colon = url.indexOf(u':');
    const QString scheme = url.left(colon);
    if (colon < 0 || (scheme != QStringLiteral("mqtt") && scheme != QStringLiteral("mqtts"))) {
        *error = QStringLiteral("\"%1\" names no broker: expected mqtts://%2.").arg(url, brokerForm);
        return {};
    }
    std::optional<MqttUrl> found = readUrl(url.mid(colon + 1), scheme == QStringLiteral("mqtts"), brokerForm, error);
    if (found && !found->station.isEmpty()) {
        *error = QStringLiteral("\"%1\" names a station behind the broker: a station's own ID is set apart from it.")
                     .arg(url);
        return {};
    }
    return found;
}

void addMqttEnvironment(MqttSettings &settings)
{
    addFromEnvironment(settings.user, "RECORDING_BROKER_USER");
    addFromEnvironment(settings.passwordFile, "RECORDING_BROKER_PASSWORD_FILE");
    if (settings.password.isEmpty())
        settings.password = qgetenv("RECORDING_BROKER_PASSWORD");
    if (!settings.isEncrypted)
        return;
    addFromEnvironment(settings.caFile, "RECORDING_BROKER_CA");
    addFromEnvironment(settings.certificateFile, "RECORDING_BROKER_CERTIFICATE");
    addFromEnvironment(settings.keyFile, "RECORDING_BROKER_KEY");
}

QString mqttSettingsError(const MqttSettings &settings)
{
    if (!settings.user.isEmpty() && !MqttTopics::canBeUser(settings.user))
        return QStringLiteral(
                   "The broker's user \"%1\" has a character that no topic may have: + # / or a control one.")
            .arg(settings.user);
    if (settings.certificateFile.isEmpty() != settings.keyFile.isEmpty())
        return QStringLiteral("A certificate for the broker needs its key, and a key its certificate.");
    if (!settings.isEncrypted && (!settings.caFile.isEmpty() || !settings.certificateFile.isEmpty()))
        return QStringLiteral("Certificates are of no use without TLS: expected mqtts instead of mqtt.");
    return {};
}
