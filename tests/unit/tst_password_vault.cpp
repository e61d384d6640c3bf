#include "nas/PasswordVault.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

namespace {
const QString password = QStringLiteral("Gehéim 密码 with blanks");
const QString id = QStringLiteral("{00000000-0000-0000-0000-000000000001}");

QString errorOf(const std::function<void()> &action)
{
    try {
        action();
    } catch (const VaultError &error) {
        return QString::fromStdString(error.what());
    }
    return {};
}

QByteArray contentOf(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
}
} // namespace

/// The key of the stored passwords, and what is done with it.
class PasswordVaultTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void aKeyIsMadeForTheUserAlone();
    void theKeyIsKept();
    void theModeDoesNotDependOnTheMask();
    void aPasswordComesBack_data();
    void aPasswordComesBack();
    void samePasswordsReadDifferently();
    void damageIsFound();
    void anotherKeyOpensNothing();
    void aLostKeyIsAnError();
    void aBadKeyFileIsAnErrorAndKept_data();
    void aBadKeyFileIsAnErrorAndKept();
    void aLinkIsNoKeyFile();
    void aFolderThatTakesNoFileIsNamed();
    void tokensStandForOneServer();
    void anothersKeyIsRefused();
    void theSystemsKey_data();
    void theSystemsKey();
    void theSystemsKeyIsNeverMade();
    void whereTheKeyLies();

private:
    QString file() const { return m_folder->filePath(QStringLiteral("nas.key")); }
    std::unique_ptr<PasswordVault> created() const
    {
        return std::make_unique<PasswordVault>(file(), PasswordVault::WhenMissing::Create);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void PasswordVaultTest::aKeyIsMadeForTheUserAlone()
{
    created();
    struct stat facts = {};
    QCOMPARE(stat(QFile::encodeName(file()).constData(), &facts), 0);
    QCOMPARE(facts.st_mode & 07777, 0600U);
    QCOMPARE(facts.st_size, 32);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("nas.key")});
}

void PasswordVaultTest::theKeyIsKept()
{
    const QByteArray sealed = created()->encrypted(password);
    const QByteArray key = contentOf(file());
    QCOMPARE(created()->decrypted(sealed), password);
    QCOMPARE(PasswordVault(file(), PasswordVault::WhenMissing::Fail).decrypted(sealed), password);
    QCOMPARE(contentOf(file()), key);
}

void PasswordVaultTest::theModeDoesNotDependOnTheMask()
{
    const mode_t mask = umask(0);
    created();
    umask(mask);
    struct stat facts = {};
    QCOMPARE(stat(QFile::encodeName(file()).constData(), &facts), 0);
    QCOMPARE(facts.st_mode & 07777, 0600U);
}

void PasswordVaultTest::aPasswordComesBack_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a word") << password;
    QTest::newRow("empty") << QString();
    QTest::newRow("long") << QString(5000, u'x');
}

void PasswordVaultTest::aPasswordComesBack()
{
    QFETCH(QString, text);
    const auto vault = created();
    const QByteArray sealed = vault->encrypted(text);
    QCOMPARE(vault->decrypted(sealed), text);
    QVERIFY(text.isEmpty() || !sealed.contains(text.toUtf8()));
}

void PasswordVaultTest::samePasswordsReadDifferently()
{
    const auto vault = created();
    QVERIFY(vault->encrypted(password) != vault->encrypted(password));
}

void PasswordVaultTest::damageIsFound()
{
    const auto vault = created();
    const QByteArray sealed = vault->encrypted(password);
    for (qsizetype i = 0; i < sealed.size(); ++i) {
        QByteArray damaged = sealed;
        damaged[i] = static_cast<char>(damaged[i] ^ 1);
        QVERIFY(!errorOf([&] { vault->decrypted(damaged); }).isEmpty());
    }
    for (qsizetype size : {qsizetype(0), qsizetype(1), qsizetype(24), qsizetype(39), sealed.size() - 1})
        QVERIFY(!errorOf([&] { vault->decrypted(sealed.left(size)); }).isEmpty());
}

void PasswordVaultTest::anotherKeyOpensNothing()
{
    const QByteArray sealed = created()->encrypted(password);
    QVERIFY(QFile::remove(file()));
    const auto other = created();
    const QString error = errorOf([&] { other->decrypted(sealed); });
    QVERIFY2(error.contains(QStringLiteral("another key")), qPrintable(error));
}

void PasswordVaultTest::aLostKeyIsAnError()
{
    const QString error = errorOf([this] { PasswordVault(file(), PasswordVault::WhenMissing::Fail); });
    QVERIFY2(error.contains(file()) && error.contains(QStringLiteral("lost")), qPrintable(error));
    QVERIFY(!QFileInfo::exists(file()));
}

void PasswordVaultTest::aBadKeyFileIsAnErrorAndKept_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("word");
    const QByteArray key(32, 'k');
    QTest::newRow("readable for the group") << key << 0640 << QStringLiteral("0640");
    QTest::newRow("readable for all") << key << 0604 << QStringLiteral("0604");
    QTest::newRow("writable for all") << key << 0602 << QStringLiteral("0602");
    QTest::newRow("too short") << key.left(31) << 0600 << QStringLiteral("31 bytes, expected 32");
    QTest::newRow("too long") << key + 'k' << 0600 << QStringLiteral("33 bytes, expected 32");
    QTest::newRow("empty") << QByteArray() << 0600 << QStringLiteral("0 bytes, expected 32");
}

