#pragma once

#include <QObject>
#include <QVariant>
#include <QVariantMap>

/// The station plug-in as the plug-in under test asks it; the test says which station it names.
class FakeStationPlugin : public QObject
{
    Q_OBJECT

public:
    static inline const QString pluginId = QStringLiteral("1AA33B3D0AA047C9A202F1181284D2CD");

    Q_INVOKABLE QVariant getStationTree()
    {
        ++asked;
        return station;
    }

    QVariant station = QVariantMap{{QStringLiteral("name"), QStringLiteral("North")},
                                   {QStringLiteral("ip"), QStringLiteral("10.0.0.7")},
                                   {QStringLiteral("relayPath"), QStringLiteral("st1")},
                                   {QStringLiteral("type"), QStringLiteral("NVR")}};
    int asked = 0;
};
