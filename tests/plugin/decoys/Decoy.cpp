// Built several times: Qt plug-ins that are not the wanted one, or claim to be it and are of no use.

#include <QObject>
#include <QtPlugin>

namespace {

struct LoadMark
{
    LoadMark() { qputenv("RECORDING_DECOY_LOADED", DECOY_NAME); }
};

const LoadMark loadMark; // tells the test that the library was loaded

} // namespace

#ifdef DECOY_BROKEN
extern int symbolThatNobodyHas;
int *volatile brokenReference = &symbolThatNobodyHas; // the loader refuses the library
#endif

class Decoy : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID DECOY_IID FILE "Decoy.json")
};

#include "Decoy.moc"