void PasswordVaultTest::aBadKeyFileIsAnErrorAndKept()
{
    QFETCH(QByteArray, content);
    QFETCH(int, mode);
    QFETCH(QString, word);
    QFile made(file());
    QVERIFY(made.open(QIODevice::WriteOnly));
    made.write(content);
    made.close();
    QCOMPARE(chmod(QFile::encodeName(file()).constData(), static_cast<mode_t>(mode)), 0);
    const QString error = errorOf([this] { created(); });
    QVERIFY2(error.contains(file()) && error.contains(word), qPrintable(error));
    QCOMPARE(contentOf(file()), content);
}

void PasswordVaultTest::aLinkIsNoKeyFile()
{
    const QString target = m_folder->filePath(QStringLiteral("target"));
    QVERIFY(QFile::link(target, file()));
    QVERIFY(errorOf([this] { created(); }).contains(file()));
    QVERIFY(!QFileInfo::exists(target));
}

void PasswordVaultTest::aFolderThatTakesNoFileIsNamed()
{
    const QString nowhere = m_folder->filePath(QStringLiteral("missing/nas.key"));
    const QString error = errorOf([&] { PasswordVault(nowhere, PasswordVault::WhenMissing::Create); });
    QVERIFY2(error.contains(nowhere), qPrintable(error));
}

void PasswordVaultTest::tokensStandForOneServer()
{
    const QString other = QStringLiteral("{00000000-0000-0000-0000-000000000002}");
    const auto vault = created();
    const QString token = vault->token(id);
    QCOMPARE(created()->token(id), token);
    QVERIFY(vault->isToken(token, id));
    QVERIFY(!vault->isToken(token, other));
    QVERIFY(!vault->isToken(token.chopped(1), id));
    QVERIFY(!vault->isToken(QString(), id));
    QVERIFY(!vault->isToken(password, id));
    QVERIFY(QFile::remove(file()));
    QVERIFY(!created()->isToken(token, id));
}

void PasswordVaultTest::anothersKeyIsRefused()
{
    if (geteuid() != 0)
        QSKIP("only root gives files away");
    created();
    QCOMPARE(chown(QFile::encodeName(file()).constData(), 1, 1), 0);
    const QString error = errorOf([this] { created(); });
    QVERIFY2(error.contains(file()) && error.contains(QStringLiteral("belongs to the user 1, expected 0")),
             qPrintable(error));
}

void PasswordVaultTest::theSystemsKey_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("word"); // empty: it is taken
    QTest::newRow("0400") << 0400 << QString();
    QTest::newRow("0440") << 0440 << QString();
    QTest::newRow("0600") << 0600 << QString();
    QTest::newRow("readable for all") << 0444 << QStringLiteral("0444, expected 0440 or 0400");
    QTest::newRow("writable for the group") << 0660 << QStringLiteral("0660");
}

void PasswordVaultTest::theSystemsKey()
{
    QFETCH(int, mode);
    QFETCH(QString, word);
    created();
    QCOMPARE(chmod(QFile::encodeName(file()).constData(), static_cast<mode_t>(mode)), 0);
    const KeyFile key{file(), KeyFile::Keeper::System};
    const QString error = errorOf([&] { PasswordVault(key, PasswordVault::WhenMissing::Create); });
    QVERIFY2(word.isEmpty() ? error.isEmpty() : error.contains(word), qPrintable(error));
}

void PasswordVaultTest::theSystemsKeyIsNeverMade()
{
    const KeyFile key{file(), KeyFile::Keeper::System};
    const QString error = errorOf([&] { PasswordVault(key, PasswordVault::WhenMissing::Create); });
    QVERIFY2(error.contains(QStringLiteral("lost")), qPrintable(error));
    QVERIFY(!QFileInfo::exists(file()));
}

void PasswordVaultTest::whereTheKeyLies()
{
    const auto textOf = [](const KeyFile &key) {
        return key.path + (key.keeper == KeyFile::Keeper::System ? QStringLiteral(" (system)") : QString());
    };
    const QString data = QStringLiteral("/srv/data");
    qunsetenv("CREDENTIALS_DIRECTORY");
    QCOMPARE(textOf(KeyFile::of({}, data)), QStringLiteral("/srv/data/nas.key"));
    QCOMPARE(textOf(KeyFile::of(QStringLiteral("/etc/rec.key"), data)), QStringLiteral("/etc/rec.key"));
    qputenv("CREDENTIALS_DIRECTORY", QFile::encodeName(m_folder->path()));
    QCOMPARE(textOf(KeyFile::of({}, data)), QStringLiteral("/srv/data/nas.key")); // none was handed over
    const QString credential = m_folder->filePath(QStringLiteral("recording-station.key"));
    QFile made(credential);
    QVERIFY(made.open(QIODevice::WriteOnly));
    QCOMPARE(textOf(KeyFile::of({}, data)), credential + QStringLiteral(" (system)"));
    QCOMPARE(textOf(KeyFile::of(QStringLiteral("/etc/rec.key"), data)), QStringLiteral("/etc/rec.key"));
    qunsetenv("CREDENTIALS_DIRECTORY");
}

QTEST_APPLESS_MAIN(PasswordVaultTest)
#include "tst_password_vault.moc"
