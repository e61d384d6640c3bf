#include "FakeFramework.h"
#include "ItemRoles.h"
#include "Page.h"
#include "PluginRecordingManagement.h"

#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaObject>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <algorithm>
#include <memory>

namespace {

const QMetaObject &meta()
{
    return PluginRecordingManagement::staticMetaObject;
}

// The page's word for a type of the meta-object.
QString typeWord(const QMetaType &type)
{
    const QString name = QString::fromLatin1(type.name());
    const QHash<QString, QString> words{
        {QStringLiteral("QString"), QStringLiteral("string")},
        {QStringLiteral("QVariantList"), QStringLiteral("list")},
        {QStringLiteral("QVariantMap"), QStringLiteral("map")},
        {QStringLiteral("void"), QStringLiteral("nothing")},
        {QStringLiteral("QObject*"), QStringLiteral("model")},
    };
    return words.value(name, name.section(QStringLiteral("::"), -1));
}

// How many of the method's last parameters may be left out.
int optionalParameters(int number)
{
    int clones = 0;
    while (number + clones + 1 < meta().methodCount()
           && (meta().method(number + clones + 1).attributes() & QMetaMethod::Cloned))
        ++clones;
    return clones;
}

// "getServerDir(basePath, [relayPath])": as the page writes it, without the defaults.
QString methodText(int number)
{
    const QMetaMethod method = meta().method(number);
    QStringList names;
    for (const QByteArray &name : method.parameterNames())
        names.append(QString::fromLatin1(name));
    const int optional = optionalParameters(number);
    if (optional > 0) {
        const auto required = names.size() - optional;
        const QString rest = u'[' + names.mid(required).join(QStringLiteral(", ")) + u']';
        names = names.mid(0, required);
        names.append(rest);
    }
    return QString::fromLatin1(method.name()) + u'(' + names.join(QStringLiteral(", ")) + u')';
}

QString signalText(const QMetaMethod &method)
{
    QStringList parameters;
    for (int i = 0; i < method.parameterCount(); ++i)
        parameters.append(typeWord(method.parameterMetaType(i)) + u' '
                          + QString::fromLatin1(method.parameterNames()[i]));
    return QString::fromLatin1(method.name()) + u'(' + parameters.join(QStringLiteral(", ")) + u')';
}

// The numbers of the invokables, without their clones.
QList<int> invokables()
{
    QList<int> numbers;
    for (int i = meta().methodOffset(); i < meta().methodCount(); ++i) {
        const QMetaMethod method = meta().method(i);
        if (method.methodType() == QMetaMethod::Method && !(method.attributes() & QMetaMethod::Cloned))
            numbers.append(i);
    }
    return numbers;
}

// The words between quotation marks in @p text.
QStringList quotedWords(const QString &text)
{
    static const QRegularExpression word(QStringLiteral("\"([A-Za-z]+)\""));
    QStringList words;
    auto match = word.globalMatch(text);
    while (match.hasNext())
        words.append(match.next().captured(1));
    return words;
}

// The texts of an item and of all items below it.
QStringList shownTexts(const QQuickItem *item)
{
    QStringList texts{item->property("text").toString()};
    for (const QQuickItem *child : item->childItems())
        texts.append(shownTexts(child));
    return texts;
}

// A view makes its delegates when it is in a window.
void showIn(QQuickWindow &window, QQuickItem *item)
{
    window.resize(300, 300);
    item->setParentItem(window.contentItem());
    item->setSize(window.size());
    window.show();
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

/// The page of the QML interface says what the meta-object, the role tables and the vocabulary say, and its examples
/// run.
class QmlPageTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void everyMethodIsListed();
    void everyMethodSaysWhatItReturns();
    void everySignalIsListed();
    void enumerationsHaveTheirValues();
    void rolesHaveTheirNumbers();
    void defaultsAreThoseOfTheMethods();
    void everyQuotedWordIsOneOfTheVocabulary();
    void keysOfTheEditsAreExplained();
    void mapsHaveTheKeysOfThePage();
    void unknownFiguresAreAsThePageSays();
    void everyExampleIsRunHere();
    void exampleListsVolumes();
    void exampleEditsAGroup();
    void exampleShowsUsage();

private:
    QVariant evaluate(const QString &expression);
    std::unique_ptr<QObject> example(int number);
    void answer(const QString &command, const QVariant &data, const QString &returnCode = QStringLiteral("0"))
    {
        m_plugin->CommandProcessor(command, data, nullptr, returnCode, {}, true, {});
    }
    void change(const QVariantList &entries)
    {
        m_plugin->EventProcessor(QStringLiteral("VolumeChanged"), 0, 0, 0, entries, {});
    }

    const QString m_page = Page::text(QStringLiteral("docs/qml-api.md"));
    FakeFramework m_framework;
    std::unique_ptr<PluginRecordingManagement> m_plugin;
    std::unique_ptr<QQmlEngine> m_engine;
};

void QmlPageTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_framework = FakeFramework();
    m_plugin = std::make_unique<PluginRecordingManagement>();
    QVERIFY(m_plugin->InitialPluginBase(nullptr, nullptr, &m_framework));
    m_engine = std::make_unique<QQmlEngine>();
    m_engine->rootContext()->setContextProperty(QStringLiteral("recording"), m_plugin.get());
}

