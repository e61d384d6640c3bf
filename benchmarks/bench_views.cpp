#include "Case.h"
#include "Client.h"
#include "Replies.h"

#include <QCoreApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSortFilterProxyModel>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

/// Two clients, one of which has somebody look at its volumes.
struct Watched
{
    QVariant data;
    Client client;
    Client alone;
};

Work replyTo(const std::shared_ptr<Watched> &watched, const std::function<std::string()> &complaint)
{
    const auto settle = [] { QCoreApplication::processEvents(); };
    return {
        {
            {"ours", [watched] { watched->client.reply("getVolume", watched->data); }, settle},
            {"without", [watched] { watched->alone.reply("getVolume", watched->data); }, settle},
        },
        complaint,
    };
}

struct Proxied : Watched
{
    QSortFilterProxyModel proxy; // goes first
};

Work withProxy(int size)
{
    const auto watched = std::make_shared<Proxied>();
    watched->data = Replies::volumes(size);
    watched->proxy.setSourceModel(&watched->client.volumes());
    // Views ask at once, so the proxy has its rows mapped when the new ones come.
    const QSortFilterProxyModel *const proxy = &watched->proxy;
    QObject::connect(proxy, &QAbstractItemModel::modelReset, proxy, [proxy] { proxy->rowCount(); });
    return replyTo(watched, [watched, size] {
        return watched->proxy.rowCount() == size ? std::string() : "the proxy has not every row";
    });
}

struct Listed : Watched
{
    QQmlEngine engine;
    QQuickWindow window;
    std::unique_ptr<QQuickItem> view; // goes first
};

Work withListView(int size)
{
    const auto watched = std::make_shared<Listed>();
    watched->data = Replies::volumes(size);
    QQmlComponent component(&watched->engine);
    component.setData(R"(import QtQuick
ListView {
    width: 400
    height: 600
    delegate: Text { required property string nameRole; text: nameRole }
})",
                      {});
    watched->view.reset(qobject_cast<QQuickItem *>(component.create()));
    if (!watched->view)
        qFatal("%s", qPrintable(component.errorString()));
    watched->view->setProperty("model", QVariant::fromValue<QObject *>(&watched->client.volumes()));
    watched->view->setParentItem(watched->window.contentItem());
    watched->window.resize(400, 600);
    watched->window.show();
    return replyTo(watched, [watched, size] {
        return watched->view->property("count") == size ? std::string() : "the view has not every row";
    });
}

} // namespace

std::vector<Case> viewCases()
{
    return {
        {11, "volume reply with a proxy", {10'000}, withProxy},
        {12, "volume reply with a ListView", {100'000}, withListView},
    };
}
