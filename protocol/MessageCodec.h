#pragma once

#include "StationMessage.h"

#include <QByteArray>
#include <QByteArrayView>

#include <stdexcept>
#include <variant>

/// The version of what is said here. Client and station of different versions part at the greeting.
constexpr int protocolVersion = 1;

/// A client's first words.
struct Hello
{
    int protocol = protocolVersion; ///< that it speaks
    QString program; ///< what it calls itself: "recordingctl"
    QString version; ///< of the program
};

/// What the station answers to a Hello that it takes.
struct Welcome
{
    int protocol = protocolVersion; ///< that it speaks
    QString version; ///< of the station's program
    QString name; ///< of the station
    QString relayPath; ///< under which it also answers, besides the empty one
};

/// Why the connection ends now; the last message of either side.
struct Goodbye
{
    QString code; ///< a word of GoodbyeCode
    QString text; ///< an English sentence with what to do about it
};

/// Why a connection ends.
namespace GoodbyeCode {
extern const QString OtherVersion; ///< the two speak different versions
extern const QString NotAllowed; ///< the client's user may not use this station
extern const QString BadMessage; ///< what came was no message, or too large
extern const QString TooManyClients; ///< no more are taken
extern const QString TooSlow; ///< the client did not read what was sent
extern const QString Stopping; ///< the station ends
} // namespace GoodbyeCode

/// A command on its way.
struct CommandMessage
{
    quint64 correlation = 0; ///< the sender's number; replies carry it
    StationCommand command; ///< StationCommand::user does not travel: the receiver knows who is connected
};

/// A part of a reply on its way.
struct ReplyMessage
{
    quint64 correlation = 0; ///< that of the command
    StationReply reply; ///< the part itself
};

/// Whatever travels between a client and a station.
using StationMessage = std::variant<Hello, Welcome, Goodbye, CommandMessage, ReplyMessage, StationEvent>;

/// What a message from outside may measure.
struct MessageLimits
{
    qsizetype bytes = 64 * 1024 * 1024; ///< in all
    int depth = 32; ///< of lists and maps within each other
    qsizetype elements = 4'000'000; ///< values and keys in all
};

/// A message that cannot be read, or not be written; what() says what was expected.
class MessageError : public std::runtime_error
{
public:
    /// @p text: a sentence that says what was expected.
    explicit MessageError(const QString &text)
        : std::runtime_error(text.toStdString())
    {
    }
    QString text() const { return QString::fromUtf8(what()); } ///< what() as text
};

/// The message as CBOR (RFC 8949): a map with text keys.
///
/// Data may hold booleans, integers, floating-point numbers, text, bytes, lists and maps with text keys, within each
/// other. On the way
/// - every integer becomes a 64-bit one (qlonglong); an unsigned one beyond 2^63 - 1 becomes a double,
/// - a string list and a list of maps become a QVariantList, whose conversion gives them back,
/// - a null of any type becomes a null without a type (std::nullptr_t), and an invalid value stays invalid,
/// - a float becomes a double, and a hash becomes a map.
///
/// Throws MessageError for a value of any other type: nothing is lost without a word. Any thread.
QByteArray encodeMessage(const StationMessage &message);

/// The message that @p bytes hold. Throws MessageError where they hold anything else, more than @p limits allow, or a
/// key twice. Never more memory than the limits lead to, whatever @p bytes claim. Any thread.
StationMessage decodeMessage(QByteArrayView bytes, const MessageLimits &limits = {});