void QmlPageTest::cleanup()
{
    m_engine.reset(); // before the models that it shows
    m_plugin.reset();
}

QVariant QmlPageTest::evaluate(const QString &expression)
{
    QQmlExpression script(m_engine->rootContext(), nullptr, expression);
    const QVariant value = script.evaluate();
    if (script.hasError())
        qWarning() << script.error();
    return value;
}

std::unique_ptr<QObject> QmlPageTest::example(int number)
{
    QQmlComponent component(m_engine.get());
    component.setData(Page::codeBlocks(m_page).value(number).code.toUtf8(), {});
    std::unique_ptr<QObject> object(component.createWithInitialProperties(
        {{QStringLiteral("recording"), QVariant::fromValue<QObject *>(m_plugin.get())}}));
    if (!object)
        qWarning() << component.errorString();
    return object;
}

void QmlPageTest::everyMethodIsListed()
{
    QStringList expected;
    for (const int number : invokables())
        expected.append(methodText(number));
    static const QRegularExpression defaultValue(QStringLiteral(" = [^,\\]]+"));
    QStringList listed;
    for (const QString &title : {QStringLiteral("Method"), QStringLiteral("Getter")}) {
        for (const QStringList &row : Page::rowsUnder(m_page, title))
            listed.append(QString(row.value(0)).remove(u'`').remove(defaultValue));
    }
    QCOMPARE(sorted(listed), sorted(expected));
}

void QmlPageTest::everyMethodSaysWhatItReturns()
{
    QHash<QString, QString> returns;
    for (const int number : invokables())
        returns.insert(QString::fromLatin1(meta().method(number).name()),
                       typeWord(meta().method(number).returnMetaType()));
    for (const QStringList &row : Page::rowsUnder(m_page, QStringLiteral("Method"))) {
        const QString name = row.value(0).section(u'(', 0, 0).remove(u'`');
        static const QRegularExpression word(QStringLiteral("^[a-z]+"));
        QVERIFY2(word.match(row.value(1)).captured() == returns.value(name), qPrintable(name));
    }
    for (const QStringList &row : Page::rowsUnder(m_page, QStringLiteral("Getter")))
        QCOMPARE(returns.value(row.value(0).section(u'(', 0, 0).remove(u'`')), QStringLiteral("model"));
}

void QmlPageTest::everySignalIsListed()
{
    QStringList expected;
    for (int i = meta().methodOffset(); i < meta().methodCount(); ++i) {
        if (meta().method(i).methodType() == QMetaMethod::Signal)
            expected.append(signalText(meta().method(i)));
    }
    QStringList listed;
    for (const QStringList &row : Page::rowsUnder(m_page, QStringLiteral("Signal")))
        listed.append(QString(row.value(0)).remove(u'`'));
    QCOMPARE(sorted(listed), sorted(expected));
}

