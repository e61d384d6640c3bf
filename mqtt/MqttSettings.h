#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// How a broker is reached, and as whom.
struct MqttSettings
{
    QString host; ///< a name or an address; the broker's certificate has to be made out to it
    quint16 port = 0;
    bool isEncrypted = true; ///< by TLS
    /// Without TLS, an address that is not this machine's own is refused, unless this says that everybody on the way
    /// may read and change what is said, passwords included.
    bool isPlaintextAllowed = false;
    QString user = {}; ///< empty: none
    QByteArray password = {}; ///< may be empty
    QString passwordFile = {}; ///< read at each attempt, comes before @ref password; its first line counts
    QString caFile = {}; ///< whose certificates are trusted, in PEM; empty: those of the system
    QString certificateFile = {}; ///< of this side, in PEM; empty: none
    QString keyFile = {}; ///< of that certificate, in PEM
};

/// What the URL of a broker says.
struct MqttUrl
{
    MqttSettings settings;
    QString station; ///< the relay path after the broker; empty: none
};

/// Reads what follows "mqtt:" or "mqtts:" (@p isEncrypted): "//[USER@]BROKER[:PORT][/STATION][?KEY=VALUE&...]". The
/// port is 1883, or 8883 with TLS. STATION and USER are percent-encoded. Keys are "ca", "certificate", "key",
/// "password-file", names of files, and "plaintext", which has to be "everybody-may-read".
/// @return none, with a sentence in @p error, where it is written in another way
std::optional<MqttUrl> readMqttUrl(const QString &place, bool isEncrypted, QString *error);

/// The same for a station, of the URL as a whole: it names a broker and no station.
std::optional<MqttUrl> readBrokerUrl(const QString &url, QString *error);

/// What the environment says besides: $RECORDING_BROKER_USER, $RECORDING_BROKER_PASSWORD, and
/// $RECORDING_BROKER_PASSWORD_FILE, $RECORDING_BROKER_CA, $RECORDING_BROKER_CERTIFICATE and $RECORDING_BROKER_KEY,
/// names of files. What @p settings have already stays.
void addMqttEnvironment(MqttSettings &settings);

/// What is wrong with @p settings, a sentence; empty: nothing.
QString mqttSettingsError(const MqttSettings &settings);
