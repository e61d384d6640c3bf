#pragma once

#include "CommandRun.h"
#include "TextTable.h"

#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

class QAbstractItemModel;

/// A recording group as the plug-in's tree and queries tell it.
struct GroupInfo
{
    QString id;
    QString name;
    QStringList paths;
    QVariantList reservedMegabytes; ///< 64-bit integers, one for each path
    QStringList recoveryPaths;
    int reservedMinutes = 0; ///< 0: no reserved time
    QVariantList members; ///< maps "camName", "streamIndex", "enableTimeShift", "enableSeamless"
};

/// The groups in @p tree, the plug-in's station tree, and what the queries say of each, in the order of the tree.
QList<GroupInfo> groupsOf(const CommandRun &run, const QAbstractItemModel &tree);

/// The group in @p groups whose id or, else, whose name is @p text; null when there is none or the name is not unique,
/// and then @p error says so.
const GroupInfo *findGroup(const QList<GroupInfo> &groups, const QString &text, QString *error);

/// The id of the group that @p text names, by its id or name, with the groups fetched from the station; a group that
/// was removed is known by its id alone. Empty, with the command ended in @p exitCode, when there is no such group.
QString groupId(CommandRun &run, const QString &text, ExitCode *exitCode);

TextTable groupTable(const QList<GroupInfo> &groups);
TextTable memberTable(const QVariantList &members);
/// The station and its groups, these indented.
TextTable treeTable(const QAbstractItemModel &tree);
/// The same three for a program.
QJsonArray groupsJson(const QList<GroupInfo> &groups);
QJsonArray membersJson(const QVariantList &members);
QJsonArray treeJson(const QAbstractItemModel &tree);