void QmlPageTest::enumerationsHaveTheirValues()
{
    QStringList expected;
    for (int i = meta().enumeratorOffset(); i < meta().enumeratorCount(); ++i) {
        const QMetaEnum enumeration = meta().enumerator(i);
        QStringList keys;
        for (int key = 0; key < enumeration.keyCount(); ++key)
            keys.append(QStringLiteral("`%1` %2").arg(enumeration.key(key)).arg(enumeration.value(key)));
        expected.append(
            QStringLiteral("`%1`: %2").arg(QLatin1String(enumeration.name()), keys.join(QStringLiteral(", "))));
    }
    QStringList listed;
    for (const QStringList &row : Page::rowsUnder(m_page, QStringLiteral("Enumeration")))
        listed.append(row.value(0) + QStringLiteral(": ") + row.value(1).section(u';', 0, 0));
    QCOMPARE(listed, expected);
}

void QmlPageTest::rolesHaveTheirNumbers()
{
    const std::pair<QString, QHash<int, QByteArray>> tables[] = {
        {QStringLiteral("volume"), volumeRoleNames()},
        {QStringLiteral("recording group"), recordingGroupRoleNames()},
        {QStringLiteral("NAS server"), nasServerRoleNames()},
        {QStringLiteral("directory"), directoryRoleNames()},
        {QStringLiteral("tree"), treeRoleNames()},
    };
    const QList<Page::Table> pageTables = Page::tables(m_page);
    const auto roles = std::find_if(pageTables.begin(), pageTables.end(), [](const Page::Table &table) {
        return table.head.value(0) == QStringLiteral("Number");
    });
    QVERIFY(roles != pageTables.end());
    for (const auto &[title, names] : tables) {
        const auto column = roles->head.indexOf(title);
        QVERIFY2(column > 0, qPrintable(title));
        QHash<int, QByteArray> listed;
        for (const QStringList &row : roles->rows) {
            if (!row.value(column).isEmpty())
                listed.insert(row.value(0).toInt(), QString(row.value(column)).remove(u'`').toUtf8());
        }
        QCOMPARE(listed, names);
    }
}

// A call with the defaults that the page names sends what a call without them sends.
void QmlPageTest::defaultsAreThoseOfTheMethods()
{
    static const QRegularExpression optional(QStringLiteral("\\[([^\\]]+)\\]"));
    int compared = 0;
    for (const QStringList &row : Page::rowsUnder(m_page, QStringLiteral("Method"))) {
        const QString text = QString(row.value(0)).remove(u'`');
        const auto brackets = optional.match(text);
        if (!brackets.hasMatch())
            continue;
        const QString name = text.section(u'(', 0, 0);
        QStringList required;
        for (const QString &parameter :
             text.section(u'(', 1).section(u'[', 0, 0).split(QStringLiteral(", "), Qt::SkipEmptyParts))
            required.append(parameter == QStringLiteral("recPathType") ? QStringLiteral("1") : QStringLiteral("'x'"));
        QStringList all = required;
        for (const QString &parameter : brackets.captured(1).split(QStringLiteral(", "))) {
            const QString value = parameter.section(QStringLiteral(" = "), 1);
            QVERIFY2(!value.isEmpty(), qPrintable(text));
            bool isKey = false;
            const int key =
                QMetaEnum::fromType<PluginRecordingManagement::NASDirFilter>().keyToValue(value.toLatin1(), &isKey);
            all.append(isKey ? QString::number(key) : value);
        }
        for (const QStringList &arguments : {required, all})
            QCOMPARE(evaluate(QStringLiteral("recording.%1(%2)").arg(name, arguments.join(u','))), QVariant(true));
        const auto sent = std::exchange(m_framework.sent, {});
        QCOMPARE(sent.size(), 2);
        QCOMPARE(sent[1].data, sent[0].data);
        QCOMPARE(sent[1].relayPath, sent[0].relayPath);
        if (name == QStringLiteral("getNASServerDir"))
            QCOMPARE(sent[1].context, sent[0].context); // the filter
        for (const auto &command : sent) // a refusal takes the contexts back
            m_plugin->CommandProcessor(command.command, {}, command.context, QStringLiteral("1"), {}, true, {});
        ++compared;
    }
    const QList<int> numbers = invokables();
    QCOMPARE(compared, std::count_if(numbers.begin(), numbers.end(), optionalParameters));
}

