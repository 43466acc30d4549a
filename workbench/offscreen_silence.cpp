#include "offscreen_silence.h"

#include <QString>

namespace Workbench {

namespace {

QtMessageHandler nextHandler = nullptr;

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const bool isRemark = message == u"This plugin does not support propagateSizeHints()";
    if (!isRemark && nextHandler)
        nextHandler(type, context, message);
}

} // namespace

OffscreenSilence::OffscreenSilence()
{
    nextHandler = qInstallMessageHandler(handleMessage);
}

OffscreenSilence::~OffscreenSilence()
{
    qInstallMessageHandler(nextHandler);
    nextHandler = nullptr;
}

} // namespace Workbench
