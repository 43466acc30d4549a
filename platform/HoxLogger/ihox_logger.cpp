#include <HoxLogger/category_logger_p.h>
#include <HoxLogger/ihox_logger.h>

#include <atomic>

namespace {

std::atomic<IHoxLogger*> s_rootLogger = nullptr;

IHoxLogger& defaultRootLogger()
{
    // Never destroyed: objects that outlive main() may still log.
    static auto* const s_loggers = new Hox::CategoryLoggers;
    return s_loggers->logger(QString());
}

} // namespace

IHoxLogger::~IHoxLogger() = default;

namespace Hox {

IHoxLogger& HoxLoggerBootstrap::getHoxRootLogger()
{
    IHoxLogger* const root = s_rootLogger.load();
    return root ? *root : defaultRootLogger();
}

void HoxLoggerBootstrap::setHoxRootLogger(IHoxLogger* root)
{
    s_rootLogger.store(root);
}

} // namespace Hox