void QmlPageTest::everyQuotedWordIsOneOfTheVocabulary()
{
    QStringList known;
    const QDir root(QStringLiteral(SOURCE_DIR));
    for (const QString &folder :
         {QStringLiteral("protocol"), QStringLiteral("src"), QStringLiteral("host/companions")}) {
        for (const QString &file :
             QDir(root.filePath(folder)).entryList({QStringLiteral("*.cpp"), QStringLiteral("*.h")}))
            known.append(quotedWords(Page::text(folder + u'/' + file)));
    }
    QVERIFY(known.contains(QStringLiteral("recordingGroupID")));
    static const QRegularExpression example(QStringLiteral("```.*?```"),
                                            QRegularExpression::DotMatchesEverythingOption);
    const QStringList used = quotedWords(QString(m_page).remove(example));
    QVERIFY(used.size() > 40);
    for (const QString &word : used)
        QVERIFY2(known.contains(word), qPrintable(word));
}

void QmlPageTest::keysOfTheEditsAreExplained()
{
    const QStringList words = quotedWords(m_page);
    for (const char *key : {"path",
                            "pathType",
                            "reserveSpace",
                            "isRecoveryMode",
                            "camName",
                            "streamIndex",
                            "enableTimeShift",
                            "enableSeamless",
                            "recordingGroupName",
                            "recordingGroupReservedTime",
                            "recordingGroupReservedTimeEnabled",
                            "recordingGroupNodeIdList",
                            "element",
                            "index",
                            "value",
                            "returnCode",
                            "reason",
                            "updateAddCameraList",
                            "updateRmCameraList",
                            "updateAddPathList",
                            "updateRmPathList",
                            "updateSetPathList",
                            "pathInfoList",
                            "deviceInfos",
                            "recordingGroupID"})
        QVERIFY2(words.contains(QLatin1String(key)), key);
}

void QmlPageTest::mapsHaveTheKeysOfThePage()
{
    const auto keysOnPage = [this](const QString &method) {
        for (const QStringList &row : Page::rowsUnder(m_page, QStringLiteral("Method"))) {
            if (row.value(0).startsWith(u'`' + method + u'('))
                return sorted(quotedWords(row.value(1)));
        }
        return QStringList();
    };
    const auto sortedKeys = [](const QVariantMap &map) { return sorted(map.keys()); };
    QCOMPARE(keysOnPage(QStringLiteral("getVolumeInfo")), sortedKeys(m_plugin->getVolumeInfo(QStringLiteral("/"), {})));

    change({QVariantMap{{QStringLiteral("recordingGroupID"), QStringLiteral("1")}}});
    const QVariantMap group = m_plugin->getRecordingGroupInfoList().value(0).toMap();
    const QVariantMap volume = group.value(QStringLiteral("volumeList")).toList().value(0).toMap();
    QVERIFY(!volume.isEmpty());
    QCOMPARE(keysOnPage(QStringLiteral("getRecordingGroupInfoList")), sorted(group.keys() + volume.keys()));

    const auto *const tree = qobject_cast<QAbstractItemModel *>(m_plugin->getRecordingGroupTreeModel());
    static const QRegularExpression dataRole(QStringLiteral("`dataRole`\\s+is a map of ([^.]*)\\."));
    const QString sentence = dataRole.match(m_page).captured(1);
    QCOMPARE(sorted(quotedWords(sentence)), sortedKeys(tree->data({}, TreeRole::Data).toMap()));
}

void QmlPageTest::unknownFiguresAreAsThePageSays()
{
    const auto figures = [](QObject *model) {
        const auto *const rows = qobject_cast<QAbstractItemModel *>(model);
        const QModelIndex row = rows->index(0, 0);
        return QList<int>{row.data(RecordingGroupRole::RecordedDays).toInt(),
                          row.data(RecordingGroupRole::RemainDays).toInt(),
                          row.data(RecordingGroupRole::OneDayUsage).toInt()};
    };
    const QVariantMap group{{QStringLiteral("recordingGroupID"), QStringLiteral("1")},
                            {QStringLiteral("volumeRecordedDays"), -1},
                            {QStringLiteral("volumeOneDayUsage"), -1}};
    change({group});
    QCOMPARE(figures(m_plugin->getStorageUsageModel({})), (QList<int>{-1, -1, -1}));
    answer(QStringLiteral("getRecordingGroup"), QVariantList{group});
    QCOMPARE(figures(m_plugin->getRecordingGroupModel()), (QList<int>{0, 0, 0}));
}

