#include "ConsolePages.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {
struct Page
{
    QLatin1String key;
    const char *title;
    QLatin1String iconName;
    QLatin1String source;
    bool isOfSite = false; // of all stations; the others are of the one that is worked on
};

const Page pages[] = {
    {"volumes"_L1, QT_TRANSLATE_NOOP("ConsolePages", "Volumes"), "volume"_L1, "pages/VolumesPage.qml"_L1},
    {"groups"_L1, QT_TRANSLATE_NOOP("ConsolePages", "Recording groups"), "group"_L1,
     "pages/RecordingGroupsPage.qml"_L1},
    {"cameras"_L1, QT_TRANSLATE_NOOP("ConsolePages", "Cameras"), "camera"_L1, "pages/CamerasPage.qml"_L1},
    {"usage"_L1, QT_TRANSLATE_NOOP("ConsolePages", "Usage"), "gauge"_L1, "pages/UsagePage.qml"_L1},
    {"folders"_L1, QT_TRANSLATE_NOOP("ConsolePages", "Folders"), "folder"_L1, "pages/FoldersPage.qml"_L1},
    {"nas"_L1, QT_TRANSLATE_NOOP("ConsolePages", "NAS servers"), "network"_L1, "pages/NasPage.qml"_L1},
    {"stations"_L1, QT_TRANSLATE_NOOP("ConsolePages", "Stations"), "station"_L1, "pages/StationsPage.qml"_L1, true},
};
} // namespace

ConsolePages::ConsolePages(QObject *parent)
    : QObject(parent)
{
}

QVariantList ConsolePages::list() const
{
    QVariantList list;
    for (const Page &page : pages) {
        list.append(QVariantMap{{u"key"_s, QString(page.key)},
                                {u"title"_s, QCoreApplication::translate("ConsolePages", page.title)},
                                {u"iconName"_s, QString(page.iconName)},
                                {u"source"_s, QString(page.source)},
                                {u"ofSite"_s, page.isOfSite}});
    }
    return list;
}

QVariantMap ConsolePages::page(const QString &key) const
{
    const QVariantList all = list();
    for (const QVariant &page : all) {
        if (page.toMap().value(u"key"_s) == key)
            return page.toMap();
    }
    return {};
}

QStringList ConsolePages::keys()
{
    QStringList keys;
    for (const Page &page : pages)
        keys.append(page.key);
    return keys;
}
