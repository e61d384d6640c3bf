#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QString>

/// One message over a broker, with those properties of MQTT 5 that are used here.
struct MqttMessage
{
    QString topic;
    QByteArray payload = {};
    QString contentType = {}; ///< see MqttBody; may be empty
    QString responseTopic = {}; ///< of a command: where the reply is wanted
    QByteArray correlation = {}; ///< of a command, and again of its reply
    quint32 expiry = 0; ///< seconds after which the broker drops it undelivered; 0: never
    QString client = {}; ///< the user property "client": the sender's program, only to be shown
    bool isRetained = false; ///< to be kept by the broker; of a received one: it was kept, and is none of now
};

Q_DECLARE_METATYPE(MqttMessage)
