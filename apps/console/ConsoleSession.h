#pragma once

#include <QHash>
#include <QObject>
#include <QtQml/qqmlregistration.h>

/// What the pages know of the client around the plug-in: whether the station can be reached, and the words behind the
/// plug-in's yes or no. Lives on the UI thread.
class ConsoleSession : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The client gives it to its pages.")
    Q_PROPERTY(bool connected READ isConnected NOTIFY connectedChanged)

public:
    explicit ConsoleSession(QObject *parent = nullptr);

    bool isConnected() const;
    void setConnected(bool connected);

    /// Keeps the return code of an answer; to be called before the plug-in handles the answer.
    void noteAnswer(const QString &command, const QString &returnCode);

    /// Why the last answer to @p command was a refusal, as a sentence; empty when it was none, or when there was no
    /// answer yet.
    Q_INVOKABLE QString refusal(const QString &command) const;
    /// The return code of the last answer to @p command; empty when there was none yet.
    Q_INVOKABLE QString returnCode(const QString &command) const;

signals:
    void connectedChanged();

private:
    bool m_connected = false;
    QHash<QString, QString> m_returnCodes; // of the last answer, by command
};
