#include "BareClient.h"

#include "Lines.h"
#include "Program.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <poll.h>

namespace {
constexpr int patience = 10'000; // milliseconds
constexpr int quality = 1;
} // namespace

struct BareClient::Callbacks
{
    static BareClient &of(void *client) { return *static_cast<BareClient *>(client); }
    static void connected(mosquitto *, void *client, int reason) { of(client).m_isConnected = reason == 0; }
    static void subscribed(mosquitto *, void *client, int, int, const int *) { of(client).m_isSubscribed = true; }
    static void received(mosquitto *, void *client, const mosquitto_message *message)
    {
        of(client).m_received = QByteArray(static_cast<const char *>(message->payload), message->payloadlen);
        of(client).m_hasReceived = true;
    }
};

BareClient::BareClient(quint16 port, const QByteArray &listenTopic)
    : m_client(nullptr, mosquitto_destroy)
{
    mosquitto_lib_init();
    m_client.reset(mosquitto_new(nullptr, true, this));
    require(m_client != nullptr, "no client of the library");
    mosquitto_int_option(m_client.get(), MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_int_option(m_client.get(), MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_connect_callback_set(m_client.get(), Callbacks::connected);
    mosquitto_subscribe_callback_set(m_client.get(), Callbacks::subscribed);
    mosquitto_message_callback_set(m_client.get(), Callbacks::received);
    constexpr int keepAlive = 3600;
    require(mosquitto_connect(m_client.get(), "127.0.0.1", port, keepAlive) == MOSQ_ERR_SUCCESS,
            "no connection to the broker");
    waitUntil(m_isConnected, "no greeting of the broker");
    require(mosquitto_subscribe(m_client.get(), nullptr, listenTopic.constData(), quality) == MOSQ_ERR_SUCCESS,
            "the broker takes no subscription");
    waitUntil(m_isSubscribed, "no answer to a subscription");
}

BareClient::~BareClient()
{
    mosquitto_disconnect(m_client.get());
}

void BareClient::publish(const QByteArray &topic, const QByteArray &payload)
{
    require(mosquitto_publish(m_client.get(), nullptr, topic.constData(), static_cast<int>(payload.size()),
                              payload.constData(), quality, false)
                == MOSQ_ERR_SUCCESS,
            "the broker takes no message");
}

QByteArray BareClient::next()
{
    while (!m_hasReceived) {
        if (!turn(patience))
            return {};
    }
    m_hasReceived = false;
    return m_received;
}

void BareClient::waitUntil(const bool &isSo, const char *what)
{
    while (!isSo)
        require(turn(patience), what);
}

/// Waits for the socket and does what it is ready for; false where nothing came in time or the connection ended.
bool BareClient::turn(int milliseconds)
{
    const short events = mosquitto_want_write(m_client.get()) ? POLLIN | POLLOUT : POLLIN;
    pollfd socket{mosquitto_socket(m_client.get()), events, 0};
    if (poll(&socket, 1, milliseconds) <= 0)
        return false;
    if ((socket.revents & (POLLIN | POLLHUP | POLLERR)) != 0
        && mosquitto_loop_read(m_client.get(), 1) != MOSQ_ERR_SUCCESS)
        return false;
    return !mosquitto_want_write(m_client.get()) || mosquitto_loop_write(m_client.get(), 1) == MOSQ_ERR_SUCCESS;
}

void runBareEcho(quint16 port, const QByteArray &askTopic, const QByteArray &answerTopic, qsizetype replySize)
{
    BareClient client(port, askTopic);
    const QByteArray reply(replySize, 'x');
    printLine({{QStringLiteral("listening"), true}});
    while (!client.next().isEmpty())
        client.publish(answerTopic, reply);
}
