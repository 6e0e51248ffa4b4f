// An HTTP server on the loopback interface, run by the event loop of the test. For programs with
// Qt.
#pragma once

#include <QTcpServer>
#include <QTcpSocket>

#include <gtest/gtest.h>

namespace support
{

class FeedServer : public QTcpServer
{
public:
    // Gives each request the next of the answers, the last one for ever. An empty answer leaves the
    // client waiting.
    explicit FeedServer(const QList<QByteArray>& answers)
        : _answers(answers)
    {
        EXPECT_TRUE(listen(QHostAddress::LocalHost));
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                requests << socket->readAll();
                socket->write(_answers.front());
                if (!_answers.front().isEmpty())
                    socket->disconnectFromHost();
                if (_answers.size() > 1)
                    _answers.removeFirst();
            });
        });
    }

    static QByteArray answerWith(const QByteArray& body, const QByteArray& headers = {})
    {
        return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size())
            + "\r\nConnection: close\r\n" + headers + "\r\n" + body;
    }

    // A feed of one item with this version, and with `more` in the item.
    static QByteArray feedWith(const QByteArray& version, const QByteArray& more = {})
    {
        return "<rss><channel><item><version>" + version + "</version>" + more
            + "</item></channel></rss>";
    }

    // As the settings hold it.
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/feed.xml").arg(serverPort()); }

    QByteArrayList requests;

private:
    QList<QByteArray> _answers;
};

} // namespace support
