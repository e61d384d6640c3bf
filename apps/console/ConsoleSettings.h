#pragma once

#include <QHash>
#include <QObject>
#include <QSettings>
#include <QString>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

#include <memory>

/// What the console remembers for its user from one start to the next, by key; "window/textSize" for instance. Numbers,
/// truth values, texts, and lists and maps of them. Without a file it remembers as long as it lives. Lives on the UI
/// thread.
class ConsoleSettings : public QObject
{
    Q_OBJECT
    QML_ELEMENT
public:
    /// Reads and writes no file.
    explicit ConsoleSettings(QObject *parent = nullptr);
    /// @p file is made when something is remembered; where that fails, one line on stderr says so.
    explicit ConsoleSettings(const QString &file, QObject *parent = nullptr);
    ~ConsoleSettings() override;

    /// The file of the user who runs the program; empty where there is no place for it.
    static QString userFile();

    /// What is remembered; @p otherwise where nothing is, or where it is of another type than @p otherwise.
    Q_INVOKABLE QVariant value(const QString &key, const QVariant &otherwise) const;
    /// Remembers a value in place of the one before.
    Q_INVOKABLE void setValue(const QString &key, const QVariant &value);

private:
    std::unique_ptr<QSettings> m_file; ///< null: none
    QHash<QString, QString> m_values; ///< as JSON; not used with a file
};
