#include "IndexedTree.h"

#include "FixedVolume.h"
#include "TreeStation.h"
#include "Waiting.h"
#include "groups/GroupStore.h"
#include "store/Database.h"
#include "usage/IndexWorker.h"
#include "usage/RecordingPlaces.h"
#include "usage/UsageSettings.h"

#include <QDir>

#include <stdexcept>

IndexedTree::IndexedTree(const Layout &layout, const std::string &path, const std::string &dataFolder)
    : m_files(layout, path)
    , m_dataFolder(QString::fromStdString(dataFolder))
{
    forgetIndex();
}

IndexedTree::~IndexedTree() = default;

void IndexedTree::forgetIndex()
{
    close();
    m_isIndexed = false;
    QDir(m_dataFolder).removeRecursively();
    Database database(m_dataFolder);
    GroupStore store(database);
    const QList<RecordingGroup> groups = m_files.groups();
    for (const RecordingGroup &group : groups)
        store.insert(group);
    const FixedVolume volumes(m_files.volume());
    RecordingPlaces places(database, volumes);
    places.update(groups, {});
    places.look();
    m_places.clear();
    for (const RecordingPlace &place : places.places())
        m_places.append({place.number, place.path, place.root(), true, identify(place.path).device});
}

void IndexedTree::read()
{
    m_station.reset();
    if (!m_worker) {
        m_worker = std::make_unique<IndexWorker>(m_dataFolder, UsageSettings());
        QObject::connect(m_worker.get(), &IndexWorker::sumsChanged, m_worker.get(),
                         [this](const PlaceSums &sums) { m_sums = sums; });
        m_worker->setPlaces(m_places);
    }
    m_worker->reconcile(++m_ticket);
    bool isDone = false;
    Waiting waiting;
    const auto connection = QObject::connect(m_worker.get(), &IndexWorker::reconciled, &waiting, [&](quint64 ticket) {
        isDone = ticket == m_ticket;
        waiting.look();
    });
    waiting.waitFor([&isDone] { return isDone; }, "the end of reading all folders");
    m_isIndexed = true;
}

TreeStation &IndexedTree::station()
{
    m_worker.reset();
    if (!m_station)
        m_station = std::make_unique<TreeStation>(m_files, m_dataFolder);
    return *m_station;
}

void IndexedTree::close()
{
    m_station.reset();
    m_worker.reset();
}

void IndexedTree::requireIndex()
{
    if (!m_isIndexed)
        read();
}

void IndexedTree::checkSums() const
{
    for (qsizetype group = 0; group < m_places.size(); ++group) {
        const PlaceSum sum = m_sums.value(m_places.at(group).number);
        const auto isEqual = [](const DaySum &a, const DaySum &b) { return a.files == b.files && a.bytes == b.bytes; };
        const DaySums &expected = m_files.sums().at(group);
        if (!sum.isRead || sum.days.keys() != expected.keys()
            || !std::equal(expected.cbegin(), expected.cend(), sum.days.cbegin(), isEqual))
            throw std::runtime_error("the station's sums are not those of the files");
    }
}
