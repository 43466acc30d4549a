#include "failure_log_p.h"

#include <QString>

#include <exception>

namespace VeskTimeline {

QString textOfCaughtException()
{
    try {
        throw;
    } catch (const QString& text) {
        return text;
    } catch (const char* text) {
        return QString::fromUtf8(text);
    } catch (const std::exception& exception) {
        return QString::fromUtf8(exception.what());
    } catch (...) {
        return {};
    }
}

void logCaughtException(IHoxLogger& logger, const char* signature, Hox::LogLevel levelForText)
{
    try {
        throw;
    } catch (const QString& text) {
        if (logger.isEnabled(levelForText))
            Hox::LogStreamHelper(logger, levelForText, __FILE__, __LINE__, signature) << signature << " " << text;
    } catch (...) {
        if (logger.isEnabled(Hox::Error))
            Hox::LogStreamHelper(logger, Hox::Error, __FILE__, __LINE__, signature) << signature << " failed";
    }
}

} // namespace VeskTimeline
