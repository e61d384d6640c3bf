#include "Case.h"
#include "Client.h"
#include "ItemRoles.h"
#include "PlainPlugin.h"
#include "PrivateMembers.h"
#include "Replies.h"
#include "Rows.h"
#include "ServerVocabulary.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using benchmark::DoNotOptimize;

constexpr int mostPlainGroups = 1000; // beyond it the plain rules take seconds

/// One station and the groups that are hung below it.
struct Tree
{
    Tree()
    {
        for (QStandardItemModel *model : {&client.tree(), &floor}) {
            auto *const station = new QStandardItem;
            station->setData(Replies::relayPath(), TreeRole::RelayPath);
            station->setData(QStringLiteral("Station"), TreeRole::Type);
            model->appendRow(station);
        }
    }

    QVariant data;
    Client client;
    PlainPlugin plain;
    std::vector<RowValues> values;
    QStandardItemModel floor;
};

void removeGroups(QStandardItemModel &model)
{
    model.item(0)->removeRows(0, model.item(0)->rowCount());
}

void readGroups(const QVariant &data)
{
    const QVariantList groups = data.toList();
    for (const QVariant &element : groups) {
        const QVariantMap group = element.toMap();
        DoNotOptimize(group.value(FieldKey::recordingGroupName));
        DoNotOptimize(group.value(FieldKey::relayPath));
        DoNotOptimize(group.value(FieldKey::recordingGroupID));
    }
}

Work fillTree(int size)
{
    const auto tree = std::make_shared<Tree>();
    tree->data = Replies::recordingGroups(size);
    PrivateMembers::appendRecordingGroupToTreeModel(tree->client.plugin, tree->data);
    tree->values = rowValues(tree->client.tree().item(0));
    Work work{
        {
            {"ours", [tree] { PrivateMembers::appendRecordingGroupToTreeModel(tree->client.plugin, tree->data); },
             [tree] { removeGroups(tree->client.tree()); }},
            {"read", [tree] { readGroups(tree->data); }},
            {"floor", [tree] { appendRows(tree->floor.item(0), tree->values); }, [tree] { removeGroups(tree->floor); }},
        },
    };
    if (size <= mostPlainGroups) {
        work.variants.push_back({"plain", [tree] { tree->plain.appendRecordingGroupToTreeModel(tree->data); },
                                 [tree] { removeGroups(tree->plain.tree); }});
        work.complaint = [tree] {
            return difference(tree->client.tree().item(0), tree->plain.tree.item(0), TreeRole::Id);
        };
    }
    return work;
}

} // namespace

std::vector<Case> treeCases()
{
    return {{4, "tree filling", {100, 1000, 10'000}, fillTree, {1000, 4000}}};
}
