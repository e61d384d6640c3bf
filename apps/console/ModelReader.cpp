#include "ModelReader.h"

#include "ModelColumn.h"

#include <utility>
#include <vector>

ModelReader::ModelReader(QObject *parent)
    : QObject(parent)
{
    m_later.setSingleShot(true);
    connect(&m_later, &QTimer::timeout, this, &ModelReader::changed);
}

QObject *ModelReader::model() const
{
    return m_model;
}

void ModelReader::setModel(QObject *model)
{
    if (m_model == model)
        return;
    if (m_model)
        m_model->disconnect(this);
    m_model = qobject_cast<QAbstractItemModel *>(model);
    const auto tellLater = [this] { m_later.start(0); };
    if (m_model) {
        connect(m_model, &QAbstractItemModel::modelReset, this, tellLater);
        connect(m_model, &QAbstractItemModel::rowsInserted, this, tellLater);
        connect(m_model, &QAbstractItemModel::rowsRemoved, this, tellLater);
        connect(m_model, &QAbstractItemModel::dataChanged, this, tellLater);
    }
    tellLater();
    emit modelChanged();
}

QVariantList ModelReader::read(const QVariantMap &roles) const
{
    if (!m_model)
        return {};
    std::vector<std::pair<QString, ModelColumn>> columns;
    for (auto role = roles.cbegin(); role != roles.cend(); ++role)
        columns.emplace_back(role.key(), ModelColumn(*m_model, role->toByteArray()));
    QVariantList rows;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        QVariantMap values;
        for (const auto &[key, column] : columns)
            values.insert(key, column[row]);
        rows.append(values);
    }
    return rows;
}
