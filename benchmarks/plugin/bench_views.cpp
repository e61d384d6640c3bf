#include "Case.h"
#include "Client.h"
#include "Program.h"
#include "Replies.h"

#include <QCoreApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSortFilterProxyModel>

namespace {

/// The volume reply for a plug-in at whose volumes somebody looks, and for one that is alone.
void measureReply(PluginRecordingManagement &watched, int size, const Measure &measure)
{
    const QVariant data = Replies::volumes(size);
    Client alone;
    const auto settle = [] { QCoreApplication::processEvents(); };
    measure({
        {"ours", [&] { deliver(watched, ServerCommand::getVolume, data); }, settle},
        {"without", [&] { deliver(alone.plugin, ServerCommand::getVolume, data); }, settle},
    });
}

void watchWithProxy(int size, const Measure &measure)
{
    Client watched;
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&rowsOf(watched.plugin.getVolumeModel()));
    // Views ask at once, so the proxy has its rows mapped when the new ones come.
    QObject::connect(&proxy, &QAbstractItemModel::modelReset, &proxy, [&proxy] { proxy.rowCount(); });
    measureReply(watched.plugin, size, measure);
    require(proxy.rowCount() == size, "the proxy has not every row");
}

void watchWithListView(int size, const Measure &measure)
{
    Client watched;
    QQmlEngine engine;
    QQuickWindow window;
    QQmlComponent component(&engine);
    component.setData(R"(import QtQuick
ListView {
    width: 400
    height: 600
    delegate: Text { required property string nameRole; text: nameRole }
})",
                      {});
    const std::unique_ptr<QQuickItem> view(qobject_cast<QQuickItem *>(component.create()));
    require(view != nullptr, component.errorString().toStdString());
    view->setProperty("model", QVariant::fromValue(watched.plugin.getVolumeModel()));
    view->setParentItem(window.contentItem());
    window.resize(400, 600);
    window.show();
    measureReply(watched.plugin, size, measure);
    require(view->property("count") == size, "the view has not every row");
}

} // namespace

std::vector<Case> viewCases()
{
    return {
        {"11 volume reply with a proxy", {10'000}, watchWithProxy},
        {"12 volume reply with a ListView", {100'000}, watchWithListView},
    };
}
