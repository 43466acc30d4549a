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
        VESK_LOG(logger, levelForText) << signature << " " << text;
    } catch (...) {
        VESK_LOG(logger, Hox::Error) << signature << " failed";
    }
}

} // namespace VeskTimeline