void QmlPageTest::everyExampleIsRunHere()
{
    QStringList languages;
    for (const Page::CodeBlock &block : Page::codeBlocks(m_page))
        languages.append(block.language);
    QCOMPARE(languages, QStringList(3, QStringLiteral("qml"))); // one test below for each
}

void QmlPageTest::exampleListsVolumes()
{
    QQuickWindow window;
    const std::unique_ptr<QObject> object = example(0);
    auto *const page = qobject_cast<QQuickItem *>(object.get());
    QVERIFY(page);
    showIn(window, page);
    QCOMPARE(m_framework.sent.size(), 1);
    QTest::ignoreMessage(QtDebugMsg, "volumes are in");
    answer(m_framework.sent.constFirst().command,
           QVariantList{QVariantMap{{QStringLiteral("volumePath"), QStringLiteral("/mnt/video")},
                                    {QStringLiteral("volumeSize"), qlonglong(4) << 40}}});
    QTRY_VERIFY(shownTexts(page).contains(QStringLiteral("/mnt/video: 4398046511104 KB")));
}

void QmlPageTest::exampleEditsAGroup()
{
    const std::unique_ptr<QObject> editor = example(1);
    QVERIFY(editor);
    bool isSent = false;
    QVERIFY(QMetaObject::invokeMethod(editor.get(), "extend", Q_RETURN_ARG(bool, isSent),
                                      Q_ARG(QString, QStringLiteral("{7}"))));
    QVERIFY(isSent);
    const QVariantMap request = m_framework.sent.constFirst().data.toMap();
    QCOMPARE(request.value(QStringLiteral("recordingGroupID")), QVariant(QStringLiteral("{7}")));
    const QVariantMap path = request.value(QStringLiteral("updateAddPathList")).toList().value(0).toMap();
    QCOMPARE(path.value(QStringLiteral("pathType")).toInt(), 0);
    QCOMPARE(path.value(QStringLiteral("reserveSpace")).toInt(), 4096);
    QCOMPARE(request.value(QStringLiteral("updateSetRecordingGroup"))
                 .toMap()
                 .value(QStringLiteral("recordingGroupReservedTime"))
                 .toInt(),
             14400);

    answer(QStringLiteral("updateRecordingGroup"),
           QVariantList{QVariantMap{{QStringLiteral("value"), QStringLiteral("/mnt/video2")},
                                    {QStringLiteral("returnCode"), QStringLiteral("DirectoryNotFound")}}},
           QStringLiteral("DirectoryNotFound"));
    QCOMPARE(editor->property("outcome").toString(), QStringLiteral("/mnt/video2: DirectoryNotFound"));
    QCOMPARE(m_framework.sent.size(), 1);
    answer(QStringLiteral("updateRecordingGroup"), QVariantList());
    QCOMPARE(editor->property("outcome").toString(), QStringLiteral("done"));
}

void QmlPageTest::exampleShowsUsage()
{
    QQuickWindow window;
    const std::unique_ptr<QObject> object = example(2);
    auto *const view = qobject_cast<QQuickItem *>(object.get());
    QVERIFY(view);
    showIn(window, view);
    change({QVariantMap{{QStringLiteral("recordingGroupID"), QStringLiteral("1")},
                        {QStringLiteral("recordingGroupName"), QStringLiteral("North")},
                        {QStringLiteral("volumeRecordedDays"), 9},
                        {QStringLiteral("volumeOneDayUsage"), -1}}});
    QTRY_VERIFY(shownTexts(view).contains(QStringLiteral("North: 9 days, unknown left")));
}

QTEST_MAIN(QmlPageTest)
#include "tst_qml_page.moc"
