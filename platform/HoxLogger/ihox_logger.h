#pragma once

#include <HoxLogger/hoxlogger_export.h>

#include <QString>

namespace Hox {

/// How important a message is; the greater the value, the more important.
enum LogLevel { Undefined = 0, Trace = 64, Debug = 96, Info = 128, Warning = 150, Error = 182, Fatal = 214 };

} // namespace Hox

/// A named logger.
///
/// Loggers form a tree whose root comes from Hox::HoxLoggerBootstrap::getHoxRootLogger(). They are never owned by
/// those who use them: a logger lives at least as long as the root it was taken from, so keeping a reference is safe.
///
/// Callers ask isEnabled() before they put a message together, and hand it over through a Hox::LogStreamHelper.
class HOXLOGGER_EXPORT IHoxLogger
{
public:
    virtual ~IHoxLogger();

    /// The full name, its parts separated by dots. The root's name is empty.
    virtual QString name() const = 0;

    /// The logger whose full name is @p name, made at the first call; every later call returns the same object,
    /// whichever logger of the tree is asked. An empty name stands for the root.
    virtual IHoxLogger& logger(const QString& name) = 0;

    /// Whether a message of @p level would be written now.
    virtual bool isEnabled(Hox::LogLevel level) const = 0;

    /// Writes @p message. @p file, @p line and @p function say where it comes from; the two texts may be null.
    virtual void write(Hox::LogLevel level, const char* file, int line, const char* function,
                       const QString& message) = 0;
};

namespace Hox {

/// Gives access to the root of all loggers.
///
/// Unless one is set, the root is a logger that writes through Qt's logging categories. The name of each of its
/// loggers is its category; the root, having an empty name, writes to Qt's category "default". Info and everything
/// more important is on, Debug and Trace are off, and Qt's filter rules change that, as in
/// QT_LOGGING_RULES="Timeline.*.debug=true". Trace and Debug go out as debug messages, Info as info, Warning as
/// warning, Error and Fatal as critical messages; Fatal does not end the process. A level between two of the named
/// ones goes out like the lower one, Undefined like Trace. A message whose level is off is dropped.
///
/// The default loggers live as long as the process and may be used from any thread.
class HOXLOGGER_EXPORT HoxLoggerBootstrap
{
public:
    /// The logger that was set last, or else the default one.
    static IHoxLogger& getHoxRootLogger();

    /// Makes @p root the root logger; null brings the default one back. @p root is not owned and must outlive its
    /// time as the root and everybody who holds a reference to it. Loggers that were taken from the former root stay
    /// what they are.
    static void setHoxRootLogger(IHoxLogger* root);
};

} // namespace Hox
