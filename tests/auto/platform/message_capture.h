#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

#include <utility>

struct CapturedMessage
{
    QtMsgType type = QtDebugMsg;
    QByteArray category;
    QByteArray file;
    int line = 0;
    QByteArray function;
    QString text;
};

/// Takes every message that goes to Qt's message handler while it lives. One at a time.
class MessageCapture
{
public:
    MessageCapture() : m_previous(qInstallMessageHandler(record)) { messages().clear(); }
    ~MessageCapture() { qInstallMessageHandler(m_previous); }
    Q_DISABLE_COPY_MOVE(MessageCapture)

    QList<CapturedMessage> take() { return std::exchange(messages(), {}); }

private:
    static QList<CapturedMessage>& messages()
    {
        static QList<CapturedMessage> s_messages;
        return s_messages;
    }

    static void record(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        messages().append({type, context.category, context.file, context.line, context.function, text});
    }

    QtMessageHandler m_previous;
};
